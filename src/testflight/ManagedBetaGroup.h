#pragma once

#include "wire/JsonReader.h"

#include <QDateTime>
#include <QList>
#include <QString>

#include <optional>

struct ASCBetaGroupAttributes {
    std::optional<QString> name;
    std::optional<bool> isInternalGroup;
    std::optional<QDateTime> createdDate;
    std::optional<bool> publicLinkEnabled;
    std::optional<QString> publicLink;
    std::optional<bool> feedbackEnabled;
    std::optional<qint64> publicLinkLimit;
    std::optional<bool> publicLinkLimitEnabled;
    std::optional<bool> hasAccessToAllBuilds;
    std::optional<bool> iosBuildsAvailableForAppleSiliconMac;
    static ASCBetaGroupAttributes fromJson(const JsonReader& r);
};

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

    // A group without attributes is "Unbenannte Gruppe" with every switch off.
    static ManagedBetaGroup fromResource(const QString& id, const std::optional<ASCBetaGroupAttributes>& a);
    // By name in plain text order (code units, not the user's locale); stable.
    static void sortByName(QList<ManagedBetaGroup>& groups);
};
