// The stages of a request one by one above a scripted transport, the time-limited cache of the
// services, and the paths that endpoints build from ids.
#include "api/AppStoreConnectClient.h"
#include "api/AuditLog.h"
#include "api/AuthenticationService.h"
#include "api/PipelineStages.h"
#include "api/RateLimitGovernor.h"
#include "api/TaskCenter.h"
#include "api/TaskCenterWaitAnnouncer.h"
#include "api/TimedCache.h"
#include "fixtures/TestClient.h"
#include "platform/Clock.h"
#include "release/ReleaseEndpoints.h"
#include "support/AwaitTask.h"
#include "support/FakeTransport.h"
#include "support/RawEndpoints.h"
#include "support/TestKeys.h"

#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using Answer = FakeTransport::Answer;
using Headers = QList<QPair<QByteArray, QByteArray>>;
Q_DECLARE_METATYPE(FakeTransport::Answer)

namespace {

PipelineCall callTo(QByteArray method, QString path) {
    PipelineCall call;
    call.request.method = method == "GET" ? APIRequest::Method::Get : APIRequest::Method::Post;
    call.request.path = path;
    call.http.method = std::move(method);
    call.http.url = QUrl(u"https://api.example.test"_s + path);
    if (call.request.method == APIRequest::Method::Post) {
        call.request.body = newBetaGroupBody();
        call.http.body = newBetaGroupBody();
    }
    return call;
}

// What the pipeline raised, in the user's words, or the status it answered with.
QString outcome(const RequestPipeline& pipeline, PipelineCall call) {
    try {
        return QString::number(VarnisTest::awaitTask(pipeline.send(std::move(call))).status);
    } catch (const VelmoraAPIError& error) {
        return error.errorDescription();
    }
}

RequestPipeline oneStage(std::unique_ptr<PipelineStage> stage, std::shared_ptr<FakeTransport> transport) {
    std::vector<std::unique_ptr<PipelineStage>> stages;
    stages.push_back(std::move(stage));
    return RequestPipeline(std::move(stages), std::move(transport));
}

} // namespace

class PipelineTest : public QObject {
    Q_OBJECT

    std::shared_ptr<ManualClock> m_clock;
    std::shared_ptr<FakeTransport> m_transport;

private Q_SLOTS:
    void init() {
        m_clock = std::make_shared<ManualClock>();
        m_clock->setAutoAdvance(true);
        m_transport = std::make_shared<FakeTransport>();
    }

    // Alone, the retry stage hands the last answer up unchanged; turning it into an error is
    // the mapping stage's work.
    void retryStageAlone_data() {
        QTest::addColumn<QList<int>>("statuses");
        QTest::addColumn<QByteArray>("retryAfter");
        QTest::addColumn<QList<double>>("sleeps");
        QTest::addColumn<QString>("result");

        QTest::newRow("success at once") << QList<int>{204} << QByteArray() << QList<double>{} << u"204"_s;
        QTest::newRow("429 then success")
            << QList<int>{429, 200} << QByteArray() << QList<double>{2} << u"200"_s;
        QTest::newRow("429 four times, Retry-After 0.5")
            << QList<int>{429} << "0.5"_ba << QList<double>{0.5, 0.5, 0.5} << u"429"_s;
        QTest::newRow("an hour at most")
            << QList<int>{429, 200} << "1e9"_ba << QList<double>{3600} << u"200"_s;
        QTest::newRow("5xx four times")
            << QList<int>{500} << QByteArray() << QList<double>{1.5, 3, 4.5} << u"500"_s;
        QTest::newRow("404 is no reason to try again")
            << QList<int>{404, 200} << QByteArray() << QList<double>{} << u"404"_s;
    }

