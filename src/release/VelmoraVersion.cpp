#include "release/VelmoraVersion.h"

#include "wire/RawValueTable.h"

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
