#pragma once

#include "reports/AnalyticsTable.h"

#include <QDate>
#include <QDateTime>
#include <QList>
#include <QString>

#include <optional>

// One numeric column of a report summed per day over a window of days before now, against the
// window of the same length before it. Days are days in UTC, as Apple's reports count them.
struct AnalyticsSummary {
    struct Point {
        QDate date;
        double value = 0;
        friend bool operator==(const Point&, const Point&) = default;
    };

    QString columnName;
    // Days with data, oldest first.
    QList<Point> points;
    double total = 0;
    // Absent when the report reaches no row into the earlier window: no history, not zero.
    std::optional<double> previousTotal;
    int rowsOutsideWindow = 0;

    // "yyyy-MM-dd", "yyyy/MM/dd" or "MM/dd/yyyy", in that order of trying.
    static std::optional<QDate> parseDate(QByteArrayView text);
    // Absent without a date column or with a column beyond the header. Rows too short for the
    // date or the value, with an unreadable date, or with a blank or unreadable value are left
    // out without being counted.
    static std::optional<AnalyticsSummary> make(const AnalyticsTable& table, qsizetype columnIndex, int days,
                                                const QDateTime& now);
};
