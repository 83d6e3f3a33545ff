#include "api/AuditLog.h"
#include "api/RateLimitGovernor.h"
#include "api/TruncationRegistry.h"
#include "fixtures/JsonApi.h"
#include "fixtures/TestClient.h"
#include "platform/Clock.h"
#include "support/AwaitTask.h"
#include "support/FakeTransport.h"
#include "support/RawEndpoints.h"
#include "support/TestKeys.h"
#include "workspace/ManagedApp.h"

#include <QTemporaryDir>
#include <QTest>
#include <QUrlQuery>

using namespace Qt::StringLiterals;

namespace {

using Answer = FakeTransport::Answer;
using Headers = QList<QPair<QByteArray, QByteArray>>;

using JsonApi::apps;

APIRequest appsRequest() {
    APIRequest request = APIRequest::get(u"/v1/apps"_s);
    request.queryItems = {{u"limit"_s, u"200"_s}, {u"sort"_s, u"name"_s}};
    return request;
}

APIRequest postRequest() {
    return APIRequest::withBody(APIRequest::Method::Post, u"/v1/betaGroups"_s, newBetaGroupBody());
}

// Runs a task and returns the German message of what it raised, or nothing.
template <class T> std::optional<QString> failureOf(QCoro::Task<T> task) {
    try {
        VarnisTest::awaitTask(std::move(task));
    } catch (const VelmoraAPIError& error) {
        return error.errorDescription();
    }
    return std::nullopt;
}

} // namespace

class ClientTest : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> m_dir;
    std::shared_ptr<ManualClock> m_clock;
    std::shared_ptr<FakeTransport> m_transport;
    std::shared_ptr<AuditLog> m_audit;
    std::shared_ptr<RateLimitGovernor> m_governor;
    std::shared_ptr<TruncationRegistry> m_registry;
    TestKey m_key = makeTestKey();

    std::shared_ptr<AppStoreConnectClient> client() {
        auto parts = clientParts(m_clock, m_transport, m_key.privateKeyPEM);
        parts.auditLog = m_audit;
        parts.governor = m_governor;
        parts.truncationRegistry = m_registry;
        return AppStoreConnectClient::create(std::move(parts));
    }

