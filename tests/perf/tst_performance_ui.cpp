#include "ui/UiFixture.h"

#include "api/RowListModel.h"
#include "fixtures/JsonApi.h"
#include "reports/PerformanceViewModel.h"
#include "support/FakeTransport.h"
#include "support/TestAccount.h"

#include <QQmlApplicationEngine>
#include <QTest>
#include <QUrlQuery>

using namespace Qt::StringLiterals;

namespace {

using Answer = FakeTransport::Answer;

const QByteArray metrics = R"({"productData":[{"platform":"IOS","metricCategories":[
  {"identifier":"LAUNCH","metrics":[{"identifier":"launchTime","unit":{"identifier":"ms","displayName":"ms"},
    "datasets":[{"filterCriteria":{"percentile":"percentile.fifty","device":"all_iphones"},
                 "points":[{"version":"2.1","value":380,"errorMargin":9}]}]}]},
  {"identifier":"HANG","metrics":[{"identifier":"hangRate","unit":{"identifier":"s/hr"},
    "datasets":[{"filterCriteria":{"percentile":"percentile.fifty","device":"all_iphones"},
                 "points":[{"version":"2.1","value":0.25}]}]}]}]}]})"_ba;

// The tab alone in a window, as the analytics page will hold it.
const QByteArray windowQml = R"(
import QtQuick
import QtQuick.Controls
import Varnis.App
import Varnis.Performance

ApplicationWindow {
    id: window
    objectName: "perfWindow"
    required property PerformanceViewModel perf
    width: 1100
    height: 800
    visible: true
    PerformanceTab {
        anchors.fill: parent
        anchors.margins: 12
        model: window.perf
    }
}
)"_ba;

} // namespace

class PerformanceUiTest : public UiFixture {
    Q_OBJECT
    std::unique_ptr<PerformanceViewModel> m_model;
    std::shared_ptr<FakeTransport> m_transport;
    QQuickWindow* m_window = nullptr;

    void openTab(const std::function<void(FakeTransport&)>& script) {
        Platform platform = demoPlatform();
        m_transport = std::static_pointer_cast<FakeTransport>(platform.transport);
        script(*m_transport);
        start(platform);
        useTestAccount(m_state->accountStore());
        ManagedApp app;
        app.id = u"app1"_s;
        app.name = u"Kladde"_s;
        m_model = std::make_unique<PerformanceViewModel>(*m_state, app);
        m_engine = std::make_unique<QQmlApplicationEngine>();
        m_engine->addImportPath(u"qrc:/qt/qml"_s);
        m_engine->setInitialProperties({{u"perf"_s, QVariant::fromValue(m_model.get())}});
        m_engine->loadData(windowQml, QUrl(u"qrc:/perf-test/Window.qml"_s));
        QVERIFY(!m_engine->rootObjects().isEmpty());
        m_window = qobject_cast<QQuickWindow*>(m_engine->rootObjects().first());
        QVERIFY(m_window);
        QVERIFY(QTest::qWaitForWindowExposed(m_window));
        activate(m_window);
    }

    // Opens a chooser with the mouse and moves to the entry `steps` below with the keyboard.
    void choose(const QString& comboName, int steps) {
        QVERIFY(clickNamed(m_window, comboName));
        QQuickItem* combo = findItem(m_window, comboName);
        QTRY_VERIFY(combo->property("popup").value<QObject*>()->property("opened").toBool());
        for (int i = 0; i < steps; ++i) {
            QTest::keyClick(m_window, Qt::Key_Down);
        }
        QTest::keyClick(m_window, Qt::Key_Return);
        QTRY_VERIFY(!combo->property("popup").value<QObject*>()->property("visible").toBool());
    }

    QString textOf(const QString& name) {
        QQuickItem* item = findItem(m_window, name);
        return item ? item->property("text").toString() : QString();
    }

private Q_SLOTS:
    void initTestCase() { installMessageHandler(); }
    void init() { initFixture(); }
    void cleanup() {
        // The window goes before the model it binds to.
        m_engine.reset();
        m_model.reset();
        m_window = nullptr;
        cleanupFixture();
    }

