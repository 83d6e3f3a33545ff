#pragma once

#include "wire/JsonReader.h"

#include <QString>
#include <QUrl>

#include <optional>

// The links of the chain below a report request: a report, its instances per period, and each
// instance's segments, the gzip files at addresses Apple signs for a few minutes.

struct ASCAnalyticsReportAttributes {
    std::optional<QString> name;
    std::optional<QString> category;
    static ASCAnalyticsReportAttributes fromJson(const JsonReader& r);
};

struct ManagedAnalyticsReport {
    QString id;
    QString name;
    std::optional<QString> category;
    static ManagedAnalyticsReport fromResource(const QString& id,
                                               const std::optional<ASCAnalyticsReportAttributes>& a);
    friend bool operator==(const ManagedAnalyticsReport&, const ManagedAnalyticsReport&) = default;
};

struct ASCAnalyticsReportInstanceAttributes {
    std::optional<QString> granularity;
    std::optional<QString> processingDate;
    static ASCAnalyticsReportInstanceAttributes fromJson(const JsonReader& r);
};

struct ManagedAnalyticsReportInstance {
    QString id;
    QString granularity; // display label
    std::optional<QString> processingDate;
    static QString granularityLabel(const std::optional<QString>& raw);
    static ManagedAnalyticsReportInstance
    fromResource(const QString& id, const std::optional<ASCAnalyticsReportInstanceAttributes>& a);
    friend bool operator==(const ManagedAnalyticsReportInstance&,
                           const ManagedAnalyticsReportInstance&) = default;
};

struct ASCAnalyticsReportSegmentAttributes {
    std::optional<QString> checksum;
    std::optional<qint64> sizeInBytes;
    std::optional<QString> url;
    static ASCAnalyticsReportSegmentAttributes fromJson(const JsonReader& r);
};

struct ManagedAnalyticsReportSegment {
    QString id;
    std::optional<qint64> sizeInBytes;
    std::optional<QUrl> downloadURL;
    // The MD5 of the file as Apple stores it, in hex.
    std::optional<QString> checksum;
    static ManagedAnalyticsReportSegment
    fromResource(const QString& id, const std::optional<ASCAnalyticsReportSegmentAttributes>& a);
    friend bool operator==(const ManagedAnalyticsReportSegment&,
                           const ManagedAnalyticsReportSegment&) = default;
};
