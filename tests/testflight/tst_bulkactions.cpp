#include "api/Account.h"
#include "api/AccountStore.h"
#include "api/RowListModel.h"
#include "api/TaskCenter.h"
#include "fixtures/JsonApi.h"
#include "support/AwaitTask.h"
#include "support/TestKeys.h"
#include "support/TestPlatform.h"
#include "testflight/BulkActionsViewModel.h"
#include "workspace/AppState.h"

#include <QAbstractItemModelTester>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

using namespace Qt::StringLiterals;
using Answer = FakeTransport::Answer;
using Action = BulkActionsViewModel::Action;

namespace {

// One app as Apple has it: its newest version's state, whether it has app info, the "what's new"
// per language on the version side ("=" without text: only the app-info side has the language),
// and its groups ("*" before the name: internal).
struct FakeApp {
    QString name;
    QString versionState = u"PREPARE_FOR_SUBMISSION"_s;
    bool hasAppInfo = true;
    QStringList whatsNew{u"de-DE=Alt"_s};
    QStringList groups{u"Extern"_s};
    int writeStatus = 200;
};

} // namespace

Q_DECLARE_METATYPE(FakeApp)
Q_DECLARE_METATYPE(BulkActionsViewModel::Action)

namespace {

QString idOf(const QString& name) {
    return u"id-"_s + name;
}

struct Fixture : TestPlatform {
    AppState state{platform(), AppState::Options{settings}};
    std::unique_ptr<BulkActionsViewModel> model;
    std::vector<std::unique_ptr<QAbstractItemModelTester>> testers;

    Account addAccount(const QString& name) {
        return VarnisTest::awaitTask(state.accountStore().addAccount(
            name, u"57246542-96fe-1a63-e053-0824d011072a"_s, u"ABCDE12345"_s, makeTestKey().privateKeyPEM));
    }

    void script(const FakeApp& app) {
        const QString id = idOf(app.name);
        const QJsonArray versions{JsonApi::resource(u"appStoreVersions"_s, u"v-"_s + app.name,
                                                    {{u"versionString"_s, u"2.0"_s},
                                                     {u"appStoreState"_s, app.versionState},
                                                     {u"platform"_s, u"IOS"_s}})};
        transport->script("GET", u"/v1/apps/%1/appStoreVersions"_s.arg(id),
                          {Answer::json(200, JsonApi::page(versions))});
        QJsonArray infos;
        if (app.hasAppInfo) {
            infos.append(JsonApi::resource(u"appInfos"_s, u"info-"_s + app.name));
        }
        transport->script("GET", u"/v1/apps/%1/appInfos"_s.arg(id),
                          {Answer::json(200, JsonApi::page(infos))});
        QJsonArray infoSide;
        QJsonArray versionSide;
        for (const QString& entry : app.whatsNew) {
            const QString locale = entry.section(u'=', 0, 0);
            const QString key = app.name + u'-' + locale;
            infoSide.append(JsonApi::resource(u"appInfoLocalizations"_s, u"ai-"_s + key,
                                              {{u"locale"_s, locale}, {u"name"_s, app.name}}));
            if (!entry.endsWith(u'=')) {
                versionSide.append(
                    JsonApi::resource(u"appStoreVersionLocalizations"_s, u"vl-"_s + key,
                                      {{u"locale"_s, locale}, {u"whatsNew"_s, entry.section(u'=', 1)}}));
                transport->script(
                    "PATCH", u"/v1/appStoreVersionLocalizations/vl-"_s + key,
                    {Answer::json(app.writeStatus, app.writeStatus == 200
                                                       ? JsonApi::single(versionSide.last())
                                                       : JsonApi::error(u"409"_s, u"Gesperrt."_s))});
            }
        }
        transport->script("GET", u"/v1/appInfos/info-%1/appInfoLocalizations"_s.arg(app.name),
                          {Answer::json(200, JsonApi::page(infoSide))});
        transport->script("GET", u"/v1/appStoreVersions/v-%1/appStoreVersionLocalizations"_s.arg(app.name),
                          {Answer::json(200, JsonApi::page(versionSide))});
        QJsonArray groups;
        for (const QString& group : app.groups) {
            const bool internal = group.startsWith(u'*');
            const QString name = internal ? group.mid(1) : group;
            groups.append(JsonApi::resource(u"betaGroups"_s, u"g-"_s + app.name + u'-' + name,
                                            {{u"name"_s, name}, {u"isInternalGroup"_s, internal}}));
        }
        transport->script("GET", u"/v1/apps/%1/betaGroups"_s.arg(id),
                          {Answer::json(200, JsonApi::page(groups))});
    }

