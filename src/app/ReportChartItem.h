#pragma once

#include <QColor>
#include <QQuickPaintedItem>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

// A report column over time as a line with the area under it, drawn with QPainter: Qt Charts'
// ChartView needs a widget application, and this needs nothing but a scene. The points come from
// the presentation model as they are; the item only scales and paints them (see ChartScale).
//
// Each point is a map {"day": Julian day number, "value": number, "dateText": the day as shown}.
class ReportChartItem : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QVariantList points READ points WRITE setPoints NOTIFY pointsChanged)
    Q_PROPERTY(int pointCount READ pointCount NOTIFY pointsChanged)
    // Shown instead of the chart while there is nothing to draw.
    Q_PROPERTY(QString emptyText READ emptyText WRITE setEmptyText NOTIFY emptyTextChanged)
    Q_PROPERTY(QColor lineColor READ lineColor WRITE setLineColor NOTIFY lineColorChanged)
    Q_PROPERTY(QColor axisColor READ axisColor WRITE setAxisColor NOTIFY axisColorChanged)
    Q_PROPERTY(QColor textColor READ textColor WRITE setTextColor NOTIFY textColorChanged)
    Q_PROPERTY(int fontPixelSize READ fontPixelSize WRITE setFontPixelSize NOTIFY fontPixelSizeChanged)
public:
    explicit ReportChartItem(QQuickItem* parent = nullptr);

    QVariantList points() const { return m_points; }
    void setPoints(const QVariantList& points);
    int pointCount() const { return int(m_points.size()); }
    QString emptyText() const { return m_emptyText; }
    void setEmptyText(const QString& text);
    QColor lineColor() const { return m_lineColor; }
    void setLineColor(const QColor& color);
    QColor axisColor() const { return m_axisColor; }
    void setAxisColor(const QColor& color);
    QColor textColor() const { return m_textColor; }
    void setTextColor(const QColor& color);
    int fontPixelSize() const { return m_fontPixelSize; }
    void setFontPixelSize(int size);

    void paint(QPainter* painter) override;

Q_SIGNALS:
    void pointsChanged();
    void emptyTextChanged();
    void lineColorChanged();
    void axisColorChanged();
    void textColorChanged();
    void fontPixelSizeChanged();

private:
    QVariantList m_points;
    QString m_emptyText;
    QColor m_lineColor{0x1f, 0x5f, 0xa8};
    QColor m_axisColor{Qt::gray};
    QColor m_textColor{Qt::black};
    int m_fontPixelSize = 11;
};
