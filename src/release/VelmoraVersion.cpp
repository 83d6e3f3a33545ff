#include "release/VelmoraVersion.h"

#include "wire/RawValueTable.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {
using T = ASCReleaseType;
constexpr std::array<RawValueRow<T>, 3> releaseTypeTable{{
    {T::Manual, u"MANUAL"},
    {T::AfterApproval, u"AFTER_APPROVAL"},
    {T::Scheduled, u"SCHEDULED"},
}};
} // namespace

QString ASCReleaseTypes::rawValue(ASCReleaseType type) {
    return rowForCase(releaseTypeTable, type)->raw.toString();
}

std::optional<ASCReleaseType> ASCReleaseTypes::fromRaw(const QString& raw) {
    return caseForRaw(releaseTypeTable, raw);
}

ASCAppStoreVersionAttributes ASCAppStoreVersionAttributes::fromJson(const JsonReader& r) {
    ASCAppStoreVersionAttributes a;
    a.platform = r.optString(u"platform"_s);
    a.versionString = r.optString(u"versionString"_s);
    a.appStoreState = r.optString(u"appStoreState"_s);
    a.appVersionState = r.optString(u"appVersionState"_s);
    a.copyright = r.optString(u"copyright"_s);
    a.releaseType = r.optString(u"releaseType"_s);
    a.earliestReleaseDate = r.optDate(u"earliestReleaseDate"_s);
    a.createdDate = r.optDate(u"createdDate"_s);
    return a;
}

VelmoraVersion VelmoraVersion::fromResource(const QString& id,
                                            const std::optional<ASCAppStoreVersionAttributes>& attributes) {
    VelmoraVersion v;
    v.id = id;
    if (!attributes) {
        return v;
    }
    v.versionString = attributes->versionString.value_or(QString());
    if (attributes->platform) {
        v.platform = ASCPlatform::fromRaw(*attributes->platform);
    }
    if (auto raw = attributes->appStoreState ? attributes->appStoreState : attributes->appVersionState) {
        v.state = ASCAppStoreVersionState::fromRaw(*raw);
    }
    v.earliestReleaseDate = attributes->earliestReleaseDate;
    v.createdDate = attributes->createdDate;
    if (attributes->releaseType) {
        v.releaseType = ASCReleaseTypes::fromRaw(*attributes->releaseType);
    }
    v.copyright = attributes->copyright;
    return v;
}

QJsonObject VelmoraVersion::toJson() const {
    QJsonObject o{{u"id"_s, id}, {u"versionString"_s, versionString}, {u"state"_s, state.raw()}};
    if (platform) {
        o.insert(u"platform"_s, platform->raw());
    }
    if (earliestReleaseDate) {
        o.insert(u"earliestReleaseDate"_s, ASCDateFormatting::encodePlain(*earliestReleaseDate));
    }
    if (createdDate) {
        o.insert(u"createdDate"_s, ASCDateFormatting::encodePlain(*createdDate));
    }
    if (releaseType) {
        o.insert(u"releaseType"_s, ASCReleaseTypes::rawValue(*releaseType));
    }
    if (copyright) {
        o.insert(u"copyright"_s, *copyright);
    }
    return o;
}

VelmoraVersion VelmoraVersion::fromJson(const JsonReader& r) {
    VelmoraVersion v;
    v.id = r.string(u"id"_s);
    v.versionString = r.string(u"versionString"_s);
    v.state = ASCAppStoreVersionState::fromRaw(r.string(u"state"_s));
    if (auto platform = r.optString(u"platform"_s)) {
        v.platform = ASCPlatform::fromRaw(*platform);
    }
    v.earliestReleaseDate = r.optDate(u"earliestReleaseDate"_s);
    v.createdDate = r.optDate(u"createdDate"_s);
    if (auto type = r.optString(u"releaseType"_s)) {
        v.releaseType = ASCReleaseTypes::fromRaw(*type);
    }
    v.copyright = r.optString(u"copyright"_s);
    return v;
}

bool VelmoraVersion::isFullyEditable(const ASCAppStoreVersionState& state) {
    using S = ASCAppStoreVersionState::Case;
    switch (state.value()) {
    case S::DeveloperRejected:
    case S::InvalidBinary:
    case S::MetadataRejected:
    case S::PrepareForSubmission:
    case S::ReadyForReview:
    case S::Rejected:
    case S::WaitingForExportCompliance:
        return true;
    default:
        return false;
    }
}

void VelmoraVersion::sortNewestFirst(QList<VelmoraVersion>& versions) {
    std::stable_sort(versions.begin(), versions.end(), [](const VelmoraVersion& a, const VelmoraVersion& b) {
        if (!b.createdDate) {
            return a.createdDate.has_value();
        }
        return a.createdDate && *a.createdDate > *b.createdDate;
    });
}
