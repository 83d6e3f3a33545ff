#pragma once

#include "metadata/MetadataFields.h"
#include "wire/JSONAPI.h"

#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

#include <optional>

// The wire attributes of one side of a language: the locale and the texts of the side's fields
// that Apple sent. Every one may be absent.
template <LocalizationSide Side> struct ASCLocalizationAttributes {
    std::optional<QString> locale;
    QMap<MetadataField, QString> texts;
    static ASCLocalizationAttributes fromJson(const JsonReader& r);
};
using ASCAppInfoLocalizationAttributes = ASCLocalizationAttributes<LocalizationSide::AppInfo>;
using ASCAppStoreVersionLocalizationAttributes = ASCLocalizationAttributes<LocalizationSide::Version>;

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

    // German labels of the fields whose texts differ exactly: the app-info side first, in the order
    // a save writes them.
    QStringList differingFieldNames(const ManagedLocalization& other) const;

    friend bool operator==(const ManagedLocalization&, const ManagedLocalization&) = default;
};

// Both sides matched by locale, sorted by locale. A resource without a locale can't be placed and
// is dropped; a locale present on one side only gives an entry with the other side empty.
QList<ManagedLocalization> mergeLocalizations(const QList<AppInfoLocalizationResource>& appInfoLocalizations,
                                              const QList<VersionLocalizationResource>& versionLocalizations);