    void retryStageAlone() {
        QFETCH(QList<int>, statuses);
        QFETCH(QByteArray, retryAfter);
        QFETCH(QList<double>, sleeps);
        QFETCH(QString, result);
        QList<Answer> answers;
        for (int status : statuses) {
            answers.append(Answer::json(
                status, "{}"_ba, retryAfter.isNull() ? Headers{} : Headers{{"Retry-After", retryAfter}}));
        }
        m_transport->script("GET", u"/v1/apps"_s, answers);
        const auto pipeline = oneStage(std::make_unique<RetryStage>(m_clock), m_transport);
        QCOMPARE(outcome(pipeline, callTo("GET", u"/v1/apps"_s)), result);
        QCOMPARE(m_clock->sleeps(), sleeps);
        QCOMPARE(m_transport->requestCount(), sleeps.size() + 1);
    }

    // Waiting for a network is no try: the attempts count on afterwards.
    void retryStageWaitsForANetwork_data() {
        QTest::addColumn<QList<Answer>>("answers");
        QTest::addColumn<QList<double>>("sleeps");
        QTest::addColumn<QString>("result");
        const Answer offline = Answer::offline(u"Keine Netzwerkverbindung."_s);
        QList<double> window{2, 4, 8, 16};
        for (int i = 0; i < 9; ++i) {
            window.append(30);
        }
        QTest::newRow("back after two waits")
            << QList<Answer>{offline, offline, Answer::json(200, "{}"_ba)} << QList<double>{2, 4} << u"200"_s;
        QTest::newRow("then a 503 still has its tries")
            << QList<Answer>{offline, Answer::json(503, "{}"_ba), Answer::json(200, "{}"_ba)}
            << QList<double>{2, 1.5} << u"200"_s;
        QTest::newRow("gone for five minutes")
            << QList<Answer>{offline} << window << u"Keine Netzwerkverbindung."_s;
        QTest::newRow("a refused connection is not waited for")
            << QList<Answer>{Answer::error(u"abgelehnt"_s), Answer::json(200, "{}"_ba)} << QList<double>{}
            << u"abgelehnt"_s;
    }

    void retryStageWaitsForANetwork() {
        QFETCH(QList<Answer>, answers);
        QFETCH(QList<double>, sleeps);
        QFETCH(QString, result);
        m_transport->script("GET", u"/v1/apps"_s, answers);
        const auto pipeline = oneStage(std::make_unique<RetryStage>(m_clock), m_transport);
        QString outcomeText;
        try {
            outcomeText =
                QString::number(VarnisTest::awaitTask(pipeline.send(callTo("GET", u"/v1/apps"_s))).status);
        } catch (const TransportError& error) {
            outcomeText = error.description();
        }
        QCOMPARE(outcomeText, result);
        QCOMPARE(m_clock->sleeps(), sleeps);
    }

    // Only waits above ten seconds are announced, and each for exactly as long as it lasts.
    void longWaitsAreAnnounced_data() {
        QTest::addColumn<QList<Answer>>("answers");
        QTest::addColumn<QStringList>("announced");
        const Answer offline = Answer::offline(u"Keine Netzwerkverbindung."_s);
        const auto limited = [](const QByteArray& seconds) {
            return Answer::json(429, "{}"_ba, Headers{{"Retry-After", seconds}});
        };
        QTest::newRow("Retry-After of 10^9 is one hour, shown")
            << QList<Answer>{limited("1e9"), Answer::json(200, "{}"_ba)} << QStringList{u"Pause 3600"_s};
        QTest::newRow("ten seconds pass in silence")
            << QList<Answer>{limited("10"), Answer::json(200, "{}"_ba)} << QStringList{};
        QTest::newRow("eleven do not")
            << QList<Answer>{limited("11"), Answer::json(200, "{}"_ba)} << QStringList{u"Pause 11"_s};
        QTest::newRow("the network's fourth wait is the first one shown")
            << QList<Answer>{offline, offline, offline, offline, Answer::json(200, "{}"_ba)}
            << QStringList{u"Netz 16"_s};
    }

