#pragma once

#include <QList>
#include <QString>

#include <optional>

// How serious a finding or a readiness check is. Blocking means exactly `Confirmed`; the raw value
// is what stored state and exports carry. The metadata validator uses only the first three.
enum class ReleaseCheckSeverity { Confirmed, Warning, Recommendation, Info, Passed, Unavailable };

namespace ReleaseCheckSeverities {

inline QList<ReleaseCheckSeverity> all() {
    return {ReleaseCheckSeverity::Confirmed,      ReleaseCheckSeverity::Warning,
            ReleaseCheckSeverity::Recommendation, ReleaseCheckSeverity::Info,
            ReleaseCheckSeverity::Passed,         ReleaseCheckSeverity::Unavailable};
}

inline QString rawValue(ReleaseCheckSeverity severity) {
    switch (severity) {
    case ReleaseCheckSeverity::Confirmed:
        return QStringLiteral("confirmed");
    case ReleaseCheckSeverity::Warning:
        return QStringLiteral("warning");
    case ReleaseCheckSeverity::Recommendation:
        return QStringLiteral("recommendation");
    case ReleaseCheckSeverity::Info:
        return QStringLiteral("info");
    case ReleaseCheckSeverity::Passed:
        return QStringLiteral("passed");
    case ReleaseCheckSeverity::Unavailable:
        return QStringLiteral("unavailable");
    }
    return {};
}

inline std::optional<ReleaseCheckSeverity> fromRaw(const QString& raw) {
    for (ReleaseCheckSeverity severity : all()) {
        if (rawValue(severity) == raw) {
            return severity;
        }
    }
    return std::nullopt;
}

} // namespace ReleaseCheckSeverities
