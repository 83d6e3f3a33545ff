#include "api/RowListModel.h"
#include "cli/CommandLine.h"
#include "fixtures/JsonApi.h"
#include "reports/PerformanceService.h"
#include "reports/PerformanceViewModel.h"
#include "support/AwaitTask.h"
#include "support/FakeTransport.h"
#include "support/RunCommandLine.h"
#include "support/TestAccount.h"
#include "support/TestPlatform.h"
#include "wire/VelmoraAPIError.h"
#include "workspace/AppState.h"

#include <QAbstractItemModelTester>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QTest>
#include <QTextStream>
#include <QUrlQuery>

using namespace Qt::StringLiterals;

namespace {

using Answer = FakeTransport::Answer;

const QString metricsPath = u"/v1/apps/app1/perfPowerMetrics"_s;
const QString buildsPath = u"/v1/apps/app1/builds"_s;

// Apple's metrics document as it comes for one app: launch time on two devices and both
// percentiles, hang rate on one, with and without an error margin.
const QByteArray metricsSample = R"({
  "version": "1.0.0",
  "insights": {"regressions": [{"metric": "launchTime", "metricCategory": "LAUNCH", "latestVersion": "2.1"}]},
  "productData": [{
    "platform": "IOS",
    "metricCategories": [
      {"identifier": "LAUNCH", "metrics": [{
        "identifier": "launchTime",
        "goalKeys": [{"goalKey": "launchTime.good", "lowerBound": 0, "upperBound": 400}],
        "unit": {"identifier": "ms", "displayName": "Millisekunden"},
        "datasets": [
          {"filterCriteria": {"percentile": "percentile.fifty", "device": "iPhone15_2",
                              "deviceMarketingName": "iPhone 14 Pro"},
           "points": [{"version": "2.0", "value": 410.5, "errorMargin": 12},
                      {"version": "2.1", "value": 380, "errorMargin": 9.5, "goal": "launchTime.good"}]},
          {"filterCriteria": {"percentile": "percentile.ninety", "device": "all_iphones"},
           "points": [{"version": "2.1", "value": 1210}]}
        ]}]},
      {"identifier": "HANG", "metrics": [{
        "identifier": "hangRate",
        "unit": {"identifier": "s/hr"},
        "datasets": [{"filterCriteria": {"percentile": "percentile.fifty", "device": "all_ipads"},
                      "points": [{"version": "2.1", "value": 0.25, "errorMargin": 0.01,
                                  "percentageBreakdown": {"value": 40, "subSystemLabel": "UI"}}]}]
      }]}
    ]
  }]
})"_ba;

// One line per metric: "category/identifier unit|percentile|device|version = value ± margin".
QStringList described(const QList<ManagedPerformanceMetric>& metrics) {
    QStringList lines;
    for (const auto& m : metrics) {
        QString line = m.category + u'/' + m.identifier + u' ' +
                       QStringList{m.unit.value_or(u"-"_s), m.percentile.value_or(u"-"_s),
                                   m.device.value_or(u"-"_s), m.version.value_or(u"-"_s)}
                           .join(u'|') +
                       u" = "_s + QString::number(m.value);
        if (m.errorMargin) {
            line += u" ± "_s + QString::number(*m.errorMargin);
        }
        lines.append(line);
    }
    return lines;
}

QJsonObject signature(const QString& id, const QString& text, double weight,
                      const QJsonObject& insight = {}) {
    QJsonObject attributes{{u"diagnosticType"_s, u"HANGS"_s}, {u"signature"_s, text}, {u"weight"_s, weight}};
    if (!insight.isEmpty()) {
        attributes.insert(u"insight"_s, insight);
    }
    return JsonApi::resource(u"diagnosticSignatures"_s, id, attributes);
}

