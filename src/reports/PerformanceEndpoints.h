#pragma once

#include "api/Endpoint.h"
#include "reports/ManagedDiagnosticSignature.h"

#include <optional>

// The requests behind the performance screen: an app's metrics, a build's diagnostic signatures
// and one signature's logs. Metrics and logs are documents of Apple's own types, not JSON:API.
namespace PerformanceEndpoints {

// `filter[deviceType]` only when a device type is given.
Endpoint<Returns::Bytes> metricsOfApp(const QString& appID, const std::optional<QString>& deviceType);
Endpoint<Returns::Page<ASCDiagnosticSignatureAttributes>>
signaturesOfBuild(const QString& buildID, ASCDiagnosticType type, int limit);
Endpoint<Returns::Bytes> logsOfSignature(const QString& signatureID, int limit);

} // namespace PerformanceEndpoints
