#include "ReportChartItem.h"

#include "reports/ChartScale.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>

#include <cmath>

using namespace Qt::StringLiterals;

ReportChartItem::ReportChartItem(QQuickItem* parent) : QQuickPaintedItem(parent) {
    setAntialiasing(true);
}

void ReportChartItem::setPoints(const QVariantList& points) {
    m_points = points;
    Q_EMIT pointsChanged();
    update();
}

void ReportChartItem::setEmptyText(const QString& text) {
    if (text == m_emptyText) {
        return;
    }
    m_emptyText = text;
    Q_EMIT emptyTextChanged();
    update();
}

void ReportChartItem::setLineColor(const QColor& color) {
    if (color == m_lineColor) {
        return;
    }
    m_lineColor = color;
    Q_EMIT lineColorChanged();
    update();
}

void ReportChartItem::setAxisColor(const QColor& color) {
    if (color == m_axisColor) {
        return;
    }
    m_axisColor = color;
    Q_EMIT axisColorChanged();
    update();
}

void ReportChartItem::setTextColor(const QColor& color) {
    if (color == m_textColor) {
        return;
    }
    m_textColor = color;
    Q_EMIT textColorChanged();
    update();
}

void ReportChartItem::setFontPixelSize(int size) {
    if (size == m_fontPixelSize || size <= 0) {
        return;
    }
    m_fontPixelSize = size;
    Q_EMIT fontPixelSizeChanged();
    update();
}

void ReportChartItem::paint(QPainter* painter) {
    QFont font = painter->font();
    font.setPixelSize(m_fontPixelSize);
    painter->setFont(font);
    painter->setRenderHint(QPainter::Antialiasing);
    const QRectF area = boundingRect();
    const QFontMetricsF metrics(font);

    QList<ChartScale::Sample> samples;
    samples.reserve(m_points.size());
    QString firstDate;
    QString lastDate;
    double firstDay = 0;
    double lastDay = 0;
    for (const QVariant& point : std::as_const(m_points)) {
        const QVariantMap map = point.toMap();
        const double day = map.value(u"day"_s).toDouble();
        const double value = map.value(u"value"_s).toDouble();
        // A point without a finite day or value has no place on the axes; with none left there
        // is neither line nor dot, only the text.
        if (!std::isfinite(day) || !std::isfinite(value)) {
            continue;
        }
        samples.append({day, value});
        if (samples.size() == 1 || day < firstDay) {
            firstDay = day;
            firstDate = map.value(u"dateText"_s).toString();
        }
        if (samples.size() == 1 || day > lastDay) {
            lastDay = day;
            lastDate = map.value(u"dateText"_s).toString();
        }
    }
    if (samples.isEmpty()) {
        painter->setPen(m_textColor);
        painter->drawText(area.adjusted(8, 8, -8, -8), Qt::AlignCenter | Qt::TextWordWrap, m_emptyText);
        return;
    }

    // The value labels decide the left margin, the date labels the bottom one; the value range
    // comes from the samples, so it is fitted once with a provisional plot to learn the labels.
    const ChartScale provisional = ChartScale::fit(samples, area);
    const QString highText = ChartScale::valueText(provisional.high);
    const QString lowText = ChartScale::valueText(provisional.low);
    const double labelWidth =
        std::max(metrics.horizontalAdvance(highText), metrics.horizontalAdvance(lowText));
    const QRectF plot = area.adjusted(labelWidth + 10, metrics.height() / 2 + 2,
                                      -metrics.horizontalAdvance(lastDate) / 2 - 2, -metrics.height() - 6);
    if (plot.width() < 4 || plot.height() < 4) {
        return;
    }
    const ChartScale scale = ChartScale::fit(samples, plot);

    painter->setPen(QPen(m_axisColor, 1));
    painter->drawLine(plot.bottomLeft(), plot.topLeft());
    painter->drawLine(plot.bottomLeft(), plot.bottomRight());
    if (scale.low < 0) {
        painter->setPen(QPen(m_axisColor, 1, Qt::DashLine));
        painter->drawLine(QPointF(plot.left(), scale.baseline), QPointF(plot.right(), scale.baseline));
    }

    QColor fill = m_lineColor;
    fill.setAlphaF(0.18f);
    if (scale.line.size() > 1) {
        QPainterPath under;
        under.moveTo(scale.line.constFirst().x(), scale.baseline);
        for (const QPointF& p : scale.line) {
            under.lineTo(p);
        }
        under.lineTo(scale.line.constLast().x(), scale.baseline);
        under.closeSubpath();
        painter->fillPath(under, fill);
        painter->setPen(QPen(m_lineColor, 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter->drawPolyline(scale.line);
    } else {
        painter->setPen(Qt::NoPen);
        painter->setBrush(m_lineColor);
        painter->drawEllipse(scale.line.constFirst(), 4, 4);
    }

    painter->setPen(m_textColor);
    const double labelRight = plot.left() - 6;
    painter->drawText(
        QRectF(area.left(), plot.top() - metrics.height() / 2, labelRight - area.left(), metrics.height()),
        Qt::AlignRight | Qt::AlignVCenter, highText);
    painter->drawText(
        QRectF(area.left(), plot.bottom() - metrics.height() / 2, labelRight - area.left(), metrics.height()),
        Qt::AlignRight | Qt::AlignVCenter, lowText);
    const QRectF dates(plot.left(), plot.bottom() + 4, plot.width(), metrics.height());
    if (firstDay == lastDay) {
        painter->drawText(dates, Qt::AlignHCenter | Qt::AlignTop, firstDate);
    } else {
        painter->drawText(dates, Qt::AlignLeft | Qt::AlignTop, firstDate);
        painter->drawText(dates.adjusted(0, 0, metrics.horizontalAdvance(lastDate) / 2, 0),
                          Qt::AlignRight | Qt::AlignTop, lastDate);
    }
}
