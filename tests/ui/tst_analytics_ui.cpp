#include "UiFixture.h"

#include "app/ReportChartItem.h"

#include "api/PendingWrite.h"
#include "api/RowListModel.h"
#include "reports/AnalyticsViewModel.h"
#include "workspace/AppListModel.h"
#include "workspace/SectionHost.h"
#include "workspace/WorkspaceViewModel.h"

#include <QPainter>
#include <QQuickItem>
#include <QTest>

#include <limits>

using namespace Qt::StringLiterals;

class AnalyticsUiTest : public UiFixture {
    Q_OBJECT

    WorkspaceViewModel* m_workspace = nullptr;
    AnalyticsViewModel* m_model = nullptr;

    // Demo mode, the first app chosen with the mouse, its Analytics section clicked in the sidebar.
    void openAnalytics() {
        startDemo();
        m_workspace = m_shell->workspace();
        QTRY_COMPARE(m_workspace->allApps()->count(), 4);
        QVERIFY(clickRow(mainWindow(), u"allAppsList"_s, 0));
        QTRY_VERIFY(m_workspace->hasSelectedApp());
        QVERIFY(clickNamed(mainWindow(), u"section_analytics"_s));
        QTRY_COMPARE(m_workspace->selectedSection(), u"analytics"_s);
        m_model = qobject_cast<AnalyticsViewModel*>(m_workspace->sections()->sectionModel());
        QVERIFY(m_model);
        QTRY_COMPARE(m_model->requests()->count(), 1);
        QVERIFY(findItem(mainWindow(), u"analyticsTab_0"_s));
    }

    // Clicks the row of `level` with this id and waits for the model to have it.
    void choose(const QString& level, const QString& id) {
        QVERIFY(clickNamed(mainWindow(), u"analytics_%1_%2"_s.arg(level, id)));
    }

    // The pixels of the chart that are drawn in the line's colour, as grabbed from the window.
    static int linePixels(QQuickItem* chart) {
        const QImage window = chart->window()->grabWindow();
        const QRect area = chart->mapRectToScene(chart->boundingRect()).toAlignedRect();
        return pixelsNear(window.copy(area), chart->property("lineColor").value<QColor>());
    }

    static int pixelsNear(const QImage& image, const QColor& line) {
        int count = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const QColor c = image.pixelColor(x, y);
                if (std::abs(c.red() - line.red()) + std::abs(c.green() - line.green()) +
                        std::abs(c.blue() - line.blue()) <
                    40) {
                    ++count;
                }
            }
        }
        return count;
    }