    void longWaitsAreAnnounced() {
        QFETCH(QList<Answer>, answers);
        QFETCH(QStringList, announced);
        struct Recorder final : WaitAnnouncer {
            ManualClock* clock;
            QStringList seen;
            int open = 0;
            int started(Reason reason, QDateTime until, QString) override {
                seen.append((reason == Reason::RateLimited ? u"Pause "_s : u"Netz "_s) +
                            QString::number(clock->now().secsTo(until)));
                return ++open;
            }
            void ended(int) override { --open; }
        };
        auto recorder = std::make_shared<Recorder>();
        recorder->clock = m_clock.get();
        m_transport->script("GET", u"/v1/apps"_s, answers);
        const auto pipeline = oneStage(
            std::make_unique<RetryStage>(m_clock, RetryStage::Policy::ApiAnswers, recorder), m_transport);
        QCOMPARE(outcome(pipeline, callTo("GET", u"/v1/apps"_s)), u"200"_s);
        QCOMPARE(recorder->seen, announced);
        QCOMPARE(recorder->open, 0);
    }

    // In the window the wait is a task with its end time that goes when the wait is over.
    void aLongWaitIsATaskUntilItEnds() {
        m_clock->setAutoAdvance(false);
        m_clock->setNow(QDateTime(QDate(2026, 11, 24), QTime(20, 0), Qt::LocalTime));
        TaskCenter tasks;
        m_transport->script(
            "GET", u"/v1/apps"_s,
            {Answer::json(429, "{}"_ba, Headers{{"Retry-After", "90"}}), Answer::json(200, "{}"_ba)});
        const auto pipeline =
            oneStage(std::make_unique<RetryStage>(m_clock, RetryStage::Policy::ApiAnswers,
                                                  std::make_shared<TaskCenterWaitAnnouncer>(&tasks, m_clock),
                                                  u"Studio"_s),
                     m_transport);
        auto call = pipeline.send(callTo("GET", u"/v1/apps"_s));
        QTRY_COMPARE(tasks.tasks().size(), 1);
        QCOMPARE(tasks.tasks().first().title, u"Warten auf Apple"_s);
        QCOMPARE(tasks.tasks().first().detail,
                 u"Studio: Apple bittet um eine Pause – weiter um 20:01:30 Uhr."_s);
        m_clock->advance(90);
        QCOMPARE(VarnisTest::awaitTask(std::move(call)).status, 200);
        QVERIFY(tasks.tasks().isEmpty());
    }

    void endTimeNamesTheDayOnlyWhenItIsAnother() {
        const QDateTime now(QDate(2026, 11, 24), QTime(23, 30), Qt::LocalTime);
        QCOMPARE(WaitAnnouncer::describe(WaitAnnouncer::Reason::Offline, now.addSecs(20), now),
                 u"Keine Netzwerkverbindung – nächster Versuch um 23:30:20 Uhr."_s);
        QCOMPARE(WaitAnnouncer::describe(WaitAnnouncer::Reason::RateLimited, now.addSecs(3600), now),
                 u"Apple bittet um eine Pause – weiter um 25.11.2026, 00:30:00 Uhr."_s);
    }

    void errorMappingStageAlone_data() {
        QTest::addColumn<bool>("storage");
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("result");

        const QByteArray apple = R"({"errors":[{"status":"409","detail":"Der Name ist vergeben."}]})"_ba;
        QTest::newRow("success passes") << false << 201 << QByteArray() << u"201"_s;
        QTest::newRow("Apple's detail") << false << 409 << apple << u"Der Name ist vergeben."_s;
        QTest::newRow("401")
            << false << 401 << apple
            << u"Anmeldung bei App Store Connect fehlgeschlagen. Bitte API-Schlüssel prüfen."_s;
        QTest::newRow("429 at the end") << false << 429 << QByteArray()
                                        << u"Zu viele Anfragen an App Store Connect. Bitte kurz warten."_s;
        QTest::newRow("control codes in Apple's detail are written out")
            << false << 409
            << QByteArray(
                   "{\"errors\":[{\"detail\":\"\\u001b[2J\\u001b[HFrei\\r\\nZeile\\tzwei\\u0007\\u009b\"}]}")
            << u"\\x1B[2J\\x1B[HFrei\\x0D\nZeile\tzwei\\x07\\u009B"_s;
        QTest::newRow("storage reads no error document")
            << true << 409 << apple << u"App Store Connect meldete Fehler 409."_s;
        QTest::newRow("storage 403 is no missing permission")
            << true << 403 << QByteArray() << u"App Store Connect meldete Fehler 403."_s;
    }

