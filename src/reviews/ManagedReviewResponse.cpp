#include "reviews/ManagedReviewResponse.h"

#include "wire/RawValueTable.h"

namespace {
using C = ASCReviewResponseState::Case;
constexpr std::array<RawValueRow<C>, 2> table{{
    {C::Published, u"PUBLISHED"},
    {C::PendingPublish, u"PENDING_PUBLISH"},
}};
} // namespace

ASCReviewResponseState ASCReviewResponseState::fromRaw(const QString& raw) {
    ASCReviewResponseState s;
    if (auto c = caseForRaw(table, raw)) {
        s.m_case = *c;
    } else {
        s.m_unknown = raw;
    }
    return s;
}

QString ASCReviewResponseState::raw() const {
    const auto* row = rowForCase(table, m_case);
    return row ? row->raw.toString() : m_unknown;
}
