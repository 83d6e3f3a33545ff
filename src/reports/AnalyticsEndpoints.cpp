#include "reports/AnalyticsEndpoints.h"

#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace AnalyticsEndpoints {

namespace {
QList<QueryItem> limited(int limit) {
    return {{u"limit"_s, QString::number(limit)}};
}
} // namespace

Endpoint<Returns::AllPages<ASCAnalyticsReportRequestAttributes>> requestsOfApp(const QString& appID,
                                                                               int limit, int maxPages) {
    return Endpoint<Returns::AllPages<ASCAnalyticsReportRequestAttributes>>::get(
        apiPath({u"v1", u"apps", appID, u"analyticsReportRequests"}), limited(limit), maxPages);
}

Endpoint<Returns::One<ASCAnalyticsReportRequestAttributes>> createSnapshotRequest(const QString& appID) {
    const QJsonObject app{{u"data"_s, QJsonObject{{u"type"_s, u"apps"_s}, {u"id"_s, appID}}}};
    const QJsonObject data{{u"type"_s, u"analyticsReportRequests"_s},
                           {u"attributes"_s, QJsonObject{{u"accessType"_s, u"ONE_TIME_SNAPSHOT"_s}}},
                           {u"relationships"_s, QJsonObject{{u"app"_s, app}}}};
    return Endpoint<Returns::One<ASCAnalyticsReportRequestAttributes>>::post(
        u"/v1/analyticsReportRequests"_s,
        QJsonDocument(QJsonObject{{u"data"_s, data}}).toJson(QJsonDocument::Compact));
}

Endpoint<Returns::AllPages<ASCAnalyticsReportAttributes>> reportsOfRequest(const QString& requestID,
                                                                           int limit, int maxPages) {
    return Endpoint<Returns::AllPages<ASCAnalyticsReportAttributes>>::get(
        apiPath({u"v1", u"analyticsReportRequests", requestID, u"reports"}), limited(limit), maxPages);
}

Endpoint<Returns::AllPages<ASCAnalyticsReportInstanceAttributes>> instancesOfReport(const QString& reportID,
                                                                                    int limit, int maxPages) {
    return Endpoint<Returns::AllPages<ASCAnalyticsReportInstanceAttributes>>::get(
        apiPath({u"v1", u"analyticsReports", reportID, u"instances"}), limited(limit), maxPages);
}

Endpoint<Returns::AllPages<ASCAnalyticsReportSegmentAttributes>> segmentsOfInstance(const QString& instanceID,
                                                                                    int limit, int maxPages) {
    return Endpoint<Returns::AllPages<ASCAnalyticsReportSegmentAttributes>>::get(
        apiPath({u"v1", u"analyticsReportInstances", instanceID, u"segments"}), limited(limit), maxPages);
}

} // namespace AnalyticsEndpoints
