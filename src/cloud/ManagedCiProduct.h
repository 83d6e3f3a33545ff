#pragma once

#include <QString>

// An app's Xcode Cloud product; an app has at most one.
struct ManagedCiProduct {
    QString id;
    QString name;
    friend bool operator==(const ManagedCiProduct&, const ManagedCiProduct&) = default;
};
