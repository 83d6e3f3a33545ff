#pragma once

#include <QString>

#include <optional>

// A one-off purchase. `type` and `state` are the German labels shown in lists; the raw values
// stay beside them because the lock rule of the editor works on the raw state.
struct ManagedInAppPurchase {
    QString id;
    QString name;
    QString productID;
    QString type;
    QString state;
    std::optional<QString> rawState;
    std::optional<QString> rawType;
    QString reviewNote;
    bool isFamilySharable = false;
    friend bool operator==(const ManagedInAppPurchase&, const ManagedInAppPurchase&) = default;
};
