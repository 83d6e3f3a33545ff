#include "api/RateLimitGovernor.h"
#include "fixtures/JsonApi.h"
#include "fixtures/TestClient.h"
#include "platform/Clock.h"
#include "support/AwaitTask.h"
#include "support/FakeTransport.h"
#include "testflight/TestFlightEndpoints.h"
#include "testflight/TestFlightService.h"
#include "workspace/MockData.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTest>
#include <QUrlQuery>

using namespace Qt::StringLiterals;

namespace {

using Answer = FakeTransport::Answer;
using Action = std::function<void()>;
using Probe = std::function<std::optional<bool>()>;

using JsonApi::linkage;
using JsonApi::page;
using JsonApi::resource;
using JsonApi::single;

QJsonObject tester(const QString& id, const QString& first, const QString& email) {
    return resource(u"betaTesters"_s, id, QJsonObject{{u"firstName"_s, first}, {u"email"_s, email}});
}

QJsonObject linkageData(const QString& type, const QString& id) {
    return QJsonObject{{u"type"_s, type}, {u"id"_s, id}};
}

QByteArray metrics(const QJsonArray& segments) {
    return QJsonDocument(QJsonObject{{u"data"_s, segments}}).toJson(QJsonDocument::Compact);
}

} // namespace

Q_DECLARE_METATYPE(Action)
Q_DECLARE_METATYPE(Probe)

class TestFlightServiceTest : public QObject {
    Q_OBJECT

    std::shared_ptr<ManualClock> m_clock;
    std::shared_ptr<FakeTransport> m_transport;
    std::shared_ptr<RateLimitGovernor> m_governor;
    std::unique_ptr<TestFlightService> m_service;
    TestKey m_key = makeTestKey();

    std::shared_ptr<AppStoreConnectClient> client() {
        auto parts = clientParts(m_clock, m_transport, m_key.privateKeyPEM);
        parts.governor = m_governor;
        return AppStoreConnectClient::create(parts);
    }

    int requestsTo(const QByteArray& method, const QString& path) const {
        return int(m_transport->requestsTo(method, path).size());
    }

    QJsonObject lastBody() const {
        return QJsonDocument::fromJson(m_transport->requests().constLast().body).object();
    }

    QString lastRequest() const {
        const auto& r = m_transport->requests().constLast();
        return QString::fromLatin1(r.method) + u' ' + r.url.path();
    }

    void scriptTesterCreation(QList<int> statuses) {
        QList<Answer> answers;
        for (int status : statuses) {
            answers.append(status == 201
                               ? Answer::json(201, single(tester(u"t-new"_s, u"Neu"_s, u"n@example.com"_s)))
                               : Answer::json(status, JsonApi::error(QString::number(status), u"nein"_s)));
        }
        m_transport->script("POST", u"/v1/betaTesters"_s, answers);
    }

    static QList<NewBetaTester> people(int count) {
        QList<NewBetaTester> list;
        for (int i = 0; i < count; ++i) {
            list.append(NewBetaTester{u"p%1@example.com"_s.arg(i), std::nullopt, std::nullopt});
        }
        return list;
    }

private Q_SLOTS:
    void init() {
        m_clock = std::make_shared<ManualClock>();
        m_transport = std::make_shared<FakeTransport>();
        m_governor = std::make_shared<RateLimitGovernor>(m_clock);
        m_service = std::make_unique<TestFlightService>(m_clock);
        // Writes answer as Apple does: the resource with the attributes sent, relationships and
        // deletions with no content.
        m_transport->route(
            {}, u"/v1/"_s,
            [](const HttpRequest& r) {
                if (r.method == "DELETE" || r.url.path().contains(u"/relationships/"_s)) {
                    return Answer::json(204, {});
                }
                const QJsonObject sent = QJsonDocument::fromJson(r.body).object()[u"data"_s].toObject();
                QJsonObject answer{{u"type"_s, sent[u"type"_s]}, {u"id"_s, sent[u"id"_s].toString(u"new"_s)}};
                if (sent.contains(u"attributes"_s)) {
                    answer.insert(u"attributes"_s, sent[u"attributes"_s]);
                }
                return Answer::json(r.method == "POST" ? 201 : 200, single(answer));
            },
            RouteMatch::Prefix);
        m_transport->script(
            "GET", u"/v1/apps/app1/betaGroups"_s,
            {Answer::json(200, page({resource(u"betaGroups"_s, u"g1"_s, {{u"name"_s, u"Team"_s}})}))});
        m_transport->script("GET", u"/v1/betaGroups/g1/betaTesters"_s,
                            {Answer::json(200, page({tester(u"t1"_s, u"Ada"_s, u"ada@example.com"_s)}))});
        m_transport->script("GET", u"/v1/betaGroups/g2/betaTesters"_s, {Answer::json(200, page({}))});
    }

    void cleanup() { VARNIS_VERIFY_CONTRACT(*m_transport); }

