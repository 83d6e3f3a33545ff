#pragma once

#include "api/TimedCache.h"
#include "reports/ManagedDiagnosticSignature.h"
#include "reports/ManagedPerformanceMetric.h"

#include <QCoro/QCoroTask>

#include <memory>
#include <optional>

class AppStoreConnectClient;
class Clock;

// Apple's performance figures of an app and the diagnostic signatures of its builds. Metrics
// change once a day at most, so they are kept five minutes per app and device type.
class PerformanceService {
public:
    static constexpr int cacheTTL = 300;
    static constexpr int signatureLimit = 50;
    static constexpr int logLimit = 10;

    explicit PerformanceService(std::shared_ptr<Clock> clock);

    // No device type (or a blank one) asks for every device.
    QCoro::Task<QList<ManagedPerformanceMetric>> metrics(QString appID, std::optional<QString> deviceType,
                                                         std::shared_ptr<AppStoreConnectClient> client,
                                                         bool forceRefresh);
    QCoro::Task<QList<ManagedDiagnosticSignature>> signatures(QString buildID, ASCDiagnosticType type,
                                                              std::shared_ptr<AppStoreConnectClient> client);
    // The answer's text as it came.
    QCoro::Task<QString> logs(QString signatureID, std::shared_ptr<AppStoreConnectClient> client);

    // "app|all" without a device type.
    static QString metricsKey(const QString& appID, const std::optional<QString>& deviceType);

private:
    TimedCache<QList<ManagedPerformanceMetric>> m_metrics;
};
