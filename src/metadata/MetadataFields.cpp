#include "metadata/MetadataFields.h"

#include "metadata/ManagedLocalization.h"

#include <algorithm>
#include <array>

namespace {

using F = MetadataField;
using L = ManagedLocalization;
constexpr LocalizationSide appInfo = LocalizationSide::AppInfo;
constexpr LocalizationSide version = LocalizationSide::Version;

constexpr std::array<MetadataFieldInfo, 11> fields{{
    {.field = F::Name,
     .key = u"name",
     .wireKey = u"name",
     .side = appInfo,
     .label = u"Name",
     .limit = 30,
     .requiredOnCreate = true,
     .member = &L::name},
    {.field = F::Subtitle,
     .key = u"subtitle",
     .wireKey = u"subtitle",
     .side = appInfo,
     .label = u"Untertitel",
     .limit = 30,
     .member = &L::subtitle},
    {.field = F::PrivacyPolicyURL,
     .key = u"privacyPolicyURL",
     .wireKey = u"privacyPolicyUrl",
     .side = appInfo,
     .label = u"Datenschutz-URL",
     .member = &L::privacyPolicyURL},
    {.field = F::PrivacyChoicesURL,
     .key = u"privacyChoicesURL",
     .wireKey = u"privacyChoicesUrl",
     .side = appInfo,
     .label = u"Datenschutzwahl-URL",
     .member = &L::privacyChoicesURL},
    {.field = F::PrivacyPolicyText,
     .key = u"privacyPolicyText",
     .wireKey = u"privacyPolicyText",
     .side = appInfo,
     .label = u"Datenschutztext",
     .multiline = true,
     .member = &L::privacyPolicyText},
    {.field = F::Description,
     .key = u"description",
     .wireKey = u"description",
     .side = version,
     .label = u"Beschreibung",
     .limit = 4000,
     .multiline = true,
     .needsNewVersion = true,
     .member = &L::description},
    {.field = F::Keywords,
     .key = u"keywords",
     .wireKey = u"keywords",
     .side = version,
     .label = u"Keywords",
     .limit = 100,
     .needsNewVersion = true,
     .member = &L::keywords},
    {.field = F::PromotionalText,
     .key = u"promotionalText",
     .wireKey = u"promotionalText",
     .side = version,
     .label = u"Werbetext",
     .limit = 170,
     .multiline = true,
     .member = &L::promotionalText},
    {.field = F::WhatsNew,
     .key = u"whatsNew",
     .wireKey = u"whatsNew",
     .side = version,
     .label = u"Neuerungen",
     .limit = 4000,
     .multiline = true,
     .needsNewVersion = true,
     .member = &L::whatsNew},
    {.field = F::MarketingURL,
     .key = u"marketingURL",
     .wireKey = u"marketingUrl",
     .side = version,
     .label = u"Marketing-URL",
     .member = &L::marketingURL},
    {.field = F::SupportURL,
     .key = u"supportURL",
     .wireKey = u"supportUrl",
     .side = version,
     .label = u"Support-URL",
     .member = &L::supportURL},
}};

// The editor leads with what the store page shows first; the privacy fields close it.
constexpr std::array<MetadataField, fields.size()> editorOrder{
    F::Name,
    F::Subtitle,
    F::PromotionalText,
    F::Description,
    F::Keywords,
    F::WhatsNew,
    F::SupportURL,
    F::MarketingURL,
    F::PrivacyPolicyURL,
    F::PrivacyChoicesURL,
    F::PrivacyPolicyText,
};

constexpr bool rowsFollowTheEnumeration() {
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (fields[i].field != MetadataField(i)) {
            return false;
        }
    }
    return true;
}
static_assert(rowsFollowTheEnumeration(), "the rows of the table follow MetadataField");

constexpr std::array<MetadataFieldInfo, fields.size()> editorRows = [] {
    std::array<MetadataFieldInfo, fields.size()> rows{};
    for (std::size_t i = 0; i < rows.size(); ++i) {
        rows[i] = fields[std::size_t(editorOrder[i])];
    }
    return rows;
}();

constexpr bool editorShowsEveryFieldOnce() {
    for (const auto& row : fields) {
        if (std::count(editorOrder.begin(), editorOrder.end(), row.field) != 1) {
            return false;
        }
    }
    return true;
}
static_assert(editorShowsEveryFieldOnce(), "the editor shows every field once");

} // namespace

namespace MetadataFields {

std::span<const MetadataFieldInfo> table() {
    return fields;
}

std::span<const MetadataFieldInfo> inEditorOrder() {
    return editorRows;
}

const MetadataFieldInfo& info(MetadataField field) {
    return fields[std::size_t(field)];
}

QList<MetadataField> all() {
    QList<MetadataField> result;
    for (const auto& row : fields) {
        result.append(row.field);
    }
    return result;
}

QString rawValue(MetadataField field) {
    return info(field).key.toString();
}

std::optional<MetadataField> fromRaw(QStringView key) {
    for (const auto& row : fields) {
        if (row.key == key) {
            return row.field;
        }
    }
    return std::nullopt;
}

QString text(const ManagedLocalization& localization, MetadataField field) {
    return localization.*info(field).member;
}

} // namespace MetadataFields