private Q_SLOTS:
    void init() {
        m_dir = std::make_unique<QTemporaryDir>();
        m_clock = std::make_shared<ManualClock>();
        m_clock->setAutoAdvance(true);
        m_transport = std::make_shared<FakeTransport>();
        m_audit = std::make_shared<AuditLog>(m_dir->filePath(u"log.json"_s));
        m_governor = std::make_shared<RateLimitGovernor>(m_clock);
        m_registry = std::make_shared<TruncationRegistry>();
    }

    // The stages have their own tests; here what the client adds on top: Apple's Retry-After
    // is read with care, and what is left of it after the last try travels with the error.
    void rateLimitedAnswers_data() {
        QTest::addColumn<QByteArray>("retryAfter");
        QTest::addColumn<QList<double>>("sleeps");
        QTest::addColumn<std::optional<double>>("kept");
        QTest::newRow("seconds") << "5"_ba << QList<double>{5, 5, 5} << std::optional<double>(5);
        QTest::newRow("endless") << "inf"_ba << QList<double>{2, 4, 6} << std::optional<double>();
        QTest::newRow("not a number") << "soon"_ba << QList<double>{2, 4, 6} << std::optional<double>();
        QTest::newRow("negative") << "-3"_ba << QList<double>{2, 4, 6} << std::optional<double>();
    }

    void rateLimitedAnswers() {
        QFETCH(QByteArray, retryAfter);
        QFETCH(QList<double>, sleeps);
        QFETCH(std::optional<double>, kept);
        m_transport->script("GET", u"/v1/apps"_s,
                            {Answer::json(429, "{}"_ba, {{"Retry-After", retryAfter}})});
        try {
            VarnisTest::awaitTask(client()->call(bytesOf(appsRequest())));
            QFAIL("expected rateLimited");
        } catch (const VelmoraAPIError& e) {
            QCOMPARE(e.kind(), VelmoraAPIError::Kind::RateLimited);
            QCOMPARE(e.retryAfter(), kept);
        }
        QCOMPARE(m_clock->sleeps(), sleeps);
        QCOMPARE(m_transport->requestCount(), 4);
    }

    void refusedBackgroundRequestSendsNothing() {
        m_governor->update(u"user-hour-lim:3600;user-hour-rem:100;"_s);
        APIRequest request = appsRequest();
        request.priority = RequestPriority::Background;
        QCOMPARE(failureOf(client()->call(bytesOf(request))),
                 std::optional<QString>(
                     u"Apples Stundenbudget ist fast aufgebraucht (100 von 3600 übrig). "
                     "Hintergrundarbeit pausiert, damit interaktive Anfragen weiter durchkommen."_s));
        QCOMPARE(m_transport->requestCount(), 0);
    }

    void requestCarriesSignedTokenAndJsonType() {
        m_transport->script("PATCH", u"/v1/apps/1"_s, {Answer::json(200, "{}"_ba)});
        APIRequest request = APIRequest::withBody(APIRequest::Method::Patch, u"/v1/apps/1"_s,
                                                  R"({"data":{"type":"apps","id":"1"}})"_ba);
        request.headers.insert(u"Content-Type"_s, u"text/plain"_s);
        VarnisTest::awaitTask(client()->call(nothingOf(request)));
        const HttpRequest sent = m_transport->requests().constFirst();
        QCOMPARE(sent.method, "PATCH"_ba);
        int contentTypes = 0;
        QString token;
        for (const auto& [name, value] : sent.headers) {
            if (name.compare("Content-Type", Qt::CaseInsensitive) == 0) {
                ++contentTypes;
                QCOMPARE(value, "application/json"_ba);
            }
            if (name == "Authorization") {
                QVERIFY(value.startsWith("Bearer "));
                token = QString::fromLatin1(value.mid(7));
            }
        }
        QCOMPARE(contentTypes, 1);
        QVERIFY(verifyES256(token, m_key));
        QCOMPARE(jwtPayload(token).value(u"aud"_s).toString(), u"appstoreconnect-v1"_s);
    }

    void queryIsEncodedInOrder() {
        m_transport->script("GET", u"/v1/apps"_s, {Answer::json(200, apps({}))});
        APIRequest request = APIRequest::get(u"/v1/apps"_s);
        request.queryItems = {{u"filter[name]"_s, u"A+B C"_s}, {u"limit"_s, u"5"_s}};
        VarnisTest::awaitTask(client()->call(bytesOf(request)));
        const QUrl url = m_transport->requests().constFirst().url;
        QCOMPARE(url.query(QUrl::FullyEncoded), u"filter[name]=A%2BB%20C&limit=5"_s);
        QCOMPARE(QUrlQuery(url).queryItemValue(u"filter[name]"_s, QUrl::FullyDecoded), u"A+B C"_s);
    }

    void pagingFollowsNextVerbatimAndTracksTruncation() {
        const QString next = u"https://other-host.example.test/v1/apps?cursor=abc&limit=200"_s;
        m_transport->script("GET", u"/v1/apps"_s,
                            {Answer::json(200, apps({u"A"_s}, next)), Answer::json(200, apps({u"B"_s}))});
        auto full = VarnisTest::awaitTask(
            client()->call(Endpoint<Returns::AllPages<ASCAppAttributes>>::of(appsRequest(), 5)));
        QCOMPARE(full.items.size(), 2);
        QVERIFY(!full.truncated);
        QCOMPARE(m_transport->requests().at(1).url, QUrl(next));

        // One page allowed: truncated and registered; a later complete load clears the record.
        m_transport->script("GET", u"/v1/apps"_s, {Answer::json(200, apps({u"A"_s}, next))});
        auto cut = VarnisTest::awaitTask(
            client()->call(Endpoint<Returns::AllPages<ASCAppAttributes>>::of(appsRequest(), 0)));
        QVERIFY(cut.truncated);
        QCOMPARE(cut.items.size(), 1);
        QVERIFY(m_registry->contains(u"/v1/apps"_s));

        m_transport->script("GET", u"/v1/apps"_s, {Answer::json(200, apps({u"A"_s}))});
        VarnisTest::awaitTask(
            client()->call(Endpoint<Returns::AllPages<ASCAppAttributes>>::of(appsRequest(), 3)));
        QVERIFY(!m_registry->contains(u"/v1/apps"_s));
    }

    // The token goes with a next link, so only https is followed.
    void nextLinksOfOtherSchemesAreRefused_data() {
        QTest::addColumn<QString>("next");
        QTest::addColumn<bool>("followed");
        QTest::newRow("https elsewhere") << u"https://other.example.test/v1/apps?cursor=2"_s << true;
        QTest::newRow("plain http") << u"http://api.example.test/v1/apps?cursor=2"_s << false;
        QTest::newRow("ftp") << u"ftp://api.example.test/v1/apps"_s << false;
        QTest::newRow("file") << u"file:///etc/passwd"_s << false;
        QTest::newRow("javascript") << u"javascript:alert(1)"_s << false;
        QTest::newRow("scheme-relative") << u"//evil.example.test/v1/apps"_s << false;
        QTest::newRow("relative") << u"v1/apps?cursor=2"_s << false;
    }

    void nextLinksOfOtherSchemesAreRefused() {
        QFETCH(QString, next);
        QFETCH(bool, followed);
        m_transport->setContractMode(FakeTransport::ContractMode::Off);
        m_transport->script("GET", u"/v1/apps"_s,
                            {Answer::json(200, apps({u"A"_s}, next)), Answer::json(200, apps({u"B"_s}))});
        const auto failure =
            failureOf(client()->call(Endpoint<Returns::AllPages<ASCAppAttributes>>::of(appsRequest(), 5)));
        QCOMPARE(failure.has_value(), !followed);
        if (failure) {
            QCOMPARE(*failure, u"Netzwerkfehler: Die Antwort des Servers verletzt das HTTP-Protokoll."_s);
        }
        QCOMPARE(m_transport->requestCount(), followed ? 2 : 1);
    }

    void pageFailureDropsEverything() {
        m_transport->script(
            "GET", u"/v1/apps"_s,
            {Answer::json(200, apps({u"A"_s}, u"https://api.example.test/v1/apps?cursor=2"_s)),
             Answer::json(404, "{}"_ba)});
        QCOMPARE(
            failureOf(client()->call(Endpoint<Returns::AllPages<ASCAppAttributes>>::of(appsRequest(), 5))),
            std::optional<QString>(u"App Store Connect meldete Fehler 404."_s));
    }

    void undecodableSuccessIsADecodingError_data() {
        QTest::addColumn<QByteArray>("body");
        QTest::newRow("not JSON") << "<html>Wartung</html>"_ba;
        QTest::newRow("no data") << "{\"links\":{}}"_ba;
        QTest::newRow("id is a number") << "{\"data\":[{\"type\":\"apps\",\"id\":7}]}"_ba;
        QTest::newRow("name is a number")
            << "{\"data\":[{\"type\":\"apps\",\"id\":\"7\",\"attributes\":{\"name\":1}}]}"_ba;
    }

    void undecodableSuccessIsADecodingError() {
        QFETCH(QByteArray, body);
        m_transport->script(
            "GET", u"/v1/apps"_s,
            {Answer::json(200, body).breakingContract(u"a success that no decoder can read"_s)});
        QCOMPARE(failureOf(client()->call(Endpoint<Returns::Page<ASCAppAttributes>>::of(appsRequest()))),
                 std::optional<QString>(u"Die Antwort von App Store Connect konnte nicht gelesen werden."_s));
    }

    void identicalConcurrentGetsShareOneCall() {
        m_transport->script("GET", u"/v1/apps"_s, {Answer::json(200, apps({u"A"_s}))});
        m_transport->holdReplies(true);
        auto c = client();
        std::vector<QCoro::Task<QByteArray>> tasks;
        for (int i = 0; i < 20; ++i) {
            APIRequest request = APIRequest::get(u"/v1/apps"_s);
            // Same items in another order: still the same request.
            request.queryItems = i % 2 ? QList<QueryItem>{{u"sort"_s, u"name"_s}, {u"limit"_s, u"200"_s}}
                                       : QList<QueryItem>{{u"limit"_s, u"200"_s}, {u"sort"_s, u"name"_s}};
            tasks.push_back(c->call(bytesOf(request)));
        }
        QCOMPARE(m_transport->heldCount(), 1);
        m_transport->releaseHeld();
        for (auto& task : tasks) {
            QCOMPARE(VarnisTest::awaitTask(std::move(task)), apps({u"A"_s}));
        }
        QCOMPARE(m_transport->requestCount(), 1);
        // Nothing is kept afterwards.
        m_transport->holdReplies(false);
        VarnisTest::awaitTask(c->call(bytesOf(appsRequest())));
        QCOMPARE(m_transport->requestCount(), 2);
    }

    // Two equal writes are two writes; a write that got no answer leaves no entry.
    void writesAreNeverMergedAndOnlyAnsweredOnesAreLogged() {
        m_transport->script("POST", u"/v1/betaGroups"_s, {Answer::json(201, "{}"_ba)});
        m_transport->holdReplies(true);
        auto c = client();
        auto first = c->call(nothingOf(postRequest()));
        auto second = c->call(nothingOf(postRequest()));
        QCOMPARE(m_transport->heldCount(), 2);
        m_transport->releaseHeld();
        VarnisTest::awaitTask(std::move(first));
        VarnisTest::awaitTask(std::move(second));
        QCOMPARE(m_audit->entries().size(), 2);

        m_transport->holdReplies(false);
        m_transport->failWith("POST", u"/v1/betaGroups"_s, u"Der Server hat die Verbindung abgelehnt."_s);
        QCOMPARE(failureOf(c->call(nothingOf(postRequest()))),
                 std::optional<QString>(u"Netzwerkfehler: Der Server hat die Verbindung abgelehnt."_s));
        QCOMPARE(m_audit->entries().size(), 2);
    }

    void uploadSlices_data() {
        QTest::addColumn<qint64>("offset");
        QTest::addColumn<qint64>("length");
        QTest::addColumn<QByteArray>("sent");
        QTest::addColumn<bool>("fails");
        QTest::newRow("middle") << qint64(2) << qint64(3) << "cde"_ba << false;
        QTest::newRow("length beyond the data") << qint64(4) << qint64(100) << "efgh"_ba << false;
        QTest::newRow("offset beyond the data") << qint64(9) << qint64(1) << QByteArray() << true;
        QTest::newRow("negative offset") << qint64(-1) << qint64(1) << QByteArray() << true;
    }

    void uploadSlices() {
        QFETCH(qint64, offset);
        QFETCH(qint64, length);
        QFETCH(QByteArray, sent);
        QFETCH(bool, fails);
        m_transport->script("PUT", u"/upload/part"_s, {Answer::json(200, {})});
        ASCUploadOperation op;
        op.url = u"https://storage.example.test/upload/part?sig=1"_s;
        op.offset = offset;
        op.length = length;
        op.requestHeaders =
            QList<ASCUploadOperation::Header>{{u"Content-Type"_s, u"image/png"_s}, {u"X-Skip"_s, {}}};
        const auto failure = failureOf(client()->performUploadOperation(op, "abcdefgh"_ba));
        QCOMPARE(failure.has_value(), fails);
        if (fails) {
            QCOMPARE(*failure, u"Unbekannter Fehler (HTTP -1)."_s);
            QCOMPARE(m_transport->requestCount(), 0);
            return;
        }
        const HttpRequest request = m_transport->requests().constFirst();
        QCOMPARE(request.method, "PUT"_ba);
        QCOMPARE(request.body, sent);
        for (const auto& header : request.headers) {
            QVERIFY2(header.first != "Authorization", "uploads never carry the token");
            QVERIFY(header.first != "X-Skip");
        }
        QCOMPARE(m_audit->entries().size(), 0);
    }
};

QTEST_GUILESS_MAIN(ClientTest)
#include "tst_client.moc"
