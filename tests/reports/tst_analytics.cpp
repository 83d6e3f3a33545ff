#include "api/AccountStore.h"
#include "api/PendingWrite.h"
#include "api/RowListModel.h"
#include "fixtures/JsonApi.h"
#include "fixtures/TestClient.h"
#include "platform/Clock.h"
#include "reports/AnalyticsService.h"
#include "reports/AnalyticsSummary.h"
#include "reports/AnalyticsViewModel.h"
#include "reports/GzipDecoder.h"
#include "support/AwaitTask.h"
#include "support/FakeTransport.h"
#include "support/TestPlatform.h"
#include "wire/VelmoraAPIError.h"
#include "workspace/AppState.h"

#include <QAbstractItemModelTester>
#include <QCryptographicHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <ctime>

using namespace Qt::StringLiterals;

namespace {

using Answer = FakeTransport::Answer;
using JsonApi::page;
using JsonApi::resource;

// Now: 24 November 2026, 10:00 UTC.
const QDateTime now(QDate(2026, 11, 24), QTime(10, 0), Qt::UTC);

QByteArray segmentJson(const QString& url, const QByteArray& body) {
    const QJsonObject attributes{
        {u"url"_s, url},
        {u"sizeInBytes"_s, body.size()},
        {u"checksum"_s,
         QString::fromLatin1(QCryptographicHash::hash(body, QCryptographicHash::Md5).toHex())}};
    return page(QJsonArray{resource(u"analyticsReportSegments"_s, u"seg1"_s, attributes)});
}

const QByteArray reportText = "Date\tApp Name\tCounts\n2026-11-20\tSpiel\t3\n2026-11-21\tSpiel\t4\n"_ba;

// An application state with one account (or demo mode) and the screen's model on it.
struct Screen : TestPlatform {
    std::unique_ptr<AppState> state;
    std::unique_ptr<AnalyticsViewModel> model;
    std::vector<std::unique_ptr<QAbstractItemModelTester>> testers;

    explicit Screen(bool demo) {
        clock->setNow(now);
        state = std::make_unique<AppState>(platform(), AppState::Options{settings});
        if (demo) {
            state->setDemoModeEnabled(true);
        } else {
            const auto account = VarnisTest::awaitTask(
                state->accountStore().addAccount(u"Studio"_s, u"57246542-96fe-1a63-e053-0824d011072a"_s,
                                                 u"ABCDE12345"_s, makeTestKey().privateKeyPEM));
            state->accountStore().setSelectedAccountID(account.id);
        }
        ManagedApp app;
        app.id = u"app1"_s;
        app.name = u"Kladde"_s;
        model = std::make_unique<AnalyticsViewModel>(*state, app);
        for (QAbstractItemModel* list : std::initializer_list<QAbstractItemModel*>{
                 model->requests(), model->reports(), model->instances(), model->segments(),
                 model->tableRows(), model->numericColumns()}) {
            testers.push_back(std::make_unique<QAbstractItemModelTester>(
                list, QAbstractItemModelTester::FailureReportingMode::QtTest));
        }
    }

    void scriptChain(const QByteArray& segmentBody) {
        const auto list = [](const QString& type, const QString& id, const QJsonObject& attributes) {
            return Answer::json(200, page(QJsonArray{resource(type, id, attributes)}));
        };
        transport->script("GET", u"/v1/apps/app1/analyticsReportRequests"_s,
                          {list(u"analyticsReportRequests"_s, u"r1"_s, {{u"accessType"_s, u"ONGOING"_s}})});
        transport->script("GET", u"/v1/analyticsReportRequests/r1/reports"_s,
                          {list(u"analyticsReports"_s, u"rep1"_s, {{u"name"_s, u"App Sessions"_s}})});
        transport->script(
            "GET", u"/v1/analyticsReports/rep1/instances"_s,
            {list(u"analyticsReportInstances"_s, u"inst1"_s, {{u"granularity"_s, u"DAILY"_s}})});
        transport->script(
            "GET", u"/v1/analyticsReportInstances/inst1/segments"_s,
            {Answer::json(200, segmentJson(u"https://storage.example.test/seg/1"_s, segmentBody))});
        transport->script("GET", u"/seg/1"_s, {Answer::json(200, segmentBody)});
    }

    void walkToTable() {
        VarnisTest::awaitTask(model->loadRequests(false));
        VarnisTest::awaitTask(model->selectRequest(u"r1"_s));
        VarnisTest::awaitTask(model->selectReport(u"rep1"_s));
        VarnisTest::awaitTask(model->selectInstance(u"inst1"_s));
        VarnisTest::awaitTask(model->loadTable(u"seg1"_s));
    }
};

} // namespace