    // Groups per app and testers per group are kept exactly a minute, and dropped by the writes
    // that change them, but only by those and only once they succeeded.
    void caches_data() {
        QTest::addColumn<QString>("list");
        QTest::addColumn<double>("after");
        QTest::addColumn<bool>("force");
        QTest::addColumn<Action>("between");
        QTest::addColumn<int>("fetches");

        const Action none;
        QTest::newRow("groups within the minute") << u"groups"_s << 59.999 << false << none << 1;
        QTest::newRow("groups at the minute") << u"groups"_s << 60.0 << false << none << 2;
        QTest::newRow("groups forced") << u"groups"_s << 0.0 << true << none << 2;
        QTest::newRow("clock set back") << u"testers"_s << -1.0 << false << none << 2;

        QTest::newRow("tester removed") << u"testers"_s << 0.0 << false << Action([this] {
            VarnisTest::awaitTask(m_service->removeTester(u"t1"_s, u"g1"_s, client()));
        }) << 2;
        QTest::newRow("tester removed from another group") << u"testers"_s << 0.0 << false << Action([this] {
            VarnisTest::awaitTask(m_service->removeTester(u"t1"_s, u"g2"_s, client()));
        }) << 1;
        QTest::newRow("group deleted: its app's groups") << u"groups"_s << 0.0 << false << Action([this] {
            VarnisTest::awaitTask(m_service->deleteGroup(u"g1"_s, u"app1"_s, client()));
        }) << 2;
        QTest::newRow("group deleted: its testers") << u"testers"_s << 0.0 << false << Action([this] {
            VarnisTest::awaitTask(m_service->deleteGroup(u"g1"_s, u"app1"_s, client()));
        }) << 2;
        QTest::newRow("group settings saved") << u"groups"_s << 0.0 << false << Action([this] {
            BetaGroupUpdateRequestBody body;
            body.id = u"g1"_s;
            body.name = u"Umbenannt"_s;
            const auto saved = VarnisTest::awaitTask(m_service->updateGroup(body, u"app1"_s, client()));
            QCOMPARE(saved.name, u"Umbenannt"_s);
        }) << 2;
        QTest::newRow("group created") << u"groups"_s << 0.0 << false << Action([this] {
            BetaGroupCreateRequestBody body;
            body.appID = u"app1"_s;
            body.name = u"Neu"_s;
            QCOMPARE(VarnisTest::awaitTask(m_service->createGroup(body, client())).name, u"Neu"_s);
        }) << 2;
        QTest::newRow("failed delete keeps the groups") << u"groups"_s << 0.0 << false << Action([this] {
            m_transport->script("DELETE", u"/v1/betaGroups/g1"_s,
                                {Answer::json(409, JsonApi::error(u"409"_s, u"x"_s))});
            QVERIFY_THROWS_EXCEPTION(
                VelmoraAPIError, VarnisTest::awaitTask(m_service->deleteGroup(u"g1"_s, u"app1"_s, client())));
        }) << 1;
        QTest::newRow("import chunk done") << u"testers"_s << 0.0 << false << Action([this] {
            QCOMPARE(VarnisTest::awaitTask(m_service->importTesters(people(2), u"g1"_s, client())), 2);
        }) << 2;
        QTest::newRow("empty import") << u"testers"_s << 0.0 << false << Action([this] {
            QCOMPARE(VarnisTest::awaitTask(m_service->importTesters({}, u"g1"_s, client())), 0);
        }) << 1;
        QTest::newRow("failed import keeps the testers") << u"testers"_s << 0.0 << false << Action([this] {
            scriptTesterCreation({201, 422});
            QVERIFY_THROWS_EXCEPTION(VelmoraAPIError, VarnisTest::awaitTask(m_service->importTesters(
                                                          people(3), u"g1"_s, client())));
        }) << 1;
        QTest::newRow("one tester added: the caller reloads")
            << u"testers"_s << 0.0 << false << Action([this] {
                   VarnisTest::awaitTask(m_service->addTester(people(1).first(), u"g1"_s, client()));
               })
            << 1;
        QTest::newRow("failed refresh keeps the entry") << u"testers"_s << 0.0 << false << Action([this] {
            m_transport->failWith("GET", u"/v1/betaGroups/g1/betaTesters"_s, u"offline"_s);
            QVERIFY_THROWS_EXCEPTION(VelmoraAPIError,
                                     VarnisTest::awaitTask(m_service->testers(u"g1"_s, client(), true)));
        }) << 2; // the failed one counts as a request; the read after it answers from memory
    }

    void caches() {
        QFETCH(QString, list);
        QFETCH(double, after);
        QFETCH(bool, force);
        QFETCH(Action, between);
        QFETCH(int, fetches);
        const bool groups = list == u"groups"_s;
        const auto load = [&](bool forced) {
            return groups ? VarnisTest::awaitTask(m_service->groups(u"app1"_s, client(), forced)).size()
                          : VarnisTest::awaitTask(m_service->testers(u"g1"_s, client(), forced)).size();
        };
        QCOMPARE(load(false), 1);
        if (after < 0) {
            m_clock->setNow(m_clock->now().addSecs(qint64(after)));
        } else {
            m_clock->advance(after);
        }
        if (between) {
            between();
        }
        QCOMPARE(load(force), 1);
        QCOMPARE(groups ? requestsTo("GET", u"/v1/apps/app1/betaGroups"_s)
                        : requestsTo("GET", u"/v1/betaGroups/g1/betaTesters"_s),
                 fetches);
    }