    // An account, the apps listed and scripted, and the model with every app chosen.
    void ready(const QList<FakeApp>& apps) {
        addAccount(u"Studio"_s);
        QStringList names;
        for (const FakeApp& app : apps) {
            names.append(app.name);
            script(app);
        }
        transport->script("GET", u"/v1/apps"_s, {Answer::json(200, JsonApi::apps(names))});
        VarnisTest::awaitTask(state.loadApps(true));
        makeModel();
        for (const FakeApp& app : apps) {
            model->toggle(idOf(app.name));
        }
        transport->clearRequests();
    }

    void makeModel() {
        model = std::make_unique<BulkActionsViewModel>(state);
        for (QAbstractItemModel* list : {static_cast<QAbstractItemModel*>(model->apps()),
                                         static_cast<QAbstractItemModel*>(model->results())}) {
            testers.push_back(std::make_unique<QAbstractItemModelTester>(
                list, QAbstractItemModelTester::FailureReportingMode::QtTest));
        }
    }

    void runConfirmed() {
        model->requestRun();
        QVERIFY(model->pendingWrite());
        VarnisTest::awaitTask(model->confirmPendingWriteAsync());
    }

    QStringList outcomes() const {
        QStringList lines;
        for (const auto& r : model->resultList()) {
            lines.append(r.appName + (r.succeeded ? u" ✓ "_s : u" ✗ "_s) + r.message);
        }
        return lines;
    }

    QList<HttpRequest> writes() const {
        QList<HttpRequest> result;
        for (const auto& request : transport->requests()) {
            if (request.method != "GET") {
                result.append(request);
            }
        }
        return result;
    }
};

QJsonObject bodyOf(const HttpRequest& request) {
    return QJsonDocument::fromJson(request.body).object()[u"data"_s].toObject();
}

} // namespace

class BulkActionsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void whatsNewPerApp_data() {
        QTest::addColumn<QList<FakeApp>>("apps");
        QTest::addColumn<QStringList>("outcomes");
        QTest::addColumn<QStringList>("patched");