class AnalyticsTest : public QObject {
    Q_OBJECT
    std::shared_ptr<ManualClock> m_clock;
    std::shared_ptr<FakeTransport> m_transport;
    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<AnalyticsService> m_service;
    TestKey m_key = makeTestKey();

    std::shared_ptr<AppStoreConnectClient> client() {
        return AppStoreConnectClient::create(clientParts(m_clock, m_transport, m_key.privateKeyPEM));
    }

    ManagedAnalyticsReportSegment segment(const QString& url, const QByteArray& body) {
        ManagedAnalyticsReportSegment s{u"seg1"_s, body.size(), QUrl(url), {}};
        s.checksum = QString::fromLatin1(QCryptographicHash::hash(body, QCryptographicHash::Md5).toHex());
        return s;
    }

    std::optional<QString> failureOfTable(const ManagedAnalyticsReportSegment& s) {
        try {
            VarnisTest::awaitTask(m_service->table(s, u"inst1"_s, client()));
        } catch (const VarnisError& error) {
            return error.errorDescription();
        }
        return std::nullopt;
    }

private Q_SLOTS:
    void init() {
        m_clock = std::make_shared<ManualClock>(now);
        m_transport = std::make_shared<FakeTransport>();
        m_dir = std::make_unique<QTemporaryDir>();
        m_service = std::make_unique<AnalyticsService>(m_clock, m_dir->path());
    }

    void summary_data() {
        QTest::addColumn<QByteArray>("rows");
        QTest::addColumn<int>("days");
        QTest::addColumn<QList<AnalyticsSummary::Point>>("points");
        QTest::addColumn<double>("previous"); // -1: no history
        QTest::addColumn<int>("outside");

        QTest::newRow("month first with slashes lands on its day")
            << "11/20/2026\t1,200.5\n2026/11/21\t2\n"_ba << 7
            << QList<AnalyticsSummary::Point>{{QDate(2026, 11, 20), 1200.5}, {QDate(2026, 11, 21), 2}} << -1.0
            << 0;
        QTest::newRow("only the earlier window: no points, a previous total")
            << "2026-11-12\t5\n2026-11-13\t6\n"_ba << 7 << QList<AnalyticsSummary::Point>{} << 11.0 << 0;
        // 24 Nov 10:00 minus 7 days is 17 Nov 10:00: the 17th at midnight is before it.
        QTest::newRow("seven days back is before the window when now is past midnight")
            << "2026-11-17\t1\n2026-11-18\t2\n"_ba << 7
            << QList<AnalyticsSummary::Point>{{QDate(2026, 11, 18), 2}} << 1.0 << 0;
        QTest::newRow("a non-numeric or blank cell skips its row only")
            << "2026-11-20\tn/a\n2026-11-20\t\n2026-11-20\t4\nkein Datum\t9\n"_ba << 7
            << QList<AnalyticsSummary::Point>{{QDate(2026, 11, 20), 4}} << -1.0 << 0;
        QTest::newRow("same day summed, old rows counted outside")
            << "2026-11-23\t1.5\n2026-11-23\t2.5\n2025-01-01\t7\n"_ba << 30
            << QList<AnalyticsSummary::Point>{{QDate(2026, 11, 23), 4}} << -1.0 << 1;
    }

    void summary() {
        QFETCH(QByteArray, rows);
        QFETCH(int, days);
        QFETCH(QList<AnalyticsSummary::Point>, points);
        QFETCH(double, previous);
        QFETCH(int, outside);
        const AnalyticsTable table = AnalyticsTable::parseTSV("Begin Date\tUnits\n"_ba + rows);
        // Days are UTC days whatever the machine's zone.
        for (const char* zone : {"Pacific/Auckland", "America/Los_Angeles"}) {
            qputenv("TZ", zone);
            tzset();
            const auto summary = AnalyticsSummary::make(table, 1, days, now);
            QVERIFY(summary);
            QCOMPARE(summary->points, points);
            QCOMPARE(summary->previousTotal.value_or(-1), previous);
            QCOMPARE(summary->rowsOutsideWindow, outside);
        }
        qunsetenv("TZ");
        tzset();
    }

    void noSummaryWithoutDateOrColumn() {
        QVERIFY(!AnalyticsSummary::make(AnalyticsTable::parseTSV("Name\tUnits\nx\t1\n"_ba), 1, 7, now));
        QVERIFY(
            !AnalyticsSummary::make(AnalyticsTable::parseTSV("Date\tUnits\n2026-11-20\t1\n"_ba), 2, 7, now));
    }

