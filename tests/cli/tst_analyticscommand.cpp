#include "cli/CommandLine.h"
#include "support/AwaitTask.h"
#include "support/RunCommandLine.h"
#include "support/TestAccount.h"
#include "support/TestPlatform.h"
#include "workspace/AppState.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>
#include <QTextStream>

using namespace Qt::StringLiterals;

namespace {

using Answer = FakeTransport::Answer;

// The signed address of the one segment; it must never reach the output.
const QString signedAddress = u"https://storage.example.test/seg/1.gz?X-Amz-Signature=geheim"_s;

// The command line in process, with Apple's side of two apps: "Nordlicht" (id 7) with one
// stopped request, two reports (the second without instances) and one segment, "Polar" (id 8)
// without any request.
struct InProcess {
    TestPlatform test;
    AppState state{test.platform(), AppState::Options{test.settings}};
    QString out;
    QString err;

    InProcess() {
        useTestAccount(state.accountStore());
        FakeTransport& apple = *test.transport;
        apple.script("GET", u"/v1/apps"_s, {Answer::json(200, R"({"data":[
            {"type":"apps","id":"7","attributes":{"name":"Nordlicht"}},
            {"type":"apps","id":"8","attributes":{"name":"Polar"}}]})"_ba)});
        apple.script("GET", u"/v1/apps/7/analyticsReportRequests"_s, {Answer::json(200, R"({"data":[
            {"type":"analyticsReportRequests","id":"r1",
             "attributes":{"accessType":"ONGOING","stoppedDueToInactivity":true}}]})"_ba)});
        apple.script("GET", u"/v1/apps/8/analyticsReportRequests"_s,
                     {Answer::json(200, R"({"data":[]})"_ba)});
        apple.script("GET", u"/v1/analyticsReportRequests/r1/reports"_s, {Answer::json(200, R"({"data":[
            {"type":"analyticsReports","id":"rep1",
             "attributes":{"name":"App Sessions Standard","category":"APP_USAGE"}},
            {"type":"analyticsReports","id":"rep2","attributes":{"name":"App Store Purchases Standard"}}]})"_ba)});
        apple.script("GET", u"/v1/analyticsReports/rep1/instances"_s, {Answer::json(200, R"({"data":[
            {"type":"analyticsReportInstances","id":"inst1",
             "attributes":{"granularity":"DAILY","processingDate":"2026-11-23"}}]})"_ba)});
        apple.script("GET", u"/v1/analyticsReports/rep2/instances"_s,
                     {Answer::json(200, R"({"data":[]})"_ba)});
        const QJsonObject segment{
            {u"type"_s, u"analyticsReportSegments"_s},
            {u"id"_s, u"seg1"_s},
            {u"attributes"_s, QJsonObject{{u"url"_s, signedAddress},
                                          {u"sizeInBytes"_s, 48213},
                                          {u"checksum"_s, u"9e107d9d372bb6826bd81d3542a419d6"_s}}}};
        apple.script(
            "GET", u"/v1/analyticsReportInstances/inst1/segments"_s,
            {Answer::json(200, QJsonDocument(QJsonObject{{u"data"_s, QJsonArray{segment}}}).toJson())});
    }

    int run(const QStringList& arguments) { return runCommandLine(state, arguments, out, err); }
};

} // namespace

class AnalyticsCommandTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void segments_data() {
        QTest::addColumn<QStringList>("arguments");
        // A route answered with Apple's 404 instead of its list.
        QTest::addColumn<QString>("failing");
        QTest::addColumn<int>("status");
        QTest::addColumn<QStringList>("printed");
        QTest::addColumn<QStringList>("notPrinted");
        const QStringList command{u"analytics"_s, u"segments"_s};
        QTest::newRow("the whole chain")
            << command + QStringList{u"Nordlicht"_s} << QString() << 0
            << QStringList{u"Analytics-Reports von Nordlicht\n"_s,
                           u"Anfrage r1 · Laufend · von Apple angehalten: lange nicht abgerufen\n"_s,
                           u"\n  Report rep1 · App Sessions Standard · APP_USAGE\n"_s,
                           u"\n    Zeitraum inst1 · Täglich · 2026-11-23\n"_s,
                           u"\n      Segment seg1 · 48.213 Bytes · MD5 9e107d9d372bb6826bd81d3542a419d6\n"_s,
                           u"\n  Report rep2 · App Store Purchases Standard\n    (noch keine Zeiträume)\n"_s,
                           u"Download-Adressen werden nicht angezeigt"_s}
            << QStringList{u"storage.example.test"_s, u"geheim"_s};
        QTest::newRow("one report by a part of its name")
            << command + QStringList{u"7"_s, u"--report"_s, u"purchases"_s} << QString() << 0
            << QStringList{u"Report rep2"_s} << QStringList{u"Report rep1"_s, u"Segment"_s};
        QTest::newRow("a report name that matches none")
            << command + QStringList{u"7"_s, u"--report"_s, u"Crashes"_s} << QString() << 0
            << QStringList{u"  (kein passender Report)\n"_s} << QStringList{u"Report rep"_s};
        QTest::newRow("no request yet") << command + QStringList{u"Polar"_s} << QString() << 0
                                        << QStringList{u"Für diese App gibt es noch keine Report-Anfrage."_s}
                                        << QStringList{u"Anfrage "_s};
        QTest::newRow("a link that fails fails the command")
            << command + QStringList{u"Nordlicht"_s} << u"/v1/analyticsReports/rep1/instances"_s << 1
            << QStringList{u"Die Analytics-Reports konnten nicht geladen werden: "_s}
            << QStringList{u"Analytics-Reports von"_s};
        QTest::newRow("no app") << command << QString() << 2
                                << QStringList{u"Es fehlt die App"_s, u"Aufruf: varnis analytics segments"_s}
                                << QStringList{};
        QTest::newRow("two apps") << command + QStringList{u"Nordlicht"_s, u"Polar"_s} << QString() << 2
                                  << QStringList{u"„analytics segments“ nimmt genau eine App."_s}
                                  << QStringList{};
    }

    void segments() {
        QFETCH(QStringList, arguments);
        QFETCH(QString, failing);
        QFETCH(int, status);
        QFETCH(QStringList, printed);
        QFETCH(QStringList, notPrinted);
        InProcess cli;
        if (!failing.isEmpty()) {
            cli.test.transport->script("GET", failing,
                                       {Answer::json(404, R"({"errors":[{"status":"404","code":"NOT_FOUND",
                                            "title":"Nicht gefunden","detail":"Den Report gibt es nicht."}]})"_ba)});
        }
        QCOMPARE(cli.run(arguments), status);
        const QString shown = cli.out + cli.err;
        for (const QString& text : printed) {
            QVERIFY2(shown.contains(text), qPrintable(shown));
        }
        for (const QString& text : notPrinted) {
            QVERIFY2(!shown.contains(text), qPrintable(shown));
        }
        VARNIS_VERIFY_CONTRACT(*cli.test.transport);
    }

    // A filtered report is never asked for its instances: the filter saves Apple's quota.
    void filterAsksOnlyForTheChosenReport() {
        InProcess cli;
        QCOMPARE(cli.run({u"analytics"_s, u"segments"_s, u"Nordlicht"_s, u"--report"_s, u"rep2"_s}), 0);
        QCOMPARE(cli.test.transport->requestsTo("GET", u"/v1/analyticsReports/rep1/instances"_s).size(), 0);
        QCOMPARE(cli.test.transport->requestsTo("GET", u"/v1/analyticsReports/rep2/instances"_s).size(), 1);
    }

    void json() {
        InProcess cli;
        QCOMPARE(cli.run({u"analytics"_s, u"segments"_s, u"Nordlicht"_s, u"--json"_s}), 0);
        QVERIFY2(!cli.out.contains(u"storage.example.test"_s), qPrintable(cli.out));
        const QJsonObject root = QJsonDocument::fromJson(cli.out.toUtf8()).object();
        QCOMPARE(root.keys(), (QStringList{u"app"_s, u"requests"_s}));
        QCOMPARE(root[u"app"_s].toObject(), (QJsonObject{{u"id"_s, u"7"_s}, {u"name"_s, u"Nordlicht"_s}}));
        const QJsonObject request = root[u"requests"_s].toArray().first().toObject();
        QCOMPARE(request.keys(), (QStringList{u"accessType"_s, u"id"_s, u"isStopped"_s, u"reports"_s}));
        QCOMPARE(request[u"isStopped"_s].toBool(), true);
        const QJsonArray reports = request[u"reports"_s].toArray();
        QCOMPARE(reports.size(), 2);
        QCOMPARE(reports[1].toObject()[u"category"_s], QJsonValue(QJsonValue::Null));
        QCOMPARE(reports[1].toObject()[u"instances"_s].toArray(), QJsonArray());
        const QJsonObject instance = reports[0].toObject()[u"instances"_s].toArray().first().toObject();
        QCOMPARE(instance.keys(),
                 (QStringList{u"granularity"_s, u"id"_s, u"processingDate"_s, u"segments"_s}));
        QCOMPARE(instance[u"segments"_s].toArray().first().toObject(),
                 (QJsonObject{{u"id"_s, u"seg1"_s},
                              {u"sizeInBytes"_s, 48213},
                              {u"checksum"_s, u"9e107d9d372bb6826bd81d3542a419d6"_s},
                              {u"hasDownloadURL"_s, true}}));
    }
};

QTEST_GUILESS_MAIN(AnalyticsCommandTest)
#include "tst_analyticscommand.moc"