    void listsArePagedAndSortedInPlainTextOrder() {
        m_transport->script(
            "GET", u"/v1/apps/app2/betaGroups"_s,
            {Answer::json(200, page({resource(u"betaGroups"_s, u"a"_s, {{u"name"_s, u"beta"_s}}),
                                     resource(u"betaGroups"_s, u"b"_s, {}),
                                     resource(u"betaGroups"_s, u"c"_s, {{u"name"_s, u"Zeta"_s}})},
                                    u"https://api.example.test/v1/apps/app2/betaGroups?cursor=2"_s)),
             Answer::json(200, page({resource(u"betaGroups"_s, u"d"_s, {{u"name"_s, u"Alpha"_s}})}))});
        const auto groups = VarnisTest::awaitTask(m_service->groups(u"app2"_s, client(), false));
        QStringList names;
        for (const auto& g : groups) {
            names.append(g.name);
        }
        QCOMPARE(names, (QStringList{u"Alpha"_s, u"Unbenannte Gruppe"_s, u"Zeta"_s, u"beta"_s}));
        QCOMPARE(QUrlQuery(m_transport->requests().constFirst().url).queryItemValue(u"limit"_s), u"200"_s);
    }

    // Apple's 409 for an address already in the group counts as handed over; nothing else does.
    void handover_data() {
        QTest::addColumn<QList<int>>("answers");
        QTest::addColumn<int>("chunk");
        QTest::addColumn<int>("cancelAfter"); // -1: never
        QTest::addColumn<int>("handedOver");  // -1: raises
        QTest::addColumn<QList<int>>("progress");
        QTest::addColumn<int>("sent");

        QTest::newRow("all new") << QList<int>{201} << 3 << -1 << 3 << QList<int>{1, 2, 3} << 3;
        QTest::newRow("one already there")
            << QList<int>{201, 409, 201} << 3 << -1 << 3 << QList<int>{1, 2, 3} << 3;
        QTest::newRow("refused address stops the chunk")
            << QList<int>{201, 422, 201} << 3 << -1 << -1 << QList<int>{1} << 2;
        QTest::newRow("missing group stops the chunk")
            << QList<int>{404} << 3 << -1 << -1 << QList<int>{} << 1;
        QTest::newRow("cancelled after two") << QList<int>{201} << 5 << 2 << 2 << QList<int>{1, 2} << 2;
        QTest::newRow("cancelled before the first") << QList<int>{201} << 5 << 0 << 0 << QList<int>{} << 0;
    }

    void handover() {
        QFETCH(QList<int>, answers);
        QFETCH(int, chunk);
        QFETCH(int, cancelAfter);
        QFETCH(int, handedOver);
        QFETCH(QList<int>, progress);
        QFETCH(int, sent);
        scriptTesterCreation(answers);
        QList<int> seen;
        int result = -1;
        try {
            result = VarnisTest::awaitTask(m_service->importTesters(
                people(chunk), u"g1"_s, client(),
                [&] { return cancelAfter >= 0 && seen.size() >= cancelAfter; },
                [&](int count) { seen.append(count); }));
        } catch (const VelmoraAPIError&) {
        }
        QCOMPARE(result, handedOver);
        QCOMPARE(seen, progress);
        QCOMPARE(requestsTo("POST", u"/v1/betaTesters"_s), sent);
    }

    void singleTesterOutcome_data() {
        QTest::addColumn<int>("status");
        QTest::addColumn<int>("outcome"); // -1: raises
        QTest::newRow("created") << 201 << int(BetaTesterHandover::Added);
        QTest::newRow("already in the group") << 409 << int(BetaTesterHandover::AlreadyThere);
        QTest::newRow("refused") << 422 << -1;
    }

    void singleTesterOutcome() {
        QFETCH(int, status);
        QFETCH(int, outcome);
        scriptTesterCreation({status});
        int result = -1;
        try {
            result = int(VarnisTest::awaitTask(m_service->addTester(people(1).first(), u"g1"_s, client())));
        } catch (const VelmoraAPIError&) {
        }
        QCOMPARE(result, outcome);
    }

    // An import waits behind the user's own work: with the hourly budget nearly spent the
    // governor refuses it before anything is sent, while a single interactive addition goes out.
    void importRunsInTheBackground() {
        m_governor->update(u"user-hour-lim:3600;user-hour-rem:100;"_s);
        scriptTesterCreation({201});
        try {
            VarnisTest::awaitTask(m_service->importTesters(people(2), u"g1"_s, client()));
            QFAIL("the import went out");
        } catch (const VelmoraAPIError& error) {
            QCOMPARE(error.kind(), VelmoraAPIError::Kind::RateLimitBudgetExhausted);
        }
        QCOMPARE(requestsTo("POST", u"/v1/betaTesters"_s), 0);
        QCOMPARE(int(VarnisTest::awaitTask(m_service->addTester(people(1).first(), u"g1"_s, client()))),
                 int(BetaTesterHandover::Added));
    }

