#include "api/AccountStore.h"
#include "fixtures/JsonApi.h"
#include "platform/SingleInstance.h"
#include "support/AwaitTask.h"
#include "support/TestKeys.h"
#include "support/TestPlatform.h"
#include "workspace/AppState.h"
#include "workspace/VelmoraURL.h"

#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QtConcurrent/QtConcurrentRun>

#ifdef Q_OS_UNIX
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>
#endif

using namespace Qt::StringLiterals;

namespace {

// An AppState with one account whose app list is "Alpha" and "Beta" (ids "id-Alpha", "id-Beta").
struct Fixture : TestPlatform {
    std::unique_ptr<AppState> state;

    Fixture() {
        state = std::make_unique<AppState>(platform(), AppState::Options{settings});
        auto added = state->accountStore().addAccount(u"A"_s, u"57246542-96fe-1a63-e053-0824d011072a"_s,
                                                      u"ABCDE12345"_s, makeTestKey().privateKeyPEM);
        VarnisTest::awaitTask(std::move(added));
        transport->script("GET", u"/v1/apps"_s,
                          {FakeTransport::Answer::json(200, JsonApi::apps({u"Alpha"_s, u"Beta"_s}))});
    }

    void loadApps() {
        VarnisTest::awaitTask(state->loadApps(false));
        transport->clearRequests();
    }

    QString selectedID() const { return state->selectedApp() ? state->selectedApp()->id : QString(); }
    QString sectionRaw() const {
        return state->selectedSection() ? SidebarSections::rawValue(*state->selectedSection()) : QString();
    }
};

} // namespace

class TestNavigation : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void destination_data();
    void destination();
    void urlRoundTrip();
    void open_data();
    void open();
    void openWithoutWaiting();
    void consumeClears();
    void restoreLastState_data();
    void restoreLastState();
    void forwardToRunning_data();
    void forwardToRunning();
    void staleSocketDoesNotBlock();
    void serverNameDependsOnUser();
};

void TestNavigation::destination_data() {
    QTest::addColumn<QString>("url");
    QTest::addColumn<QString>("appID");   // null: no destination
    QTest::addColumn<QString>("section"); // empty: no section
    QTest::newRow("app only") << u"velmora://app/123"_s << u"123"_s << QString();
    QTest::newRow("scheme and host in upper case")
        << u"VELMORA://APP/123/reviews"_s << u"123"_s << u"reviews"_s;
    QTest::newRow("path keeps its case") << u"velmora://app/AbC/Reviews"_s << u"AbC"_s << QString();
    QTest::newRow("no app id") << u"velmora://app/"_s << QString() << QString();
    QTest::newRow("no path") << u"velmora://app"_s << QString() << QString();
    QTest::newRow("other host") << u"velmora://build/123"_s << QString() << QString();
    QTest::newRow("other scheme") << u"https://app/123/reviews"_s << QString() << QString();
    QTest::newRow("no host") << u"velmora:app/123"_s << QString() << QString();
    QTest::newRow("unknown section") << u"velmora://app/123/nonsense"_s << u"123"_s << QString();
    QTest::newRow("extra pieces") << u"velmora://app/123/testFlight/4/5"_s << u"123"_s << u"testFlight"_s;
    QTest::newRow("empty pieces") << u"velmora://app//123//xcodeCloud/"_s << u"123"_s << u"xcodeCloud"_s;
    QTest::newRow("query and fragment") << u"velmora://app/123/platform?x=1#y"_s << u"123"_s << u"platform"_s;
    QTest::newRow("escaped slash") << u"velmora://app/a%2Fb/reviews"_s << u"a/b"_s << u"reviews"_s;
}

void TestNavigation::destination() {
    QFETCH(QString, url);
    QFETCH(QString, appID);
    QFETCH(QString, section);
    const auto result = VelmoraURL::destination(QUrl(url));
    QCOMPARE(result.has_value(), !appID.isNull());
    if (result) {
        QCOMPARE(result->appID, appID);
        QCOMPARE(result->section, SidebarSections::fromRaw(section));
    }
}