    void segmentBecomesATableOnce() {
        m_transport->script("GET", u"/seg/1.gz"_s, {Answer::json(200, reportText)});
        const auto s = segment(u"https://storage.example.test/seg/1.gz"_s, reportText);
        for (int i = 0; i < 2; ++i) {
            const AnalyticsTable table = VarnisTest::awaitTask(m_service->table(s, u"inst1"_s, client()));
            QCOMPARE(table.rowCount(), 2);
        }
        const auto downloads = m_transport->requestsTo("GET", u"/seg/1.gz"_s);
        QCOMPARE(downloads.size(), 1);
        for (const auto& [name, value] : downloads.first().headers) {
            QVERIFY2(name.toLower() != "authorization", "a signed address gets no token");
        }
        QCOMPARE(QDir(m_dir->path()).entryList(QDir::Files), QStringList());
    }

    void segmentFailures_data() {
        QTest::addColumn<QString>("url");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QByteArray>("checksummed");
        QTest::addColumn<QString>("message");
        QTest::newRow("no address") << QString() << reportText << reportText
                                    << u"Apple hat für dieses Segment keine Download-Adresse geliefert."_s;
        QTest::newRow("checksum does not match")
            << u"https://storage.example.test/seg/1.gz"_s << reportText << "other"_ba
            << u"Die Datei von Apple konnte nicht entpackt werden."_s;
        QTest::newRow("not UTF-8") << u"https://storage.example.test/seg/1.gz"_s << "Date\n\xFF\xFE\n"_ba
                                   << "Date\n\xFF\xFE\n"_ba
                                   << u"Die Datei von Apple konnte nicht entpackt werden."_s;
    }

    void segmentFailures() {
        QFETCH(QString, url);
        QFETCH(QByteArray, body);
        QFETCH(QByteArray, checksummed);
        QFETCH(QString, message);
        m_transport->script("GET", u"/seg/1.gz"_s, {Answer::json(200, body)});
        auto s = segment(url, checksummed);
        if (url.isEmpty()) {
            s.downloadURL.reset();
        }
        QCOMPARE(failureOfTable(s), std::optional<QString>(message));
        QCOMPARE(QDir(m_dir->path()).entryList(QDir::Files), QStringList());
    }

    // The signed address has expired: the instance's segments bring a fresh one.
    void expiredAddressIsAskedForAgain() {
        m_transport->script("GET", u"/seg/old.gz"_s,
                            {Answer::json(403, JsonApi::error(u"403"_s, u"expired"_s))});
        m_transport->script(
            "GET", u"/v1/analyticsReportInstances/inst1/segments"_s,
            {Answer::json(200, segmentJson(u"https://storage.example.test/seg/new.gz"_s, reportText))});
        m_transport->script("GET", u"/seg/new.gz"_s, {Answer::json(200, reportText)});
        const auto table = VarnisTest::awaitTask(m_service->table(
            segment(u"https://storage.example.test/seg/old.gz"_s, reportText), u"inst1"_s, client()));
        QCOMPARE(table.rowCount(), 2);
        QCOMPARE(m_transport->requestsTo("GET", u"/seg/new.gz"_s).size(), 1);
    }

    // What the screen says about a segment's table, from the reason it cannot sum to the change.
    void screenSummary_data() {
        QTest::addColumn<QByteArray>("segment");
        QTest::addColumn<QString>("reason");
        QTest::addColumn<QString>("headline");
        QTest::addColumn<QString>("change");
        QTest::newRow("no rows") << "Date\tCounts\n"_ba << u"Dieses Segment enthält keine Datenzeilen."_s
                                 << QString() << QString();
        QTest::newRow("no date column") << "App\tCounts\nx\t1\n"_ba
                                        << u"Dieser Report enthält keine Datumsspalte. Eine Auswertung über "
                                           u"Zeiträume ist damit nicht möglich; "
                                           u"die Rohdaten stehen unten."_s
                                        << QString() << QString();
        QTest::newRow("no numeric column")
            << "Date\tApp\n2026-11-20\tx\n"_ba
            << u"Dieser Report enthält keine numerische Spalte, die sich über die Zeit auswerten ließe."_s
            << QString() << QString();
        QTest::newRow("only older rows")
            << "Date\tCounts\n2026-01-20\t1\n"_ba
            << u"Im gewählten Zeitraum enthält der Report keine Zeilen. Wähle einen längeren Zeitraum."_s
            << u"Summe Counts · 30 Tage"_s << u"Nicht genug Historie"_s;
        QTest::newRow("both windows") << "Date\tCounts\n2026-11-20\t15\n2026-10-20\t10\n"_ba << QString()
                                      << u"Summe Counts · 30 Tage"_s << u"+50.0 %"_s;
    }

