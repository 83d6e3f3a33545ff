#pragma once

#include <QDateTime>
#include <QString>

#include <optional>

// A TestFlight group: internal (team members) or external (invited testers, optionally a
// public link).
struct ManagedBetaGroup {
    QString id;
    QString name;
    bool isInternal = false;
    std::optional<QDateTime> createdDate;
    bool publicLinkEnabled = false;
    std::optional<QString> publicLink;
    bool feedbackEnabled = false;
    std::optional<int> publicLinkLimit;
    bool publicLinkLimitEnabled = false;
    bool hasAccessToAllBuilds = false;
    bool iosBuildsAvailableForAppleSiliconMac = false;
    friend bool operator==(const ManagedBetaGroup&, const ManagedBetaGroup&) = default;
};
