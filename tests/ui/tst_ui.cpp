#include "UiFixture.h"

#include "api/AccountStore.h"
#include "api/PendingWrite.h"
#include "api/WriteConfirmationViewModel.h"
#include "app/UiShell.h"
#include "metadata/MetadataViewModel.h"
#include "platform/Clock.h"
#include "platform/QtHttpTransport.h"
#include "support/AwaitTask.h"
#include "support/FakeTransport.h"
#include "support/MemorySecretStore.h"
#include "support/TestKeys.h"
#include "support/TestServer.h"
#include "workspace/AppListModel.h"
#include "workspace/AppPreferencesStore.h"
#include "workspace/AppState.h"
#include "workspace/WorkspaceViewModel.h"

#include <QDir>
#include <QQmlApplicationEngine>
#include <QQuickStyle>
#include <QQuickWindow>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

class UiTest : public UiFixture {
    Q_OBJECT

    std::unique_ptr<TestServer> m_server;

private Q_SLOTS:
    void initTestCase() { installMessageHandler(); }
    void init() { initFixture(); }
    void cleanup() {
        cleanupFixture();
        m_server.reset();
    }

    void demoModeShowsEveryScreen() {
        start(demoPlatform());
        m_state->setDemoModeEnabled(true);
        show();
        WorkspaceViewModel* workspace = m_shell->workspace();
        QTRY_COMPARE(workspace->allApps()->count(), 4);
        QVERIFY(workspace->isDemoActive());
        QQuickWindow* main = m_shell->mainWindow();
        shoot(main, u"main-demo"_s);

        for (int row = 0; row < workspace->allApps()->count(); ++row) {
            const QString id = workspace->allApps()->index(row).data(AppListModel::AppIdRole).toString();
            workspace->selectApp(id);
            QCOMPARE(workspace->selectedAppID(), id);
            shoot(main, u"app-%1-overview"_s.arg(row));
        }
        for (const QVariant& entry : workspace->sections()) {
            const QString raw = entry.toMap().value(u"raw"_s).toString();
            workspace->selectSection(raw);
            QCOMPARE(workspace->selectedSection(), raw);
            shoot(main, u"section-"_s + raw);
        }

        // Keyboard: the "Gehe zu" shortcuts reach the sections.
        main->requestActivate();
        QVERIFY(QTest::qWaitForWindowActive(main));
        QTest::keyClick(main, Qt::Key_2, Qt::ControlModifier);
        QTRY_COMPARE(workspace->selectedSection(), u"appStoreOptimization"_s);
        QTest::keyClick(main, Qt::Key_BracketLeft, Qt::ControlModifier);
        QTRY_VERIFY(!workspace->hasSelectedApp());
        workspace->selectApp(workspace->allApps()->index(0).data(AppListModel::AppIdRole).toString());

        m_state->preferences().toggleFavorite(workspace->selectedAppID());
        QTRY_COMPARE(workspace->favoriteApps()->count(), 1);
        shoot(main, u"favourites-and-recent"_s);

        QMetaObject::invokeMethod(main, "openSettings");
        QQuickWindow* settings = m_shell->window(u"settingsWindow"_s);
        QVERIFY(settings);
        QVERIFY(QTest::qWaitForWindowExposed(settings));
        auto* tabs = settings->findChild<QObject*>(u"settingsTabs"_s);
        QVERIFY(tabs);
        for (int tab = 0; tab < 3; ++tab) {
            tabs->setProperty("currentIndex", tab);
            shoot(settings, u"settings-%1"_s.arg(tab));
        }
        settings->hide();

        QMetaObject::invokeMethod(main, "openChangeLog");
        QQuickWindow* changeLog = m_shell->window(u"changeLogWindow"_s);
        QVERIFY(changeLog);
        QVERIFY(QTest::qWaitForWindowExposed(changeLog));
        shoot(changeLog, u"change-log"_s);
        changeLog->hide();

        PendingWrite write;
        write.title = u"Einladung zurückziehen"_s;
        write.explanation = u"Die Einladung an anna@example.com wird ungültig."_s;
        write.changes = {
            WriteChange{QUuid::createUuid(), u"Einladung"_s, u"anna@example.com"_s, u"zurückgezogen"_s}};
        write.confirmLabel = u"Zurückziehen"_s;
        write.isDestructive = true;
        write.perform = []() -> QCoro::Task<> {
            co_return;
        };
        m_shell->writeConfirmation()->present(write);
        shoot(main, u"write-confirmation"_s);
        m_shell->writeConfirmation()->cancel();

        workspace->setOnboardingPresented(true);
        shoot(main, u"onboarding"_s);
        workspace->setOnboardingPresented(false);

        workspace->openInNewWindow();
        QQuickWindow* appWindow = nullptr;
        for (QWindow* w : QGuiApplication::topLevelWindows()) {
            if (w->objectName() == u"appWindow"_s) {
                appWindow = qobject_cast<QQuickWindow*>(w);
            }
        }
        QVERIFY(appWindow);
        QVERIFY(QTest::qWaitForWindowExposed(appWindow));
        shoot(appWindow, u"app-window"_s);
        appWindow->close();
    }

