#include "api/AccountStore.h"
#include "api/AppStoreConnectClient.h"
#include "api/DiskCache.h"
#include "fixtures/JsonApi.h"
#include "platform/Clock.h"
#include "support/AwaitTask.h"
#include "support/FakeTransport.h"
#include "support/MemorySecretStore.h"
#include "support/TestKeys.h"
#include "support/TestPlatform.h"
#include "workspace/AppPreferencesStore.h"
#include "workspace/AppState.h"
#include "workspace/AppsService.h"
#include "workspace/BackgroundSettingsViewModel.h"
#include "workspace/MockData.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMetaProperty>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using VarnisTest::awaitTask;

namespace {

struct Fixture : TestPlatform {
    QByteArray pem = makeTestKey().privateKeyPEM;
    std::unique_ptr<AppState> state;

    Fixture() { state = std::make_unique<AppState>(platform(), AppState::Options{settings}); }

    Account addAccount(QString name) {
        const QString issuer = u"57246542-96fe-1a63-e053-0824d011072a"_s;
        const QString keyID = u"ABCDE12345"_s;
        auto task = state->accountStore().addAccount(name, issuer, keyID, pem);
        return awaitTask(std::move(task));
    }

    void answerApps(const QStringList& names) {
        transport->script("GET", u"/v1/apps"_s, {FakeTransport::Answer::json(200, JsonApi::apps(names))});
    }

    void loadApps(bool forceRefresh) {
        auto task = state->loadApps(forceRefresh);
        awaitTask(std::move(task));
    }
};

QStringList names(const QList<ManagedApp>& apps) {
    QStringList result;
    for (const auto& app : apps) {
        result.append(app.name);
    }
    return result;
}

ManagedApp app(QString id, std::optional<QUuid> accountID = std::nullopt) {
    ManagedApp a;
    a.id = id;
    a.name = u"App "_s + id;
    a.bundleID = u"com.example."_s + id;
    a.accountID = accountID;
    return a;
}

} // namespace

class TestAppState : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void demoWithoutAccountSendsNothing();
    void demoWithAccountRunsRealPath();
    void cachedListStaysBesideNetworkError();
    void allAccountsWithOneMissingKey();
    void emptyAnswerKeepsOlderList();
    void selectingSelectedAccountDoesNothing();
    void appsServiceCache();
    void diskCopyHasNoAccountID();
    void writeBlockedReason_data();
    void writeBlockedReason();
    void selectApp_data();
    void selectApp();
    void recentAppsKeepEight();
    void refreshInterval_data();
    void refreshInterval();
    void backgroundSettingsTellWhatMoved_data();
    void backgroundSettingsTellWhatMoved();
};

void TestAppState::demoWithoutAccountSendsNothing() {
    Fixture f;
    QSignalSpy loading(f.state.get(), &AppState::loadingChanged);
    f.state->setDemoModeEnabled(true);
    f.loadApps(true);
    QCOMPARE(f.state->apps(), MockData::apps());
    QCOMPARE(f.state->apps().size(), 4);
    QCOMPARE(loading.count(), 0);
    QVERIFY(!f.state->isLoadingApps());
    QCOMPARE(f.state->appsError(), std::nullopt);
    QCOMPARE(f.transport->requestCount(), 0);
    QCOMPARE(f.secrets->callCount(), 0);
}

void TestAppState::demoWithAccountRunsRealPath() {
    Fixture f;
    const Account account = f.addAccount(u"Echt"_s);
    f.answerApps({u"Wirklich"_s});
    f.state->setDemoModeEnabled(true);
    QSignalSpy loading(f.state.get(), &AppState::loadingChanged);
    f.loadApps(false);
    QCOMPARE(names(f.state->apps()), QStringList{u"Wirklich"_s});
    QCOMPARE(f.state->apps().first().accountID, std::optional<QUuid>(account.id));
    // One account loaded: no name stamp.
    QCOMPARE(f.state->apps().first().accountName, std::nullopt);
    QCOMPARE(loading.count(), 2);
    QCOMPARE(f.transport->requestsTo("GET", u"/v1/apps"_s).size(), 1);
    VARNIS_VERIFY_CONTRACT(*f.transport);
}

