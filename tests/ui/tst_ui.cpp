#include "UiFixture.h"

#include "api/AccountStore.h"
#include "api/PendingWrite.h"
#include "api/RowListModel.h"
#include "api/WriteConfirmationViewModel.h"
#include "app/UiShell.h"
#include "metadata/MetadataViewModel.h"
#include "platform/Clock.h"
#include "platform/QtHttpTransport.h"
#include "release/VersionsListViewModel.h"
#include "support/AwaitTask.h"
#include "support/FakeTransport.h"
#include "support/MemorySecretStore.h"
#include "support/TestKeys.h"
#include "support/TestServer.h"
#include "workspace/AppListModel.h"
#include "workspace/AppPreferencesStore.h"
#include "workspace/AppState.h"
#include "workspace/SectionHost.h"
#include "workspace/SidebarSection.h"
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

    // Every screen of the demo, reached the way a person reaches it: apps and sections by mouse,
    // the rest by the window's shortcuts.
    void demoModeShowsEveryScreen() {
        startDemo();
        WorkspaceViewModel* workspace = m_shell->workspace();
        QTRY_COMPARE(workspace->allApps()->count(), 4);
        QVERIFY(workspace->isDemoActive());
        QQuickWindow* main = mainWindow();
        QTRY_VERIFY(!main->icon().pixmap(64).isNull());
        shoot(main, u"main-demo"_s);

        for (int row = 0; row < workspace->allApps()->count(); ++row) {
            const QString id = workspace->allApps()->index(row).data(AppListModel::AppIdRole).toString();
            QVERIFY(clickRow(main, u"allAppsList"_s, row));
            QTRY_COMPARE(workspace->selectedAppID(), id);
            shoot(main, u"app-%1-overview"_s.arg(row));
        }
        for (const SidebarSection section : SidebarSections::all()) {
            const QString raw = SidebarSections::rawValue(section);
            QVERIFY(clickNamed(main, u"section_"_s + raw));
            QTRY_COMPARE(workspace->selectedSection(), raw);
            shoot(main, u"section-"_s + raw);
        }

        QTest::keyClick(main, Qt::Key_2, Qt::ControlModifier);
        QTRY_COMPARE(workspace->selectedSection(), u"appStoreOptimization"_s);
        // The menu "Gehe zu" opens with its mnemonic and shows each entry's key combination.
        QTest::keyClick(main, Qt::Key_G, Qt::AltModifier);
        QVERIFY(findText(main, u"Ctrl+5"_s));
        shoot(main, u"menu-go-to"_s);
        QTest::keyClick(main, Qt::Key_Escape);
        QTest::keyClick(main, Qt::Key_BracketLeft, Qt::ControlModifier);
        QTRY_VERIFY(!workspace->hasSelectedApp());

        // The star marks a favourite without selecting the app.
        QQuickItem* first = rowItem(main, u"allAppsList"_s, 0);
        QVERIFY(first);
        QQuickItem* star = childNamed(first, u"favoriteStar"_s);
        QVERIFY(star);
        click(star);
        QTRY_VERIFY(workspace->allApps()->index(0).data(AppListModel::IsFavoriteRole).toBool());
        QVERIFY(!workspace->hasSelectedApp());
        // The favourites block appears once the pointer leaves the lists, not under it.
        QCOMPARE(workspace->favoriteApps()->count(), 0);
        QTest::mouseMove(main, QPoint(main->width() - 20, main->height() / 2));
        QTRY_COMPARE(workspace->favoriteApps()->count(), 1);
        shoot(main, u"favourites-and-recent"_s);

        QTest::keyClick(main, Qt::Key_Comma, Qt::ControlModifier);
        QQuickWindow* settings = nullptr;
        QTRY_VERIFY((settings = topLevel(u"settingsWindow"_s)));
        QVERIFY(QTest::qWaitForWindowExposed(settings));
        shoot(settings, u"settings"_s);
        settings->close();

        activate(main);
        QTest::keyClick(main, Qt::Key_L, Qt::ControlModifier | Qt::ShiftModifier);
        QQuickWindow* changeLog = nullptr;
        QTRY_VERIFY((changeLog = topLevel(u"changeLogWindow"_s)));
        QVERIFY(QTest::qWaitForWindowExposed(changeLog));
        shoot(changeLog, u"change-log"_s);
        changeLog->close();
    }

    // An account with one app in two languages, answered by a scripted Apple.
    void startWithTwoLanguages(QList<FakeTransport::Answer> versionAnswers = {}) {
        Platform platform = demoPlatform();
        auto apple = std::static_pointer_cast<FakeTransport>(platform.transport);
        using Answer = FakeTransport::Answer;
        const Answer versions =
            Answer::json(200, R"({"data":[{"type":"appStoreVersions","id":"v1","attributes":{
            "versionString":"2.0","appStoreState":"PREPARE_FOR_SUBMISSION","platform":"IOS"}}]})");
        versionAnswers.append(versions);
        apple->script("GET", u"/v1/apps"_s, {Answer::json(200, R"({"data":[{"type":"apps","id":"app-1",
            "attributes":{"name":"Kladde","bundleId":"com.example.kladde","primaryLocale":"en-US"}}]})")});
        apple->script("GET", u"/v1/apps/app-1/appStoreVersions"_s, versionAnswers);
        apple->script("GET", u"/v1/appStoreVersions/v1/build"_s, {Answer::json(200, R"({"data":null})")});
        apple->script("GET", u"/v1/apps/app-1/appInfos"_s,
                      {Answer::json(200, R"({"data":[{"type":"appInfos","id":"info-1","attributes":{}}]})")});
        apple->script("GET", u"/v1/appInfos/info-1/appInfoLocalizations"_s, {Answer::json(200, R"({"data":[
            {"type":"appInfoLocalizations","id":"i-en","attributes":{"locale":"en-US","name":"Kladde"}},
            {"type":"appInfoLocalizations","id":"i-de","attributes":{"locale":"de-DE","name":"Kladde"}}]})")});
        apple->script("GET", u"/v1/appStoreVersions/v1/appStoreVersionLocalizations"_s,
                      {Answer::json(200, R"({"data":[
            {"type":"appStoreVersionLocalizations","id":"v-en","attributes":{"locale":"en-US","description":"Notes."}},
            {"type":"appStoreVersionLocalizations","id":"v-de","attributes":{"locale":"de-DE","description":"Notizen."}}]})")});
        start(platform);
        VarnisTest::awaitTask(
            m_state->accountStore().addAccount(u"Studio"_s, u"57246542-96fe-1a63-e053-0824d011072a"_s,
                                               u"ABCDE12345"_s, makeTestKey().privateKeyPEM));
        show();
        QTRY_COMPARE(m_shell->workspace()->allApps()->count(), 1);
    }

    // A failed load says what failed with Apple's words, and offers to try again.
    void aFailedSectionOffersToTryAgain_data() {
        QTest::addColumn<QString>("section");
        QTest::addColumn<QString>("retryButton");
        QTest::addColumn<QString>("leadIn");
        QTest::newRow("versions") << u"releases"_s << u"retryVersionsButton"_s
                                  << u"Versionen konnten nicht geladen werden (HTTP 404): "_s;
        QTest::newRow("store texts") << u"appStoreOptimization"_s << u"retryStoreTextsButton"_s
                                     << u"Die Store-Texte konnten nicht geladen werden (HTTP 404): "_s;
    }

    void aFailedSectionOffersToTryAgain() {
        QFETCH(QString, section);
        QFETCH(QString, retryButton);
        QFETCH(QString, leadIn);
        startWithTwoLanguages({FakeTransport::Answer::json(
            404,
            R"({"errors":[{"status":"404","code":"NOT_FOUND","title":"Nicht gefunden","detail":"Die App fehlt."}]})")});
        QQuickWindow* main = mainWindow();
        QVERIFY(clickRow(main, u"allAppsList"_s, 0));
        QVERIFY(clickNamed(main, u"section_"_s + section));
        QVERIFY(findItem(main, retryButton));
        QVERIFY(findText(main, leadIn + u"Die App fehlt."_s));
        shoot(main, u"error-"_s + section);
        QVERIFY(clickNamed(main, retryButton));
        QTRY_VERIFY(!shownItem(main, retryButton));
    }

    // Removing a language asks first, in whichever window it was asked for: the second window
    // has its own sheet.
    void bothWindowsConfirmTheRemovalOfALanguage() {
        startWithTwoLanguages();
        WorkspaceViewModel* workspace = m_shell->workspace();
        QQuickWindow* main = mainWindow();
        QVERIFY(clickRow(main, u"allAppsList"_s, 0));
        QTRY_VERIFY(workspace->hasSelectedApp());
        QTest::keyClick(main, Qt::Key_2, Qt::ControlModifier);
        QVERIFY(findItem(main, u"language_de-DE"_s) || findItem(main, u"languageList"_s));
        QVERIFY(clickNamed(main, u"removeLanguageButton"_s));
        QVERIFY(findItem(main, u"cancelWriteButton"_s));
        shoot(main, u"write-confirmation"_s);
        QVERIFY(clickNamed(main, u"cancelWriteButton"_s));
        QTRY_VERIFY(!m_shell->writeConfirmation()->isPresented());

        QTest::keyClick(main, Qt::Key_N, Qt::ControlModifier | Qt::ShiftModifier);
        QQuickWindow* appWindow = nullptr;
        QTRY_VERIFY((appWindow = topLevel(u"appWindow"_s)));
        QVERIFY(QTest::qWaitForWindowExposed(appWindow));
        activate(appWindow);
        QTest::keyClick(appWindow, Qt::Key_2, Qt::ControlModifier);
        QVERIFY(clickNamed(appWindow, u"removeLanguageButton"_s));
        QVERIFY(findItem(appWindow, u"cancelWriteButton"_s));
        QVERIFY(!m_shell->writeConfirmation()->isPresented());
        shoot(appWindow, u"app-window-write-confirmation"_s);
        QVERIFY(clickNamed(appWindow, u"cancelWriteButton"_s));
        appWindow->close();
    }

    // The list of an account that is no longer selected must not replace the list of the one that
    // is: A's answer is held back, B is chosen in the switcher and answers, then A's comes.
    void aLateListOfAnotherAccountIsDropped() {
        Platform platform = demoPlatform();
        auto apple = std::static_pointer_cast<FakeTransport>(platform.transport);
        const auto appsOf = [](const HttpRequest& request) {
            QByteArray token;
            for (const auto& [name, value] : request.headers) {
                if (name.compare("Authorization", Qt::CaseInsensitive) == 0) {
                    token = value.mid(int(qstrlen("Bearer ")));
                }
            }
            const QByteArray header =
                QByteArray::fromBase64(token.split('.').value(0), QByteArray::Base64UrlEncoding);
            const bool isB = header.contains("BBBBB22222");
            return FakeTransport::Answer::json(
                200,
                isB ? R"({"data":[{"type":"apps","id":"b1","attributes":{"name":"Brandung","bundleId":"com.b"}}]})"
                    : R"({"data":[{"type":"apps","id":"a1","attributes":{"name":"Anker","bundleId":"com.a"}}]})");
        };
        apple->route("GET", u"/v1/apps"_s, appsOf);
        start(platform);
        const QByteArray key = makeTestKey().privateKeyPEM;
        VarnisTest::awaitTask(m_state->accountStore().addAccount(
            u"A"_s, u"57246542-96fe-1a63-e053-0824d011072a"_s, u"AAAAA11111"_s, key));
        VarnisTest::awaitTask(m_state->accountStore().addAccount(
            u"B"_s, u"57246542-96fe-1a63-e053-0824d011072b"_s, u"BBBBB22222"_s, key));
        m_state->accountStore().setSelectedAccountID(m_state->accountStore().accounts().first().id);
        apple->holdReplies(true);
        show();
        QTRY_COMPARE(apple->heldCount(), 1);
        apple->holdReplies(false);

        QQuickWindow* main = mainWindow();
        QVERIFY(clickNamed(main, u"accountSwitcher"_s));
        QTest::keyClick(main, Qt::Key_Down);
        QTest::keyClick(main, Qt::Key_Return);
        AppListModel* apps = m_shell->workspace()->allApps();
        QTRY_COMPARE(apps->count(), 1);
        QTRY_COMPARE(apps->index(0).data(AppListModel::NameRole).toString(), u"Brandung"_s);
        apple->releaseHeld();
        QTest::qWait(0);
        QCoreApplication::processEvents();
        QCOMPARE(apps->index(0).data(AppListModel::NameRole).toString(), u"Brandung"_s);
        QVERIFY(!m_shell->workspace()->isLoadingApps());
    }

    // The keyboard alone: type a filter, reach the list with Tab, choose with Return, go on to the
    // sidebar with Tab and choose a section there.
    void keyboardReachesAppsAndSections() {
        startDemo();
        WorkspaceViewModel* workspace = m_shell->workspace();
        QTRY_COMPARE(workspace->allApps()->count(), 4);
        QQuickWindow* main = mainWindow();
        QVERIFY(clickNamed(main, u"appFilterField"_s));
        typeText(main, u"FJORD"_s);
        QTRY_COMPARE(workspace->allApps()->count(), 1);
        QTest::keyClick(main, Qt::Key_Down);
        QQuickItem* list = findItem(main, u"allAppsList"_s);
        QTRY_VERIFY(list->hasActiveFocus());
        QTest::keyClick(main, Qt::Key_Down);
        QTest::keyClick(main, Qt::Key_Return);
        QTRY_COMPARE(workspace->selectedAppID(), u"demo-fjord-weather"_s);
        QTest::keyClick(main, Qt::Key_Tab);
        QQuickItem* sidebar = findItem(main, u"sectionList"_s);
        QTRY_VERIFY(sidebar->hasActiveFocus());
        for (int i = 0; i < 4; ++i) {
            QTest::keyClick(main, Qt::Key_Down);
        }
        QTest::keyClick(main, Qt::Key_Return);
        QTRY_COMPARE(workspace->selectedSection(), u"releases"_s);
        shoot(main, u"keyboard-sidebar"_s);
        // Esc in the filter field shows every app again.
        QVERIFY(clickNamed(main, u"appFilterField"_s));
        QTest::keyClick(main, Qt::Key_Escape);
        QTRY_COMPARE(workspace->allApps()->count(), 4);
    }

    // At the smallest size the window allows, the panes sit side by side and every built section
    // fits; the screenshots show the rest.
    void smallestWindowKeepsThePanesApart() {
        startDemo();
        QQuickWindow* main = mainWindow();
        QTRY_COMPARE(m_shell->workspace()->allApps()->count(), 4);
        main->resize(main->minimumSize());
        QTRY_COMPARE(main->size(), QSize(900, 560));
        QVERIFY(clickRow(main, u"allAppsList"_s, 0));
        for (const QString& raw : {u"overview"_s, u"appStoreOptimization"_s, u"releases"_s}) {
            QVERIFY(clickNamed(main, u"section_"_s + raw));
            QQuickItem* list = findItem(main, u"allAppsList"_s);
            QQuickItem* sidebar = findItem(main, u"sectionList"_s);
            QVERIFY(list && sidebar);
            const QRectF listRect = list->mapRectToScene(list->boundingRect());
            const QRectF sidebarRect = sidebar->mapRectToScene(sidebar->boundingRect());
            QVERIFY(listRect.right() <= sidebarRect.left());
            QVERIFY(sidebarRect.right() < main->width() - 300);
            shoot(main, u"smallest-"_s + raw);
        }
        // The second window closes with the platform's close key.
        QTest::keyClick(main, Qt::Key_N, Qt::ControlModifier | Qt::ShiftModifier);
        QQuickWindow* second = nullptr;
        QTRY_VERIFY((second = topLevel(u"appWindow"_s)));
        activate(second);
        QTest::keyClick(second, Qt::Key_W, Qt::ControlModifier);
        QTRY_VERIFY(!topLevel(u"appWindow"_s));
    }

    // Choosing an app, its overview and "Alle Apps" in turn, by mouse and keyboard: the overview's
    // layout once outlived its rows and the window crashed by the second or third round.
    void overviewAndAllAppsInTurn() {
        startDemo();
        WorkspaceViewModel* workspace = m_shell->workspace();
        QTRY_COMPARE(workspace->allApps()->count(), 4);
        QQuickWindow* main = mainWindow();
        for (int round = 0; round < 6; ++round) {
            QVERIFY(clickRow(main, u"allAppsList"_s, round % 4));
            QTRY_VERIFY(workspace->hasSelectedApp());
            QTest::keyClick(main, Qt::Key_1, Qt::ControlModifier);
            QTRY_COMPARE(workspace->selectedSection(), u"overview"_s);
            QVERIFY(findItem(main, u"overviewPage"_s));
            QTest::keyClick(main, Qt::Key_BracketLeft, Qt::ControlModifier);
            QTRY_VERIFY(!workspace->hasSelectedApp());
            QTest::qWait(0);
        }
    }

    void emptyStateWithoutAccountAndDemo() {
        start(demoPlatform());
        show();
        QVERIFY(m_shell->workspace()->showsEmptyState());
        shoot(mainWindow(), u"empty-state"_s);
        QVERIFY(clickNamed(mainWindow(), u"showOnboardingButton"_s));
        QTRY_VERIFY(m_shell->workspace()->isOnboardingPresented());
        shoot(mainWindow(), u"onboarding"_s);
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
