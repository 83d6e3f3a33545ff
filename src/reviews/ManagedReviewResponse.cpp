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
    assignRaw(table, raw, s.m_case, s.m_unknown);
    return s;
}

QString ASCReviewResponseState::raw() const {
    return rawText(table, m_case, m_unknown);
}