    // Only the beta review submission and the crash log take Apple's 404 as "there is none".
    void notFound_data() {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QJsonObject>("present");
        QTest::addColumn<Probe>("read"); // whether the resource is there; throws on an error
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("outcome");

        const auto absentOnNotFound = [](const char* name, const QString& path, const QJsonObject& present,
                                         const Probe& read) {
            for (int status : {404, 200, 403, 409}) {
                QTest::addRow("%s: %d", name, status) << path << present << read << status
                                                      << (status == 404   ? u"absent"_s
                                                          : status == 200 ? u"present"_s
                                                                          : u"error"_s);
            }
        };
        absentOnNotFound(
            "betaReviewSubmission", u"/v1/builds/b1/betaAppReviewSubmission"_s,
            resource(u"betaAppReviewSubmissions"_s, u"s1"_s, {{u"betaReviewState"_s, u"IN_REVIEW"_s}}),
            Probe([this]() -> std::optional<bool> {
                return VarnisTest::awaitTask(m_service->betaReviewSubmission(u"b1"_s, client())).has_value();
            }));
        absentOnNotFound("crashLog", u"/v1/betaFeedbackCrashSubmissions/b1/crashLog"_s,
                         resource(u"betaCrashLogs"_s, u"c1"_s, {{u"logText"_s, u"Thread 0 Crashed"_s}}),
                         Probe([this]() -> std::optional<bool> {
                             const auto log = VarnisTest::awaitTask(m_service->crashLog(u"b1"_s, client()));
                             return log && log->logText == u"Thread 0 Crashed"_s;
                         }));
        const auto failsOnNotFound = [](const char* name, const QString& path, const Action& call) {
            QTest::addRow("%s: 404", name) << path << QJsonObject() << Probe([call]() -> std::optional<bool> {
                call();
                return std::nullopt;
            }) << 404 << u"error"_s;
        };
        failsOnNotFound("buildBetaDetail", u"/v1/builds/b1/buildBetaDetail"_s,
                        [this] { VarnisTest::awaitTask(m_service->buildBetaDetail(u"b1"_s, client())); });
        failsOnNotFound("usage", u"/v1/builds/b1/metrics/betaBuildUsages"_s,
                        [this] { VarnisTest::awaitTask(m_service->usage(u"b1"_s, client())); });
        failsOnNotFound("buildLocalizations", u"/v1/builds/b1/betaBuildLocalizations"_s,
                        [this] { VarnisTest::awaitTask(m_service->buildLocalizations(u"b1"_s, client())); });
        failsOnNotFound("buildIDs", u"/v1/betaGroups/b1/relationships/builds"_s,
                        [this] { VarnisTest::awaitTask(m_service->buildIDs(u"b1"_s, client())); });
    }

    void notFound() {
        QFETCH(QString, path);
        QFETCH(QJsonObject, present);
        QFETCH(Probe, read);
        QFETCH(int, status);
        QFETCH(QString, outcome);
        m_transport->script("GET", path,
                            {status == 200
                                 ? Answer::json(200, single(present))
                                 : Answer::json(status, JsonApi::error(QString::number(status), u"x"_s))});
        if (outcome == u"error"_s) {
            try {
                read();
                QFAIL("no error");
            } catch (const VelmoraAPIError& error) {
                QCOMPARE(error.status(), status == 403 ? 0 : status);
            }
        } else {
            QCOMPARE(read(), std::optional<bool>(outcome == u"present"_s));
        }
    }

    // Apple writes `dataPoints` as a list or as one object, and period bounds with or without a
    // time; the totals sum every value of every point of every segment.
    void usageDocument_data() {
        QTest::addColumn<QJsonArray>("segments");
        QTest::addColumn<bool>("asDeclared"); // false: the list form the document does not declare
        QTest::addColumn<QVariantMap>("totals");
        QTest::addColumn<int>("points"); // -1: not readable

        const auto point = [](const QString& start, int installs, int sessions) {
            return QJsonObject{
                {u"start"_s, start},
                {u"end"_s, start},
                {u"values"_s, QJsonObject{{u"installCount"_s, installs}, {u"sessionCount"_s, sessions}}}};
        };
        QTest::newRow("list of points, days only")
            << QJsonArray{QJsonObject{
                   {u"dataPoints"_s, QJsonArray{point(u"2026-01-01"_s, 2, 5), point(u"2026-01-02"_s, 3, 7)}}}}
            << false << QVariantMap{{u"installCount"_s, 5.0}, {u"sessionCount"_s, 12.0}} << 2;
        QTest::newRow("one point as an object, with times")
            << QJsonArray{QJsonObject{{u"dataPoints"_s, point(u"2026-01-01T00:00:00Z"_s, 4, 1)}}} << true
            << QVariantMap{{u"installCount"_s, 4.0}, {u"sessionCount"_s, 1.0}} << 1;
        QTest::newRow("several segments, one without points")
            << QJsonArray{QJsonObject{{u"dataPoints"_s, point(u"2026-01-01T00:00:00.250Z"_s, 1, 1)}},
                          QJsonObject{}, QJsonObject{{u"dataPoints"_s, point(u"2026-01-03"_s, 2, 0)}}}
            << true << QVariantMap{{u"installCount"_s, 3.0}, {u"sessionCount"_s, 1.0}} << 2;
        QTest::newRow("no segments") << QJsonArray{} << true << QVariantMap{} << 0;
        QTest::newRow("a bound that is no date")
            << QJsonArray{QJsonObject{{u"dataPoints"_s, point(u"gestern"_s, 1, 1)}}} << true << QVariantMap{}
            << -1;
        QTest::newRow("points as text")
            << QJsonArray{QJsonObject{{u"dataPoints"_s, u"none"_s}}} << false << QVariantMap{} << -1;
    }