    void walkThroughTheTab() {
        openTab([](FakeTransport& transport) {
            transport.script(
                "GET", u"/v1/apps/app1/perfPowerMetrics"_s,
                {Answer::json(200, metrics, {{"Content-Type", "application/vnd.apple.xcode-metrics+json"}})});
            transport.script("GET", u"/v1/apps/app1/builds"_s,
                             {Answer::json(200, JsonApi::page(QJsonArray{JsonApi::resource(
                                                    u"builds"_s, u"b-1"_s,
                                                    {{u"version"_s, u"142"_s},
                                                     {u"uploadedDate"_s, u"2026-03-20T10:00:00Z"_s}})}))});
            const QJsonObject insight{{u"insightType"_s, u"TREND"_s}, {u"direction"_s, u"UP"_s}};
            transport.script("GET", u"/v1/builds/b-1/diagnosticSignatures"_s,
                             {Answer::json(200, JsonApi::page(QJsonArray{JsonApi::resource(
                                                    u"diagnosticSignatures"_s, u"sig-1"_s,
                                                    {{u"diagnosticType"_s, u"HANGS"_s},
                                                     {u"signature"_s, u"Kladde: -[Editor save] + 42"_s},
                                                     {u"weight"_s, 0.85},
                                                     {u"insight"_s, insight}})}))});
            transport.script(
                "GET", u"/v1/diagnosticSignatures/sig-1/logs"_s,
                {Answer::json(200, R"({"productData":[{"signatureId":"sig-1"}]})"_ba,
                              {{"Content-Type", "application/vnd.apple.diagnostic-logs+json"}})});
        });
        // Showing the tab loaded it.
        QTRY_COMPARE(m_model->metrics()->count(), 2);
        QTRY_VERIFY(!m_model->isLoading());
        QVERIFY(findText(m_window, u"launchTime"_s));
        QVERIFY(findText(m_window, u"380 ms ± 9"_s));
        QVERIFY(findText(m_window, u"Hänger"_s));
        QCOMPARE(findItem(m_window, u"perfBuild"_s)->property("displayText").toString(),
                 u"Build 142 · 20.03.2026"_s);

        // Another device type asks Apple with its filter.
        choose(u"perfDeviceType"_s, 1);
        QTRY_COMPARE(m_model->deviceTypeIndex(), 1);
        QTRY_VERIFY(!m_model->isLoading());
        const auto requests = m_transport->requestsTo("GET", u"/v1/apps/app1/perfPowerMetrics"_s);
        QCOMPARE(requests.size(), 2);
        QCOMPARE(QUrlQuery(requests.last().url).queryItemValue(u"filter[deviceType]"_s), u"all_iphones"_s);

        // A signature shows its insight; clicking it brings its log.
        QVERIFY(findText(m_window, u"Tritt häufiger auf als in früheren Versionen."_s));
        QVERIFY(findText(m_window, u"Hänger · Anteil 85,0 %"_s));
        QVERIFY(!findItem(m_window, u"perfExportLog"_s)->isEnabled());
        QVERIFY(clickRow(m_window, u"perfSignaturesList"_s, 0));
        QTRY_COMPARE(textOf(u"perfLogText"_s), uR"({"productData":[{"signatureId":"sig-1"}]})"_s);
        QCOMPARE(m_model->selectedSignature(), u"sig-1"_s);
        QTRY_VERIFY(findItem(m_window, u"perfExportLog"_s)->isEnabled());
        shoot(m_window, u"performance-tab"_s);

        // The save dialog proposes the signature's file name.
        QVERIFY(clickNamed(m_window, u"perfExportLog"_s));
        QObject* dialog = m_window->findChild<QObject*>(u"perfLogSaveDialog"_s);
        QVERIFY(dialog);
        QTRY_VERIFY(dialog->property("visible").toBool());
        QVERIFY(dialog->property("currentFile").toUrl().toString().endsWith(u"diagnose-sig-1.json"_s));
        QTest::keyClick(m_window, Qt::Key_Escape);
        QTRY_VERIFY(!dialog->property("visible").toBool());

        // Launches of this build: none, and the tab says what that means.
        m_transport->script("GET", u"/v1/builds/b-1/diagnosticSignatures"_s,
                            {Answer::json(200, JsonApi::page(QJsonArray{}))});
        choose(u"perfDiagnosticType"_s, 2);
        QTRY_COMPARE(m_model->diagnosticType(), u"LAUNCHES"_s);
        QTRY_COMPARE(textOf(u"perfSignaturesEmpty"_s), PerformanceViewModel::emptySignaturesText());
        QCOMPARE(textOf(u"perfLogText"_s), QString());
        VARNIS_VERIFY_CONTRACT(*m_transport);
    }
};

QTEST_MAIN(PerformanceUiTest)
#include "tst_performance_ui.moc"
