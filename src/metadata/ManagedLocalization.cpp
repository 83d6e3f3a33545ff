#include "metadata/ManagedLocalization.h"

#include <QHash>

#include <algorithm>

using namespace Qt::StringLiterals;

template <LocalizationSide Side>
ASCLocalizationAttributes<Side> ASCLocalizationAttributes<Side>::fromJson(const JsonReader& r) {
    ASCLocalizationAttributes attributes;
    attributes.locale = r.optString(u"locale"_s);
    for (const MetadataFieldInfo& field : MetadataFields::table()) {
        if (field.side != Side) {
            continue;
        }
        if (auto text = r.optString(field.wireKey.toString())) {
            attributes.texts.insert(field.field, *text);
        }
    }
    return attributes;
}

template struct ASCLocalizationAttributes<LocalizationSide::AppInfo>;
template struct ASCLocalizationAttributes<LocalizationSide::Version>;

namespace {

// An absent text stays empty: absent and empty are one state here.
void takeTexts(ManagedLocalization& l, const QMap<MetadataField, QString>& texts) {
    for (auto it = texts.cbegin(); it != texts.cend(); ++it) {
        l.*MetadataFields::info(it.key()).member = it.value();
    }
}

} // namespace

ManagedLocalization
ManagedLocalization::fromResources(const std::optional<AppInfoLocalizationResource>& appInfo,
                                   const std::optional<VersionLocalizationResource>& version) {
    ManagedLocalization l;
    if (version) {
        l.versionLocalizationID = version->id;
        if (const auto& a = version->attributes) {
            l.locale = a->locale.value_or(QString());
            takeTexts(l, a->texts);
        }
    }
    if (appInfo) {
        l.appInfoLocalizationID = appInfo->id;
        if (const auto& a = appInfo->attributes) {
            if (a->locale) {
                l.locale = *a->locale;
            }
            takeTexts(l, a->texts);
        }
    }
    return l;
}

QStringList ManagedLocalization::differingFieldNames(const ManagedLocalization& other) const {
    QStringList names;
    for (const MetadataFieldInfo& field : MetadataFields::table()) {
        if (this->*field.member != other.*field.member) {
            names.append(field.label.toString());
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
