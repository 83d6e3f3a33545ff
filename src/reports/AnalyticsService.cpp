#include "reports/AnalyticsService.h"

#include "api/AppStoreConnectClient.h"
#include "reports/AnalyticsEndpoints.h"
#include "reports/GzipDecoder.h"
#include "reports/ReportText.h"
#include "wire/VelmoraAPIError.h"

#include <QCoro/QCoroFuture>
#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QtConcurrent/QtConcurrentRun>

#include <variant>

using namespace Qt::StringLiterals;

namespace {

template <class Managed, class Attributes>
QList<Managed> mapped(const PagedResult<JSONAPIResource<Attributes>>& result) {
    QList<Managed> list;
    list.reserve(result.items.size());
    for (const auto& resource : result.items) {
        list.append(Managed::fromResource(resource.id, resource.attributes));
    }
    return list;
}

using Loaded = std::variant<AnalyticsTable, GzipDecoder::DecodingError::Kind>;

// On a worker thread: the downloaded file, checked and made a table. The file goes either way.
Loaded readSegment(const QString& path, const std::optional<QString>& checksum) {
    QFile file(path);
    const bool opened = file.open(QIODevice::ReadOnly);
    QByteArray bytes = opened ? file.readAll() : QByteArray();
    file.close();
    QFile::remove(path);
    if (!opened) {
        return GzipDecoder::DecodingError::Kind::Truncated;
    }
    if (checksum && !checksum->isEmpty() &&
        QCryptographicHash::hash(bytes, QCryptographicHash::Md5).toHex() !=
            checksum->trimmed().toLower().toLatin1()) {
        return GzipDecoder::DecodingError::Kind::InflateFailed;
    }
    try {
        return tableFromReportBytes(std::move(bytes));
    } catch (const GzipDecoder::DecodingError& error) {
        return error.kind();
    }
}

bool isRefusedAddress(const VelmoraAPIError& error) {
    return error.kind() == VelmoraAPIError::Kind::Forbidden || error.status() == 403;
}

} // namespace

AnalyticsService::AnalyticsService(std::shared_ptr<Clock> clock, QString scratchDirectory)
    : m_scratch(std::move(scratchDirectory)), m_requests(std::move(clock), cacheTTL) {}

QCoro::Task<QList<ManagedAnalyticsReportRequest>>
AnalyticsService::reportRequests(QString appID, std::shared_ptr<AppStoreConnectClient> client,
                                 bool forceRefresh) {
    if (!forceRefresh) {
        if (auto cached = m_requests.fresh(appID)) {
            co_return *cached;
        }
    }
    auto endpoint = AnalyticsEndpoints::requestsOfApp(appID, requestLimit, maxPages);
    const auto result = co_await client->call(std::move(endpoint));
    QList<ManagedAnalyticsReportRequest> list = mapped<ManagedAnalyticsReportRequest>(result);
    m_requests.insert(appID, list);
    co_return list;
}

QCoro::Task<ManagedAnalyticsReportRequest>
AnalyticsService::createOneTimeSnapshotRequest(QString appID, std::shared_ptr<AppStoreConnectClient> client) {
    auto endpoint = AnalyticsEndpoints::createSnapshotRequest(appID);
    const auto created = co_await client->call(std::move(endpoint));
    m_requests.remove(appID);
    co_return ManagedAnalyticsReportRequest::fromResource(created.id, created.attributes);
}

QCoro::Task<QList<ManagedAnalyticsReport>>
AnalyticsService::reports(QString requestID, std::shared_ptr<AppStoreConnectClient> client) {
    auto endpoint = AnalyticsEndpoints::reportsOfRequest(requestID, reportLimit, maxPages);
    const auto result = co_await client->call(std::move(endpoint));
    co_return mapped<ManagedAnalyticsReport>(result);
}

QCoro::Task<QList<ManagedAnalyticsReportInstance>>
AnalyticsService::instances(QString reportID, std::shared_ptr<AppStoreConnectClient> client) {
    auto endpoint = AnalyticsEndpoints::instancesOfReport(reportID, instanceLimit, maxPages);
    const auto result = co_await client->call(std::move(endpoint));
    co_return mapped<ManagedAnalyticsReportInstance>(result);
}

QCoro::Task<QList<ManagedAnalyticsReportSegment>>
AnalyticsService::segments(QString instanceID, std::shared_ptr<AppStoreConnectClient> client) {
    auto endpoint = AnalyticsEndpoints::segmentsOfInstance(instanceID, segmentLimit, maxPages);
    const auto result = co_await client->call(std::move(endpoint));
    co_return mapped<ManagedAnalyticsReportSegment>(result);
}

QCoro::Task<AnalyticsTable> AnalyticsService::table(ManagedAnalyticsReportSegment segment, QString instanceID,
                                                    std::shared_ptr<AppStoreConnectClient> client) {
    if (!segment.downloadURL) {
        throw VelmoraAPIError::workflowConflict(
            u"Apple hat für dieses Segment keine Download-Adresse geliefert."_s);
    }
    if (const auto cached = m_tables.constFind(segment.id); cached != m_tables.constEnd()) {
        co_return *cached;
    }
    std::optional<ManagedAnalyticsReportSegment> fresh;
    try {
        AnalyticsTable table = co_await fetchTable(segment, client);
        co_return table;
    } catch (const VelmoraAPIError& error) {
        if (!isRefusedAddress(error)) {
            throw;
        }
    }
    // The address has run out: the instance's segments come with new ones.
    const QList<ManagedAnalyticsReportSegment> again = co_await segments(instanceID, client);
    for (const ManagedAnalyticsReportSegment& candidate : again) {
        if (candidate.id == segment.id && candidate.downloadURL) {
            fresh = candidate;
        }
    }
    if (!fresh) {
        throw VelmoraAPIError::workflowConflict(
            u"Apple hat für dieses Segment keine Download-Adresse geliefert."_s);
    }
    AnalyticsTable table = co_await fetchTable(*fresh, client);
    co_return table;
}

QCoro::Task<AnalyticsTable> AnalyticsService::fetchTable(ManagedAnalyticsReportSegment segment,
                                                         std::shared_ptr<AppStoreConnectClient> client) {
    QDir().mkpath(m_scratch);
    const QString path =
        QDir(m_scratch).filePath(u"segment-%1.download"_s.arg(QString::number(qHash(segment.id), 16)));
    DownloadTarget target{path, {}};
    co_await client->downloadPresigned(*segment.downloadURL, target);
    Loaded loaded = co_await QtConcurrent::run(readSegment, path, segment.checksum);
    if (const auto* kind = std::get_if<GzipDecoder::DecodingError::Kind>(&loaded)) {
        throw GzipDecoder::DecodingError(*kind);
    }
    AnalyticsTable table = std::get<AnalyticsTable>(std::move(loaded));
    m_tables.insert(segment.id, table);
    co_return table;
}
