#pragma once

#include <QList>
#include <QString>
#include <QStringView>

#include <optional>
#include <span>

struct ManagedLocalization;

// The two resources that make up one language at Apple.
enum class LocalizationSide { AppInfo, Version };

// The store texts of one language, in the order of ManagedLocalization: the app-info side, then
// the version side.
enum class MetadataField {
    Name,
    Subtitle,
    PrivacyPolicyURL,
    PrivacyChoicesURL,
    PrivacyPolicyText,
    Description,
    Keywords,
    PromotionalText,
    WhatsNew,
    MarketingURL,
    SupportURL,
};

// Everything the app knows of one store text. The decoder, the request bodies, the validator's
// limits, the editor's rows and the demo texts all read it from here.
struct MetadataFieldInfo {
    MetadataField field = MetadataField::Name;
    // The name of the field in the editor's rows, on the command line and in findings.
    QStringView key;
    // The attribute at Apple.
    QStringView wireKey;
    LocalizationSide side = LocalizationSide::AppInfo;
    QStringView label;
    // At most this many user-perceived characters (in the keywords, commas included); none for
    // URLs and the privacy text.
    std::optional<int> limit = std::nullopt;
    bool multiline = false;
    // A version that is live or in review does not take a change of it.
    bool needsNewVersion = false;
    // Apple refuses to create the side without it.
    bool requiredOnCreate = false;
    QString ManagedLocalization::*member = nullptr;
};

namespace MetadataFields {
// Every field, in the order of MetadataField.
std::span<const MetadataFieldInfo> table();
// The same fields in the order the editor shows them.
std::span<const MetadataFieldInfo> inEditorOrder();
const MetadataFieldInfo& info(MetadataField field);

QList<MetadataField> all();
// The key of a field and back.
QString rawValue(MetadataField field);
std::optional<MetadataField> fromRaw(QStringView key);
// The text of `field` in `localization`, untrimmed.
QString text(const ManagedLocalization& localization, MetadataField field);
} // namespace MetadataFields
