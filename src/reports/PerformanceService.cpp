#include "reports/PerformanceService.h"

#include "api/AppStoreConnectClient.h"
#include "reports/PerformanceEndpoints.h"
#include "wire/VelmoraAPIError.h"

using namespace Qt::StringLiterals;

PerformanceService::PerformanceService(std::shared_ptr<Clock> clock)
    : m_metrics(std::move(clock), cacheTTL) {}

QString PerformanceService::metricsKey(const QString& appID, const std::optional<QString>& deviceType) {
    const auto device = nilIfBlank(deviceType);
    return appID + u'|' + device.value_or(u"all"_s);
}

QCoro::Task<QList<ManagedPerformanceMetric>>
PerformanceService::metrics(QString appID, std::optional<QString> deviceType,
                            std::shared_ptr<AppStoreConnectClient> client, bool forceRefresh) {
    const auto device = nilIfBlank(deviceType);
    const QString key = metricsKey(appID, device);
    if (!forceRefresh) {
        if (auto cached = m_metrics.fresh(key)) {
            co_return *cached;
        }
    }
    const QByteArray body = co_await client->call(PerformanceEndpoints::metricsOfApp(appID, device));
    QList<ManagedPerformanceMetric> list;
    try {
        list = ASCPerfPowerMetricsResponse::decode(body).flattened();
    } catch (const DecodingError& error) {
        throw VelmoraAPIError::decoding(error.errorDescription());
    }
    m_metrics.insert(key, list);
    co_return list;
}

QCoro::Task<QList<ManagedDiagnosticSignature>>
PerformanceService::signatures(QString buildID, ASCDiagnosticType type,
                               std::shared_ptr<AppStoreConnectClient> client) {
    const auto page =
        co_await client->call(PerformanceEndpoints::signaturesOfBuild(buildID, type, signatureLimit));
    QList<ManagedDiagnosticSignature> list;
    list.reserve(page.data.size());
    for (const auto& resource : page.data) {
        list.append(ManagedDiagnosticSignature::fromResource(resource.id, resource.attributes));
    }
    co_return list;
}

QCoro::Task<QString> PerformanceService::logs(QString signatureID,
                                              std::shared_ptr<AppStoreConnectClient> client) {
    const QByteArray body =
        co_await client->call(PerformanceEndpoints::logsOfSignature(signatureID, logLimit));
    co_return QString::fromUtf8(body);
}
