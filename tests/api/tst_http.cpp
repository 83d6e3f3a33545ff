#include "api/AuditLog.h"
#include "api/RateLimitGovernor.h"
#include "api/TruncationRegistry.h"
#include "fixtures/JsonApi.h"
#include "fixtures/TestClient.h"
#include "platform/Clock.h"
#include "platform/QtHttpTransport.h"
#include "support/AwaitTask.h"
#include "support/RawEndpoints.h"
#include "support/TestKeys.h"
#include "support/TestServer.h"
#include "workspace/ManagedApp.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
Q_DECLARE_METATYPE(TestServer::Reply)

// The real HTTP stack against a real server on the loopback interface.
namespace {

using Reply = TestServer::Reply;

using JsonApi::apps;

APIRequest appsRequest() {
    APIRequest request = APIRequest::get(u"/v1/apps"_s);
    request.queryItems = {{u"limit"_s, u"200"_s}};
    return request;
}

template <class T> std::optional<VelmoraAPIError> failureOf(QCoro::Task<T> task) {
    try {
        VarnisTest::awaitTask(std::move(task));
    } catch (const VelmoraAPIError& error) {
        return error;
    }
    return std::nullopt;
}

} // namespace

class HttpTest : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<TestServer> m_server;
    std::shared_ptr<ManualClock> m_clock;
    std::shared_ptr<QtHttpTransport> m_transport;
    std::shared_ptr<AuditLog> m_audit;
    std::shared_ptr<RateLimitGovernor> m_governor;
    std::shared_ptr<TruncationRegistry> m_registry;
    TestKey m_key = makeTestKey();

    std::shared_ptr<AppStoreConnectClient> client() {
        auto parts = clientParts(m_clock, m_transport, m_key.privateKeyPEM, m_server->baseUrl());
        parts.auditLog = m_audit;
        parts.governor = m_governor;
        parts.truncationRegistry = m_registry;
        return AppStoreConnectClient::create(std::move(parts));
    }

