#pragma once

#include "testflight/ManagedBetaAppLocalization.h"
#include "testflight/ManagedBetaTester.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <optional>

// The JSON:API documents that groups, testers, test notes and beta reviews are written with.
// Each gives the whole document (`data` at the top) in toJson() and its bytes in encoded().
// Absent optional attributes are left out, never sent as null.

// A new group of the app. The program creates it with its name alone; the switches are for
// callers that want them set at once.
struct BetaGroupCreateRequestBody {
    QString appID;
    QString name;
    std::optional<bool> publicLinkEnabled;
    std::optional<int> publicLinkLimit;
    std::optional<bool> publicLinkLimitEnabled;
    std::optional<bool> feedbackEnabled;
    std::optional<bool> hasAccessToAllBuilds;
    QJsonObject toJson() const;
    QByteArray encoded() const;
};

// The settings of a group. Apple takes no `hasAccessToAllBuilds` here: that a group sees every
// build is decided when the group is created.
struct BetaGroupUpdateRequestBody {
    QString id;
    std::optional<QString> name;
    std::optional<bool> publicLinkEnabled;
    std::optional<int> publicLinkLimit;
    std::optional<bool> publicLinkLimitEnabled;
    std::optional<bool> feedbackEnabled;
    std::optional<bool> iosBuildsAvailableForAppleSiliconMac;
    QJsonObject toJson() const;
    QByteArray encoded() const;
};

// A tester for the given groups: the address trimmed, blank names left out.
struct BetaTesterCreateRequestBody {
    NewBetaTester tester;
    QStringList groupIDs;
    QJsonObject toJson() const;
    QByteArray encoded() const;
};

// Sends the invitation of a tester to the app again.
struct BetaTesterInvitationRequestBody {
    QString appID;
    QString testerID;
    QJsonObject toJson() const;
    QByteArray encoded() const;
};

// Members of a group's to-many relationship: `data` is a bare list of linkages.
struct BetaTesterLinkagesRequestBody {
    QStringList testerIDs;
    QJsonObject toJson() const;
    QByteArray encoded() const;
};

struct BuildLinkagesRequestBody {
    QStringList buildIDs;
    QJsonObject toJson() const;
    QByteArray encoded() const;
};

// Blank test notes are left out.
struct BetaBuildLocalizationCreateRequestBody {
    QString buildID;
    QString locale;
    std::optional<QString> whatsNew;
    QJsonObject toJson() const;
    QByteArray encoded() const;
};

struct BetaBuildLocalizationUpdateRequestBody {
    QString id;
    std::optional<QString> whatsNew;
    QJsonObject toJson() const;
    QByteArray encoded() const;
};

// The five texts of a language; each blank one is left out.
struct BetaAppLocalizationCreateRequestBody {
    QString appID;
    ManagedBetaAppLocalization localization;
    QJsonObject toJson() const;
    QByteArray encoded() const;
};

struct BetaAppLocalizationUpdateRequestBody {
    QString id;
    ManagedBetaAppLocalization localization;
    QJsonObject toJson() const;
    QByteArray encoded() const;
};

struct BetaAppReviewSubmissionRequestBody {
    QString buildID;
    QJsonObject toJson() const;
    QByteArray encoded() const;
};