    void screenSummary() {
        QFETCH(QByteArray, segment);
        QFETCH(QString, reason);
        QFETCH(QString, headline);
        QFETCH(QString, change);
        Screen screen(false);
        screen.scriptChain(segment);
        screen.walkToTable();
        QCOMPARE(screen.model->tableError(), QString());
        QCOMPARE(screen.model->loadedSegmentID(), u"seg1"_s);
        QCOMPARE(screen.model->summaryUnavailableReason(), reason);
        QCOMPARE(screen.model->summaryHeadline(), headline);
        QCOMPARE(screen.model->changeText(), change);
    }

    // Choosing another report empties what hung below the first, and a late answer for the
    // report the user left does not land.
    void choosingAgainClearsBelow() {
        Screen screen(false);
        screen.scriptChain(reportText);
        screen.walkToTable();
        QCOMPARE(screen.model->tableRows()->count(), 2);
        screen.transport->holdReplies(true);
        auto late = screen.model->selectReport(u"rep1"_s);
        QCOMPARE(screen.model->instances()->count(), 0);
        QCOMPARE(screen.model->segments()->count(), 0);
        QVERIFY(!screen.model->table());
        screen.transport->holdReplies(false);
        VarnisTest::awaitTask(screen.model->selectRequest(u"r1"_s));
        screen.transport->releaseHeld();
        VarnisTest::awaitTask(std::move(late));
        QCOMPARE(screen.model->instances()->count(), 0);
        QCOMPARE(screen.model->selectedReport(), QString());
        QCOMPARE(screen.model->reports()->count(), 1);
    }

    // Demo segments have no address: a sample file stands in, says so, and fills every period;
    // nothing goes to Apple, and asking for a snapshot says it was only shown.
    void demoShowsASampleAndSendsNothing() {
        Screen screen(true);
        VarnisTest::awaitTask(screen.model->loadRequests(false));
        const QString request = screen.model->requests()->value(0, 0).toString();
        VarnisTest::awaitTask(screen.model->selectRequest(request));
        VarnisTest::awaitTask(screen.model->selectReport(screen.model->reports()->value(0, 0).toString()));
        VarnisTest::awaitTask(
            screen.model->selectInstance(screen.model->instances()->value(0, 0).toString()));
        QCOMPARE(screen.model->segments()->count(), 1);
        const QString segment = screen.model->segments()->value(0, 0).toString();
        VarnisTest::awaitTask(screen.model->loadTable(segment));
        QCOMPARE(screen.model->tableError(), QString());
        QCOMPARE(screen.model->loadedSegmentID(), segment);
        QVERIFY(screen.model->sampleNote().startsWith(
            u"Im Demo-Modus stehen keine echten Download-Links zur Verfügung."_s));
        QCOMPARE(screen.model->tableRows()->count(), AnalyticsViewModel::maxTableRows);
        QVERIFY(!screen.model->tableNote().isEmpty());
        for (int period = 0; period < 4; ++period) {
            screen.model->setPeriod(period);
            QCOMPARE(screen.model->summaryUnavailableReason(), QString());
            QCOMPARE(screen.model->chartPoints().size(), AnalyticsViewModel::periodDays[period]);
            QVERIFY(screen.model->changeText().endsWith(u" %"_s) || period == 3);
        }
        VarnisTest::awaitTask(screen.model->createSnapshotRequest());
        QCOMPARE(screen.model->requestsError(), WriteGate::demoMessage());
        QCOMPARE(screen.transport->requestCount(), 0);
        // Another instance takes the sample away with the table.
        VarnisTest::awaitTask(
            screen.model->selectInstance(screen.model->instances()->value(1, 0).toString()));
        QCOMPARE(screen.model->sampleNote(), QString());
    }