    void usageDocument() {
        QFETCH(QJsonArray, segments);
        QFETCH(bool, asDeclared);
        QFETCH(QVariantMap, totals);
        QFETCH(int, points);
        Answer answer = Answer::json(200, metrics(segments));
        if (!asDeclared) {
            answer = answer.breakingContract(
                u"Apple sends dataPoints as a list; the document declares one object"_s);
        }
        m_transport->script("GET", u"/v1/builds/b1/metrics/betaBuildUsages"_s, {answer});
        std::optional<ManagedBetaUsage> read;
        try {
            read = VarnisTest::awaitTask(m_service->usage(u"b1"_s, client()));
        } catch (const VelmoraAPIError& error) {
            QCOMPARE(error.kind(), VelmoraAPIError::Kind::Decoding);
        }
        // Apple measures builds without a granularity.
        QCOMPARE(QUrlQuery(m_transport->requests().constLast().url).toString(), u"limit=50"_s);
        QCOMPARE(read.has_value(), points >= 0);
        if (!read) {
            return;
        }
        const ManagedBetaUsage& usage = *read;
        QCOMPARE(usage.dataPointCount, points);
        QVariantMap got;
        for (auto it = usage.totals.begin(); it != usage.totals.end(); ++it) {
            got.insert(it.key(), it.value());
        }
        QCOMPARE(got, totals);
    }

    void orderedTotals_data() {
        QTest::addColumn<QStringList>("names");
        QTest::addColumn<QStringList>("ordered");
        QTest::newRow("known first, the rest by name")
            << QStringList{u"crashCount"_s, u"zeta"_s, u"alpha"_s, u"installCount"_s}
            << QStringList{u"installCount"_s, u"crashCount"_s, u"alpha"_s, u"zeta"_s};
        QTest::newRow("upper case sorts before lower")
            << QStringList{u"b"_s, u"C"_s, u"a"_s} << QStringList{u"C"_s, u"a"_s, u"b"_s};
    }

    void orderedTotals() {
        QFETCH(QStringList, names);
        QFETCH(QStringList, ordered);
        ManagedBetaUsage usage;
        for (const QString& name : names) {
            usage.totals.insert(name, 1);
        }
        QStringList got;
        for (const auto& [name, value] : usage.orderedTotals()) {
            got.append(name);
        }
        QCOMPARE(got, ordered);
    }

    // The beta details of many builds: never more than three requests under way, each build asked
    // once, a failed one left out with its error while the rest still come.
    void betaDetailsAtMostThreeAtOnce() {
        const QStringList builds{u"b1"_s, u"b2"_s, u"b3"_s, u"b2"_s, u"b4"_s, u"b5"_s, u"b6"_s, u"b7"_s};
        m_transport->route(
            "GET", u"/v1/builds/"_s,
            [](const HttpRequest& r) {
                const QString id = r.url.path().section(u'/', 3, 3);
                if (id == u"b5"_s) {
                    return Answer::json(404, JsonApi::error(u"404"_s, u"weg"_s));
                }
                return Answer::json(200, single(resource(u"buildBetaDetails"_s, id,
                                                         {{u"internalBuildState"_s, u"IN_BETA_TESTING"_s}})));
            },
            RouteMatch::Prefix);
        m_transport->holdReplies(true);
        QStringList arrived;
        auto task = m_service->buildBetaDetails(
            builds, client(), [&](const QString& id, const ManagedBuildBetaDetail&) { arrived.append(id); });
        int mostAtOnce = 0;
        for (int round = 0; round < 200; ++round) {
            QCoreApplication::processEvents();
            mostAtOnce = std::max(mostAtOnce, m_transport->heldCount());
            if (m_transport->heldCount() == 0 && m_transport->requestCount() == 7) {
                break;
            }
            m_transport->releaseHeld();
        }
        m_transport->holdReplies(false);
        const BuildBetaDetails result = VarnisTest::awaitTask(std::move(task));
        QCOMPARE(mostAtOnce, 3);
        QCOMPARE(m_transport->requestCount(), 7);
        QCOMPARE(result.details.size(), 6);
        QCOMPARE(result.errors.keys(), QStringList{u"b5"_s});
        QCOMPARE(result.details.value(u"b7"_s).internalState(), u"Im Beta-Test"_s);
        arrived.sort();
        QCOMPARE(arrived, (QStringList{u"b1"_s, u"b2"_s, u"b3"_s, u"b4"_s, u"b6"_s, u"b7"_s}));
    }