        QTest::newRow("second app without an editable version")
            << QList<FakeApp>{{u"Alpha"_s},
                              {u"Beta"_s, u"READY_FOR_SALE"_s},
                              {u"Gamma"_s, u"DEVELOPER_REJECTED"_s}}
            << QStringList{u"Alpha ✓ Erledigt"_s, u"Beta ✗ Keine bearbeitbare Version."_s,
                           u"Gamma ✓ Erledigt"_s}
            << QStringList{u"vl-Alpha-de-DE"_s, u"vl-Gamma-de-DE"_s};
        QTest::newRow("language missing in one app only")
            << QList<FakeApp>{{u"Alpha"_s, u"REJECTED"_s, true, {u"en-US=Old"_s}}, {u"Beta"_s}}
            << QStringList{u"Alpha ✗ Sprache de-DE ist in dieser App nicht angelegt."_s, u"Beta ✓ Erledigt"_s}
            << QStringList{u"vl-Beta-de-DE"_s};
        QTest::newRow("language only on the app-info side")
            << QList<FakeApp>{{u"Alpha"_s, u"PREPARE_FOR_SUBMISSION"_s, true, {u"de-DE="_s}}}
            << QStringList{u"Alpha ✗ Sprache de-DE ist in dieser App nicht angelegt."_s} << QStringList{};
        QTest::newRow("equal text sends nothing")
            << QList<FakeApp>{{u"Alpha"_s, u"PREPARE_FOR_SUBMISSION"_s, true, {u"de-DE=Neu"_s}}}
            << QStringList{u"Alpha ✓ Erledigt"_s} << QStringList{};
        QTest::newRow("no app info") << QList<FakeApp>{{u"Alpha"_s, u"PREPARE_FOR_SUBMISSION"_s, false},
                                                       {u"Beta"_s}}
                                     << QStringList{u"Alpha ✗ Keine App-Informationen gefunden."_s,
                                                    u"Beta ✓ Erledigt"_s}
                                     << QStringList{u"vl-Beta-de-DE"_s};
        QTest::newRow("Apple refuses one write, the next app still runs")
            << QList<FakeApp>{{u"Alpha"_s, u"PREPARE_FOR_SUBMISSION"_s, true, {u"de-DE=Alt"_s}, {}, 409},
                              {u"Beta"_s}}
            << QStringList{u"Alpha ✗ "_s, u"Beta ✓ Erledigt"_s}
            << QStringList{u"vl-Alpha-de-DE"_s, u"vl-Beta-de-DE"_s};
    }

    void whatsNewPerApp() {
        QFETCH(QList<FakeApp>, apps);
        QFETCH(QStringList, outcomes);
        QFETCH(QStringList, patched);
        Fixture f;
        f.ready(apps);
        f.model->setWhatsNewText(u"Neu"_s);
        f.runConfirmed();

        const QStringList got = f.outcomes();
        QCOMPARE(got.size(), outcomes.size());
        for (qsizetype i = 0; i < got.size(); ++i) {
            QVERIFY2(got[i].startsWith(outcomes[i]), qPrintable(got[i]));
        }
        QStringList sent;
        for (const auto& request : f.writes()) {
            QCOMPARE(request.method, "PATCH"_ba);
            QCOMPARE(bodyOf(request)[u"attributes"_s].toObject(), (QJsonObject{{u"whatsNew"_s, u"Neu"_s}}));
            sent.append(request.url.path().section(u'/', -1));
        }
        QCOMPARE(sent, patched);
        QVERIFY(!f.model->isRunning());
        QVERIFY(f.state.taskCenter().tasks().isEmpty());
        VARNIS_VERIFY_CONTRACT(*f.transport);
    }

    void addTesterPerApp_data() {
        QTest::addColumn<QList<FakeApp>>("apps");
        QTest::addColumn<QStringList>("outcomes");
        QTest::addColumn<QStringList>("groups");

        QTest::newRow("only internal groups")
            << QList<FakeApp>{{u"Alpha"_s, {}, true, {}, {u"*Team"_s}}, {u"Beta"_s}}
            << QStringList{u"Alpha ✗ Keine TestFlight-Gruppe vorhanden."_s, u"Beta ✓ Erledigt"_s}
            << QStringList{u"g-Beta-Extern"_s};
        QTest::newRow("first external group by name")
            << QList<FakeApp>{{u"Alpha"_s, {}, true, {}, {u"Zeta"_s, u"*Anfang"_s, u"Mitte"_s}}}
            << QStringList{u"Alpha ✓ Erledigt"_s} << QStringList{u"g-Alpha-Mitte"_s};
    }

    void addTesterPerApp() {
        QFETCH(QList<FakeApp>, apps);
        QFETCH(QStringList, outcomes);
        QFETCH(QStringList, groups);
        Fixture f;
        f.ready(apps);
        f.transport->script(
            "POST", u"/v1/betaTesters"_s,
            {Answer::json(201, JsonApi::single(JsonApi::resource(u"betaTesters"_s, u"t1"_s)))});
        f.model->setAction(Action::AddTester);
        f.model->setTesterEmail(u"  anna@example.com \n"_s);
        f.model->setTesterFirstName(u"Anna"_s);
        f.model->setTesterLastName(u"   "_s);
        f.runConfirmed();

        QCOMPARE(f.outcomes(), outcomes);
        QStringList sent;
        for (const auto& request : f.writes()) {
            const QJsonObject data = bodyOf(request);
            QCOMPARE(data[u"attributes"_s].toObject(),
                     (QJsonObject{{u"email"_s, u"anna@example.com"_s}, {u"firstName"_s, u"Anna"_s}}));
            sent.append(data[u"relationships"_s][u"betaGroups"_s][u"data"_s][0][u"id"_s].toString());
        }
        QCOMPARE(sent, groups);
        VARNIS_VERIFY_CONTRACT(*f.transport);
    }

    void canRun_data() {
        QTest::addColumn<Action>("action");
        QTest::addColumn<bool>("chooseApp");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("email");
        QTest::addColumn<bool>("canRun");
        QTest::newRow("text of blanks and line breaks")
            << Action::WhatsNew << true << u"  \n\t "_s << u"a@b.de"_s << false;
        QTest::newRow("no app chosen") << Action::WhatsNew << false << u"Neu"_s << QString() << false;
        QTest::newRow("text given") << Action::WhatsNew << true << u"Neu"_s << QString() << true;
        QTest::newRow("tester without address") << Action::AddTester << true << u"Neu"_s << u" "_s << false;
        // The address's form is Apple's to judge.
        QTest::newRow("tester with any address")
            << Action::AddTester << true << QString() << u"anna"_s << true;
    }

    void canRun() {
        QFETCH(Action, action);
        QFETCH(bool, chooseApp);
        QFETCH(QString, text);
        QFETCH(QString, email);
        QFETCH(bool, canRun);
        Fixture f;
        f.ready({{u"Alpha"_s}});
        if (!chooseApp) {
            f.model->toggle(idOf(u"Alpha"_s));
        }
        f.model->setAction(action);
        f.model->setWhatsNewText(text);
        f.model->setTesterEmail(email);
        QCOMPARE(f.model->canRun(), canRun);
        f.model->requestRun();
        QCOMPARE(f.model->pendingWrite().has_value(), canRun);
    }

    void changingTheActionKeepsTheOtherInputs() {
        Fixture f;
        f.makeModel();
        f.model->setWhatsNewText(u"Neu"_s);
        f.model->setLocale(u"fr-FR"_s);
        f.model->setActionIndex(1);
        QCOMPARE(f.model->action(), Action::AddTester);
        f.model->setTesterEmail(u"anna@example.com"_s);
        f.model->setActionIndex(0);
        QCOMPARE(f.model->whatsNewText(), u"Neu"_s);
        QCOMPARE(f.model->locale(), u"fr-FR"_s);
        QCOMPARE(f.model->testerEmail(), u"anna@example.com"_s);
    }

    // The confirmation in the words of the sheet, and the task bar while the apps are done.
    void confirmationAndProgress() {
        Fixture f;
        f.ready({{u"Alpha"_s}, {u"Beta"_s}});
        f.model->setWhatsNewText(u"Neu"_s);
        f.model->requestRun();
        const PendingWrite& write = *f.model->pendingWrite();
        QCOMPARE(write.title, u"„Neu in dieser Version“ setzen"_s);
        QCOMPARE(write.explanation,
                 u"Schreibt denselben Text in die gewählte Sprache der jeweils bearbeitbaren "
                 u"Version. Die Aktion läuft nacheinander; jede App bekommt ihr eigenes Ergebnis."_s);
        QCOMPARE(write.confirmLabel, u"Ausführen"_s);
        QVERIFY(write.isDestructive);
        QCOMPARE(write.changes.size(), 2);
        QCOMPARE(write.changes[1].spokenLabel(), u"App: Beta"_s);

        QStringList seen;
        QObject::connect(&f.state.taskCenter(), &TaskCenter::tasksChanged, f.model.get(), [&] {
            const auto& tasks = f.state.taskCenter().tasks();
            seen.append(tasks.isEmpty()
                            ? u"–"_s
                            : tasks[0].detail.value_or(QString()) + u" @"_s +
                                  (tasks[0].progress ? QString::number(*tasks[0].progress) : u"?"_s));
        });
        VarnisTest::awaitTask(f.model->confirmPendingWriteAsync());
        QCOMPARE(seen,
                 (QStringList{u"0 von 2 @?"_s, u"1 von 2: Alpha @0"_s, u"2 von 2: Beta @0.5"_s, u"–"_s}));
        QVERIFY(!f.model->pendingWrite());
    }

    // Read-only and demo mode in the order of the write gate; demo shows the confirmation.
    void writeGate_data() {
        QTest::addColumn<bool>("withAccount");
        QTest::addColumn<bool>("readOnly");
        QTest::addColumn<bool>("confirms");
        QTest::addColumn<QString>("message");
        QTest::newRow("read-only account")
            << true << true << false
            << u"Dieser Account steht auf Nur-Lesen. Der Schalter sitzt in den "
               u"Einstellungen."_s;
        QTest::newRow("demo mode") << false << false << true
                                   << u"Im Demo-Modus werden keine Daten an App Store Connect geschickt."_s;
    }

    void writeGate() {
        QFETCH(bool, withAccount);
        QFETCH(bool, readOnly);
        QFETCH(bool, confirms);
        QFETCH(QString, message);
        Fixture f;
        f.state.setDemoModeEnabled(true);
        if (withAccount) {
            f.ready({{u"Alpha"_s}});
            Account account = *f.state.accountStore().selectedAccount();
            account.isReadOnly = readOnly;
            f.state.accountStore().updateAccount(account);
        } else {
            f.state.showStoredApps();
            f.makeModel();
            QVERIFY(!f.state.apps().isEmpty());
            f.model->toggle(f.state.apps().first().id);
        }
        f.transport->clearRequests();
        f.model->setWhatsNewText(u"Neu"_s);
        f.model->requestRun();
        QCOMPARE(f.model->pendingWrite().has_value(), confirms);
        VarnisTest::awaitTask(f.model->confirmPendingWriteAsync());
        QCOMPARE(f.model->errorMessage(), std::optional<QString>(message));
        QVERIFY(f.model->resultList().isEmpty());
        QCOMPARE(f.transport->requestCount(), 0);
    }

    // With the apps of every account listed, the run stays with the account selected when it
    // started and skips the others' apps with the reason.
    void appOfAnotherAccountIsSkipped() {
        Fixture f;
        f.addAccount(u"Studio"_s);
        f.addAccount(u"Verlag"_s);
        f.state.setShowsAppsOfAllAccountsOverride(true);
        f.script({u"Alpha"_s});
        f.script({u"Beta"_s});
        f.transport->script(
            "GET", u"/v1/apps"_s,
            {Answer::json(200, JsonApi::apps({u"Alpha"_s})), Answer::json(200, JsonApi::apps({u"Beta"_s}))});
        VarnisTest::awaitTask(f.state.loadApps(true));
        QCOMPARE(f.state.apps().size(), 2);
        f.makeModel();
        f.model->toggle(idOf(u"Alpha"_s));
        f.model->toggle(idOf(u"Beta"_s));
        f.model->setWhatsNewText(u"Neu"_s);
        const QString selected = f.state.accountStore().selectedAccount()->name;
        const QString other = selected == u"Studio"_s ? u"Verlag"_s : u"Studio"_s;
        const QString ownApp = f.state.apps()[0].accountName == selected ? u"Alpha"_s : u"Beta"_s;
        const QString foreignApp = ownApp == u"Alpha"_s ? u"Beta"_s : u"Alpha"_s;
        f.transport->clearRequests();
        f.runConfirmed();

        QCOMPARE(f.model->resultList().size(), 2);
        for (const auto& r : f.model->resultList()) {
            if (r.appName == ownApp) {
                QCOMPARE(r.message, u"Erledigt"_s);
            } else {
                QCOMPARE(r.message,
                         u"Übersprungen: Die App gehört zum Account „%1“, die Aktion läuft für „%2“."_s.arg(
                             other, selected));
            }
        }
        for (const auto& request : f.transport->requests()) {
            QVERIFY2(!request.url.path().contains(foreignApp), qPrintable(request.url.path()));
        }
    }
};

QTEST_GUILESS_MAIN(BulkActionsTest)
#include "tst_bulkactions.moc"
