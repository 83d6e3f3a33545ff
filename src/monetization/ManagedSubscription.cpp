#include "monetization/ManagedSubscription.h"

#include "wire/RawValueTable.h"

namespace {
using P = ASCSubscriptionPeriod;
constexpr std::array<RawValueRow<P>, 6> periodTable{{
    {P::OneWeek, u"ONE_WEEK"},
    {P::OneMonth, u"ONE_MONTH"},
    {P::TwoMonths, u"TWO_MONTHS"},
    {P::ThreeMonths, u"THREE_MONTHS"},
    {P::SixMonths, u"SIX_MONTHS"},
    {P::OneYear, u"ONE_YEAR"},
}};
} // namespace

QString ASCSubscriptionPeriods::rawValue(ASCSubscriptionPeriod period) {
    return rowForCase(periodTable, period)->raw.toString();
}

std::optional<ASCSubscriptionPeriod> ASCSubscriptionPeriods::fromRaw(const QString& raw) {
    return caseForRaw(periodTable, raw);
}
