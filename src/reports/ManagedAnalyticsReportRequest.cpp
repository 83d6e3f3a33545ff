#include "reports/ManagedAnalyticsReportRequest.h"

using namespace Qt::StringLiterals;

ASCAnalyticsReportRequestAttributes ASCAnalyticsReportRequestAttributes::fromJson(const JsonReader& r) {
    return {r.optString(u"accessType"_s), r.optBool(u"stoppedDueToInactivity"_s)};
}

QString ManagedAnalyticsReportRequest::accessTypeLabel(const QString& raw) {
    return raw == u"ONGOING"_s ? u"Laufend"_s : u"Einmalige Momentaufnahme"_s;
}

ManagedAnalyticsReportRequest
ManagedAnalyticsReportRequest::fromResource(const QString& id,
                                            const std::optional<ASCAnalyticsReportRequestAttributes>& a) {
    const QString raw = a && a->accessType ? *a->accessType : QString();
    return {id, accessTypeLabel(raw), a && a->stoppedDueToInactivity.value_or(false)};
}