void TestNavigation::urlRoundTrip() {
    QCOMPARE(VelmoraURL::url(u"123"_s, SidebarSection::AppStoreOptimization).toString(),
             u"velmora://app/123/appStoreOptimization"_s);
    for (const QString& id : {u"6448311234"_s, u"a/b c?#%"_s}) {
        QList<std::optional<SidebarSection>> sections{std::nullopt};
        for (int i = 0; i <= int(SidebarSection::Platform); ++i) {
            sections.append(SidebarSection(i));
        }
        for (const auto& section : sections) {
            const QUrl url = VelmoraURL::url(id, section);
            QCOMPARE(VelmoraURL::destination(url), std::optional(VelmoraURL::Destination{id, section}));
            // Also when the link went through text, as it does on a command line.
            QCOMPARE(VelmoraURL::destination(QUrl(url.toString())),
                     std::optional(VelmoraURL::Destination{id, section}));
        }
    }
}

void TestNavigation::open_data() {
    QTest::addColumn<bool>("loaded");
    QTest::addColumn<QString>("url");
    QTest::addColumn<QString>("selected"); // empty: none
    QTest::addColumn<QString>("section");  // the section before is "analytics"
    QTest::addColumn<int>("requests");
    QTest::newRow("loaded, with section")
        << true << u"velmora://app/id-Beta/reviews"_s << u"id-Beta"_s << u"reviews"_s << 0;
    QTest::newRow("loaded, no section keeps it")
        << true << u"velmora://app/id-Alpha"_s << u"id-Alpha"_s << u"analytics"_s << 0;
    QTest::newRow("not loaded yet") << false << u"velmora://app/id-Beta/testFlight"_s << u"id-Beta"_s
                                    << u"testFlight"_s << 1;
    QTest::newRow("unknown app") << true << u"velmora://app/999/reviews"_s << QString() << u"analytics"_s
                                 << 0;
    QTest::newRow("unknown app, not loaded")
        << false << u"velmora://app/999/reviews"_s << QString() << u"analytics"_s << 1;
    QTest::newRow("malformed does not load")
        << false << u"velmora://build/id-Beta/reviews"_s << QString() << u"analytics"_s << 0;
}

void TestNavigation::open() {
    QFETCH(bool, loaded);
    QFETCH(QString, url);
    QFETCH(QString, selected);
    QFETCH(QString, section);
    QFETCH(int, requests);
    Fixture f;
    if (loaded) {
        f.loadApps();
    }
    f.state->setSelectedSection(SidebarSection::Analytics);
    QSignalSpy selectedChanged(f.state.get(), &AppState::selectedAppChanged);

    VarnisTest::awaitTask(f.state->openAsync(QUrl(url)));
    QCOMPARE(f.selectedID(), selected);
    QCOMPARE(selectedChanged.count(), selected.isEmpty() ? 0 : 1);
    QCOMPARE(f.sectionRaw(), section);
    QCOMPARE(f.transport->requestCount(), requests);
    QCOMPARE(f.state->appsError(), std::nullopt);
}

void TestNavigation::openWithoutWaiting() {
    Fixture f;
    QSignalSpy selectedChanged(f.state.get(), &AppState::selectedAppChanged);
    f.state->open(QUrl(u"velmora://app/id-Alpha/monetization"_s));
    if (selectedChanged.isEmpty()) {
        QVERIFY(selectedChanged.wait());
    }
    QCOMPARE(f.selectedID(), u"id-Alpha"_s);
    QCOMPARE(f.sectionRaw(), u"monetization"_s);
}

void TestNavigation::consumeClears() {
    Fixture f;
    f.state->setPendingLocale(u"de-DE"_s);
    f.state->setPendingVersionID(u"v1"_s);
    QCOMPARE(f.state->consumePendingLocale(), std::optional<QString>(u"de-DE"_s));
    QCOMPARE(f.state->consumePendingLocale(), std::nullopt);
    QCOMPARE(f.state->pendingLocale(), std::nullopt);
    QCOMPARE(f.state->pendingVersionID(), std::optional<QString>(u"v1"_s));
    QCOMPARE(f.state->consumePendingVersionID(), std::optional<QString>(u"v1"_s));
    QCOMPARE(f.state->consumePendingVersionID(), std::nullopt);
}