    // What Apple leaves out reads "–" or takes its default; a state the table does not list
    // reads as Apple wrote it.
    void shownValues_data() {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QJsonObject>("attributes"); // empty: the resource has none
        QTest::addColumn<QStringList>("shown");

        const QString no = u"nein"_s;
        const QString yes = u"ja"_s;
        QTest::newRow("group without attributes")
            << u"betaGroups"_s << QJsonObject()
            << QStringList{u"Unbenannte Gruppe"_s, no, no, no, no, no, no};
        QTest::newRow("group with its switches")
            << u"betaGroups"_s
            << QJsonObject{{u"name"_s, u"Team"_s},
                           {u"isInternalGroup"_s, true},
                           {u"publicLinkEnabled"_s, true},
                           {u"feedbackEnabled"_s, true},
                           {u"publicLinkLimitEnabled"_s, true},
                           {u"hasAccessToAllBuilds"_s, true},
                           {u"iosBuildsAvailableForAppleSiliconMac"_s, true}}
            << QStringList{u"Team"_s, yes, yes, yes, yes, yes, yes};
        QTest::newRow("tester without attributes")
            << u"betaTesters"_s << QJsonObject() << QStringList{u"–"_s, u"–"_s, u"–"_s, u"–"_s};
        QTest::newRow("tester with blank first name and a new state")
            << u"betaTesters"_s
            << QJsonObject{{u"firstName"_s, u""_s},
                           {u"lastName"_s, u"Lovelace"_s},
                           {u"email"_s, u"ada@example.com"_s},
                           {u"state"_s, u"SLEEPING"_s}}
            << QStringList{u"Lovelace"_s, u"ada@example.com"_s, u"SLEEPING"_s, u"SLEEPING"_s};
        QTest::newRow("build without number and state")
            << u"builds"_s << QJsonObject{{u"expired"_s, false}} << QStringList{u"–"_s, u"–"_s};
        QTest::newRow("build without attributes")
            << u"builds"_s << QJsonObject() << QStringList{u"–"_s, u"–"_s};
        QTest::newRow("beta states absent")
            << u"buildBetaDetails"_s << QJsonObject() << QStringList{u"–"_s, u"–"_s, u"vollständig"_s};
        QTest::newRow("beta state listed and not")
            << u"buildBetaDetails"_s
            << QJsonObject{{u"internalBuildState"_s, u"IN_BETA_TESTING"_s},
                           {u"externalBuildState"_s, u"ON_THE_MOON"_s}}
            << QStringList{u"Im Beta-Test"_s, u"ON_THE_MOON"_s, u"vollständig"_s};
        QTest::newRow("export compliance missing outside")
            << u"buildBetaDetails"_s
            << QJsonObject{{u"internalBuildState"_s, u"PROCESSING"_s},
                           {u"externalBuildState"_s, u"MISSING_EXPORT_COMPLIANCE"_s}}
            << QStringList{u"Wird verarbeitet"_s, u"Exportkonformität fehlt"_s, u"fehlt"_s};
        QTest::newRow("export compliance missing inside")
            << u"buildBetaDetails"_s
            << QJsonObject{{u"internalBuildState"_s, u"MISSING_EXPORT_COMPLIANCE"_s},
                           {u"externalBuildState"_s, u"NOT_APPLICABLE"_s}}
            << QStringList{u"Exportkonformität fehlt"_s, u"Nicht zutreffend"_s, u"fehlt"_s};
    }

    void shownValues() {
        QFETCH(QString, type);
        QFETCH(QJsonObject, attributes);
        QFETCH(QStringList, shown);
        const JsonReader reader(attributes);
        const auto given = [&](auto decoded) {
            return attributes.isEmpty() ? std::nullopt : std::optional(decoded);
        };
        const auto flag = [](bool on) {
            return on ? u"ja"_s : u"nein"_s;
        };
        QStringList got;
        if (type == u"betaGroups"_s) {
            const auto g =
                ManagedBetaGroup::fromResource(u"g"_s, given(ASCBetaGroupAttributes::fromJson(reader)));
            got << g.name << flag(g.isInternal) << flag(g.publicLinkEnabled) << flag(g.feedbackEnabled)
                << flag(g.publicLinkLimitEnabled) << flag(g.hasAccessToAllBuilds)
                << flag(g.iosBuildsAvailableForAppleSiliconMac);
        } else if (type == u"betaTesters"_s) {
            const auto t =
                ManagedBetaTester::fromResource(u"t"_s, given(ASCBetaTesterAttributes::fromJson(reader)));
            got << t.displayName() << t.email << t.state.raw() << t.state.displayName();
        } else if (type == u"builds"_s) {
            const auto b = ManagedBuild::fromResource(u"b"_s, given(ASCBuildAttributes::fromJson(reader)));
            got << b.buildNumber << b.processingState.displayName();
        } else {
            const auto d =
                ManagedBuildBetaDetail::fromResource(given(ASCBuildBetaDetailAttributes::fromJson(reader)));
            got << d.internalState() << d.externalState()
                << (d.isMissingExportCompliance() ? u"fehlt"_s : u"vollständig"_s);
        }
        QCOMPARE(got, shown);
    }

    // Screenshots and crashes are asked for at once and merged newest first, undated last; a
    // failure of either fails the whole read.
    void feedback_data() {
        QTest::addColumn<QString>("failing");
        QTest::addColumn<QStringList>("ids");
        QTest::newRow("both come") << QString() << QStringList{u"c1"_s, u"s1"_s, u"c2"_s, u"s2"_s};
        QTest::newRow("screenshots fail") << u"betaFeedbackScreenshotSubmissions"_s << QStringList();
        QTest::newRow("crashes fail") << u"betaFeedbackCrashSubmissions"_s << QStringList();
    }

