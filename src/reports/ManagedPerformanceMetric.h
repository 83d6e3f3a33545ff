#pragma once

#include <QByteArray>
#include <QJsonArray>
#include <QList>
#include <QString>

#include <optional>

// One figure of Apple's performance metrics: a metric of a category, for one device and
// percentile, in one version of the app.
struct ManagedPerformanceMetric {
    QString category;
    QString identifier;
    std::optional<QString> unit;
    std::optional<QString> percentile;
    std::optional<QString> device;
    std::optional<QString> version;
    double value = 0;
    std::optional<double> errorMargin;
    friend bool operator==(const ManagedPerformanceMetric&, const ManagedPerformanceMetric&) = default;

    // "HANG" reads "Hänger"; an unknown category keeps Apple's text.
    static QString categoryLabel(const QString& raw);
    // "percentile.fifty" reads "Median"; an unknown one keeps Apple's text.
    static QString percentileLabel(const QString& raw);

    // Category first, then the metric; the order of Apple's document within one metric stays.
    static void sortForDisplay(QList<ManagedPerformanceMetric>& metrics);
};

// Apple's metrics document ("xcode-metrics"): products, their metric categories, each category's
// metrics, each metric's datasets (one per device and percentile) and their points (one per app
// version). It is no JSON:API document, and Apple leaves out whatever it has no data for, so
// every level may be missing.
struct ASCPerfPowerMetricsResponse {
    QJsonArray productData;

    // Raises DecodingError only when the bytes are no JSON object at all.
    static ASCPerfPowerMetricsResponse decode(const QByteArray& body);
    // One entry per point that has a value; a point without one says nothing and is left out.
    QList<ManagedPerformanceMetric> flattened() const;
};
