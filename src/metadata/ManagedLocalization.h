#pragma once

#include "wire/JSONAPI.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

// The wire attributes of an app-info localization; every one may be absent.
struct ASCAppInfoLocalizationAttributes {
    std::optional<QString> locale;
    std::optional<QString> name;
    std::optional<QString> subtitle;
    std::optional<QString> privacyPolicyUrl;
    std::optional<QString> privacyChoicesUrl;
    std::optional<QString> privacyPolicyText;
    static ASCAppInfoLocalizationAttributes fromJson(const JsonReader& r);
};

// The wire attributes of a version localization; every one may be absent.
struct ASCAppStoreVersionLocalizationAttributes {
    std::optional<QString> description;
    std::optional<QString> locale;
    std::optional<QString> keywords;
    std::optional<QString> marketingUrl;
    std::optional<QString> promotionalText;
    std::optional<QString> supportUrl;
    std::optional<QString> whatsNew;
    static ASCAppStoreVersionLocalizationAttributes fromJson(const JsonReader& r);
};

using AppInfoLocalizationResource = JSONAPIResource<ASCAppInfoLocalizationAttributes>;
using VersionLocalizationResource = JSONAPIResource<ASCAppStoreVersionLocalizationAttributes>;

// One language of an app as the user sees it: the app-info side (name, subtitle, privacy) and
// the version side (description, keywords, ...) merged by locale. A side that does not exist at
// Apple has no id; its texts are empty, since absent and empty are one state here.
struct ManagedLocalization {
    QString locale;
    std::optional<QString> appInfoLocalizationID;
    QString name;
    QString subtitle;
    QString privacyPolicyURL;
    QString privacyChoicesURL;
    QString privacyPolicyText;
    std::optional<QString> versionLocalizationID;
    QString description;
    QString keywords;
    QString promotionalText;
    QString whatsNew;
    QString marketingURL;
    QString supportURL;

    // One entry from either side or both; the locale comes from the app-info side when it has one.
    static ManagedLocalization fromResources(const std::optional<AppInfoLocalizationResource>& appInfo,
                                             const std::optional<VersionLocalizationResource>& version);

    // German labels of the editable fields whose texts differ exactly, in the order of the editor.
    QStringList differingFieldNames(const ManagedLocalization& other) const;

    friend bool operator==(const ManagedLocalization&, const ManagedLocalization&) = default;
};

// Both sides matched by locale, sorted by locale. A resource without a locale can't be placed and
// is dropped; a locale present on one side only gives an entry with the other side empty.
QList<ManagedLocalization> mergeLocalizations(const QList<AppInfoLocalizationResource>& appInfoLocalizations,
                                              const QList<VersionLocalizationResource>& versionLocalizations);
