#pragma once

#include "wire/ASCEnums.h"
#include "wire/ASCImageAsset.h"

#include <QDateTime>
#include <QString>

#include <optional>

// The program's one picture of a build: the release workflow, the overview, the status watch
// and the attention list all read it.
struct ManagedBuild {
    QString id;
    QString buildNumber;
    std::optional<QDateTime> uploadedDate;
    std::optional<QDateTime> expirationDate;
    bool isExpired = false;
    std::optional<QString> minOSVersion;
    ASCProcessingState processingState;
    std::optional<bool> usesNonExemptEncryption;
    std::optional<ASCImageAsset> iconAsset;
    friend bool operator==(const ManagedBuild&, const ManagedBuild&) = default;
};
