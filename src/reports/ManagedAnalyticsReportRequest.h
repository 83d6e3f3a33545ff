#pragma once

#include <QString>

// An app's standing order for analytics reports; Apple fills it with reports over days.
struct ManagedAnalyticsReportRequest {
    QString id;
    QString accessType; // display label, see accessTypeLabel
    bool isStopped = false;

    // "ONGOING" reads "Laufend"; every other kind is a one-time snapshot.
    static QString accessTypeLabel(const QString& raw);
    friend bool operator==(const ManagedAnalyticsReportRequest&,
                           const ManagedAnalyticsReportRequest&) = default;
};