    void feedback() {
        QFETCH(QString, failing);
        QFETCH(QStringList, ids);
        const auto item = [](const QString& type, const QString& id, const QString& created) {
            QJsonObject a{{u"comment"_s, id}, {u"email"_s, id + u"@example.com"_s}};
            if (!created.isEmpty()) {
                a.insert(u"createdDate"_s, created);
            }
            return resource(type, id, a);
        };
        const QString shots = u"betaFeedbackScreenshotSubmissions"_s;
        const QString crashes = u"betaFeedbackCrashSubmissions"_s;
        m_transport->script("GET", u"/v1/apps/app1/"_s + shots,
                            {Answer::json(200, page({item(shots, u"s1"_s, u"2026-01-02T00:00:00Z"_s),
                                                     item(shots, u"s2"_s, {})}))});
        m_transport->script("GET", u"/v1/apps/app1/"_s + crashes,
                            {Answer::json(200, page({item(crashes, u"c1"_s, u"2026-01-03T00:00:00Z"_s),
                                                     item(crashes, u"c2"_s, u"2026-01-01T00:00:00Z"_s)}))});
        if (!failing.isEmpty()) {
            m_transport->script("GET", u"/v1/apps/app1/"_s + failing,
                                {Answer::json(403, JsonApi::error(u"403"_s, u"verboten"_s))});
        }
        QStringList got;
        try {
            const auto items = VarnisTest::awaitTask(m_service->feedback(u"app1"_s, 7, client()));
            for (const auto& f : items) {
                got.append(f.id);
                QCOMPARE(f.kind == ManagedBetaFeedback::Kind::Crash, f.id.startsWith(u'c'));
                QCOMPARE(f.email, std::optional<QString>(f.id + u"@example.com"_s));
            }
        } catch (const VelmoraAPIError& error) {
            QCOMPARE(error.kind(), VelmoraAPIError::Kind::Forbidden);
        }
        QCOMPARE(got, ids);
        QCOMPARE(m_transport->requestCount(), 2);
        for (const auto& request : m_transport->requests()) {
            QCOMPARE(QUrlQuery(request.url).toString(), u"limit=7&sort=-createdDate"_s);
        }
    }

    // Demo mode fills every TestFlight screen: the builds a group names exist, each build has its
    // state, notes and usage, and the expired build says so on the TestFlight side too.
    void demoDataFitsTogether() {
        const QDateTime now = m_clock->now();
        for (const auto& app : MockData::apps()) {
            QSet<QString> buildIDs;
            for (const auto& build : MockData::builds(app.id, now)) {
                buildIDs.insert(build.id);
                const auto detail = MockData::buildBetaDetail(build.id);
                QCOMPARE(build.isExpired, detail.internalState() == u"Abgelaufen"_s);
                QCOMPARE(build.isExpired, !MockData::betaReviewSubmission(build.id).has_value());
                QCOMPARE(MockData::betaBuildLocalizations(build.id).size(), 2);
                QVERIFY(MockData::betaUsage(build.id).dataPointCount > 0);
            }
            const auto groups = MockData::betaGroups(app.id, now);
            QVERIFY(!groups.isEmpty());
            for (const auto& group : groups) {
                const QSet<QString> inGroup = MockData::betaGroupBuildIDs(group.id);
                QVERIFY(!inGroup.isEmpty());
                QVERIFY(buildIDs.contains(inGroup));
                QVERIFY(!MockData::betaTesters(group.id).isEmpty());
            }
            QVERIFY(!MockData::betaAppLocalizations(app.id).isEmpty());
            QVERIFY(!MockData::betaFeedback(app.id, now).isEmpty());
        }
    }

