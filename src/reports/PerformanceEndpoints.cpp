#include "reports/PerformanceEndpoints.h"

#include "api/MediaTypes.h"

using namespace Qt::StringLiterals;

namespace PerformanceEndpoints {

Endpoint<Returns::Bytes> metricsOfApp(const QString& appID, const std::optional<QString>& deviceType) {
    QList<QueryItem> query;
    if (deviceType) {
        query.append({u"filter[deviceType]"_s, *deviceType});
    }
    return Endpoint<Returns::Bytes>::get(apiPath({u"v1", u"apps", appID, u"perfPowerMetrics"}), query)
        .withAccept(MediaType::xcodeMetrics);
}

Endpoint<Returns::Page<ASCDiagnosticSignatureAttributes>>
signaturesOfBuild(const QString& buildID, ASCDiagnosticType type, int limit) {
    return Endpoint<Returns::Page<ASCDiagnosticSignatureAttributes>>::get(
        apiPath({u"v1", u"builds", buildID, u"diagnosticSignatures"}),
        {{u"filter[diagnosticType]"_s, DiagnosticTypes::rawValue(type)},
         {u"limit"_s, QString::number(limit)}});
}

Endpoint<Returns::Bytes> logsOfSignature(const QString& signatureID, int limit) {
    // Apple declares its own type for the logs; asked for the metrics' type it may refuse.
    return Endpoint<Returns::Bytes>::get(apiPath({u"v1", u"diagnosticSignatures", signatureID, u"logs"}),
                                         {{u"limit"_s, QString::number(limit)}})
        .withAccept(MediaType::diagnosticLogs);
}

} // namespace PerformanceEndpoints
