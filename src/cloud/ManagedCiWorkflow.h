#pragma once

#include <QString>

struct ManagedCiWorkflow {
    QString id;
    QString name;
    bool isEnabled = false;
    friend bool operator==(const ManagedCiWorkflow&, const ManagedCiWorkflow&) = default;
};