    void writes_data() {
        QTest::addColumn<Action>("call");
        QTest::addColumn<QString>("request");
        QTest::addColumn<QJsonValue>("data");

        const auto app = linkage(u"apps"_s, u"app1"_s);
        QTest::newRow("remove tester")
            << Action([this] { VarnisTest::awaitTask(m_service->removeTester(u"t1"_s, u"g1"_s, client())); })
            << u"DELETE /v1/betaGroups/g1/relationships/betaTesters"_s
            << QJsonValue(QJsonArray{linkageData(u"betaTesters"_s, u"t1"_s)});
        QTest::newRow("assign build")
            << Action([this] { VarnisTest::awaitTask(m_service->assignBuild(u"b1"_s, u"g1"_s, client())); })
            << u"POST /v1/betaGroups/g1/relationships/builds"_s
            << QJsonValue(QJsonArray{linkageData(u"builds"_s, u"b1"_s)});
        QTest::newRow("tester: address trimmed, blank name left out")
            << Action([this] {
                   NewBetaTester person{u"  ada@example.com \n"_s, u"Ada"_s, u"  "_s};
                   VarnisTest::awaitTask(m_service->addTester(person, u"g1"_s, client()));
               })
            << u"POST /v1/betaTesters"_s
            << QJsonValue(QJsonObject{
                   {u"type"_s, u"betaTesters"_s},
                   {u"attributes"_s,
                    QJsonObject{{u"email"_s, u"ada@example.com"_s}, {u"firstName"_s, u"Ada"_s}}},
                   {u"relationships"_s,
                    QJsonObject{
                        {u"betaGroups"_s,
                         QJsonObject{{u"data"_s, QJsonArray{linkageData(u"betaGroups"_s, u"g1"_s)}}}}}}});
        QTest::newRow("invitation again")
            << Action([this] {
                   VarnisTest::awaitTask(m_service->resendInvitation(u"t1"_s, u"app1"_s, client()));
               })
            << u"POST /v1/betaTesterInvitations"_s
            << QJsonValue(QJsonObject{
                   {u"type"_s, u"betaTesterInvitations"_s},
                   {u"relationships"_s,
                    QJsonObject{{u"app"_s, app}, {u"betaTester"_s, linkage(u"betaTesters"_s, u"t1"_s)}}}});
        QTest::newRow("new test notes, blank text left out")
            << Action([this] {
                   const ManagedBetaBuildLocalization notes{std::nullopt, u"de-DE"_s, u" \t"_s};
                   const auto saved =
                       VarnisTest::awaitTask(m_service->saveBuildLocalization(notes, u"b1"_s, client()));
                   QCOMPARE(saved.localizationID, std::optional<QString>(u"new"_s));
                   QCOMPARE(saved.locale, u"de-DE"_s);
               })
            << u"POST /v1/betaBuildLocalizations"_s
            << QJsonValue(QJsonObject{
                   {u"type"_s, u"betaBuildLocalizations"_s},
                   {u"attributes"_s, QJsonObject{{u"locale"_s, u"de-DE"_s}}},
                   {u"relationships"_s, QJsonObject{{u"build"_s, linkage(u"builds"_s, u"b1"_s)}}}});
        QTest::newRow("changed test notes")
            << Action([this] {
                   const ManagedBetaBuildLocalization notes{u"l1"_s, u"de-DE"_s, u"Bitte Export testen"_s};
                   const auto saved =
                       VarnisTest::awaitTask(m_service->saveBuildLocalization(notes, u"b1"_s, client()));
                   QCOMPARE(saved.whatsNew, u"Bitte Export testen"_s);
                   QCOMPARE(saved.locale, u"de-DE"_s);
               })
            << u"PATCH /v1/betaBuildLocalizations/l1"_s
            << QJsonValue(
                   QJsonObject{{u"type"_s, u"betaBuildLocalizations"_s},
                               {u"id"_s, u"l1"_s},
                               {u"attributes"_s, QJsonObject{{u"whatsNew"_s, u"Bitte Export testen"_s}}}});
        ManagedBetaAppLocalization info;
        info.locale = u"en-US"_s;
        info.description = u"Beta"_s;
        info.feedbackEmail = u" "_s;
        info.privacyPolicyURL = u"https://example.com/p"_s;
        QTest::newRow("new beta texts: blank ones left out")
            << Action([this, info] {
                   VarnisTest::awaitTask(m_service->saveAppLocalization(info, u"app1"_s, client()));
               })
            << u"POST /v1/betaAppLocalizations"_s
            << QJsonValue(QJsonObject{
                   {u"type"_s, u"betaAppLocalizations"_s},
                   {u"attributes"_s, QJsonObject{{u"locale"_s, u"en-US"_s},
                                                 {u"description"_s, u"Beta"_s},
                                                 {u"privacyPolicyUrl"_s, u"https://example.com/p"_s}}},
                   {u"relationships"_s, QJsonObject{{u"app"_s, app}}}});
        QTest::newRow("changed beta texts")
            << Action([this, info] {
                   ManagedBetaAppLocalization changed = info;
                   changed.localizationID = u"a1"_s;
                   changed.tvOSPrivacyPolicy = u"Keine Daten"_s;
                   VarnisTest::awaitTask(m_service->saveAppLocalization(changed, u"app1"_s, client()));
               })
            << u"PATCH /v1/betaAppLocalizations/a1"_s
            << QJsonValue(QJsonObject{
                   {u"type"_s, u"betaAppLocalizations"_s},
                   {u"id"_s, u"a1"_s},
                   {u"attributes"_s, QJsonObject{{u"description"_s, u"Beta"_s},
                                                 {u"privacyPolicyUrl"_s, u"https://example.com/p"_s},
                                                 {u"tvOsPrivacyPolicy"_s, u"Keine Daten"_s}}}});
        QTest::newRow("beta review")
            << Action([this] { VarnisTest::awaitTask(m_service->submitForBetaReview(u"b1"_s, client())); })
            << u"POST /v1/betaAppReviewSubmissions"_s
            << QJsonValue(QJsonObject{
                   {u"type"_s, u"betaAppReviewSubmissions"_s},
                   {u"relationships"_s, QJsonObject{{u"build"_s, linkage(u"builds"_s, u"b1"_s)}}}});
        QTest::newRow("new group: name and app only")
            << Action([this] {
                   const BetaGroupCreateRequestBody body{u"app1"_s, u"Freunde"_s, {}, {}, {}, {}, {}};
                   auto endpoint = TestFlightEndpoints::createGroup(body);
                   VarnisTest::awaitTask(client()->call(std::move(endpoint)));
               })
            << u"POST /v1/betaGroups"_s
            << QJsonValue(QJsonObject{{u"type"_s, u"betaGroups"_s},
                                      {u"attributes"_s, QJsonObject{{u"name"_s, u"Freunde"_s}}},
                                      {u"relationships"_s, QJsonObject{{u"app"_s, app}}}});
    }

    void writes() {
        QFETCH(Action, call);
        QFETCH(QString, request);
        QFETCH(QJsonValue, data);
        call();
        QCOMPARE(lastRequest(), request);
        QCOMPARE(lastBody().value(u"data"_s), data);
    }
};

QTEST_GUILESS_MAIN(TestFlightServiceTest)
#include "tst_testflightservice.moc"
