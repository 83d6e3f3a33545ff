#include "api/AppStoreConnectClient.h"
#include "api/AuditLog.h"
#include "api/AuthenticationService.h"
#include "api/RateLimitGovernor.h"
#include "api/TruncationRegistry.h"
#include "platform/Clock.h"
#include "support/AwaitTask.h"
#include "support/FakeTransport.h"
#include "support/RawEndpoints.h"
#include "support/TestKeys.h"
#include "workspace/ManagedApp.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QTest>
#include <QUrlQuery>

using namespace Qt::StringLiterals;

namespace {

using Answer = FakeTransport::Answer;
using Headers = QList<QPair<QByteArray, QByteArray>>;

QByteArray appsPage(const QStringList& names, const std::optional<QString>& next = std::nullopt) {
    QJsonArray data;
    for (const auto& name : names) {
        data.append(QJsonObject{
            {u"type"_s, u"apps"_s},
            {u"id"_s, u"id-"_s + name},
            {u"attributes"_s, QJsonObject{{u"name"_s, name}, {u"bundleId"_s, u"com."_s + name}}}});
    }
    QJsonObject links{{u"self"_s, u"https://api.example.test/v1/apps"_s}};
    if (next) {
        links.insert(u"next"_s, *next);
    }
    return QJsonDocument(QJsonObject{{u"data"_s, data}, {u"links"_s, links}}).toJson();
}

QByteArray appleError(const QString& field, const QString& text) {
    return QJsonDocument(
               QJsonObject{{u"errors"_s, QJsonArray{QJsonObject{{u"status"_s, u"404"_s}, {field, text}}}}})
        .toJson();
}

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

