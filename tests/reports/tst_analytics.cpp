#include "fixtures/JsonApi.h"
#include "fixtures/TestClient.h"
#include "platform/Clock.h"
#include "reports/AnalyticsService.h"
#include "reports/AnalyticsSummary.h"
#include "reports/GzipDecoder.h"
#include "support/AwaitTask.h"
#include "support/FakeTransport.h"
#include "wire/VelmoraAPIError.h"

#include <QCryptographicHash>
#include <QJsonArray>
#include <QJsonDocument>
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