    void errorMappingStageAlone() {
        QFETCH(bool, storage);
        QFETCH(int, status);
        QFETCH(QByteArray, body);
        QFETCH(QString, result);
        m_transport->script("POST", u"/v1/betaGroups"_s, {Answer::json(status, body)});
        const auto pipeline =
            oneStage(std::make_unique<ErrorMappingStage>(storage ? ErrorMappingStage::Kind::Storage
                                                                 : ErrorMappingStage::Kind::Api),
                     m_transport);
        QCOMPARE(outcome(pipeline, callTo("POST", u"/v1/betaGroups"_s)), result);
        QCOMPARE(m_transport->requestCount(), 1);
    }

    void tokenStageSignsOrSendsNothing() {
        const TestKey key = makeTestKey();
        auto signing =
            oneStage(std::make_unique<TokenStage>(std::make_shared<AuthenticationService>(
                                                      u"ABCDE12345"_s, u"issuer"_s, key.privateKeyPEM),
                                                  m_clock),
                     m_transport);
        m_transport->script("GET", u"/v1/apps"_s, {Answer::json(200, "{}"_ba)});
        QCOMPARE(outcome(signing, callTo("GET", u"/v1/apps"_s)), u"200"_s);
        const auto& headers = m_transport->requests().constFirst().headers;
        QVERIFY(std::any_of(headers.cbegin(), headers.cend(), [](const auto& header) {
            return header.first == "Authorization" && header.second.startsWith("Bearer ey");
        }));

        auto broken =
            oneStage(std::make_unique<TokenStage>(std::make_shared<AuthenticationService>(
                                                      u"ABCDE12345"_s, u"issuer"_s, "kein Schlüssel"_ba),
                                                  m_clock),
                     m_transport);
        QCOMPARE(outcome(broken, callTo("GET", u"/v1/apps"_s)), u"Der private API-Schlüssel ist ungültig."_s);
        QCOMPARE(m_transport->requestCount(), 1);
    }

    void governorStageReadsTheHeaderOfFailuresToo() {
        auto governor = std::make_shared<RateLimitGovernor>(m_clock);
        m_transport->script(
            "GET", u"/v1/apps"_s,
            {Answer::json(429, "{}"_ba, {{"X-Rate-Limit", "user-hour-lim:3600;user-hour-rem:12;"}})});
        const auto pipeline = oneStage(std::make_unique<GovernorStage>(governor), m_transport);
        QCOMPARE(outcome(pipeline, callTo("GET", u"/v1/apps"_s)), u"429"_s);
        QCOMPARE(governor->updatedAt(), std::optional<QDateTime>(m_clock->now()));
    }

    void auditStageRecordsWritesThatGotAnAnswer_data() {
        QTest::addColumn<QByteArray>("method");
        QTest::addColumn<int>("status");
        QTest::addColumn<int>("entries");
        QTest::addColumn<QString>("message");
        QTest::newRow("read") << "GET"_ba << 500 << 0 << QString();
        QTest::newRow("write") << "POST"_ba << 201 << 1 << QString();
        QTest::newRow("failed write") << "POST"_ba << 503 << 1 << u"HTTP 503"_s;
    }

