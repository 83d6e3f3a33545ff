#pragma once

#include "wire/JsonReader.h"

#include <QDateTime>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <QUuid>

#include <optional>

// What a key proved it may do, measured by one telling call per area.
struct AccountCapabilities {
    bool canReadApps = false;
    bool canReadUsers = false;
    bool canReadAnalytics = false;
    bool canReadSalesReports = false;
    QDateTime checkedAt;

    struct Finding {
        QString title;
        bool available;
        QString hint;
    };
    QList<Finding> findings() const;

    QJsonObject toJson() const;
    static AccountCapabilities fromJson(const JsonReader& r);
    friend bool operator==(const AccountCapabilities&, const AccountCapabilities&) = default;
};

// A connection to App Store Connect through one API key. The private key itself lives only in
// the secret store, under the account's id.
struct Account {
    QUuid id;
    QString name;
    QString issuerID;
    QString keyID;
    std::optional<QString> teamName;
    std::optional<QString> role;
    std::optional<QDateTime> lastSuccessfulAccessAt;
    QDateTime createdAt;
    std::optional<QString> vendorNumber;
    bool isReadOnly = false;
    bool requiresBiometricUnlock = false;
    std::optional<AccountCapabilities> capabilities;

    // The canonical upper-case form: the name of the key in the secret store and in cache keys.
    QString idText() const { return idText(id); }
    static QString idText(const QUuid& id);

    // Digits only, more than five of them: sales reports need it.
    bool hasUsableVendorNumber() const;
    static bool isUsableVendorNumber(const std::optional<QString>& vendorNumber);

    QJsonObject toJson() const;
    static Account fromJson(const JsonReader& r);
    friend bool operator==(const Account&, const Account&) = default;
};