    // The lists mark what was chosen, so the screen needs no comparison of its own: the chain's
    // links, the segment asked for, and the column the summary sums (the window test moves it).
    void choicesAreMarked() {
        Screen screen(false);
        screen.scriptChain("Date\tApp\tUnits\tRevenue\n2026-11-20\tx\t1\t2\n"_ba);
        screen.walkToTable();
        for (RowListModel* list : {screen.model->requests(), screen.model->reports(),
                                   screen.model->instances(), screen.model->segments()}) {
            QCOMPARE(list->value(0, 3), QVariant(true));
        }
        QCOMPARE(screen.model->numericColumns()->count(), 2);
        QCOMPARE(screen.model->effectiveColumnIndex(), 2);
        QCOMPARE(screen.model->numericColumns()->value(0, 2), QVariant(true));
        // Choosing the request again leaves it marked and everything below unmarked and empty.
        VarnisTest::awaitTask(screen.model->selectRequest(u"r1"_s));
        QCOMPARE(screen.model->requests()->value(0, 3), QVariant(true));
        QCOMPARE(screen.model->effectiveColumnIndex(), -1);
        QCOMPARE(screen.model->numericColumns()->count(), 0);
    }

    void chartPointsAreDaysNotMoments() {
        Screen screen(false);
        screen.scriptChain(reportText);
        screen.walkToTable();
        for (const char* zone : {"Pacific/Kiritimati", "Pacific/Pago_Pago"}) {
            qputenv("TZ", zone);
            tzset();
            const QVariantList points = screen.model->chartPoints();
            QCOMPARE(points.size(), 2);
            const QVariantMap first = points.first().toMap();
            QCOMPARE(first.value(u"day"_s).toLongLong(), QDate(2026, 11, 20).toJulianDay());
            QCOMPARE(first.value(u"value"_s).toDouble(), 3.0);
            QCOMPARE(first.value(u"dateText"_s).toString(), u"20.11.2026"_s);
        }
        qunsetenv("TZ");
        tzset();
    }

    void requestsHint_data() {
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<bool>("hinted");
        QTest::newRow("no request yet") << 200 << page(QJsonArray{}) << true;
        QTest::newRow("one request") << 200
                                     << page(QJsonArray{resource(u"analyticsReportRequests"_s, u"r1"_s,
                                                                 {{u"accessType"_s, u"ONGOING"_s}})})
                                     << false;
        QTest::newRow("a failure is no empty list")
            << 404 << JsonApi::error(u"404"_s, u"Die App fehlt."_s) << false;
    }

    void requestsHint() {
        QFETCH(int, status);
        QFETCH(QByteArray, body);
        QFETCH(bool, hinted);
        Screen screen(false);
        QCOMPARE(screen.model->requestsHint(), QString());
        screen.transport->script("GET", u"/v1/apps/app1/analyticsReportRequests"_s,
                                 {Answer::json(status, body)});
        QSignalSpy changed(screen.model.get(), &AnalyticsViewModel::requestsHintChanged);
        VarnisTest::awaitTask(screen.model->loadRequests(true));
        QCOMPARE(!screen.model->requestsHint().isEmpty(), hinted);
        QVERIFY(!changed.isEmpty());
    }

    void requestsKeptAMinute() {
        const QByteArray list = page(QJsonArray{
            resource(u"analyticsReportRequests"_s, u"r1"_s,
                     QJsonObject{{u"accessType"_s, u"ONGOING"_s}, {u"stoppedDueToInactivity"_s, true}})});
        m_transport->script("GET", u"/v1/apps/app1/analyticsReportRequests"_s, {Answer::json(200, list)});
        m_transport->script(
            "POST", u"/v1/analyticsReportRequests"_s,
            {Answer::json(
                201, JsonApi::single(resource(u"analyticsReportRequests"_s, u"r2"_s,
                                              QJsonObject{{u"accessType"_s, u"ONE_TIME_SNAPSHOT"_s}})))});
        const auto first = VarnisTest::awaitTask(m_service->reportRequests(u"app1"_s, client(), false));
        QCOMPARE(first, (QList<ManagedAnalyticsReportRequest>{{u"r1"_s, u"Laufend"_s, true}}));
        m_clock->advance(59.999);
        VarnisTest::awaitTask(m_service->reportRequests(u"app1"_s, client(), false));
        QCOMPARE(m_transport->requestCount(), 1);
        m_clock->advance(0.001);
        VarnisTest::awaitTask(m_service->reportRequests(u"app1"_s, client(), false));
        QCOMPARE(m_transport->requestCount(), 2);
        const auto created =
            VarnisTest::awaitTask(m_service->createOneTimeSnapshotRequest(u"app1"_s, client()));
        QCOMPARE(created.accessType, u"Einmalige Momentaufnahme"_s);
        VarnisTest::awaitTask(m_service->reportRequests(u"app1"_s, client(), false));
        QCOMPARE(m_transport->requestCount(), 4);
    }
};

QTEST_GUILESS_MAIN(AnalyticsTest)
#include "tst_analytics.moc"
