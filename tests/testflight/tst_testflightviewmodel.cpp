#include "api/AccountStore.h"
#include "api/RowListModel.h"
#include "api/TaskCenter.h"
#include "fixtures/JsonApi.h"
#include "support/AwaitTask.h"
#include "support/FakeTransport.h"
#include "support/TestKeys.h"
#include "support/TestPlatform.h"
#include "testflight/TestFlightViewModel.h"
#include "workspace/AppState.h"
#include "workspace/MockData.h"

#include <QAbstractItemModelTester>
#include <QCoreApplication>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTest>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {

using Answer = FakeTransport::Answer;
using JsonApi::page;
using JsonApi::resource;

ManagedApp testApp() {
    ManagedApp app;
    app.id = u"app-1"_s;
    app.name = u"Kladde"_s;
    app.bundleID = u"com.example.kladde"_s;
    return app;
}

QByteArray groupsPage() {
    return page(QJsonArray{
        resource(u"betaGroups"_s, u"g-ext"_s, {{u"name"_s, u"Freunde"_s}, {u"isInternalGroup"_s, false}}),
        resource(u"betaGroups"_s, u"g-int"_s, {{u"name"_s, u"Team"_s}, {u"isInternalGroup"_s, true}}),
    });
}

QByteArray testersPage() {
    return page(QJsonArray{
        resource(u"betaTesters"_s, u"t-1"_s,
                 {{u"firstName"_s, u"Anna"_s}, {u"email"_s, u"anna@example.com"_s}}),
        resource(u"betaTesters"_s, u"t-2"_s,
                 {{u"firstName"_s, u"Ben"_s}, {u"email"_s, u"ben@example.com"_s}}),
    });
}

QJsonObject build(const QString& id, const QString& version, const QDateTime& uploaded,
                  const std::optional<QDateTime>& expires, bool expired) {
    QJsonObject attributes{{u"version"_s, version},
                           {u"uploadedDate"_s, uploaded.toString(Qt::ISODate)},
                           {u"expired"_s, expired}};
    if (expires) {
        attributes.insert(u"expirationDate"_s, expires->toString(Qt::ISODate));
    }
    return resource(u"builds"_s, id, attributes);
}

struct Fixture : TestPlatform {
    std::unique_ptr<AppState> state;
    std::unique_ptr<TestFlightViewModel> model;
    std::vector<std::unique_ptr<QAbstractItemModelTester>> listTesters;

    Fixture() {
        state = std::make_unique<AppState>(platform(), AppState::Options{settings});
        model = std::make_unique<TestFlightViewModel>(*state, testApp());
        for (QAbstractItemModel* list : std::initializer_list<QAbstractItemModel*>{
                 model->groupRows(), model->testerRows(), model->buildRows(), model->statRows(),
                 model->assignmentRows()}) {
            listTesters.push_back(std::make_unique<QAbstractItemModelTester>(
                list, QAbstractItemModelTester::FailureReportingMode::QtTest));
        }
    }

    // An account whose app has an external group "Freunde" (selected first) with two testers
    // and the internal group "Team" with none.
    void addAccount(bool readOnly = false) {
        scriptGroups();
        auto task = state->accountStore().addAccount(u"Studio"_s, u"57246542-96fe-1a63-e053-0824d011072a"_s,
                                                     u"ABCDE12345"_s, makeTestKey().privateKeyPEM);
        Account account = VarnisTest::awaitTask(std::move(task));
        if (readOnly) {
            account.isReadOnly = true;
            state->accountStore().updateAccount(account);
        }
    }

    void scriptGroups() {
        transport->script("GET", u"/v1/apps/app-1/betaGroups"_s, {Answer::json(200, groupsPage())});
        transport->script("GET", u"/v1/betaGroups/g-ext/betaTesters"_s, {Answer::json(200, testersPage())});
        transport->script("GET", u"/v1/betaGroups/g-int/betaTesters"_s, {Answer::json(200, page({}))});
    }

    void load() { VarnisTest::awaitTask(model->load(true)); }

