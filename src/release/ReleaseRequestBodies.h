#pragma once

#include "release/ManagedAppReviewDetail.h"
#include "release/ManagedPhasedRelease.h"
#include "release/VelmoraVersion.h"
#include "wire/ASCEnums.h"
#include "wire/FieldUpdate.h"

#include <QByteArray>
#include <QDateTime>
#include <QJsonObject>
#include <QString>

#include <optional>

// The JSON:API documents that versions, submissions and review details are written with. Each
// gives the whole document (`data` at the top) in toJson() and its bytes in encoded().

struct AppStoreVersionCreateRequestBody {
    QString appID;
    QString versionString;
    ASCPlatform platform;
    // Left out when blank.
    std::optional<QString> copyright;
    QJsonObject toJson() const;
    QByteArray encoded() const;
};

struct AppStoreVersionUpdateRequestBody {
    QString id;
    std::optional<QString> versionString;
    FieldUpdate copyright = FieldUpdate::unchanged();
    std::optional<ASCReleaseType> releaseType;
    // Apple takes only full hours; the caller rounds.
    std::optional<QDateTime> earliestReleaseDate;
    QJsonObject toJson() const;
    QByteArray encoded() const;
};

// `data` is the build's linkage, or JSON null to remove the assignment.
struct AppStoreVersionBuildLinkageRequestBody {
    std::optional<QString> buildID;
    QJsonObject toJson() const;
    QByteArray encoded() const;
};

struct AppStoreVersionReleaseRequestBody {
    QString versionID;
    QJsonObject toJson() const;
    QByteArray encoded() const;
};

struct PhasedReleaseCreateRequestBody {
    QString versionID;
    std::optional<ASCPhasedReleaseState> phasedReleaseState;
    QJsonObject toJson() const;
    QByteArray encoded() const;
};

struct PhasedReleaseUpdateRequestBody {
    QString id;
    ASCPhasedReleaseState phasedReleaseState;
    QJsonObject toJson() const;
    QByteArray encoded() const;
};

struct ReviewSubmissionCreateRequestBody {
    QString appID;
    ASCPlatform platform;
    QJsonObject toJson() const;
    QByteArray encoded() const;
};

struct ReviewSubmissionItemCreateRequestBody {
    QString submissionID;
    QString versionID;
    QJsonObject toJson() const;
    QByteArray encoded() const;
};

struct ReviewSubmissionUpdateRequestBody {
    QString id;
    std::optional<bool> submitted;
    std::optional<bool> canceled;
    QJsonObject toJson() const;
    QByteArray encoded() const;
};

// A new record: blank texts are left out.
struct AppStoreReviewDetailCreateRequestBody {
    QString versionID;
    ManagedAppReviewDetail detail;
    QJsonObject toJson() const;
    QByteArray encoded() const;
};

// The whole record as the user left it: a text emptied by the user goes out as JSON null, so
// that Apple forgets it too.
struct AppStoreReviewDetailUpdateRequestBody {
    QString id;
    ManagedAppReviewDetail detail;
    QJsonObject toJson() const;
    QByteArray encoded() const;
};
