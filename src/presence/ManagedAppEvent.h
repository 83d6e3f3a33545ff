#pragma once

#include <QString>

// An in-app event as the store presence screen lists it. `state` is Apple's raw event state
// ("DRAFT", "PUBLISHED", ...).
struct ManagedAppEvent {
    QString id;
    QString name;
    QString state;
    friend bool operator==(const ManagedAppEvent&, const ManagedAppEvent&) = default;
};