void TestAppState::cachedListStaysBesideNetworkError() {
    Fixture f;
    const Account account = f.addAccount(u"Studio Nord"_s);
    const QList<ManagedApp> cached{app(u"1"_s), app(u"2"_s)};
    DiskCache(f.platform().paths.cacheDirectory(), f.clock)
        .storeList(AppsService::diskKey(account.id), cached);
    f.clock->advance(2 * 3600);
    f.transport->failWith("GET", u"/v1/apps"_s, u"Keine Verbindung zum Internet."_s);

    QSignalSpy loading(f.state.get(), &AppState::loadingChanged);
    f.loadApps(false);
    QCOMPARE(f.state->apps(), cached);
    QCOMPARE(f.state->appsFromCacheAge(), std::optional<QString>(u"vor 2 Stunden"_s));
    QCOMPARE(f.state->appsError(),
             std::optional<QString>(u"Studio Nord: Netzwerkfehler: Keine Verbindung zum Internet."_s));
    QVERIFY(!f.state->isLoadingApps());
    QCOMPARE(loading.count(), 2);
}

void TestAppState::allAccountsWithOneMissingKey() {
    Fixture f;
    f.state->preferences().setShowsAppsOfAllAccounts(true);
    const Account broken = f.addAccount(u"Alt"_s);
    const Account good = f.addAccount(u"Neu"_s);
    QMap<QString, QByteArray> keys = f.secrets->contents();
    keys.remove(broken.idText());
    f.secrets->setContents(keys);
    f.answerApps({u"zebra"_s, u"Birne"_s, u"Zebra"_s, u"Äpfel"_s, u"apfel"_s, u"Ähre"_s});

    f.loadApps(true);
    // German collation: umlauts sort with their base letter, case only breaks ties (lower first).
    QCOMPARE(names(f.state->apps()),
             (QStringList{u"Ähre"_s, u"apfel"_s, u"Äpfel"_s, u"Birne"_s, u"zebra"_s, u"Zebra"_s}));
    for (const auto& a : f.state->apps()) {
        QCOMPARE(a.accountID, std::optional<QUuid>(good.id));
        QCOMPARE(a.accountName, std::optional<QString>(u"Neu"_s));
    }
    QCOMPARE(f.state->appsError(), std::optional<QString>(u"Alt: Kein Eintrag im Schlüsselbund gefunden."_s));
    QCOMPARE(f.state->appsFromCacheAge(), std::nullopt);
    QCOMPARE(f.transport->requestCount(), 1);
}

void TestAppState::emptyAnswerKeepsOlderList() {
    Fixture f;
    f.addAccount(u"A"_s);
    f.answerApps({u"Alpha"_s, u"Beta"_s});
    f.loadApps(true);
    const QList<ManagedApp> older = f.state->apps();
    QCOMPARE(older.size(), 2);

    f.answerApps({});
    f.loadApps(true);
    QCOMPARE(f.transport->requestCount(), 2);
    QCOMPARE(f.state->apps(), older);
    QCOMPARE(f.state->appsError(), std::nullopt);
    QVERIFY(!f.state->isLoadingApps());
}

void TestAppState::selectingSelectedAccountDoesNothing() {
    Fixture f;
    const Account account = f.addAccount(u"A"_s);
    f.answerApps({u"Alpha"_s});
    f.loadApps(false);
    f.state->selectApp(f.state->apps().first());
    const auto apps = f.state->apps();
    const auto selected = f.state->selectedApp();
    f.transport->clearRequests();
    QSignalSpy appsChanged(f.state.get(), &AppState::appsChanged);

    f.state->selectAccount(account);
    QCoreApplication::processEvents();
    QCOMPARE(f.transport->requestCount(), 0);
    QCOMPARE(f.state->apps(), apps);
    QCOMPARE(f.state->selectedApp(), selected);
    QCOMPARE(appsChanged.count(), 0);
}

