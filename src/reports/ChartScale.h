#pragma once

#include <QList>
#include <QPolygonF>
#include <QRectF>
#include <QString>

// Where a time series lands in a plot area, and what its axes read. A pure function of the
// points and the area, so that the drawing item only paints what it is given.
//
// The value axis always holds zero: an area chart that starts above zero would make a small
// change look large. A series with nothing but zeros gets the range 0…1 so that it still has a
// height. A series longer than the plot is wide keeps, per pixel column, its lowest and its
// highest point, so painting costs the width, not the length, and no peak is lost.
struct ChartScale {
    struct Sample {
        // Any increasing measure of time, e.g. a Julian day number.
        double x = 0;
        double y = 0;
    };

    // In plot coordinates, left to right; empty without a finite sample.
    QPolygonF line;
    // The value range of the axis, bottom and top.
    double low = 0;
    double high = 0;
    // The y coordinate of the value zero, where an area under the line closes.
    double baseline = 0;
    // The samples that were finite (non-finite values are left out).
    int sampleCount = 0;

    // `samples` in any order; they are drawn in the order of x.
    static ChartScale fit(QList<Sample> samples, const QRectF& plot);

    // A value on the axis in German notation: "1.234", "0,5", "-12,25".
    static QString valueText(double value);
};