    std::shared_ptr<AppStoreConnectClient> client(QByteArray pem = {}) {
        AppStoreConnectClient::Parts parts;
        parts.clock = m_clock;
        parts.transport = m_transport;
        parts.apiRoot = QUrl(u"https://api.example.test"_s);
        parts.auth = std::make_shared<AuthenticationService>(u"ABCDE12345"_s, u"issuer"_s,
                                                             pem.isEmpty() ? m_key.privateKeyPEM : pem);
        parts.accountName = u"Studio"_s;
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

    void retriesAndWaits_data() {
        QTest::addColumn<QList<int>>("statuses");
        QTest::addColumn<QByteArray>("retryAfter");
        QTest::addColumn<QList<double>>("sleeps");
        QTest::addColumn<QString>("error");
        QTest::addColumn<int>("requests");

        const QString rateText = u"Zu viele Anfragen an App Store Connect. Bitte kurz warten."_s;
        QTest::newRow("429 with Retry-After 7")
            << QList<int>{429, 200} << "7"_ba << QList<double>{7} << QString() << 2;
        QTest::newRow("429 with an endless Retry-After")
            << QList<int>{429, 200} << "inf"_ba << QList<double>{2} << QString() << 2;
        QTest::newRow("429 without Retry-After")
            << QList<int>{429, 429, 429, 200} << QByteArray() << QList<double>{2, 4, 6} << QString() << 4;
        QTest::newRow("429 four times, Retry-After not a number")
            << QList<int>{429} << "soon"_ba << QList<double>{2, 4, 6} << rateText << 4;
        QTest::newRow("5xx then success")
            << QList<int>{503, 500, 200} << QByteArray() << QList<double>{1.5, 3} << QString() << 3;
        QTest::newRow("5xx four times") << QList<int>{502} << QByteArray() << QList<double>{1.5, 3, 4.5}
                                        << u"App Store Connect meldete Fehler 502."_s << 4;
        QTest::newRow("401 is never retried")
            << QList<int>{401, 200} << QByteArray() << QList<double>{}
            << u"Anmeldung bei App Store Connect fehlgeschlagen. Bitte API-Schlüssel "
               "prüfen."_s
            << 1;
        QTest::newRow("403 is never retried")
            << QList<int>{403, 200} << QByteArray() << QList<double>{}
            << u"Der API-Schlüssel hat keine Berechtigung für diese Aktion. Manche "
               "Bereiche (z. B. Analytics) benötigen eine zusätzliche, explizit "
               "vergebene Berechtigung – prüfe die Schlüssel-Rolle in App Store "
               "Connect."_s
            << 1;
    }

    void retriesAndWaits() {
        QFETCH(QList<int>, statuses);
        QFETCH(QByteArray, retryAfter);
        QFETCH(QList<double>, sleeps);
        QFETCH(QString, error);
        QFETCH(int, requests);

        QList<Answer> answers;
        for (int status : statuses) {
            Headers headers;
            if (!retryAfter.isNull()) {
                headers.append({"Retry-After", retryAfter});
            }
            answers.append(Answer::json(status, status == 200 ? appsPage({u"A"_s}) : "{}"_ba, headers));
        }
        m_transport->script("GET", u"/v1/apps"_s, answers);
        auto task = client()->call(Endpoint<Returns::Page<ASCAppAttributes>>::of(appsRequest()));
        const auto failure = failureOf(std::move(task));
        QCOMPARE(failure.value_or(QString()), error);
        QCOMPARE(m_clock->sleeps(), sleeps);
        QCOMPARE(m_transport->requestCount(), requests);
        VARNIS_VERIFY_CONTRACT(*m_transport);
    }

    void rateLimitedKeepsRetryAfter() {
        m_transport->script("GET", u"/v1/apps"_s, {Answer::json(429, "{}"_ba, {{"Retry-After", "5"}})});
        try {
            VarnisTest::awaitTask(client()->call(bytesOf(appsRequest())));
            QFAIL("expected rateLimited");
        } catch (const VelmoraAPIError& e) {
            QCOMPARE(e.kind(), VelmoraAPIError::Kind::RateLimited);
            QCOMPARE(e.retryAfter(), std::optional<double>(5));
        }
    }

    void writesLeaveOneAuditEntryPerAttempt() {
        m_transport->script("POST", u"/v1/betaGroups"_s,
                            {Answer::json(503, "{}"_ba, {{"X-Apple-Request-Id", "R1"}}),
                             Answer::json(503, "{}"_ba),
                             Answer::json(201, "{}"_ba, {{"X-Apple-Request-Id", "R3"}})});
        VarnisTest::awaitTask(client()->call(nothingOf(postRequest())));
        const auto entries = m_audit->entries();
        QCOMPARE(entries.size(), 3);
        QCOMPARE(entries[0].statusCode, std::optional<int>(201));
        QVERIFY(!entries[0].errorMessage);
        QCOMPARE(entries[0].appleRequestID, std::optional<QString>(u"R3"_s));
        QCOMPARE(entries[1].errorMessage, std::optional<QString>(u"HTTP 503"_s));
        QCOMPARE(entries[2].errorMessage, std::optional<QString>(u"HTTP 503"_s));
        QCOMPARE(entries[2].appleRequestID, std::optional<QString>(u"R1"_s));
        QCOMPARE(entries[2].accountName, std::optional<QString>(u"Studio"_s));
        QCOMPARE(entries[2].path, u"/v1/betaGroups"_s);
    }

    void readsAndTransportFailuresLeaveNoAuditEntry() {
        m_transport->script("GET", u"/v1/apps"_s, {Answer::json(500, "{}"_ba)});
        m_transport->failWith("POST", u"/v1/betaGroups"_s, u"Der Server hat die Verbindung abgelehnt."_s);
        QVERIFY(failureOf(client()->call(bytesOf(appsRequest()))));
        QCOMPARE(failureOf(client()->call(nothingOf(postRequest()))),
                 std::optional<QString>(u"Netzwerkfehler: Der Server hat die Verbindung abgelehnt."_s));
        QCOMPARE(m_audit->entries().size(), 0);
    }

    void failedWriteRecordsStatusAndRequestID() {
        m_transport->script("POST", u"/v1/betaGroups"_s,
                            {Answer::json(422, appleError(u"detail"_s, u"Name schon vergeben."_s),
                                          {{"X-Apple-Request-Id", "REQ-422"}})});
        QCOMPARE(failureOf(client()->call(nothingOf(postRequest()))),
                 std::optional<QString>(u"Name schon vergeben."_s));
        const auto entries = m_audit->entries();
        QCOMPARE(entries.size(), 1);
        QCOMPARE(entries[0].errorMessage, std::optional<QString>(u"HTTP 422"_s));
        QCOMPARE(entries[0].appleRequestID, std::optional<QString>(u"REQ-422"_s));
    }

    void notFoundCarriesRequestIDAndAppleMessage() {
        m_transport->script(
            "GET", u"/v1/apps/42"_s,
            {Answer::json(404, appleError(u"title"_s, u"Nicht gefunden"_s),
                          {{"X-Apple-Request-Id", "ABC"}, {"X-Rate-Limit", "user-hour-rem:10;"}})});
        try {
            VarnisTest::awaitTask(client()->call(
                Endpoint<Returns::One<ASCAppAttributes>>::of(APIRequest::get(u"/v1/apps/42"_s))));
            QFAIL("expected http");
        } catch (const VelmoraAPIError& e) {
            QCOMPARE(e.kind(), VelmoraAPIError::Kind::Http);
            QCOMPARE(e.status(), 404);
            QCOMPARE(e.requestID(), std::optional<QString>(u"ABC"_s));
            QCOMPARE(e.errorDescription(), u"Nicht gefunden"_s);
        }
        QCOMPARE(m_governor->remaining(), std::optional<int>(10));
    }

    void rateHeaderIsReadOn429() {
        m_transport->script(
            "GET", u"/v1/apps"_s,
            {Answer::json(429, "{}"_ba, {{"X-Rate-Limit", "user-hour-lim:3600;user-hour-rem:0;"}}),
             Answer::json(200, appsPage({})), Answer::json(200, appsPage({}))});
        VarnisTest::awaitTask(client()->call(bytesOf(appsRequest())));
        QCOMPARE(m_governor->limit(), std::optional<int>(3600));
        QCOMPARE(m_governor->remaining(), std::optional<int>(0));
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

    void unusableKeySendsNothing() {
        QCOMPARE(failureOf(client("not a key"_ba)->call(bytesOf(appsRequest()))),
                 std::optional<QString>(u"Der private API-Schlüssel ist ungültig."_s));
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

    void oneTokenForManyRequests() {
        m_transport->script("GET", u"/v1/apps"_s, {Answer::json(200, appsPage({}))});
        auto c = client();
        for (int i = 0; i < 5; ++i) {
            VarnisTest::awaitTask(c->call(bytesOf(appsRequest())));
            m_clock->advance(200);
        }
        QCOMPARE(c->auth().tokensMade(), 1);
        m_clock->advance(18 * 60 - 5 * 200 + 1);
        VarnisTest::awaitTask(c->call(bytesOf(appsRequest())));
        QCOMPARE(c->auth().tokensMade(), 2);
    }

    void queryIsEncodedInOrder() {
        m_transport->script("GET", u"/v1/apps"_s, {Answer::json(200, appsPage({}))});
        APIRequest request = APIRequest::get(u"/v1/apps"_s);
        request.queryItems = {{u"filter[name]"_s, u"A+B C"_s}, {u"limit"_s, u"5"_s}};
        VarnisTest::awaitTask(client()->call(bytesOf(request)));
        const QUrl url = m_transport->requests().constFirst().url;
        QCOMPARE(url.query(QUrl::FullyEncoded), u"filter[name]=A%2BB%20C&limit=5"_s);
        QCOMPARE(QUrlQuery(url).queryItemValue(u"filter[name]"_s, QUrl::FullyDecoded), u"A+B C"_s);
    }

    void pagingFollowsNextVerbatimAndTracksTruncation() {
        const QString next = u"https://other-host.example.test/v1/apps?cursor=abc&limit=200"_s;
        m_transport->script(
            "GET", u"/v1/apps"_s,
            {Answer::json(200, appsPage({u"A"_s}, next)), Answer::json(200, appsPage({u"B"_s}))});
        auto full = VarnisTest::awaitTask(
            client()->call(Endpoint<Returns::AllPages<ASCAppAttributes>>::of(appsRequest(), 5)));
        QCOMPARE(full.items.size(), 2);
        QVERIFY(!full.truncated);
        QCOMPARE(m_transport->requests().at(1).url, QUrl(next));

        // One page allowed: truncated and registered; a later complete load clears the record.
        m_transport->script("GET", u"/v1/apps"_s, {Answer::json(200, appsPage({u"A"_s}, next))});
        auto cut = VarnisTest::awaitTask(
            client()->call(Endpoint<Returns::AllPages<ASCAppAttributes>>::of(appsRequest(), 0)));
        QVERIFY(cut.truncated);
        QCOMPARE(cut.items.size(), 1);
        QVERIFY(m_registry->contains(u"/v1/apps"_s));

        m_transport->script("GET", u"/v1/apps"_s, {Answer::json(200, appsPage({u"A"_s}))});
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
        m_transport->script(
            "GET", u"/v1/apps"_s,
            {Answer::json(200, appsPage({u"A"_s}, next)), Answer::json(200, appsPage({u"B"_s}))});
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
            {Answer::json(200, appsPage({u"A"_s}, u"https://api.example.test/v1/apps?cursor=2"_s)),
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
        m_transport->script("GET", u"/v1/apps"_s, {Answer::json(200, appsPage({u"A"_s}))});
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
            QCOMPARE(VarnisTest::awaitTask(std::move(task)), appsPage({u"A"_s}));
        }
        QCOMPARE(m_transport->requestCount(), 1);
        // Nothing is kept afterwards.
        m_transport->holdReplies(false);
        VarnisTest::awaitTask(c->call(bytesOf(appsRequest())));
        QCOMPARE(m_transport->requestCount(), 2);
    }

    void writesAreNeverMerged() {
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