    void auditStageRecordsWritesThatGotAnAnswer() {
        QFETCH(QByteArray, method);
        QFETCH(int, status);
        QFETCH(int, entries);
        QFETCH(QString, message);
        QTemporaryDir dir;
        auto log = std::make_shared<AuditLog>(dir.filePath(u"log.json"_s));
        m_transport->script(method, u"/v1/betaGroups"_s,
                            {Answer::json(status, "{}"_ba, {{"X-Apple-Request-Id", "REQ-1"}})});
        const auto pipeline = oneStage(std::make_unique<AuditStage>(log, m_clock, u"Studio"_s), m_transport);
        outcome(pipeline, callTo(method, u"/v1/betaGroups"_s));
        QCOMPARE(log->entries().size(), entries);
        if (entries > 0) {
            const auto entry = log->entries().constFirst();
            QCOMPARE(entry.statusCode, std::optional<int>(status));
            QCOMPARE(entry.appleRequestID, std::optional<QString>(u"REQ-1"_s));
            QCOMPARE(entry.errorMessage.value_or(QString()), message);
        }
    }

    // An id is one segment whatever it holds; Apple's ids are digits, but a path built from a
    // damaged value must never reach another resource.
    void idsStayOneSegment_data() {
        QTest::addColumn<QString>("id");
        QTest::addColumn<QString>("path");
        QTest::newRow("plain") << u"6443"_s << u"/v1/appStoreVersions/6443"_s;
        QTest::newRow("slash") << u"a/../b"_s << u"/v1/appStoreVersions/a%2F..%2Fb"_s;
        QTest::newRow("query") << u"1?x=2"_s << u"/v1/appStoreVersions/1%3Fx%3D2"_s;
        QTest::newRow("percent and blank") << u"50% off"_s << u"/v1/appStoreVersions/50%25%20off"_s;
        QTest::newRow("umlaut") << u"Größe"_s << u"/v1/appStoreVersions/Gr%C3%B6%C3%9Fe"_s;
    }

    void idsStayOneSegment() {
        QFETCH(QString, id);
        QFETCH(QString, path);
        const auto endpoint = ReleaseEndpoints::deleteVersion(id);
        QCOMPARE(endpoint.request.path, path);

        const auto parts = clientParts(m_clock, m_transport, makeTestKey().privateKeyPEM,
                                       QUrl(u"https://api.example.test/"_s));
        m_transport->setContractMode(FakeTransport::ContractMode::Off);
        m_transport->route(
            "DELETE", u"/v1/appStoreVersions/"_s, [](const HttpRequest&) { return Answer::json(204, {}); },
            RouteMatch::Prefix);
        VarnisTest::awaitTask(AppStoreConnectClient::create(parts)->call(endpoint));
        QCOMPARE(m_transport->requests().constFirst().url.path(QUrl::FullyEncoded), path);
    }

    void cacheIsFreshStrictlyBelowItsLifetime_data() {
        QTest::addColumn<int>("ageMs");
        QTest::addColumn<bool>("fresh");
        QTest::newRow("just stored") << 0 << true;
        QTest::newRow("a moment before the end") << 59999 << true;
        QTest::newRow("exactly the lifetime") << 60000 << false;
        QTest::newRow("older") << 3600000 << false;
        QTest::newRow("from the future after the clock went back") << -1000 << false;
    }

    void cacheIsFreshStrictlyBelowItsLifetime() {
        QFETCH(int, ageMs);
        QFETCH(bool, fresh);
        TimedCache<int> cache(m_clock, 60);
        cache.insert(u"apps"_s, 7);
        m_clock->setNow(m_clock->now().addMSecs(ageMs));
        QCOMPARE(cache.fresh(u"apps"_s).has_value(), fresh);
    }

    void cacheForgetsByKeyAndPrefix() {
        TimedCache<int> cache(m_clock, 60);
        for (const auto& key : {u"app1/v1"_s, u"app1/v2"_s, u"app10/v1"_s, u"app2/v1"_s}) {
            cache.insert(key, 1);
        }
        cache.removePrefix(u"app1/"_s);
        QVERIFY(!cache.fresh(u"app1/v1"_s) && !cache.fresh(u"app1/v2"_s));
        QVERIFY(cache.fresh(u"app10/v1"_s) && cache.fresh(u"app2/v1"_s));
        cache.remove(u"app2/v1"_s);
        QVERIFY(!cache.fresh(u"app2/v1"_s));
    }
};

QTEST_GUILESS_MAIN(PipelineTest)
#include "tst_pipeline.moc"
