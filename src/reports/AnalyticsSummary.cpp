#include "reports/AnalyticsSummary.h"

#include <map>

namespace {

// Digits only, one to `max` of them.
std::optional<int> number(QByteArrayView digits, int max) {
    if (digits.isEmpty() || digits.size() > max) {
        return std::nullopt;
    }
    int value = 0;
    for (const char c : digits) {
        if (c < '0' || c > '9') {
            return std::nullopt;
        }
        value = value * 10 + (c - '0');
    }
    return value;
}

std::optional<QDate> dateOf(QByteArrayView text, char separator, bool yearFirst) {
    const qsizetype first = text.indexOf(separator);
    const qsizetype second = first < 0 ? -1 : text.sliced(first + 1).indexOf(separator);
    if (first < 0 || second < 0) {
        return std::nullopt;
    }
    const QByteArrayView a = text.first(first);
    const QByteArrayView b = text.sliced(first + 1, second);
    const QByteArrayView c = text.sliced(first + 1 + second + 1);
    const auto year = yearFirst ? (a.size() == 4 ? number(a, 4) : std::nullopt)
                                : (c.size() == 4 ? number(c, 4) : std::nullopt);
    const auto month = number(yearFirst ? b : a, 2);
    const auto day = number(yearFirst ? c : b, 2);
    if (!year || !month || !day) {
        return std::nullopt;
    }
    const QDate date(*year, *month, *day);
    return date.isValid() ? std::optional<QDate>(date) : std::nullopt;
}

// The cell without its thousands commas, as a number, or nothing when blank or unreadable.
std::optional<double> valueOf(QByteArrayView cell, QByteArray& scratch) {
    scratch.clear();
    for (const char c : cell) {
        if (c != ',') {
            scratch.append(c);
        }
    }
    scratch = scratch.trimmed();
    if (scratch.isEmpty()) {
        return std::nullopt;
    }
    bool ok = false;
    const double value = scratch.toDouble(&ok);
    return ok ? std::optional<double>(value) : std::nullopt;
}

} // namespace

std::optional<QDate> AnalyticsSummary::parseDate(QByteArrayView text) {
    if (auto date = dateOf(text, '-', true)) {
        return date;
    }
    if (auto date = dateOf(text, '/', true)) {
        return date;
    }
    return dateOf(text, '/', false);
}

std::optional<AnalyticsSummary> AnalyticsSummary::make(const AnalyticsTable& table, qsizetype columnIndex,
                                                       int days, const QDateTime& now) {
    const std::optional<qsizetype> dateColumn = table.dateColumnIndex();
    if (!dateColumn || columnIndex < 0 || columnIndex >= table.columns().size()) {
        return std::nullopt;
    }
    const QDateTime utcNow = now.toUTC();
    const QDateTime windowStart = utcNow.addDays(-days);
    const QDateTime previousStart = utcNow.addDays(-2 * qint64(days));
    AnalyticsSummary summary;
    summary.columnName = table.columns()[columnIndex];
    std::map<QDate, double> perDay;
    double previous = 0;
    bool hasPrevious = false;
    QByteArray scratch;
    const qsizetype needed = std::max(*dateColumn, columnIndex);
    for (qsizetype row = 0; row < table.rowCount(); ++row) {
        const QList<QByteArrayView> cells = table.cellViews(row);
        if (cells.size() <= needed) {
            continue;
        }
        const std::optional<QDate> date = parseDate(cells[*dateColumn]);
        if (!date) {
            continue;
        }
        const std::optional<double> value = valueOf(cells[columnIndex], scratch);
        if (!value) {
            continue;
        }
        const QDateTime day(*date, QTime(0, 0), Qt::UTC);
        if (day >= windowStart) {
            perDay[*date] += *value;
        } else if (day >= previousStart) {
            previous += *value;
            hasPrevious = true;
        } else {
            ++summary.rowsOutsideWindow;
        }
    }
    for (const auto& [date, value] : perDay) {
        summary.points.append({date, value});
        summary.total += value;
    }
    if (hasPrevious) {
        summary.previousTotal = previous;
    }
    return summary;
}