void TestAppState::appsServiceCache() {
    Fixture f;
    const Account account = f.addAccount(u"A"_s);
    f.answerApps({u"Alpha"_s});
    auto client = awaitTask(f.state->accountStore().makeClient(account));
    AppsService& service = f.state->appsService();
    const auto fetch = [&](bool force) {
        auto task = service.apps(account, client, force);
        return awaitTask(std::move(task));
    };

    QCOMPARE(names(fetch(false)), QStringList{u"Alpha"_s});
    QCOMPARE(f.transport->requestCount(), 1);
    const auto query = f.transport->requests().first().url.query();
    QCOMPARE(query, u"limit=200&sort=name"_s);

    f.clock->advance(119.9);
    fetch(false);
    QCOMPARE(f.transport->requestCount(), 1);
    f.clock->advance(0.1);
    fetch(false);
    QCOMPARE(f.transport->requestCount(), 2);
    fetch(true);
    QCOMPARE(f.transport->requestCount(), 3);
    VARNIS_VERIFY_CONTRACT(*f.transport);
}

void TestAppState::diskCopyHasNoAccountID() {
    Fixture f;
    const Account account = f.addAccount(u"A"_s);
    f.answerApps({u"Alpha"_s});
    f.loadApps(false);
    QCOMPARE(f.state->apps().first().accountID, std::optional<QUuid>(account.id));

    QFile file(f.state->appsService().disk().fileForKey(AppsService::diskKey(account.id)));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QJsonArray stored = QJsonDocument::fromJson(file.readAll()).object().value(u"value"_s).toArray();
    QCOMPARE(stored.size(), 1);
    QVERIFY(!stored.first().toObject().contains(u"accountID"_s));
    QVERIFY(!stored.first().toObject().contains(u"accountName"_s));
}

void TestAppState::writeBlockedReason_data() {
    QTest::addColumn<bool>("hasAccount");
    QTest::addColumn<bool>("readOnly");
    QTest::addColumn<bool>("demo");
    QTest::addColumn<QString>("reason"); // null: writing allowed
    const QString readOnly =
        u"Dieser Account steht auf Nur-Lesen. Der Schalter sitzt in den Einstellungen."_s;
    QTest::newRow("read-only wins over demo") << true << true << true << readOnly;
    QTest::newRow("read-only") << true << true << false << readOnly;
    QTest::newRow("no account, demo") << false << false << true << QString();
    QTest::newRow("no account") << false << false << false
                                << u"Es ist kein App Store Connect Account ausgewählt."_s;
    QTest::newRow("account, demo") << true << false << true << QString();
    QTest::newRow("account") << true << false << false << QString();
}

void TestAppState::writeBlockedReason() {
    QFETCH(bool, hasAccount);
    QFETCH(bool, readOnly);
    QFETCH(bool, demo);
    QFETCH(QString, reason);
    Fixture f;
    if (hasAccount) {
        Account account = f.addAccount(u"A"_s);
        account.isReadOnly = readOnly;
        f.state->accountStore().updateAccount(account);
    }
    f.state->setDemoModeEnabled(demo);
    QCOMPARE(f.state->writeBlockedReason(), reason.isNull() ? std::nullopt : std::optional<QString>(reason));
}

void TestAppState::selectApp_data() {
    QTest::addColumn<QString>("owner"); // "other", "unknown" or "none"
    QTest::addColumn<bool>("switches");
    QTest::newRow("other existing account") << u"other"_s << true;
    QTest::newRow("account that is gone") << u"unknown"_s << false;
    QTest::newRow("no account id") << u"none"_s << false;
}

void TestAppState::selectApp() {
    QFETCH(QString, owner);
    QFETCH(bool, switches);
    Fixture f;
    const Account other = f.addAccount(u"Andere"_s);
    const Account current = f.addAccount(u"Aktuell"_s);
    QCOMPARE(f.state->accountStore().selectedAccountID(), std::optional<QUuid>(current.id));
    f.answerApps({u"Alpha"_s});
    f.loadApps(false);
    const auto apps = f.state->apps();
    f.transport->clearRequests();

    std::optional<QUuid> accountID;
    if (owner == u"other"_s) {
        accountID = other.id;
    } else if (owner == u"unknown"_s) {
        accountID = QUuid::createUuid();
    }
    const ManagedApp chosen = app(u"42"_s, accountID);
    QSignalSpy selected(f.state.get(), &AppState::selectedAppChanged);
    f.state->selectApp(chosen);
    QCoreApplication::processEvents();

    QCOMPARE(f.state->accountStore().selectedAccountID(),
             std::optional<QUuid>(switches ? other.id : current.id));
    QCOMPARE(f.state->selectedApp(), std::optional<ManagedApp>(chosen));
    QCOMPARE(selected.count(), 1);
    QCOMPARE(f.state->preferences().recentAppIDs().first(), u"42"_s);
    // The merged list stays; nothing is reloaded.
    QCOMPARE(f.state->apps(), apps);
    QCOMPARE(f.transport->requestCount(), 0);
}