private Q_SLOTS:
    void initTestCase() { installMessageHandler(); }

    // The item alone, painted into an image: a line where there are points, the text where there
    // are none, nothing where there is no room.
    void chartPaints_data() {
        QTest::addColumn<QList<double>>("values");
        QTest::addColumn<QSizeF>("size");
        QTest::addColumn<bool>("drawsLine");
        QTest::addColumn<bool>("drawsText");
        const QSizeF room(320, 160);
        const double nan = std::numeric_limits<double>::quiet_NaN();
        const double inf = std::numeric_limits<double>::infinity();
        QTest::newRow("nothing: the text") << QList<double>{} << room << false << true;
        QTest::newRow("one day: a dot") << QList<double>{42} << room << true << true;
        QList<double> year;
        for (int i = 0; i < 366; ++i) {
            year.append(i % 7 == 0 ? 2500.5 : 1000 + i);
        }
        QTest::newRow("a year") << year << room << true << true;
        QTest::newRow("no finite value: the text") << QList<double>{nan, inf, -inf} << room << false << true;
        QTest::newRow("one finite value among others: a dot")
            << QList<double>{nan, 42, inf} << room << true << true;
        QTest::newRow("no room") << QList<double>{1, 2, 3} << QSizeF(0, 0) << false << false;
        QTest::newRow("no room, no value") << QList<double>{nan} << QSizeF(0, 0) << false << false;
    }

    void chartPaints() {
        QFETCH(QList<double>, values);
        QFETCH(QSizeF, size);
        QFETCH(bool, drawsLine);
        QFETCH(bool, drawsText);
        ReportChartItem chart;
        chart.setSize(size);
        chart.setLineColor(QColor(0x1f, 0x5f, 0xa8));
        chart.setTextColor(QColor(0x99, 0x11, 0x11));
        chart.setEmptyText(u"Keine Daten"_s);
        QVariantList points;
        const QDate first(2026, 1, 1);
        for (qsizetype i = 0; i < values.size(); ++i) {
            points.append(QVariantMap{{u"day"_s, first.addDays(i).toJulianDay()},
                                      {u"value"_s, values[i]},
                                      {u"dateText"_s, first.addDays(i).toString(u"dd.MM.yyyy"_s)}});
        }
        chart.setPoints(points);
        QCOMPARE(chart.pointCount(), values.size());
        QImage image(320, 160, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::white);
        QPainter painter(&image);
        chart.paint(&painter);
        painter.end();
        QCOMPARE(pixelsNear(image, chart.lineColor()) > 10, drawsLine);
        QCOMPARE(pixelsNear(image, chart.textColor()) > 10, drawsText);
    }

    void init() { initFixture(); }
    void cleanup() { cleanupFixture(); }

    void walkTheChainToAChart() {
        openAnalytics();
        if (QTest::currentTestFailed()) {
            return;
        }
        QVERIFY(!shownItem(mainWindow(), u"analyticsChart"_s));
        choose(u"request"_s, m_model->requests()->value(0, 0).toString());
        QTRY_COMPARE(m_model->reports()->count(), 2);
        choose(u"report"_s, m_model->reports()->value(0, 0).toString());
        QTRY_COMPARE(m_model->instances()->count(), 2);
        choose(u"instance"_s, m_model->instances()->value(0, 0).toString());
        QTRY_COMPARE(m_model->segments()->count(), 1);
        const QString segment = m_model->segments()->value(0, 0).toString();
        choose(u"segment"_s, segment);
        QTRY_COMPARE(m_model->loadedSegmentID(), segment);
        QVERIFY(findItem(mainWindow(), u"analytics_segment_"_s + segment)->property("highlighted").toBool());

        // The table: its caption, the demo's note, and the first rows.
        QCOMPARE(m_model->tableCaption(), u"Rohdaten aus Apples Report (802 Zeilen)"_s);
        QVERIFY(findText(mainWindow(), m_model->tableCaption()));
        QVERIFY(findText(mainWindow(), m_model->sampleNote()));
        QVERIFY(findItem(mainWindow(), u"analyticsRow_0"_s));
        QVERIFY(findText(mainWindow(), u"Total Session Duration"_s));

        // The chart of the first numeric column over 30 days.
        QQuickItem* chart = findItem(mainWindow(), u"analyticsChart"_s);
        QVERIFY(chart);
        QTRY_COMPARE(chart->property("pointCount").toInt(), 30);
        QVERIFY(findText(mainWindow(), u"Summe Sessions · 30 Tage"_s));
        QVERIFY2(linePixels(chart) > chart->width() / 2, "the line is drawn");
        shoot(mainWindow(), u"analytics-chart"_s);

        // A week, then another column.
        QVERIFY(clickNamed(mainWindow(), u"period_0"_s));
        QTRY_COMPARE(m_model->period(), 0);
        QTRY_COMPARE(chart->property("pointCount").toInt(), 7);
        QVERIFY(findText(mainWindow(), u"Summe Sessions · 7 Tage"_s));
        const QVariantList sessions = chart->property("points").toList();
        QVERIFY(clickNamed(mainWindow(), u"column_4"_s));
        QTRY_COMPARE(m_model->selectedColumnIndex(), 4);
        QVERIFY(findText(mainWindow(), u"Summe Total Session Duration · 7 Tage"_s));
        QTRY_VERIFY(findItem(mainWindow(), u"column_4"_s)->property("highlighted").toBool());
        QVERIFY(!findItem(mainWindow(), u"column_3"_s)->property("highlighted").toBool());
        const QVariantList durations = chart->property("points").toList();
        QCOMPARE(durations.size(), 7);
        QVERIFY(durations.last().toMap().value(u"value"_s).toDouble() >
                sessions.last().toMap().value(u"value"_s).toDouble());
        QCOMPARE(chart->property("points").toList(), m_model->chartPoints());
        QVERIFY(linePixels(chart) > chart->width() / 2);
        QVERIFY(findText(mainWindow(), m_model->totalText()));
        shoot(mainWindow(), u"analytics-week"_s);

        // Another report empties what hung below the first.
        choose(u"report"_s, m_model->reports()->value(1, 0).toString());
        QTRY_COMPARE(m_model->loadedSegmentID(), QString());
        QTRY_VERIFY(!shownItem(mainWindow(), u"analyticsChart"_s));
    }

    // In demo mode nothing goes to Apple: asking for a snapshot says so where the requests are.
    // The section's second tab holds the performance figures; looking at it is what loads them.
    void snapshotAndPerformanceTab() {
        openAnalytics();
        if (QTest::currentTestFailed()) {
            return;
        }
        QVERIFY(clickNamed(mainWindow(), u"createSnapshotButton"_s));
        QTRY_COMPARE(m_model->requestsError(), WriteGate::demoMessage());
        QVERIFY(findText(mainWindow(), WriteGate::demoMessage()));
        QCOMPARE(m_model->requests()->count(), 1);

        QVERIFY(!shownItem(mainWindow(), u"perfError"_s));
        QVERIFY(clickNamed(mainWindow(), u"analyticsTab_1"_s));
        QQuickItem* error = findItem(mainWindow(), u"perfError"_s);
        QVERIFY(error);
        QTRY_VERIFY(error->property("text").toString().startsWith(u"Im Demo-Modus liegen keine"_s));
        QVERIFY(!shownItem(mainWindow(), u"analyticsChart"_s));
        QVERIFY(clickNamed(mainWindow(), u"analyticsTab_0"_s));
        QTRY_VERIFY(!shownItem(mainWindow(), u"perfError"_s));
    }

    // The chain's lists take the keyboard: Tab from one list to the next, Return chooses the
    // current row.
    void keyboardReachesTheChain() {
        openAnalytics();
        if (QTest::currentTestFailed()) {
            return;
        }
        QQuickItem* list = findItem(mainWindow(), u"analytics_requestList"_s);
        QVERIFY(list);
        click(findItem(mainWindow(), u"analytics_request_"_s + m_model->requests()->value(0, 0).toString()));
        QTRY_COMPARE(m_model->reports()->count(), 2);
        QTest::keyClick(mainWindow(), Qt::Key_Tab);
        QTRY_VERIFY(findItem(mainWindow(), u"analytics_reportList"_s)->hasActiveFocus());
        // The first Down enters the list at its first row, the second goes on to the next.
        QTest::keyClick(mainWindow(), Qt::Key_Down);
        QTest::keyClick(mainWindow(), Qt::Key_Down);
        QTest::keyClick(mainWindow(), Qt::Key_Return);
        QTRY_COMPARE(m_model->selectedReport(), m_model->reports()->value(1, 0).toString());
    }
};

QTEST_MAIN(AnalyticsUiTest)
#include "tst_analytics_ui.moc"
