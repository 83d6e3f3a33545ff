#include "reports/ChartScale.h"

#include <QLocale>

#include <algorithm>
#include <cmath>

ChartScale ChartScale::fit(QList<Sample> samples, const QRectF& plot) {
    ChartScale scale;
    samples.removeIf([](const Sample& s) { return !std::isfinite(s.x) || !std::isfinite(s.y); });
    scale.sampleCount = int(samples.size());
    if (samples.isEmpty() || plot.isEmpty()) {
        scale.baseline = plot.bottom();
        return scale;
    }
    std::stable_sort(samples.begin(), samples.end(),
                     [](const Sample& a, const Sample& b) { return a.x < b.x; });

    const auto [lowest, highest] = std::minmax_element(
        samples.cbegin(), samples.cend(), [](const Sample& a, const Sample& b) { return a.y < b.y; });
    scale.low = std::min(0.0, lowest->y);
    scale.high = std::max(0.0, highest->y);
    if (scale.high == scale.low) {
        scale.high = scale.low + 1;
    }
    const double firstX = samples.constFirst().x;
    const double spanX = samples.constLast().x - firstX;
    const auto xOf = [&](double x) {
        // One point, or several at one moment: the middle of the plot.
        return spanX > 0 ? plot.left() + (x - firstX) / spanX * plot.width() : plot.center().x();
    };
    const auto yOf = [&](double y) {
        return plot.bottom() - (y - scale.low) / (scale.high - scale.low) * plot.height();
    };
    scale.baseline = yOf(0);

    const int columns = std::max(1, int(std::floor(plot.width())));
    if (samples.size() <= 2 * columns) {
        scale.line.reserve(samples.size());
        for (const Sample& s : std::as_const(samples)) {
            scale.line.append(QPointF(xOf(s.x), yOf(s.y)));
        }
        return scale;
    }
    // Per pixel column the lowest and the highest sample, in the order they come in; the first
    // and the last sample stay too, so that the line spans the whole time.
    scale.line.reserve(2 * columns + 2);
    qsizetype lastKept = -1;
    const auto keep = [&](qsizetype k) {
        if (k > lastKept) {
            scale.line.append(QPointF(xOf(samples[k].x), yOf(samples[k].y)));
            lastKept = k;
        }
    };
    const auto columnOf = [&](qsizetype k) {
        return std::min(columns - 1, int(xOf(samples[k].x) - plot.left()));
    };
    keep(0);
    qsizetype i = 0;
    while (i < samples.size()) {
        const int column = columnOf(i);
        qsizetype low = i;
        qsizetype high = i;
        qsizetype j = i + 1;
        for (; j < samples.size() && columnOf(j) == column; ++j) {
            if (samples[j].y < samples[low].y) {
                low = j;
            }
            if (samples[j].y > samples[high].y) {
                high = j;
            }
        }
        keep(std::min(low, high));
        keep(std::max(low, high));
        i = j;
    }
    keep(samples.size() - 1);
    return scale;
}

QString ChartScale::valueText(double value) {
    const bool whole = std::abs(value - std::round(value)) < 1e-9;
    return QLocale(QLocale::German).toString(value, 'f', whole ? 0 : 2);
}
