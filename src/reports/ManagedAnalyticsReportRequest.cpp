#include "reports/ManagedAnalyticsReportRequest.h"

using namespace Qt::StringLiterals;

QString ManagedAnalyticsReportRequest::accessTypeLabel(const QString& raw) {
    return raw == u"ONGOING"_s ? u"Laufend"_s : u"Einmalige Momentaufnahme"_s;
}
