#pragma once

#include "wire/JsonReader.h"

#include <QString>

#include <optional>

struct ASCAnalyticsReportRequestAttributes {
    std::optional<QString> accessType;
    std::optional<bool> stoppedDueToInactivity;
    static ASCAnalyticsReportRequestAttributes fromJson(const JsonReader& r);
};

// An app's standing order for analytics reports; Apple fills it with reports over days.
struct ManagedAnalyticsReportRequest {
    QString id;
    QString accessType; // display label, see accessTypeLabel
    bool isStopped = false;

    // "ONGOING" reads "Laufend"; every other kind is a one-time snapshot.
    static QString accessTypeLabel(const QString& raw);
    static ManagedAnalyticsReportRequest
    fromResource(const QString& id, const std::optional<ASCAnalyticsReportRequestAttributes>& a);
    friend bool operator==(const ManagedAnalyticsReportRequest&,
                           const ManagedAnalyticsReportRequest&) = default;
};