    void demoStoreTextsKeepEditsAcrossLanguages() {
        start(demoPlatform());
        m_state->setDemoModeEnabled(true);
        show();
        WorkspaceViewModel* workspace = m_shell->workspace();
        QTRY_COMPARE(workspace->allApps()->count(), 4);
        workspace->selectApp(workspace->allApps()->index(0).data(AppListModel::AppIdRole).toString());
        workspace->selectSection(u"appStoreOptimization"_s);
        MetadataViewModel* metadata = workspace->metadataModel();
        QVERIFY(metadata);
        QTRY_COMPARE(metadata->localizations().size(), 2);
        const QString first = *metadata->selectedLocale();
        const QString other = metadata->localizations()[0].locale == first
                                  ? metadata->localizations()[1].locale
                                  : metadata->localizations()[0].locale;
        metadata->setField(u"description"_s,
                           u"Ein neuer Text, der länger als zweihundert Zeichen werden soll."_s);
        QVERIFY(metadata->hasUnsavedChanges());
        shoot(m_shell->mainWindow(), u"store-texts-edited"_s);

        metadata->selectLocale(other);
        metadata->selectLocale(first);
        QVERIFY(metadata->restoredDraftDate().has_value());
        QCOMPARE(metadata->editBuffer()->description,
                 u"Ein neuer Text, der länger als zweihundert Zeichen werden soll."_s);

        // Demo mode sends nothing and says so.
        VarnisTest::awaitTask(metadata->save());
        QCOMPARE(
            metadata->saveError(),
            std::optional<QString>(u"Im Demo-Modus werden keine Daten an App Store Connect geschickt."_s));
        shoot(m_shell->mainWindow(), u"store-texts-demo-save"_s);
    }

    void emptyStateWithoutAccountAndDemo() {
        start(demoPlatform());
        show();
        QVERIFY(m_shell->workspace()->showsEmptyState());
        shoot(m_shell->mainWindow(), u"empty-state"_s);
    }

    void environmentAccountListsTheServersApps() {
        m_server = std::make_unique<TestServer>();
        m_server->script("GET", u"/v1/apps"_s, {TestServer::Reply::json(200, R"({"data":[
                            {"type":"apps","id":"11","attributes":{"name":"Nordlicht","bundleId":"com.n"}},
                            {"type":"apps","id":"12","attributes":{"name":"Brandung","bundleId":"com.b"}}]})")});
        Platform platform = demoPlatform();
        platform.transport = std::make_shared<QtHttpTransport>(platform.clock);
        platform.apiRoot = m_server->baseUrl();
        start(platform);
        Account account;
        account.id = QUuid::createUuid();
        account.name = u"Umgebung"_s;
        account.issuerID = u"57246542-96fe-1a63-e053-0824d011072a"_s;
        account.keyID = u"ABCDE12345"_s;
        m_state->accountStore().useEphemeralAccount(account, makeTestKey().privateKeyPEM);
        show();
        AppListModel* apps = m_shell->workspace()->allApps();
        QTRY_COMPARE(apps->count(), 2);
        QCOMPARE(apps->index(0).data(AppListModel::NameRole).toString(), u"Brandung"_s);
        QCOMPARE(apps->index(1).data(AppListModel::NameRole).toString(), u"Nordlicht"_s);
        QVERIFY(!m_shell->workspace()->isDemoActive());
        shoot(m_shell->mainWindow(), u"main-server-apps"_s);
    }
};

QTEST_MAIN(UiTest)
#include "tst_ui.moc"
