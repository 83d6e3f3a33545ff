#pragma once

#include "wire/ASCEnums.h"
#include "wire/JsonReader.h"

#include <QDateTime>
#include <QJsonObject>
#include <QList>
#include <QString>

#include <optional>

// How a version goes on sale once Apple approves it.
enum class ASCReleaseType { Manual, AfterApproval, Scheduled };

namespace ASCReleaseTypes {
QString rawValue(ASCReleaseType type);
std::optional<ASCReleaseType> fromRaw(const QString& raw);
} // namespace ASCReleaseTypes

// The wire form of an App Store version's attributes.
struct ASCAppStoreVersionAttributes {
    std::optional<QString> platform;
    std::optional<QString> versionString;
    std::optional<QString> appStoreState;
    // Apple's newer name for the state; read when the older one is missing.
    std::optional<QString> appVersionState;
    std::optional<QString> copyright;
    std::optional<QString> releaseType;
    std::optional<QDateTime> earliestReleaseDate;
    std::optional<QDateTime> createdDate;
    static ASCAppStoreVersionAttributes fromJson(const JsonReader& r);
};

// One App Store version of an app.
struct VelmoraVersion {
    QString id;
    QString versionString;
    std::optional<ASCPlatform> platform;
    ASCAppStoreVersionState state;
    std::optional<QDateTime> earliestReleaseDate;
    std::optional<QDateTime> createdDate;
    std::optional<ASCReleaseType> releaseType;
    std::optional<QString> copyright;

    static VelmoraVersion fromResource(const QString& id,
                                       const std::optional<ASCAppStoreVersionAttributes>& attributes);

    // The disk cache's form; raw values of Apple's enums, plain ISO 8601 dates.
    QJsonObject toJson() const;
    static VelmoraVersion fromJson(const JsonReader& r);

    // The states in which every field of a version can still be changed. The store texts and
    // the bulk "what's new" both edit the first version in such a state.
    static bool isFullyEditable(const ASCAppStoreVersionState& state);

    // Newest first by creation; a version without a date counts as the oldest. Stable.
    static void sortNewestFirst(QList<VelmoraVersion>& versions);

    friend bool operator==(const VelmoraVersion&, const VelmoraVersion&) = default;
};
