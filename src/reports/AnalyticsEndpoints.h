#pragma once

#include "api/Endpoint.h"
#include "reports/ManagedAnalyticsReport.h"
#include "reports/ManagedAnalyticsReportRequest.h"

// The requests of the analytics chain: report requests of an app, their reports, the reports'
// instances and the instances' segments.
namespace AnalyticsEndpoints {

Endpoint<Returns::AllPages<ASCAnalyticsReportRequestAttributes>> requestsOfApp(const QString& appID,
                                                                               int limit, int maxPages);
// A one-time snapshot: Apple fills it once, over a day or two.
Endpoint<Returns::One<ASCAnalyticsReportRequestAttributes>> createSnapshotRequest(const QString& appID);
Endpoint<Returns::AllPages<ASCAnalyticsReportAttributes>> reportsOfRequest(const QString& requestID,
                                                                           int limit, int maxPages);
Endpoint<Returns::AllPages<ASCAnalyticsReportInstanceAttributes>> instancesOfReport(const QString& reportID,
                                                                                    int limit, int maxPages);
Endpoint<Returns::AllPages<ASCAnalyticsReportSegmentAttributes>> segmentsOfInstance(const QString& instanceID,
                                                                                    int limit, int maxPages);

} // namespace AnalyticsEndpoints
