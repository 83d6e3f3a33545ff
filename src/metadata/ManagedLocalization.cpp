#include "metadata/ManagedLocalization.h"

#include <QHash>

#include <algorithm>

using namespace Qt::StringLiterals;

ASCAppInfoLocalizationAttributes ASCAppInfoLocalizationAttributes::fromJson(const JsonReader& r) {
    return ASCAppInfoLocalizationAttributes{r.optString(u"locale"_s),
                                            r.optString(u"name"_s),
                                            r.optString(u"subtitle"_s),
                                            r.optString(u"privacyPolicyUrl"_s),
                                            r.optString(u"privacyChoicesUrl"_s),
                                            r.optString(u"privacyPolicyText"_s)};
}

ASCAppStoreVersionLocalizationAttributes
ASCAppStoreVersionLocalizationAttributes::fromJson(const JsonReader& r) {
    return ASCAppStoreVersionLocalizationAttributes{
        r.optString(u"description"_s),  r.optString(u"locale"_s),          r.optString(u"keywords"_s),
        r.optString(u"marketingUrl"_s), r.optString(u"promotionalText"_s), r.optString(u"supportUrl"_s),
        r.optString(u"whatsNew"_s)};
}

ManagedLocalization
ManagedLocalization::fromResources(const std::optional<AppInfoLocalizationResource>& appInfo,
                                   const std::optional<VersionLocalizationResource>& version) {
    ManagedLocalization l;
    if (version) {
        l.versionLocalizationID = version->id;
        if (const auto& a = version->attributes) {
            l.locale = a->locale.value_or(QString());
            l.description = a->description.value_or(QString());
            l.keywords = a->keywords.value_or(QString());
            l.promotionalText = a->promotionalText.value_or(QString());
            l.whatsNew = a->whatsNew.value_or(QString());
            l.marketingURL = a->marketingUrl.value_or(QString());
            l.supportURL = a->supportUrl.value_or(QString());
        }
    }
    if (appInfo) {
        l.appInfoLocalizationID = appInfo->id;
        if (const auto& a = appInfo->attributes) {
            if (a->locale) {
                l.locale = *a->locale;
            }
            l.name = a->name.value_or(QString());
            l.subtitle = a->subtitle.value_or(QString());
            l.privacyPolicyURL = a->privacyPolicyUrl.value_or(QString());
            l.privacyChoicesURL = a->privacyChoicesUrl.value_or(QString());
            l.privacyPolicyText = a->privacyPolicyText.value_or(QString());
        }
    }
    return l;
}

QStringList ManagedLocalization::differingFieldNames(const ManagedLocalization& other) const {
    const std::pair<QString ManagedLocalization::*, QString> fields[] = {
        {&ManagedLocalization::name, u"Name"_s},
        {&ManagedLocalization::subtitle, u"Untertitel"_s},
        {&ManagedLocalization::privacyPolicyURL, u"Datenschutz-URL"_s},
        {&ManagedLocalization::privacyChoicesURL, u"Datenschutzwahl-URL"_s},
        {&ManagedLocalization::privacyPolicyText, u"Datenschutztext"_s},
        {&ManagedLocalization::description, u"Beschreibung"_s},
        {&ManagedLocalization::keywords, u"Keywords"_s},
        {&ManagedLocalization::promotionalText, u"Werbetext"_s},
        {&ManagedLocalization::whatsNew, u"Neuerungen"_s},
        {&ManagedLocalization::marketingURL, u"Marketing-URL"_s},
        {&ManagedLocalization::supportURL, u"Support-URL"_s},
    };
    QStringList names;
    for (const auto& [field, label] : fields) {
        if (this->*field != other.*field) {
            names.append(label);
        }
    }
    return names;
}

QList<ManagedLocalization>
mergeLocalizations(const QList<AppInfoLocalizationResource>& appInfoLocalizations,
                   const QList<VersionLocalizationResource>& versionLocalizations) {
    auto localeOf = [](const auto& resource) -> std::optional<QString> {
        return resource.attributes ? resource.attributes->locale : std::nullopt;
    };
    QHash<QString, VersionLocalizationResource> versionsByLocale;
    for (const auto& version : versionLocalizations) {
        if (const auto locale = localeOf(version)) {
            versionsByLocale.insert(*locale, version);
        }
    }
    QList<ManagedLocalization> merged;
    for (const auto& appInfo : appInfoLocalizations) {
        const auto locale = localeOf(appInfo);
        if (!locale) {
            continue;
        }
        std::optional<VersionLocalizationResource> version;
        if (auto it = versionsByLocale.find(*locale); it != versionsByLocale.end()) {
            version = *it;
            versionsByLocale.erase(it);
        }
        merged.append(ManagedLocalization::fromResources(appInfo, version));
    }
    for (const auto& version : std::as_const(versionsByLocale)) {
        merged.append(ManagedLocalization::fromResources(std::nullopt, version));
    }
    std::stable_sort(
        merged.begin(), merged.end(),
        [](const ManagedLocalization& a, const ManagedLocalization& b) { return a.locale < b.locale; });
    return merged;
}