QByteArray buildsPage() {
    const auto build = [](const QString& id, const QString& version, const QString& uploaded) {
        return JsonApi::resource(u"builds"_s, id, {{u"version"_s, version}, {u"uploadedDate"_s, uploaded}});
    };
    return JsonApi::page(QJsonArray{build(u"b-new"_s, u"142"_s, u"2026-03-20T10:00:00Z"_s),
                                    build(u"b-old"_s, u"141"_s, u"2026-03-01T10:00:00Z"_s)});
}

const QString notADocument = u"<not a document>"_s;

Answer metricsAnswer(const QByteArray& body) {
    return Answer::json(200, body, {{"Content-Type", "application/vnd.apple.xcode-metrics+json"}});
}

QString queryValue(const HttpRequest& request, const QString& name) {
    return QUrlQuery(request.url).queryItemValue(name, QUrl::FullyDecoded);
}

// The application on fakes with one account (or in demo mode), the screen's model and the
// command line in process.
struct Fixture {
    TestPlatform test;
    AppState state{test.platform(), AppState::Options{test.settings}};
    std::unique_ptr<PerformanceViewModel> model;
    std::vector<std::unique_ptr<QAbstractItemModelTester>> testers;
    QString out;
    QString err;

    explicit Fixture(bool demo = false) {
        test.clock->setNow(QDateTime(QDate(2026, 3, 31), QTime(10, 0), QTimeZone::utc()));
        if (demo) {
            state.setDemoModeEnabled(true);
        } else {
            useTestAccount(state.accountStore());
        }
        ManagedApp app;
        app.id = u"app1"_s;
        app.name = u"Kladde"_s;
        model = std::make_unique<PerformanceViewModel>(state, app);
        for (QAbstractItemModel* list : std::initializer_list<QAbstractItemModel*>{
                 model->metrics(), model->builds(), model->signatures()}) {
            testers.push_back(std::make_unique<QAbstractItemModelTester>(
                list, QAbstractItemModelTester::FailureReportingMode::QtTest));
        }
    }

    std::shared_ptr<AppStoreConnectClient> client() {
        return VarnisTest::awaitTask(
            state.accountStore().makeClient(*state.accountStore().selectedAccount()));
    }

    int run(const QStringList& arguments) { return runCommandLine(state, arguments, out, err); }

    // Builds, one signature of the newest, and its log.
    void scriptSignatures(const QByteArray& page) {
        test.transport->script("GET", buildsPath, {Answer::json(200, buildsPage())});
        test.transport->script("GET", u"/v1/builds/b-new/diagnosticSignatures"_s, {Answer::json(200, page)});
        test.transport->script(
            "GET", u"/v1/diagnosticSignatures/sig-1/logs"_s,
            {Answer::json(200, R"({"productData":[{"signatureId":"sig-1"}]})"_ba,
                          {{"Content-Type", "application/vnd.apple.diagnostic-logs+json"}})});
    }
};

} // namespace

class PerformanceTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void flattening_data() {
        QTest::addColumn<QByteArray>("document");
        QTest::addColumn<QStringList>("metrics");