private Q_SLOTS:
    void init() {
        m_dir = std::make_unique<QTemporaryDir>();
        m_server = std::make_unique<TestServer>();
        QVERIFY(m_server->isListening());
        m_clock = std::make_shared<ManualClock>();
        m_clock->setAutoAdvance(true);
        m_transport = std::make_shared<QtHttpTransport>(m_clock);
        m_audit = std::make_shared<AuditLog>(m_dir->filePath(u"log.json"_s));
        m_governor = std::make_shared<RateLimitGovernor>(m_clock);
        m_registry = std::make_shared<TruncationRegistry>();
    }

    void retriesOn429_data() {
        QTest::addColumn<QByteArray>("retryAfter");
        QTest::addColumn<QList<double>>("sleeps");
        QTest::newRow("with Retry-After") << "3"_ba << QList<double>{3};
        QTest::newRow("without Retry-After") << QByteArray() << QList<double>{2};
    }

    void retriesOn429() {
        QFETCH(QByteArray, retryAfter);
        QFETCH(QList<double>, sleeps);
        Reply limited = Reply::json(429, "{}"_ba, {{"X-Rate-Limit", "user-hour-lim:3600;user-hour-rem:0"}});
        if (!retryAfter.isNull()) {
            limited.headers.append({"Retry-After", retryAfter});
        }
        m_server->script("GET", u"/v1/apps"_s, {limited, Reply::json(200, apps({u"1"_s}))});
        const auto result = VarnisTest::awaitTask(
            client()->call(Endpoint<Returns::Page<ASCAppAttributes>>::of(appsRequest())));
        QCOMPARE(result.data.size(), 1);
        QCOMPARE(m_clock->sleeps(), sleeps);
        QCOMPARE(m_server->requests().size(), 2);
        QCOMPARE(m_governor->remaining(), std::optional<int>(0));
        const auto query = m_server->requests().constFirst().queryValue(u"limit"_s);
        QCOMPARE(query, std::optional<QString>(u"200"_s));
    }

    void serverErrorsRetryWritesWithOneEntryEach() {
        m_server->script("POST", u"/v1/betaGroups"_s,
                         {Reply::json(503, "{}"_ba), Reply::json(503, "{}"_ba),
                          Reply::json(201, "{}"_ba, {{"X-Apple-Request-Id", "REQ-OK"}})});
        auto c = client();
        VarnisTest::awaitTask(c->call(nothingOf(
            APIRequest::withBody(APIRequest::Method::Post, u"/v1/betaGroups"_s, newBetaGroupBody()))));
        const auto entries = m_audit->entries();
        QCOMPARE(entries.size(), 3);
        QCOMPARE(entries[0].appleRequestID, std::optional<QString>(u"REQ-OK"_s));
        QCOMPARE(entries[1].errorMessage, std::optional<QString>(u"HTTP 503"_s));
        QCOMPARE(m_clock->sleeps(), (QList<double>{1.5, 3}));
        QCOMPARE(m_server->requests().constLast().header("Content-Type"),
                 std::optional<QByteArray>("application/json"));
    }

    void appleErrorsBecomeGermanMessages_data() {
        QTest::addColumn<int>("status");
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("message");
        QTest::newRow("401")
            << 401 << int(VelmoraAPIError::Kind::Unauthorized)
            << u"Anmeldung bei App Store Connect fehlgeschlagen. Bitte API-Schlüssel prüfen."_s;
        QTest::newRow("403") << 403 << int(VelmoraAPIError::Kind::Forbidden) << u"Keine Rechte für Apps."_s;
        QTest::newRow("404") << 404 << int(VelmoraAPIError::Kind::Http) << u"Keine Rechte für Apps."_s;
    }

    void appleErrorsBecomeGermanMessages() {
        QFETCH(int, status);
        QFETCH(int, kind);
        QFETCH(QString, message);
        const QByteArray body =
            R"({"errors":[{"status":"x","title":"Titel","detail":"Keine Rechte für Apps."}]})";
        m_server->script(
            "GET", u"/v1/apps"_s,
            {Reply::json(status, body,
                         {{"X-Apple-Request-Id", "REQ-1"}, {"X-Rate-Limit", "user-hour-rem:7"}})});
        const auto error = failureOf(client()->call(bytesOf(appsRequest())));
        QVERIFY(error);
        QCOMPARE(int(error->kind()), kind);
        QCOMPARE(error->errorDescription(), message);
        if (error->kind() == VelmoraAPIError::Kind::Http) {
            QCOMPARE(error->requestID(), std::optional<QString>(u"REQ-1"_s));
        }
        QCOMPARE(m_server->requests().size(), 1);
        QCOMPARE(m_governor->remaining(), std::optional<int>(7));
    }

    void nextLinkToAnotherServerAndTruncation() {
        TestServer second;
        m_server->script(
            "GET", u"/v1/apps"_s,
            {Reply::json(200, apps({u"1"_s}, second.url(u"/v1/apps?cursor=Mg&limit=200"_s).toString()))});
        second.script(
            "GET", u"/v1/apps"_s,
            {Reply::json(200, apps({u"2"_s}, second.url(u"/v1/apps?cursor=Mw&limit=200"_s).toString()))});
        auto result = VarnisTest::awaitTask(
            client()->call(Endpoint<Returns::AllPages<ASCAppAttributes>>::of(appsRequest(), 2)));
        QCOMPARE(result.items.size(), 2);
        QVERIFY(result.truncated);
        QVERIFY(m_registry->contains(u"/v1/apps"_s));
        QCOMPARE(second.requests().size(), 1);
        QCOMPARE(second.requests().constFirst().queryValue(u"cursor"_s), std::optional<QString>(u"Mg"_s));
    }

    // A success that did not arrive whole must not reach the decoder as a short answer.
    void brokenSuccessesAreNetworkErrors_data() {
        QTest::addColumn<Reply>("reply");
        QTest::addColumn<QString>("message");
        Reply cut = Reply::json(200, QByteArray(1000, 'x'));
        cut.cutAfter = 25;
        QTest::newRow("cut off after 25 of 1000 bytes")
            << cut << u"Netzwerkfehler: Der Server hat die Verbindung unerwartet geschlossen."_s;
        Reply bomb =
            Reply::json(200, QByteArray(24 * 1024 * 1024, '\0')).breakingContract(u"no JSON at all"_s);
        bomb.gzip = true;
        QTest::newRow("gzip Qt refuses to inflate")
            << bomb << u"Netzwerkfehler: Die Antwort des Servers kam beschädigt an."_s;
    }

    void brokenSuccessesAreNetworkErrors() {
        QFETCH(Reply, reply);
        QFETCH(QString, message);
        m_server->script("GET", u"/v1/apps"_s, {reply});
        const auto error = failureOf(client()->call(bytesOf(appsRequest())));
        QVERIFY(error);
        QCOMPARE(error->errorDescription(), message);
    }

    void redirectsAreNotFollowedWithTheToken() {
        TestServer elsewhere;
        m_server->script("GET", u"/v1/apps"_s,
                         {Reply::json(302, "{}"_ba, {{"Location", elsewhere.url(u"/steal"_s).toEncoded()}})});
        const auto error = failureOf(client()->call(bytesOf(appsRequest())));
        QVERIFY(error);
        QCOMPARE(error->status(), 302);
        QCOMPARE(elsewhere.requests().size(), 0);
    }

    void refusedConnectionIsANetworkError() {
        // A port that was just given up has nobody listening on it.
        const QUrl dead = m_server->baseUrl();
        m_server = std::make_unique<TestServer>();
        const auto parts = clientParts(m_clock, m_transport, m_key.privateKeyPEM, dead);
        const auto error = failureOf(AppStoreConnectClient::create(parts)->call(bytesOf(appsRequest())));
        QVERIFY(error);
        QCOMPARE(error->kind(), VelmoraAPIError::Kind::Network);
        QCOMPARE(error->errorDescription(), u"Netzwerkfehler: Der Server hat die Verbindung abgelehnt."_s);
    }

    void silentServerTimesOutOnTheClock() {
        m_clock->setAutoAdvance(false);
        m_server->holdReplies(true);
        auto task = client()->call(bytesOf(appsRequest()));
        QTRY_COMPARE(m_server->heldCount(), 1);
        m_clock->advance(59);
        QVERIFY(!task.isReady());
        m_clock->advance(1);
        const auto error = failureOf(std::move(task));
        QVERIFY(error);
        QCOMPARE(error->errorDescription(),
                 u"Netzwerkfehler: Zeitüberschreitung: Der Server hat nicht rechtzeitig geantwortet."_s);
    }

    void freshClientsShareConnections() {
        m_server->script("GET", u"/v1/apps"_s, {Reply::json(200, apps({u"1"_s}))});
        for (int i = 0; i < 100; ++i) {
            VarnisTest::awaitTask(client()->call(bytesOf(appsRequest())));
        }
        QCOMPARE(m_server->requests().size(), 100);
        QVERIFY2(m_server->connectionCount() <= 2, qPrintable(QString::number(m_server->connectionCount())));
    }
};

QTEST_GUILESS_MAIN(HttpTest)
#include "tst_http.moc"
