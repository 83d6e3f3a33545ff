#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QMap>
#include <QPair>
#include <QString>

#include <optional>

// Apple's metrics document, as far as the totals need it. Not JSON:API: a list of segments, each
// with data points of a period and named values.
struct ASCMetricsResponse {
    struct DataPoint {
        std::optional<QDateTime> start;
        std::optional<QDateTime> end;
        QMap<QString, double> values;
    };
    struct Segment {
        QList<DataPoint> dataPoints;
    };
    QList<Segment> data;

    // Apple writes a segment's `dataPoints` as a list or, where there is one, as the bare object;
    // period bounds come with a time or as a plain day. Raises DecodingError.
    static ASCMetricsResponse decode(const QByteArray& body);
};

// How a build is used in TestFlight, summed over everything Apple answered.
struct ManagedBetaUsage {
    QMap<QString, double> totals;
    int dataPointCount = 0;

    // The well-known figures first, in a fixed order, as far as present; the rest by name.
    QList<QPair<QString, double>> orderedTotals() const;

    static ManagedBetaUsage fromMetrics(const ASCMetricsResponse& metrics);
    friend bool operator==(const ManagedBetaUsage&, const ManagedBetaUsage&) = default;
};
