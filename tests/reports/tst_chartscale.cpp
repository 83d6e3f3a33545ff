#include "reports/ChartScale.h"

#include <QTest>

#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;

using Samples = QList<ChartScale::Sample>;

namespace {

// A plot of 200 by 100 pixels whose top left corner is at (40, 10).
const QRectF plot(40, 10, 200, 100);

Samples series(std::initializer_list<double> values) {
    Samples samples;
    double x = 0;
    for (const double y : values) {
        samples.append({x++, y});
    }
    return samples;
}

} // namespace

class ChartScaleTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void ranges_data() {
        QTest::addColumn<Samples>("samples");
        QTest::addColumn<double>("low");
        QTest::addColumn<double>("high");
        QTest::addColumn<double>("baseline");
        QTest::addColumn<QPolygonF>("line");
        QTest::newRow("rising from zero")
            << series({0, 5, 10}) << 0.0 << 10.0 << 110.0 << QPolygonF{{40, 110}, {140, 60}, {240, 10}};
        QTest::newRow("flat above zero sits at the top, the axis still starts at zero")
            << series({5, 5, 5}) << 0.0 << 5.0 << 110.0 << QPolygonF{{40, 10}, {140, 10}, {240, 10}};
        QTest::newRow("nothing but zeros keeps a height")
            << series({0, 0}) << 0.0 << 1.0 << 110.0 << QPolygonF{{40, 110}, {240, 110}};
        QTest::newRow("one point in the middle")
            << series({7}) << 0.0 << 7.0 << 110.0 << QPolygonF{{140, 10}};
        QTest::newRow("negative and positive: zero in between")
            << series({-10, 30}) << -10.0 << 30.0 << 85.0 << QPolygonF{{40, 110}, {240, 10}};
        QTest::newRow("all negative: zero at the top")
            << series({-4, -2}) << -4.0 << 0.0 << 10.0 << QPolygonF{{40, 110}, {240, 60}};
        QTest::newRow("drawn in the order of time, not of arrival")
            << Samples{{2, 4}, {0, 0}, {1, 2}} << 0.0 << 4.0 << 110.0
            << QPolygonF{{40, 110}, {140, 60}, {240, 10}};
        QTest::newRow("gaps in time stay gaps") << Samples{{0, 1}, {1, 1}, {4, 1}} << 0.0 << 1.0 << 110.0
                                                << QPolygonF{{40, 10}, {90, 10}, {240, 10}};
        QTest::newRow("values that are no numbers are left out")
            << Samples{{0, std::numeric_limits<double>::quiet_NaN()},
                       {1, 2},
                       {2, std::numeric_limits<double>::infinity()},
                       {3, 4}}
            << 0.0 << 4.0 << 110.0 << QPolygonF{{40, 60}, {240, 10}};
        QTest::newRow("nothing to draw") << Samples{} << 0.0 << 0.0 << 110.0 << QPolygonF{};
    }

    void ranges() {
        QFETCH(Samples, samples);
        QFETCH(double, low);
        QFETCH(double, high);
        QFETCH(double, baseline);
        QFETCH(QPolygonF, line);
        const ChartScale scale = ChartScale::fit(samples, plot);
        QCOMPARE(scale.low, low);
        QCOMPARE(scale.high, high);
        QCOMPARE(scale.baseline, baseline);
        QCOMPARE(scale.line, line);
    }

    // Ten thousand points on a plot 200 pixels wide: at most two per pixel column are drawn (and
    // the two ends), in time order, and neither the highest nor the lowest point is lost.
    void longSeriesKeepsItsPeaks_data() {
        QTest::addColumn<int>("count");
        QTest::addColumn<int>("peakAt");
        QTest::newRow("10,000 points, peak last") << 10000 << 9999;
        QTest::newRow("401 points, just over two per column") << 401 << 300;
    }

    void longSeriesKeepsItsPeaks() {
        QFETCH(int, count);
        QFETCH(int, peakAt);
        Samples samples;
        samples.reserve(count);
        for (int i = 0; i < count; ++i) {
            samples.append({double(i), i == peakAt ? 1000.0 : (i == count / 2 ? -50.0 : std::sin(i) * 10)});
        }
        const ChartScale scale = ChartScale::fit(samples, plot);
        QCOMPARE(scale.sampleCount, count);
        QVERIFY2(scale.line.size() <= 2 * int(plot.width()) + 2,
                 qPrintable(QString::number(scale.line.size())));
        QCOMPARE(scale.high, 1000.0);
        QCOMPARE(scale.low, -50.0);
        double top = plot.bottom();
        double bottom = plot.top();
        for (qsizetype i = 0; i < scale.line.size(); ++i) {
            top = std::min(top, scale.line[i].y());
            bottom = std::max(bottom, scale.line[i].y());
            QVERIFY(plot.adjusted(-0.001, -0.001, 0.001, 0.001).contains(scale.line[i]));
            if (i > 0) {
                QVERIFY(scale.line[i].x() >= scale.line[i - 1].x());
            }
        }
        QCOMPARE(top, plot.top());
        QCOMPARE(bottom, plot.bottom());
        QCOMPARE(scale.line.constFirst().x(), plot.left());
        QCOMPARE(scale.line.constLast().x(), plot.right());
    }

    void valueText_data() {
        QTest::addColumn<double>("value");
        QTest::addColumn<QString>("text");
        QTest::newRow("thousands") << 1234567.0 << u"1.234.567"_s;
        QTest::newRow("fraction with a comma") << 1234.5 << u"1.234,50"_s;
        QTest::newRow("negative") << -12.25 << u"-12,25"_s;
        QTest::newRow("zero") << 0.0 << u"0"_s;
    }

    void valueText() {
        QFETCH(double, value);
        QFETCH(QString, text);
        QCOMPARE(ChartScale::valueText(value), text);
    }
};

QTEST_GUILESS_MAIN(ChartScaleTest)
#include "tst_chartscale.moc"