void TestNavigation::restoreLastState_data() {
    QTest::addColumn<bool>("loaded");
    QTest::addColumn<QString>("chosen"); // an app selected before; empty: none
    QTest::addColumn<QString>("storedID");
    QTest::addColumn<QString>("storedSection");
    QTest::addColumn<QString>("selected");
    QTest::addColumn<QString>("section");
    QTest::addColumn<int>("requests");
    QTest::newRow("loads, then restores")
        << false << QString() << u"id-Beta"_s << u"reviews"_s << u"id-Beta"_s << u"reviews"_s << 1;
    QTest::newRow("list already there")
        << true << QString() << u"id-Beta"_s << u"xcodeCloud"_s << u"id-Beta"_s << u"xcodeCloud"_s << 0;
    QTest::newRow("invalid section") << false << QString() << u"id-Alpha"_s << u"Reviews"_s << u"id-Alpha"_s
                                     << u"overview"_s << 1;
    QTest::newRow("app gone") << false << QString() << u"999"_s << u"reviews"_s << QString() << u"overview"_s
                              << 1;
    QTest::newRow("nothing stored") << false << QString() << QString() << u"reviews"_s << QString()
                                    << u"overview"_s << 0;
    QTest::newRow("an app is selected")
        << true << u"id-Alpha"_s << u"id-Beta"_s << u"reviews"_s << u"id-Alpha"_s << u"overview"_s << 0;
}

void TestNavigation::restoreLastState() {
    QFETCH(bool, loaded);
    QFETCH(QString, chosen);
    QFETCH(QString, storedID);
    QFETCH(QString, storedSection);
    QFETCH(QString, selected);
    QFETCH(QString, section);
    QFETCH(int, requests);
    Fixture f;
    if (loaded) {
        f.loadApps();
    }
    if (!chosen.isEmpty()) {
        VarnisTest::awaitTask(f.state->openAsync(VelmoraURL::url(chosen)));
    }
    VarnisTest::awaitTask(f.state->restoreLastState(storedID, storedSection));
    QCOMPARE(f.selectedID(), selected);
    QCOMPARE(f.sectionRaw(), section);
    QCOMPARE(f.transport->requestCount(), requests);
}

void TestNavigation::forwardToRunning_data() {
    QTest::addColumn<QStringList>("messages");
    QTest::newRow("links") << QStringList{u"velmora://app/1/reviews"_s, u"velmora://app/Ä 2"_s};
    QTest::newRow("nothing: come to the front") << QStringList{};
}

void TestNavigation::forwardToRunning() {
    QFETCH(QStringList, messages);
    QTemporaryDir dir;
    const QString name = dir.filePath(u"instance"_s);
    SingleInstance first(name);
    SingleInstance second(name);
    QVERIFY(!second.forwardToRunning(messages));
    QVERIFY(first.listen());
    QVERIFY(!second.listen());
    QVERIFY(first.isListening());

    QSignalSpy received(&first, &SingleInstance::messagesReceived);
    // The sender blocks on its socket, so it runs beside the event loop that serves the first.
    auto delivered = QtConcurrent::run([&second, messages] { return second.forwardToRunning(messages); });
    QVERIFY(received.wait());
    QCOMPARE(received.count(), 1);
    QCOMPARE(received.first().first().toStringList(), messages);
    QVERIFY(delivered.result());
}

void TestNavigation::staleSocketDoesNotBlock() {
#ifdef Q_OS_UNIX
    QTemporaryDir dir;
    const QString name = dir.filePath(u"instance"_s);
    // What a crashed instance leaves: a socket file that nobody listens on.
    const int fd = ::socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const QByteArray path = QFile::encodeName(name);
    std::memcpy(address.sun_path, path.constData(), size_t(path.size()) + 1);
    QCOMPARE(::bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    ::close(fd);
    QVERIFY(QFile::exists(name));

    SingleInstance instance(name);
    QVERIFY(!instance.forwardToRunning({u"velmora://app/1"_s}));
    QVERIFY(instance.listen());
#else
    QSKIP("Only Unix sockets leave a file behind.");
#endif
}

void TestNavigation::serverNameDependsOnUser() {
    const QByteArray user = qgetenv("USER");
    qputenv("USER", "alice");
    const QString alice = SingleInstance::defaultServerName();
    qputenv("USER", "bob/../x");
    const QString bob = SingleInstance::defaultServerName();
    qputenv("USER", user);
    QVERIFY(alice.endsWith(u"velmora-alice"_s));
    QVERIFY(bob.endsWith(u"velmora-bob_.._x"_s));
}

QTEST_GUILESS_MAIN(TestNavigation)
#include "tst_navigation.moc"