    // A tester list of `count` addresses in a file, read into the preview.
    void preview(int count) {
        QFile file(dir.filePath(u"tester.csv"_s));
        QVERIFY(file.open(QIODevice::WriteOnly));
        for (int i = 1; i <= count; ++i) {
            file.write(QStringLiteral("person%1@example.com;Vorname%1\n").arg(i).toUtf8());
        }
        file.close();
        VarnisTest::awaitTask(model->previewImport(QUrl::fromLocalFile(file.fileName())));
        QCOMPARE(model->importPreview()->testers.size(), count);
    }

    // Apple takes testers until the `failAt`-th (1-based; 0: never), which it refuses.
    int sentTesters = 0;
    void scriptTesterPosts(int failAt) {
        transport->route("POST", u"/v1/betaTesters"_s, [this, failAt](const HttpRequest&) {
            ++sentTesters;
            if (sentTesters == failAt) {
                return Answer::json(403, JsonApi::error(u"403"_s, u"Kein Zugriff."_s));
            }
            return Answer::json(201, JsonApi::single(resource(u"betaTesters"_s, u"new"_s,
                                                              {{u"email"_s, u"x@example.com"_s}})));
        });
    }

    // The import the sheet asks for, taken off the sheet as its confirm button would.
    PendingWrite takeImport() {
        model->requestImportTesters();
        PendingWrite write = *model->pendingWrite();
        model->cancelPendingWrite();
        return write;
    }

    int writes() const {
        int count = 0;
        for (const auto& request : transport->requests()) {
            count += request.method != "GET" ? 1 : 0;
        }
        return count;
    }
};

} // namespace

class TestFlightViewModelTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // The gate runs in its order for the writes that act at once and for those with a sheet:
    // read-only first (even with the demo switch on), then demo, then the missing account.
    void gateOrder_data() {
        QTest::addColumn<bool>("account");
        QTest::addColumn<bool>("readOnly");
        QTest::addColumn<bool>("demo");
        QTest::addColumn<QString>("immediate");
        QTest::addColumn<QString>("sheetBlocked");
        QTest::newRow("read-only wins over demo")
            << true << true << true << WriteGate::readOnlyMessage() << WriteGate::readOnlyMessage();
        QTest::newRow("demo without an account: the sheet is shown")
            << false << false << true << WriteGate::demoMessage() << QString();
        QTest::newRow("no account") << false << false << false << WriteGate::noAccountMessage()
                                    << WriteGate::noAccountMessage();
    }

    void gateOrder() {
        QFETCH(bool, account);
        QFETCH(bool, readOnly);
        QFETCH(bool, demo);
        QFETCH(QString, immediate);
        QFETCH(QString, sheetBlocked);
        Fixture f;
        if (account) {
            f.addAccount(readOnly);
        }
        f.state->setDemoModeEnabled(demo);
        f.load();
        // An external group: Apple's own internal groups get no sheet.
        QString groupID = u"g-ext"_s;
        for (const auto& group : f.model->groups()) {
            if (!group.isInternal) {
                groupID = group.id;
            }
        }
        const QString testerID = f.model->testers().isEmpty() ? u"t-1"_s : f.model->testers().first().id;

        VarnisTest::awaitTask(f.model->removeTester(testerID));
        QCOMPARE(f.model->groupActionError(), immediate);
        VarnisTest::awaitTask(f.model->resendInvitation(testerID));
        QCOMPARE(f.model->groupActionError(), immediate);
        f.model->setNewTesterEmail(u"neu@example.com"_s);
        VarnisTest::awaitTask(f.model->confirmAddTester());
        QCOMPARE(f.model->addTesterError(), immediate);
        f.model->setNewGroupName(u"Neu"_s);
        VarnisTest::awaitTask(f.model->createGroup());
        QCOMPARE(f.model->groupActionError(), immediate);

        f.model->requestDeleteGroup(groupID);
        QCOMPARE(f.model->groupActionError(), sheetBlocked);
        QCOMPARE(f.model->pendingWrite().has_value(), sheetBlocked.isEmpty());
        QCOMPARE(f.writes(), 0);
    }

    // Confirmed in demo mode, the write names itself and nothing leaves the program.
    void demoConfirmationSendsNothing() {
        Fixture f;
        f.state->setDemoModeEnabled(true);
        f.load();
        const ManagedBetaGroup group = f.model->groups().last();
        f.model->requestDeleteGroup(group.id);
        QVERIFY(f.model->pendingWrite());
        QVERIFY(f.model->pendingWrite()->isDestructive);
        f.model->confirmPendingWrite();
        QTRY_COMPARE(f.model->statusMessage(),
                     u"Demo-Modus: „Gruppe löschen“ wurde nur angezeigt – an Apple ging nichts."_s);
        QVERIFY(!f.model->pendingWrite());
        QCOMPARE(f.model->groups().size(), 2);
        QCOMPARE(f.transport->requestCount(), 0);
    }

    // A deleted group leaves the list; when it was the selected one, nothing is selected and its
    // testers are gone from the screen. Deleting another group keeps the selection; an internal
    // group is Apple's to remove and gets no sheet.
    void deleteRemovesTheGroup_data() {
        QTest::addColumn<QString>("selected");
        QTest::addColumn<QString>("groupID");
        QTest::addColumn<bool>("asks");
        QTest::addColumn<QString>("selectedAfter");
        QTest::newRow("the selected group") << u"g-ext"_s << u"g-ext"_s << true << QString();
        QTest::newRow("another group") << u"g-int"_s << u"g-ext"_s << true << u"g-int"_s;
        QTest::newRow("an internal group") << u"g-ext"_s << u"g-int"_s << false << u"g-ext"_s;
    }

    void deleteRemovesTheGroup() {
        QFETCH(QString, selected);
        QFETCH(QString, groupID);
        QFETCH(bool, asks);
        QFETCH(QString, selectedAfter);
        Fixture f;
        f.addAccount();
        f.transport->script("DELETE", u"/v1/betaGroups/"_s + groupID, {Answer::json(204, {})});
        f.load();
        f.model->selectGroup(selected);
        QTRY_VERIFY(!f.model->isLoadingTesters());
        QCOMPARE(f.model->selectedGroupID(), selected);
        const qsizetype testersShown = f.model->testerRows()->count();
        f.model->requestDeleteGroup(groupID);
        QCOMPARE(f.model->pendingWrite().has_value(), asks);
        if (asks) {
            f.model->confirmPendingWrite();
            QTRY_COMPARE(f.model->groups().size(), 1);
            QCOMPARE(f.model->statusMessage(), u"Gruppe „Freunde“ gelöscht."_s);
        }
        QCOMPARE(f.model->groupRows()->count(), f.model->groups().size());
        QCOMPARE(f.model->selectedGroupID(), selectedAfter);
        QCOMPARE(f.model->testerRows()->count(), selectedAfter.isEmpty() ? 0 : testersShown);
        QCOMPARE(f.writes(), asks ? 1 : 0);
    }

    // "Laufen bald ab" counts what expires in less than 14 days from the clock's now and has not
    // expired yet; an expired build counts only under "Abgelaufen", whatever its date says.
    void statsCountExpiry_data() {
        QTest::addColumn<std::optional<qint64>>("expiresInHours");
        QTest::addColumn<bool>("expired");
        QTest::addColumn<QString>("soon");
        QTest::addColumn<QString>("gone");
        QTest::newRow("one hour short of 14 days")
            << std::optional<qint64>(14 * 24 - 1) << false << u"1"_s << u"0"_s;
        QTest::newRow("exactly 14 days") << std::optional<qint64>(14 * 24) << false << u"0"_s << u"0"_s;
        QTest::newRow("expired, date ahead") << std::optional<qint64>(3 * 24) << true << u"0"_s << u"1"_s;
        QTest::newRow("no expiry date") << std::optional<qint64>() << false << u"0"_s << u"0"_s;
    }

    void statsCountExpiry() {
        QFETCH(std::optional<qint64>, expiresInHours);
        QFETCH(bool, expired);
        QFETCH(QString, soon);
        QFETCH(QString, gone);
        Fixture f;
        f.addAccount();
        const QDateTime now = f.clock->now();
        const auto expires =
            expiresInHours ? std::optional<QDateTime>(now.addSecs(*expiresInHours * 3600)) : std::nullopt;
        f.transport->script(
            "GET", u"/v1/apps/app-1/builds"_s,
            {Answer::json(200, page({build(u"b-2"_s, u"12"_s, now.addDays(-2), expires, expired),
                                     build(u"b-1"_s, u"11"_s, now.addDays(-40), std::nullopt, false)}))});
        f.load();
        VarnisTest::awaitTask(f.model->loadBuilds(true, false));
        QList<StatItem> expected{{u"Builds"_s, u"2"_s},
                                 {u"Gruppen"_s, u"2"_s},
                                 {u"Erster Build"_s, u"6. Dez. 2025"_s},
                                 {u"Letzter Build"_s, u"13. Jan. 2026"_s},
                                 {u"Laufen bald ab"_s, soon},
                                 {u"Abgelaufen"_s, gone},
                                 {u"Externe Gruppen"_s, u"1"_s}};
        QCOMPARE(f.model->stats(), expected);
        QCOMPARE(f.model->statRows()->count(), 7);
        QCOMPARE(f.model->statRows()->value(4, TestFlightViewModel::StatValue).toString(), soon);
    }

    // Beta states fill in per build as they come; one Apple does not answer shows the dash.
    void betaDetailsFillTheRows() {
        Fixture f;
        f.addAccount();
        const QDateTime now = f.clock->now();
        f.transport->script(
            "GET", u"/v1/apps/app-1/builds"_s,
            {Answer::json(200, page({build(u"b-2"_s, u"12"_s, now, std::nullopt, false),
                                     build(u"b-1"_s, u"11"_s, now.addDays(-1), std::nullopt, false)}))});
        f.transport->script("GET", u"/v1/builds/b-2/buildBetaDetail"_s,
                            {Answer::json(200, JsonApi::single(resource(
                                                   u"buildBetaDetails"_s, u"b-2"_s,
                                                   {{u"internalBuildState"_s, u"IN_BETA_TESTING"_s}})))});
        f.transport->script("GET", u"/v1/builds/b-1/buildBetaDetail"_s,
                            {Answer::json(404, JsonApi::error(u"404"_s, u"Nicht da."_s))});
        VarnisTest::awaitTask(f.model->loadBuilds(true, true));
        QCOMPARE(f.model->betaDetailsByBuildID().size(), 1);
        QCOMPARE(f.model->buildRows()->value(0, TestFlightViewModel::BuildInternalState).toString(),
                 u"Intern: Im Beta-Test"_s);
        QCOMPARE(f.model->buildRows()->value(0, TestFlightViewModel::BuildExternalState).toString(),
                 u"Extern: –"_s);
        QCOMPARE(f.model->buildRows()->value(1, TestFlightViewModel::BuildInternalState).toString(),
                 u"Intern: –"_s);
    }

    // The build is in "Freunde" and not in "Team"; a toggle that Apple refuses leaves the set
    // as it was, one it takes changes it, and the mark of the group under way is gone after both.
    void assignmentFollowsApple_data() {
        QTest::addColumn<QString>("groupID");
        QTest::addColumn<int>("status");
        QTest::addColumn<QStringList>("assignedAfter");
        QTest::addColumn<bool>("fails");
        QTest::newRow("assign refused") << u"g-int"_s << 409 << QStringList{u"g-ext"_s} << true;
        QTest::newRow("assign") << u"g-int"_s << 204 << QStringList{u"g-ext"_s, u"g-int"_s} << false;
        QTest::newRow("withdraw refused") << u"g-ext"_s << 403 << QStringList{u"g-ext"_s} << true;
        QTest::newRow("withdraw") << u"g-ext"_s << 204 << QStringList{} << false;
    }

    void assignmentFollowsApple() {
        QFETCH(QString, groupID);
        QFETCH(int, status);
        QFETCH(QStringList, assignedAfter);
        QFETCH(bool, fails);
        Fixture f;
        f.addAccount();
        f.transport->script(
            "GET", u"/v1/apps/app-1/builds"_s,
            {Answer::json(200, page({build(u"b-1"_s, u"11"_s, f.clock->now(), std::nullopt, false)}))});
        f.transport->script(
            "GET", u"/v1/betaGroups/g-ext/relationships/builds"_s,
            {Answer::json(200, page({QJsonObject{{u"type"_s, u"builds"_s}, {u"id"_s, u"b-1"_s}}}))});
        f.transport->script("GET", u"/v1/betaGroups/g-int/relationships/builds"_s,
                            {Answer::json(200, page({}))});
        const QByteArray body =
            status >= 400 ? JsonApi::error(QString::number(status), u"Nein."_s) : QByteArray();
        f.transport->script(groupID == u"g-ext"_s ? "DELETE" : "POST",
                            u"/v1/betaGroups/"_s + groupID + u"/relationships/builds"_s,
                            {Answer::json(status, body)});
        f.load();
        VarnisTest::awaitTask(f.model->loadBuilds(true, false));
        VarnisTest::awaitTask(f.model->beginAssigningGroups(u"b-1"_s));
        QCOMPARE(f.model->assignedGroupIDs(), QSet<QString>{u"g-ext"_s});
        QCOMPARE(f.model->assignmentRows()->count(), 2);

        VarnisTest::awaitTask(f.model->toggleGroupAssignment(groupID));
        QCOMPARE(f.model->assignedGroupIDs(), QSet<QString>(assignedAfter.cbegin(), assignedAfter.cend()));
        QCOMPARE(f.model->assignmentError().isEmpty(), !fails);
        QCOMPARE(f.model->pendingGroupID(), std::nullopt);
        const int row = f.model->assignmentRows()->indexOfKey(groupID);
        QCOMPARE(f.model->assignmentRows()->value(row, TestFlightViewModel::AssignmentIsAssigned).toBool(),
                 assignedAfter.contains(groupID));
        QCOMPARE(f.writes(), 1);
    }

    // The import goes in chunks of 1000. A refused tester stops it: what went before stays with
    // Apple and is counted, the rest is not sent, and the preview stays for another try.
    void importSendsInChunks_data() {
        QTest::addColumn<int>("count");
        QTest::addColumn<int>("failAt");
        QTest::addColumn<QString>("status");
        QTest::addColumn<QString>("error");
        QTest::newRow("all taken") << 3 << 0 << u"3 Tester an Apple übergeben."_s << QString();
        QTest::newRow("refused in the second chunk")
            << 1001 << 1001 << QString()
            << u"Nach 1000 von 1001 Testern abgebrochen, der Rest wurde nicht gesendet: "_s;
        QTest::newRow("refused in the first chunk")
            << 5 << 3 << QString() << u"Nach 2 von 5 Testern abgebrochen, der Rest wurde nicht gesendet: "_s;
    }

    void importSendsInChunks() {
        QFETCH(int, count);
        QFETCH(int, failAt);
        QFETCH(QString, status);
        QFETCH(QString, error);
        Fixture f;
        f.addAccount();
        f.scriptTesterPosts(failAt);
        f.load();
        f.preview(count);
        const PendingWrite write = f.takeImport();
        QVERIFY(
            write.changes.last().after.startsWith(u"Der Import kostet "_s + QString::number(count).left(1)));
        const int testerReads = f.transport->requests().size();
        VarnisTest::awaitTask(write.perform());

        QCOMPARE(f.sentTesters, failAt ? failAt : count);
        QCOMPARE(f.model->statusMessage(), status);
        QVERIFY2(f.model->addTesterError().startsWith(error), qPrintable(f.model->addTesterError()));
        QCOMPARE(f.model->addTesterError().isEmpty(), error.isEmpty());
        QCOMPARE(f.model->importPreview().has_value(), failAt != 0);
        QVERIFY(!f.model->isImporting());
        QVERIFY(f.state->taskCenter().tasks().isEmpty());
        // After a success the group's testers are read again, past the cache.
        const int readsAfter = f.transport->requests().size() - testerReads - f.sentTesters;
        QCOMPARE(readsAfter, failAt ? 0 : 1);
    }

    // Cancelling in the task bar stops before the next tester; the one under way still counts.
    void cancelStopsTheImport() {
        Fixture f;
        f.addAccount();
        f.scriptTesterPosts(0);
        f.load();
        f.preview(3);
        const PendingWrite write = f.takeImport();
        f.transport->holdReplies(true);
        auto running = write.perform();
        QTRY_COMPARE(f.transport->heldCount(), 1);
        QCOMPARE(f.state->taskCenter().tasks().size(), 1);
        const BackgroundTask task = f.state->taskCenter().tasks().first();
        QVERIFY(task.isCancellable);
        QCOMPARE(task.detail, std::optional<QString>(u"0 von 3 übergeben"_s));
        f.state->taskCenter().cancel(task.id);
        f.transport->holdReplies(false);
        f.transport->releaseHeld();
        VarnisTest::awaitTask(std::move(running));
        QCOMPARE(f.sentTesters, 1);
        QCOMPARE(f.model->statusMessage(), u"Import abgebrochen: 1 von 3 Testern an Apple übergeben."_s);
        QVERIFY(f.model->importPreview().has_value());
        QVERIFY(f.state->taskCenter().tasks().isEmpty());
    }

    // A list of 200,000 lines is read and parsed beside the window's thread: the call returns
    // at once, and the event loop keeps running until the preview is there.
    void largeFileIsReadBesideTheWindow() {
        Fixture f;
        f.state->setDemoModeEnabled(true);
        f.load();
        QFile file(f.dir.filePath(u"gross.csv"_s));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QByteArray text;
        for (int i = 0; i < 200000; ++i) {
            text += i % 3 == 0   ? QByteArray("p") + QByteArray::number(i) + "@example.com;Vor;Nach\n"
                    : i % 3 == 1 ? QByteArray("\"Nach, Vor\",p") + QByteArray::number(i) + "@example.com\r\n"
                                 : QByteArray("p") + QByteArray::number(i) + "@example.com\tVor\n";
        }
        file.write(text);
        file.close();
        int ticks = 0;
        QTimer timer;
        connect(&timer, &QTimer::timeout, [&ticks] { ++ticks; });
        timer.start(0);
        auto reading = f.model->previewImport(QUrl::fromLocalFile(file.fileName()));
        QVERIFY(f.model->isReadingImportFile());
        VarnisTest::awaitTask(std::move(reading));
        QVERIFY(ticks > 0);
        QCOMPARE(f.model->importPreview()->testers.size(), 200000);
        QCOMPARE(f.model->importNameRows()->count(), 200);
        QCOMPARE(f.model->importMoreNames(), u"199800 weitere"_s);
    }

    // A new group is made external by its trimmed name, the list is read past the cache, and
    // the new group is the selected one.
    void createdGroupIsSelected() {
        Fixture f;
        f.addAccount();
        QByteArray sent;
        bool created = false;
        f.transport->route("POST", u"/v1/betaGroups"_s, [&](const HttpRequest& request) {
            sent = request.body;
            created = true;
            return Answer::json(
                201, JsonApi::single(resource(u"betaGroups"_s, u"g-new"_s,
                                              {{u"name"_s, u"Presse"_s}, {u"isInternalGroup"_s, false}})));
        });
        f.transport->route("GET", u"/v1/apps/app-1/betaGroups"_s, [&](const HttpRequest&) {
            QJsonArray groups{resource(u"betaGroups"_s, u"g-ext"_s,
                                       {{u"name"_s, u"Freunde"_s}, {u"isInternalGroup"_s, false}})};
            if (created) {
                groups.append(resource(u"betaGroups"_s, u"g-new"_s,
                                       {{u"name"_s, u"Presse"_s}, {u"isInternalGroup"_s, false}}));
            }
            return Answer::json(200, page(groups));
        });
        f.transport->script("GET", u"/v1/betaGroups/g-new/betaTesters"_s, {Answer::json(200, page({}))});
        f.load();
        QCOMPARE(f.model->groups().size(), 1);
        f.model->setCreatingGroup(true);
        f.model->setNewGroupName(u"  Presse "_s);
        VarnisTest::awaitTask(f.model->createGroup());
        const QJsonObject data = QJsonDocument::fromJson(sent).object()[u"data"_s].toObject();
        QCOMPARE(data[u"attributes"_s][u"name"_s].toString(), u"Presse"_s);
        QCOMPARE(data[u"relationships"_s][u"app"_s][u"data"_s][u"id"_s].toString(), u"app-1"_s);
        QCOMPARE(f.model->groups().size(), 2);
        QCOMPARE(f.model->selectedGroupID(), u"g-new"_s);
        QCOMPARE(f.model->testers().size(), 0);
        QVERIFY(!f.model->isCreatingGroup());
        QCOMPARE(f.model->newGroupName(), QString());
        QCOMPARE(f.model->statusMessage(), u"Gruppe „Presse“ angelegt."_s);
    }

    // The settings go out without the switch Apple does not take here, and Apple's answer
    // replaces the group in the list, the selection and the sheet.
    void settingsReplaceTheGroup() {
        Fixture f;
        f.addAccount();
        QByteArray sent;
        f.transport->route("PATCH", u"/v1/betaGroups/g-ext"_s, [&sent](const HttpRequest& request) {
            sent = request.body;
            return Answer::json(200, JsonApi::single(resource(u"betaGroups"_s, u"g-ext"_s,
                                                              {{u"name"_s, u"Gute Freunde"_s},
                                                               {u"isInternalGroup"_s, false},
                                                               {u"publicLinkEnabled"_s, true},
                                                               {u"hasAccessToAllBuilds"_s, true}})));
        });
        f.load();
        f.model->openGroupSettings(u"g-ext"_s);
        QCOMPARE(f.model->settingsName(), u"Freunde"_s);
        f.model->setSettingsName(u"  Gute Freunde "_s);
        f.model->setSettingsPublicLinkEnabled(true);
        QCOMPARE(f.model->settingsNote(), u"Apple erzeugt den Link, sobald die Änderung gespeichert ist."_s);
        VarnisTest::awaitTask(f.model->saveGroupSettings());

        const QJsonObject attributes =
            QJsonDocument::fromJson(sent).object()[u"data"_s][u"attributes"_s].toObject();
        QCOMPARE(attributes[u"name"_s].toString(), u"Gute Freunde"_s);
        QVERIFY(attributes[u"publicLinkEnabled"_s].toBool());
        QVERIFY(!attributes.contains(u"hasAccessToAllBuilds"_s));
        QCOMPARE(f.model->selectedGroupName(), u"Gute Freunde"_s);
        QCOMPARE(f.model->groupRows()
                     ->value(f.model->groupRows()->indexOfKey(u"g-ext"_s), TestFlightViewModel::GroupName)
                     .toString(),
                 u"Gute Freunde"_s);
        QVERIFY(f.model->groups().first().hasAccessToAllBuilds);
        QCOMPARE(f.model->statusMessage(), u"Gruppe „Gute Freunde“ aktualisiert."_s);
        QCOMPARE(f.model->settingsGroupID(), QString());
        QCOMPARE(f.model->groupActionError(), QString());
    }

    // A file that cannot be read says why in German and leaves the preview as it was.
    void unreadableFileKeepsThePreview() {
        Fixture f;
        f.state->setDemoModeEnabled(true);
        f.load();
        f.preview(2);
        const QString missing = f.dir.filePath(u"fehlt.csv"_s);
        VarnisTest::awaitTask(f.model->previewImport(QUrl::fromLocalFile(missing)));
        QCOMPARE(f.model->addTesterError(),
                 u"Die Datei konnte nicht gelesen werden: Unter „"_s + missing + u"“ gibt es keine Datei."_s);
        QCOMPARE(f.model->importPreview()->testers.size(), 2);
        QCOMPARE(f.model->importFooter(), u"2 Tester bereit"_s);
    }
};

QTEST_GUILESS_MAIN(TestFlightViewModelTest)
#include "tst_testflightviewmodel.moc"