        QTest::newRow("every level, several devices and percentiles")
            << metricsSample
            << QStringList{
                   u"LAUNCH/launchTime Millisekunden|percentile.fifty|iPhone 14 Pro|2.0 = 410.5 ± 12"_s,
                   u"LAUNCH/launchTime Millisekunden|percentile.fifty|iPhone 14 Pro|2.1 = 380 ± 9.5"_s,
                   u"LAUNCH/launchTime Millisekunden|percentile.ninety|all_iphones|2.1 = 1210"_s,
                   u"HANG/hangRate s/hr|percentile.fifty|all_ipads|2.1 = 0.25 ± 0.01"_s};
        QTest::newRow("no product data") << R"({"version":"1.0.0"})"_ba << QStringList{};
        QTest::newRow("product without categories")
            << R"({"productData":[{"platform":"IOS"}]})"_ba << QStringList{};
        QTest::newRow("category without metrics")
            << R"({"productData":[{"metricCategories":[{"identifier":"DISK"}]}]})"_ba << QStringList{};
        QTest::newRow("metric without datasets")
            << R"({"productData":[{"metricCategories":[{"identifier":"DISK","metrics":[{"identifier":"w"}]}]}]})"_ba
            << QStringList{};
        QTest::newRow("dataset without criteria or unit")
            << R"({"productData":[{"metricCategories":[{"identifier":"MEMORY","metrics":[{"identifier":"peak",
                 "datasets":[{"points":[{"value":200}]}]}]}]}]})"_ba
            << QStringList{u"MEMORY/peak -|-|-|- = 200"_s};
        QTest::newRow("a point without a value is left out, zero is kept")
            << R"({"productData":[{"metricCategories":[{"identifier":"DISK","metrics":[{"identifier":"w",
                 "unit":{"identifier":"MB"},"datasets":[{"filterCriteria":{"device":"iPad13_4"},
                 "points":[{"version":"1.0"},{"version":"1.1","value":0,"errorMargin":0}]}]}]}]}]})"_ba
            << QStringList{u"DISK/w MB|-|iPad13_4|1.1 = 0 ± 0"_s};
        QTest::newRow("wrong shapes count as absent")
            << R"({"productData":[{"metricCategories":"LAUNCH"},7,{"metricCategories":[{"identifier":"LAUNCH",
                 "metrics":[{"identifier":"t","datasets":[{"filterCriteria":[],"points":[{"value":"12"},{"value":3}]}]}]}]}]})"_ba
            << QStringList{u"LAUNCH/t -|-|-|- = 3"_s};
        QTest::newRow("empty body") << QByteArray() << QStringList{notADocument};
        QTest::newRow("an array") << "[]"_ba << QStringList{notADocument};
        QTest::newRow("a maintenance page") << "<html>Wartung</html>"_ba << QStringList{notADocument};
    }

    void flattening() {
        QFETCH(QByteArray, document);
        QFETCH(QStringList, metrics);
        if (metrics == QStringList{notADocument}) {
            QVERIFY_THROWS_EXCEPTION(DecodingError, ASCPerfPowerMetricsResponse::decode(document));
            return;
        }
        QCOMPARE(described(ASCPerfPowerMetricsResponse::decode(document).flattened()), metrics);
    }

    void screenOrder() {
        QList<ManagedPerformanceMetric> metrics =
            ASCPerfPowerMetricsResponse::decode(metricsSample).flattened();
        ManagedPerformanceMetric::sortForDisplay(metrics);
        QStringList order;
        for (const auto& m : metrics) {
            order.append(m.category + u'/' + m.version.value_or(QString()));
        }
        // Categories by name; within a metric Apple's order of versions stays.
        QCOMPARE(order, (QStringList{u"HANG/2.1"_s, u"LAUNCH/2.0"_s, u"LAUNCH/2.1"_s, u"LAUNCH/2.1"_s}));
    }

    void insightSummary_data() {
        QTest::addColumn<QByteArray>("attributes");
        QTest::addColumn<QString>("summary"); // empty: none

        QTest::newRow("no insight") << R"({"signature":"x"})"_ba << QString();
        QTest::newRow("only a type") << R"({"insight":{"insightType":"TREND"}})"_ba << QString();
        QTest::newRow("up, no versions") << R"({"insight":{"insightType":"TREND","direction":"UP"}})"_ba
                                         << u"Tritt häufiger auf als in früheren Versionen."_s;
        QTest::newRow("down against one version")
            << R"({"insight":{"direction":"DOWN","referenceVersions":[{"version":"2.0","value":0.5}]}})"_ba
            << u"Tritt seltener auf als in Version 2.0 (0,5)."_s;
        QTest::newRow("undefined against two")
            << R"({"insight":{"direction":"UNDEFINED","referenceVersions":[{"version":"2.0","value":0.5},
                 {"version":"2.1","value":0.25}]}})"_ba
            << u"Keine klare Veränderung gegenüber den Versionen 2.0 (0,5) und 2.1 (0,25)."_s;
        QTest::newRow("a value missing, a version missing, a direction unknown")
            << R"({"insight":{"direction":"SIDEWAYS","referenceVersions":[{"version":"1.9"},{"value":3},
                 {"version":" "},{"version":"2.0","value":1},{"version":"2.1","value":1200.5}]}})"_ba
            << u"Keine klare Veränderung gegenüber den Versionen 1.9, 2.0 (1) und 2.1 (1.200,5)."_s;
        QTest::newRow("versions without a direction")
            << R"({"insight":{"referenceVersions":[{"version":"3.0","value":0}]}})"_ba
            << u"Keine klare Veränderung gegenüber Version 3.0 (0)."_s;
    }

    void insightSummary() {
        QFETCH(QByteArray, attributes);
        QFETCH(QString, summary);
        const auto decoded = ASCDiagnosticSignatureAttributes::fromJson(
            JsonReader(QJsonDocument::fromJson(attributes).object()));
        const auto signature = ManagedDiagnosticSignature::fromResource(u"s"_s, decoded);
        QCOMPARE(signature.insightSummary.value_or(QString()), summary);
    }

    // Two loads of the metrics: what goes to Apple the first time, and whether the second is
    // answered from the cache (kept five minutes, one entry per device type, "all" for none).
    void metricsRequests_data() {
        QTest::addColumn<QString>("first"); // "<none>": no device type
        QTest::addColumn<QString>("second");
        QTest::addColumn<double>("after");
        QTest::addColumn<bool>("force");
        QTest::addColumn<QString>("filter"); // of the first request; "<none>": not sent
        QTest::addColumn<int>("requests");
        const QString none = u"<none>"_s;
        QTest::newRow("no device, fresh") << none << none << 0.0 << false << none << 1;
        QTest::newRow("a blank device is none") << u"  "_s << none << 0.0 << false << none << 1;
        QTest::newRow("one device type")
            << u"iPhone15_2"_s << u"iPhone15_2"_s << 0.0 << false << u"iPhone15_2"_s << 1;
        QTest::newRow("just inside five minutes") << none << none << 299.0 << false << none << 1;
        QTest::newRow("five minutes old") << none << none << 300.0 << false << none << 2;
        QTest::newRow("forced") << none << none << 1.0 << true << none << 2;
        // Without a device type the key says "all", so Apple's literal "all" finds the same entry.
        QTest::newRow("the word all shares the key") << none << u"all"_s << 0.0 << false << none << 1;
        QTest::newRow("another device type") << none << u"all_ipads"_s << 0.0 << false << none << 2;
    }

    void metricsRequests() {
        QFETCH(QString, first);
        QFETCH(QString, second);
        QFETCH(double, after);
        QFETCH(bool, force);
        QFETCH(QString, filter);
        QFETCH(int, requests);
        const auto device = [](const QString& d) {
            return d == u"<none>"_s ? std::nullopt : std::optional<QString>(d);
        };
        Fixture f;
        f.test.transport->script("GET", metricsPath, {metricsAnswer(metricsSample)});
        PerformanceService& service = f.state.performanceService();
        VarnisTest::awaitTask(service.metrics(u"app1"_s, device(first), f.client(), false));
        f.test.clock->advance(after);
        const auto metrics =
            VarnisTest::awaitTask(service.metrics(u"app1"_s, device(second), f.client(), force));
        QCOMPARE(metrics.size(), 4);
        const auto sent = f.test.transport->requestsTo("GET", metricsPath);
        QCOMPARE(sent.size(), requests);
        QCOMPARE(sent.first().accept, "application/vnd.apple.xcode-metrics+json"_ba);
        QCOMPARE(QUrlQuery(sent.first().url).hasQueryItem(u"filter[deviceType]"_s), filter != u"<none>"_s);
        if (filter != u"<none>"_s) {
            QCOMPARE(queryValue(sent.first(), u"filter[deviceType]"_s), filter);
        }
        VARNIS_VERIFY_CONTRACT(*f.test.transport);
    }

    // A build's signatures of one kind (a weight may be missing), and a signature's logs as text.
    void signaturesAndLogs() {
        Fixture f;
        const QString path = u"/v1/builds/b-1/diagnosticSignatures"_s;
        f.test.transport->script(
            "GET", path,
            {Answer::json(200, JsonApi::page({signature(u"sig-1"_s, u"main + 12"_s, 0.85),
                                              JsonApi::resource(u"diagnosticSignatures"_s, u"sig-2"_s)}))});
        f.scriptSignatures(JsonApi::page(QJsonArray{}));
        PerformanceService& service = f.state.performanceService();
        const auto list =
            VarnisTest::awaitTask(service.signatures(u"b-1"_s, ASCDiagnosticType::DiskWrites, f.client()));
        QCOMPARE(list.size(), 2);
        QCOMPARE(list[0].signature, u"main + 12"_s);
        QCOMPARE(list[0].weight, std::optional<double>(0.85));
        QCOMPARE(list[1].weight, std::nullopt);
        const auto requests = f.test.transport->requestsTo("GET", path);
        QCOMPARE(requests.size(), 1);
        QCOMPARE(queryValue(requests.first(), u"filter[diagnosticType]"_s), u"DISK_WRITES"_s);
        QCOMPARE(DiagnosticTypes::fromRaw(u"disk_writes"_s), std::optional(ASCDiagnosticType::DiskWrites));

        const QString text = VarnisTest::awaitTask(service.logs(u"sig-1"_s, f.client()));
        QCOMPARE(text, uR"({"productData":[{"signatureId":"sig-1"}]})"_s);
        const auto logs = f.test.transport->requestsTo("GET", u"/v1/diagnosticSignatures/sig-1/logs"_s);
        QCOMPARE(logs.size(), 1);
        QCOMPARE(logs.first().accept, "application/vnd.apple.diagnostic-logs+json"_ba);
        VARNIS_VERIFY_CONTRACT(*f.test.transport);
    }

    // An empty answer is not a good result: the screen says what it means instead of showing
    // nothing or a zero.
    void emptyAnswers_data() {
        QTest::addColumn<QByteArray>("metrics");
        QTest::addColumn<QByteArray>("signatures");
        QTest::addColumn<QString>("metricsText");
        QTest::addColumn<QString>("signaturesText");
        const QJsonArray one{signature(u"sig-1"_s, u"main + 12"_s, 0.5)};
        QTest::newRow("both empty") << R"({"productData":[]})"_ba << JsonApi::page(QJsonArray{})
                                    << PerformanceViewModel::emptyMetricsText()
                                    << PerformanceViewModel::emptySignaturesText();
        QTest::newRow("a document with categories but no points")
            << R"({"productData":[{"metricCategories":[{"identifier":"HANG","metrics":[]}]}]})"_ba
            << JsonApi::page(one) << PerformanceViewModel::emptyMetricsText() << QString();
        QTest::newRow("both filled") << metricsSample << JsonApi::page(one) << QString() << QString();
    }

    void emptyAnswers() {
        QFETCH(QByteArray, metrics);
        QFETCH(QByteArray, signatures);
        QFETCH(QString, metricsText);
        QFETCH(QString, signaturesText);
        Fixture f;
        f.test.transport->script("GET", metricsPath, {metricsAnswer(metrics)});
        f.scriptSignatures(signatures);
        PerformanceViewModel& model = *f.model;
        VarnisTest::awaitTask(model.loadMetrics(false));
        VarnisTest::awaitTask(model.loadBuilds(false));
        VarnisTest::awaitTask(model.loadSignatures());
        QCOMPARE(model.metricsEmptyText(), metricsText);
        QCOMPARE(model.signaturesEmptyText(), signaturesText);
        QCOMPARE(model.metrics()->count() == 0, !metricsText.isEmpty());
        QCOMPARE(model.signatures()->count() == 0, !signaturesText.isEmpty());
        QCOMPARE(model.errorMessage(), QString());
        // The newest build is chosen when none was.
        QCOMPARE(model.selectedBuildID(), u"b-new"_s);
        QCOMPARE(model.selectedBuildIndex(), 0);
        QCOMPARE(model.builds()->count(), 2);
        QVERIFY(!model.isLoading());
    }

    void demoWithoutAccount() {
        Fixture f(true);
        VarnisTest::awaitTask(f.model->loadMetrics(false));
        QCOMPARE(f.model->errorMessage(), u"Im Demo-Modus liegen keine Leistungskennzahlen vor."_s);
        VarnisTest::awaitTask(f.model->loadBuilds(false));
        VarnisTest::awaitTask(f.model->loadSignatures());
        QCOMPARE(f.model->errorMessage(), u"Im Demo-Modus liegen keine Leistungskennzahlen vor.\n"
                                          u"Im Demo-Modus liegen keine Absturzdiagnosen vor."_s);
        // The sample builds are there to choose from; nothing went to the network.
        QCOMPARE(f.model->builds()->count(), 3);
        QCOMPARE(f.model->metricsEmptyText(), QString());
        QCOMPARE(f.test.transport->requestCount(), 0);
    }

    // The user picks another device type while the first answer is on its way: the late answer
    // of the old choice never lands.
    void aSupersededLoadIsDropped() {
        Fixture f;
        f.test.transport->route("GET", metricsPath, [](const HttpRequest& request) {
            return metricsAnswer(QUrlQuery(request.url).hasQueryItem(u"filter[deviceType]"_s)
                                     ? R"({"productData":[]})"_ba
                                     : metricsSample);
        });
        f.test.transport->holdReplies(true);
        auto first = f.model->loadMetrics(false);
        QTRY_COMPARE(f.test.transport->heldCount(), 1);
        f.model->setDeviceTypeIndex(1);
        QTRY_COMPARE(f.test.transport->heldCount(), 2);
        f.test.transport->holdReplies(false);
        f.test.transport->releaseHeld();
        VarnisTest::awaitTask(std::move(first));
        QTRY_VERIFY(!f.model->isLoading());
        QCOMPARE(f.model->metrics()->count(), 0);
        QCOMPARE(f.model->metricsEmptyText(), PerformanceViewModel::emptyMetricsText());
    }

    // The signatures of one build fail while the user has moved on (another build, or the screen
    // closed): the late failure neither empties what is shown now nor touches a model that is gone.
    void aLateFailureOfSignaturesIsDropped_data() {
        QTest::addColumn<bool>("closeScreen");
        QTest::newRow("another build chosen meanwhile") << false;
        QTest::newRow("the screen closed meanwhile") << true;
    }

    void aLateFailureOfSignaturesIsDropped() {
        QFETCH(bool, closeScreen);
        Fixture f;
        f.scriptSignatures(JsonApi::page(QJsonArray{}));
        f.test.transport->script(
            "GET", u"/v1/builds/b-old/diagnosticSignatures"_s,
            {Answer::json(200, JsonApi::page(QJsonArray{signature(u"sig-9"_s, u"x"_s, 1)}))});
        VarnisTest::awaitTask(f.model->loadBuilds(false));
        QCOMPARE(f.model->selectedBuildID(), u"b-new"_s);
        f.test.transport->holdReplies(true);
        auto first = f.model->loadSignatures();
        QTRY_COMPARE(f.test.transport->heldCount(), 1);
        f.test.transport->holdReplies(false);
        f.test.transport->script("GET", u"/v1/builds/b-new/diagnosticSignatures"_s,
                                 {Answer::json(403, JsonApi::error(u"403"_s, u"Keine Berechtigung"_s))});
        if (closeScreen) {
            f.testers.clear();
            f.model.reset();
        } else {
            f.model->chooseBuild(1);
            QTRY_COMPARE(f.model->signatures()->count(), 1);
        }
        f.test.transport->releaseHeld();
        VarnisTest::awaitTask(std::move(first));
        if (!closeScreen) {
            QCOMPARE(f.model->selectedBuildID(), u"b-old"_s);
            QCOMPARE(f.model->signatures()->count(), 1);
            QCOMPARE(f.model->signaturesEmptyText(), QString());
            QCOMPARE(f.model->errorMessage(), QString());
            QVERIFY(!f.model->isLoading());
        }
    }

    void exportLog_data() {
        QTest::addColumn<QString>("target"); // relative to a temporary folder; "url:" an address
        QTest::addColumn<bool>("loadLog");
        QTest::addColumn<QString>("error"); // empty: success
        QTest::newRow("saved") << u"out/diagnose.json"_s << true << QString();
        QTest::newRow("as a file address") << u"url:out/diagnose.json"_s << true << QString();
        QTest::newRow("nothing loaded")
            << u"out/diagnose.json"_s << false << u"Export fehlgeschlagen: Es ist kein Protokoll geladen."_s;
        QTest::newRow("folder gone")
            << u"gone/diagnose.json"_s << true
            << u"Export fehlgeschlagen: Der Ordner oder die Datei existiert nicht."_s;
        QTest::newRow("folder is a file")
            << u"plain/diagnose.json"_s << true
            << u"Export fehlgeschlagen: Ein Teil des Pfads ist eine Datei, kein Ordner."_s;
        QTest::newRow("target is a folder")
            << u"out"_s << true << u"Export fehlgeschlagen: Dort liegt ein Ordner, keine Datei."_s;
        QTest::newRow("not a local place")
            << u"https://example.test/x.json"_s << true
            << u"Export fehlgeschlagen: Auf den gewählten Ort kann nicht zugegriffen werden."_s;
    }

    void exportLog() {
        QFETCH(QString, target);
        QFETCH(bool, loadLog);
        QFETCH(QString, error);
        Fixture f;
        f.scriptSignatures(JsonApi::page(QJsonArray{}));
        QTemporaryDir dir;
        QVERIFY(QDir(dir.path()).mkdir(u"out"_s));
        QFile plain(dir.filePath(u"plain"_s));
        QVERIFY(plain.open(QIODevice::WriteOnly));
        plain.close();
        if (loadLog) {
            VarnisTest::awaitTask(f.model->loadLogs(u"sig-1"_s));
        }
        QString where = target;
        if (target.startsWith(u"url:"_s)) {
            where = QUrl::fromLocalFile(dir.filePath(target.mid(4))).toString();
        } else if (!target.contains(u"://"_s)) {
            where = dir.filePath(target);
        }
        const bool saved = f.model->exportLog(where);
        QCOMPARE(saved, error.isEmpty());
        QCOMPARE(f.model->errorMessage(), error);
        QCOMPARE(f.model->statusMessage(), error.isEmpty() ? u"Protokoll exportiert."_s : QString());
        QFile written(dir.filePath(u"out/diagnose.json"_s));
        QCOMPARE(written.exists(), error.isEmpty());
        if (saved) {
            QVERIFY(written.open(QIODevice::ReadOnly));
            QCOMPARE(written.readAll(), f.model->logText().toUtf8());
        }
    }

    void proposedName_data() {
        QTest::addColumn<QString>("id");
        QTest::addColumn<QString>("name");
        QTest::newRow("Apple's hex id") << u"35fd8da9ea"_s << u"diagnose-35fd8da9ea.json"_s;
        QTest::newRow("never a path") << u"../a/b"_s << u"diagnose-..-a-b.json"_s;
    }

    void proposedName() {
        QFETCH(QString, id);
        QFETCH(QString, name);
        Fixture f;
        // Apple's refusal does not matter: the name comes from the choice.
        f.test.transport->setContractMode(FakeTransport::ContractMode::Off);
        VarnisTest::awaitTask(f.model->loadLogs(id));
        QCOMPARE(f.model->proposedLogFileName(), name);
    }

    void command_data() {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QByteArray>("answer"); // empty: Apple refuses
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("filter"); // "<none>": not sent; "<no request>"
        QTest::addColumn<QStringList>("output");

        QTest::newRow("every device")
            << QStringList{u"Kladde"_s} << metricsSample << 0 << u"<none>"_s
            << QStringList{
                   u"Leistungskennzahlen · Kladde · Alle Geräte"_s, u"Hänger"_s,
                   u"  hangRate: 0,25 s/hr ± 0,01 (Alle iPads · Median · Version 2.1)"_s,
                   u"  launchTime: 410,5 Millisekunden ± 12 (iPhone 14 Pro · Median · Version 2.0)"_s};
        // As JSON, what is missing is null, never a zero.
        QTest::newRow("as JSON") << QStringList{u"Kladde"_s, u"--json"_s} << metricsSample << 0 << u"<none>"_s
                                 << QStringList{u"\"deviceType\": null"_s, u"\"hint\": null"_s,
                                                u"\"errorMargin\": null"_s, u"\"device\": \"all_iphones\""_s,
                                                u"\"value\": 1210"_s};
        QTest::newRow("one device type")
            << QStringList{u"Kladde"_s, u"--device"_s, u"all_iphones"_s} << metricsSample << 0
            << u"all_iphones"_s << QStringList{u"Leistungskennzahlen · Kladde · Alle iPhones"_s};
        QTest::newRow("no data is said as such")
            << QStringList{u"Kladde"_s} << R"({"productData":[]})"_ba << 0 << u"<none>"_s
            << QStringList{PerformanceViewModel::emptyMetricsText()};
        QTest::newRow("Apple refuses")
            << QStringList{u"Kladde"_s} << QByteArray() << 1 << u"<none>"_s
            << QStringList{u"Leistungskennzahlen konnten nicht geladen werden: "_s};
        QTest::newRow("no app") << QStringList{} << metricsSample << 2 << u"<no request>"_s
                                << QStringList{u"Es fehlt die App"_s};
    }

    void command() {
        QFETCH(QStringList, arguments);
        QFETCH(QByteArray, answer);
        QFETCH(int, status);
        QFETCH(QString, filter);
        QFETCH(QStringList, output);
        Fixture f;
        f.test.transport->script("GET", u"/v1/apps"_s, {Answer::json(200, JsonApi::apps({u"Kladde"_s}))});
        const QString path = u"/v1/apps/id-Kladde/perfPowerMetrics"_s;
        f.test.transport->script("GET", path,
                                 {answer.isEmpty()
                                      ? Answer::json(403, JsonApi::error(u"403"_s, u"Nicht erlaubt."_s))
                                      : metricsAnswer(answer)});
        QCOMPARE(f.run(QStringList{u"perf"_s, u"metrics"_s} + arguments), status);
        const QString shown = status == 0 ? f.out : f.err;
        for (const QString& line : output) {
            QVERIFY2(shown.contains(line), qPrintable(shown));
        }
        const auto requests = f.test.transport->requestsTo("GET", path);
        if (filter == u"<no request>"_s) {
            QCOMPARE(requests.size(), 0);
            return;
        }
        QCOMPARE(requests.size(), 1);
        QCOMPARE(QUrlQuery(requests.first().url).hasQueryItem(u"filter[deviceType]"_s),
                 filter != u"<none>"_s);
        if (filter != u"<none>"_s) {
            QCOMPARE(queryValue(requests.first(), u"filter[deviceType]"_s), filter);
        }
    }
};

QTEST_GUILESS_MAIN(PerformanceTest)
#include "tst_performance.moc"
