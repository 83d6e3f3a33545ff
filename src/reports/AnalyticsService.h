#pragma once

#include "api/TimedCache.h"
#include "reports/AnalyticsTable.h"
#include "reports/ManagedAnalyticsReport.h"
#include "reports/ManagedAnalyticsReportRequest.h"

#include <QCoro/QCoroTask>
#include <QHash>

#include <memory>

class AppStoreConnectClient;
class Clock;

// The analytics chain of an app: report requests, their reports, the reports' instances, the
// instances' segments, and a segment as a table. The requests of an app are kept a minute; a
// segment's table is kept for the run (a segment never changes once Apple has made it).
class AnalyticsService {
public:
    static constexpr int cacheTTL = 60;
    static constexpr int requestLimit = 50;
    static constexpr int reportLimit = 50;
    static constexpr int instanceLimit = 20;
    static constexpr int segmentLimit = 50;
    static constexpr int maxPages = 20;

    // Segments are downloaded into `scratchDirectory` and removed once read.
    AnalyticsService(std::shared_ptr<Clock> clock, QString scratchDirectory);

    QCoro::Task<QList<ManagedAnalyticsReportRequest>>
    reportRequests(QString appID, std::shared_ptr<AppStoreConnectClient> client, bool forceRefresh);
    QCoro::Task<ManagedAnalyticsReportRequest>
    createOneTimeSnapshotRequest(QString appID, std::shared_ptr<AppStoreConnectClient> client);
    QCoro::Task<QList<ManagedAnalyticsReport>> reports(QString requestID,
                                                       std::shared_ptr<AppStoreConnectClient> client);
    QCoro::Task<QList<ManagedAnalyticsReportInstance>>
    instances(QString reportID, std::shared_ptr<AppStoreConnectClient> client);
    QCoro::Task<QList<ManagedAnalyticsReportSegment>> segments(QString instanceID,
                                                               std::shared_ptr<AppStoreConnectClient> client);

    // The segment's file, fetched from its signed address without the token, checked against its
    // checksum (a mismatch is a file that could not be unpacked), unpacked and parsed off the UI
    // thread. The address is good for minutes only: when Apple refuses it, the instance's
    // segments are asked for again and the fresh address is tried once.
    QCoro::Task<AnalyticsTable> table(ManagedAnalyticsReportSegment segment, QString instanceID,
                                      std::shared_ptr<AppStoreConnectClient> client);

private:
    QCoro::Task<AnalyticsTable> fetchTable(ManagedAnalyticsReportSegment segment,
                                           std::shared_ptr<AppStoreConnectClient> client);

    QString m_scratch;
    TimedCache<QList<ManagedAnalyticsReportRequest>> m_requests;
    QHash<QString, AnalyticsTable> m_tables;
};