void TestAppState::recentAppsKeepEight() {
    QTemporaryDir dir;
    auto settings = std::make_shared<QSettings>(dir.filePath(u"s.ini"_s), QSettings::IniFormat);
    AppPreferencesStore preferences(settings);
    for (int i = 1; i <= 9; ++i) {
        preferences.markUsed(QString::number(i));
    }
    const QStringList expected{u"9"_s, u"8"_s, u"7"_s, u"6"_s, u"5"_s, u"4"_s, u"3"_s, u"2"_s};
    QCOMPARE(preferences.recentAppIDs(), expected);
    // Using one again moves it to the front without a duplicate.
    preferences.markUsed(u"5"_s);
    QCOMPARE(preferences.recentAppIDs(),
             (QStringList{u"5"_s, u"9"_s, u"8"_s, u"7"_s, u"6"_s, u"4"_s, u"3"_s, u"2"_s}));
    QCOMPARE(AppPreferencesStore(settings).recentAppIDs(), preferences.recentAppIDs());
}

void TestAppState::refreshInterval_data() {
    QTest::addColumn<QVariant>("stored"); // invalid: nothing stored
    QTest::addColumn<int>("minutes");
    QTest::newRow("nothing stored") << QVariant() << 60;
    QTest::newRow("14") << QVariant(14) << 60;
    QTest::newRow("15") << QVariant(15) << 15;
    QTest::newRow("0") << QVariant(0) << 60;
    QTest::newRow("240") << QVariant(240) << 240;
}

void TestAppState::refreshInterval() {
    QFETCH(QVariant, stored);
    QFETCH(int, minutes);
    QTemporaryDir dir;
    auto settings = std::make_shared<QSettings>(dir.filePath(u"s.ini"_s), QSettings::IniFormat);
    if (stored.isValid()) {
        settings->setValue(u"velmora.backgroundRefreshMinutes"_s, stored);
    }
    QCOMPARE(AppPreferencesStore(settings).backgroundRefreshMinutes(), minutes);
}

void TestAppState::backgroundSettingsTellWhatMoved_data() {
    QTest::addColumn<QString>("change");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("other choice") << u"240"_s << QStringList{u"intervalIndexChanged"_s};
    // 45 minutes shows as the hourly choice, which is what 60 shows too.
    QTest::newRow("same choice") << u"45"_s << QStringList{};
    QTest::newRow("unrelated preference") << u"recent"_s << QStringList{};
}

void TestAppState::backgroundSettingsTellWhatMoved() {
    QFETCH(QString, change);
    QFETCH(QStringList, expected);
    QTemporaryDir dir;
    AppPreferencesStore preferences(
        std::make_shared<QSettings>(dir.filePath(u"s.ini"_s), QSettings::IniFormat));
    BackgroundSettingsViewModel vm(preferences);
    const QMetaObject& type = BackgroundSettingsViewModel::staticMetaObject;
    QList<std::pair<QString, std::shared_ptr<QSignalSpy>>> spies;
    for (int i = type.propertyOffset(); i < type.propertyCount(); ++i) {
        const QMetaProperty property = type.property(i);
        if (property.hasNotifySignal()) {
            spies.append({QString::fromLatin1(property.notifySignal().name()),
                          std::make_shared<QSignalSpy>(&vm, property.notifySignal())});
        }
    }
    QCOMPARE(spies.size(), 4);

    if (change == u"recent"_s) {
        preferences.markUsed(u"app-1"_s);
    } else {
        preferences.setBackgroundRefreshMinutes(change.toInt());
    }

    QStringList emitted;
    for (const auto& [name, spy] : spies) {
        if (!spy->isEmpty()) {
            QCOMPARE(spy->count(), 1);
            emitted.append(name);
        }
    }
    QCOMPARE(emitted, expected);
}

QTEST_GUILESS_MAIN(TestAppState)
#include "tst_appstate.moc"
