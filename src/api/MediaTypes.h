#pragma once

#include <QByteArrayView>

// What an endpoint asks for in its Accept header. Most of the API answers JSON; a few endpoints
// answer only when asked for their own type.
namespace MediaType {

inline constexpr QByteArrayView json = "application/json";
// Sales and finance reports: a gzip file of tab-separated text.
inline constexpr QByteArrayView gzipReport = "application/a-gzip";
// The logs of a diagnostic signature.
inline constexpr QByteArrayView diagnosticLogs = "application/vnd.apple.diagnostic-logs+json";
// An app's performance and power metrics.
inline constexpr QByteArrayView xcodeMetrics = "application/vnd.apple.xcode-metrics+json";
// A presigned storage address serves whatever it holds.
inline constexpr QByteArrayView any = "*/*";

} // namespace MediaType
