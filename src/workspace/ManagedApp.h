#pragma once

#include "wire/JsonReader.h"

#include <QJsonObject>
#include <QString>
#include <QUuid>

#include <optional>

// The wire form of an app's attributes.
struct ASCAppAttributes {
    std::optional<QString> name;
    std::optional<QString> bundleId;
    std::optional<QString> sku;
    std::optional<QString> primaryLocale;
    std::optional<bool> isOrEverWasMadeForKids;
    static ASCAppAttributes fromJson(const JsonReader& r);
};

// The value that names an app everywhere in the system; also what the disk cache stores.
struct ManagedApp {
    QString id;
    QString name;
    QString bundleID;
    std::optional<QString> sku;
    std::optional<QString> primaryLocale;
    std::optional<QUuid> accountID;
    std::optional<QString> accountName;

    static ManagedApp fromResource(const QString& id, const std::optional<ASCAppAttributes>& attributes);

    QJsonObject toJson() const;
    static ManagedApp fromJson(const JsonReader& r);
    friend bool operator==(const ManagedApp&, const ManagedApp&) = default;
};
