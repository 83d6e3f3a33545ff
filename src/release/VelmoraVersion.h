#pragma once

#include "wire/ASCEnums.h"

#include <QDateTime>
#include <QString>

#include <optional>

// How a version goes on sale once Apple approves it.
enum class ASCReleaseType { Manual, AfterApproval, Scheduled };

namespace ASCReleaseTypes {
QString rawValue(ASCReleaseType type);
std::optional<ASCReleaseType> fromRaw(const QString& raw);
} // namespace ASCReleaseTypes

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
    friend bool operator==(const VelmoraVersion&, const VelmoraVersion&) = default;
};
