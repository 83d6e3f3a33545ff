// Checks of the shared test support: the OpenAPI contract, the fake transport, the loopback
// server, the in-memory secret store, the throwaway keys and the wait for a task.

#include "api/JWTService.h"
#include "platform/Clock.h"
#include "support/AwaitTask.h"
#include "support/FakeTransport.h"
#include "support/MemorySecretStore.h"
#include "support/OpenApiContract.h"
#include "support/TestKeys.h"
#include "support/TestServer.h"

#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QRegularExpression>
#include <QTcpSocket>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using VarnisTest::awaitTask;

namespace {

QNetworkRequest jsonRequest(const QUrl& url) {
    QNetworkRequest request(url);
    request.setHeader(QNetworkRequest::ContentTypeHeader, u"application/json"_s);
    return request;
}

bool finished(QNetworkReply* reply) {
    return QTest::qWaitFor([reply]() { return reply->isFinished(); }, 10000);
}

// 7 at once, after a turn of the event loop, never, or an exception, as `how` says.
QCoro::Task<int> endingBy(ManualClock* clock, QString how) {
    if (how == u"later"_s || how == u"never"_s) {
        co_await clock->sleep(1);
    }
    if (how == u"raise"_s) {
        throw std::runtime_error("kaputt");
    }
    co_return 7;
}

HttpRequest apiGet(const QString& pathAndQuery) {
    HttpRequest request;
    request.url = QUrl(u"https://api.appstoreconnect.apple.com"_s + pathAndQuery);
    return request;
}

// An update of a resource of `type` (id "x") with the attribute members `attributes`.
QByteArray update(const char* type, const char* attributes) {
    return QByteArray(R"({"data":{"type":")") + type + R"(","id":"x","attributes":{)" + attributes + "}}}";
}

// A list answer of one resource.
QByteArray list(const QByteArray& resource) {
    return "{\"data\":[" + resource + "]}";
}

// Nothing when `expected` is empty, otherwise a violation that contains it.
void verifyOutcome(const std::optional<QString>& violation, const QString& expected) {
    if (expected.isEmpty()) {
        QVERIFY2(!violation, qPrintable(violation.value_or(QString())));
    } else {
        QVERIFY2(violation && violation->contains(expected), qPrintable(violation.value_or(u"accepted"_s)));
    }
}

} // namespace

class TestSupport : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { m_manager.setProxy(QNetworkProxy::NoProxy); }

    // Everything but the server's own HTTP and awaitTask needs Apple's document.
    void init() {
        const QByteArray name = QTest::currentTestFunction();
        if (!OpenApiContract::isAvailable() && !name.startsWith("serverHandles") &&
            !name.startsWith("serverReuses") && !name.startsWith("awaitTask")) {
            QSKIP("The OpenAPI document is not on this checkout.");
        }
    }

    // OpenApiContract

    void contractChecksOperations_data() {
        QTest::addColumn<QString>("method");
        QTest::addColumn<QString>("path");
        QTest::addColumn<QStringList>("queryNames");
        QTest::addColumn<QString>("violation"); // empty: accepted

        const QString localization = u"/v1/appStoreVersionLocalizations/abc"_s;
        const QString noPath = u"no path of the OpenAPI document matches"_s;
        QTest::newRow("method in lower case")
            << u"get"_s << u"/v1/apps"_s << QStringList{u"fields[apps]"_s, u"filter[bundleId]"_s}
            << QString();
        QTest::newRow("update") << u"PATCH"_s << localization << QStringList() << QString();
        QTest::newRow("path with an id")
            << u"GET"_s << u"/v1/apps/123/appStoreVersions"_s << QStringList{u"limit"_s} << QString();
        // The paging token of `next` links on a paged list.
        QTest::newRow("cursor of a paged list")
            << u"GET"_s << u"/v1/apps"_s << QStringList{u"cursor"_s, u"limit"_s} << QString();
        QTest::newRow("undeclared parameter, named alone")
            << u"GET"_s << u"/v1/apps"_s << QStringList{u"limit"_s, u"bogus"_s}
            << u"query parameter(s) bogus not declared"_s;
        QTest::newRow("unknown path") << u"GET"_s << u"/v1/nonsense"_s << QStringList() << noPath;
        QTest::newRow("trailing slash") << u"GET"_s << u"/v1/apps/"_s << QStringList() << noPath;
        QTest::newRow("undeclared method")
            << u"DELETE"_s << u"/v1/apps"_s << QStringList() << u"method DELETE is not declared"_s;
        QTest::newRow("PUT for PATCH")
            << u"PUT"_s << localization << QStringList() << u"method PUT is not declared"_s;
        QTest::newRow("cursor without paging") << u"PATCH"_s << localization << QStringList{u"cursor"_s}
                                               << u"query parameter(s) cursor not declared"_s;
    }

    void contractChecksOperations() {
        QFETCH(QString, method);
        QFETCH(QString, path);
        QFETCH(QStringList, queryNames);
        QFETCH(QString, violation);
        verifyOutcome(OpenApiContract::check(method, path, queryNames), violation);
    }

    void contractChecksBodies_data() {
        QTest::addColumn<QString>("method");
        QTest::addColumn<QString>("path");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("violation"); // empty: accepted

        const QString localization = u"/v1/appStoreVersionLocalizations/loc-1"_s;
        const QString version = u"/v1/appStoreVersions/ver-1"_s;
        QTest::newRow("update") << u"PATCH"_s << localization
                                << update("appStoreVersionLocalizations", R"("description":"Neu")")
                                << QString();
        QTest::newRow("null clears a text in an update")
            << u"PATCH"_s << localization << update("appStoreVersionLocalizations", R"("whatsNew":null)")
            << QString();
        QTest::newRow("misspelt attribute")
            << u"PATCH"_s << localization << update("appStoreVersionLocalizations", R"("descripton":"Neu")")
            << u"data.attributes.descripton: not declared for appStoreVersionLocalizations"_s;
        QTest::newRow("number for a text")
            << u"PATCH"_s << version << update("appStoreVersions", R"("versionString":2)")
            << u"data.attributes.versionString: number where string is declared"_s;
        QTest::newRow("text for a boolean")
            << u"PATCH"_s << u"/v1/reviewSubmissions/sub-1"_s
            << update("reviewSubmissions", R"("submitted":"true")")
            << u"data.attributes.submitted: string where boolean is declared"_s;
        QTest::newRow("unknown enumeration value")
            << u"PATCH"_s << version << update("appStoreVersions", R"("releaseType":"WHENEVER")")
            << u"data.attributes.releaseType: \"WHENEVER\" is not a declared value (MANUAL, "_s;
        QTest::newRow("null for a boolean") << u"PATCH"_s << u"/v1/reviewSubmissions/sub-1"_s
                                            << update("reviewSubmissions", R"("submitted":null)")
                                            << u"data.attributes.submitted: null where boolean is declared"_s;
        QTest::newRow("wrong resource type")
            << u"PATCH"_s << localization << update("appInfoLocalizations", R"("description":"Neu")")
            << u"data.type: \"appInfoLocalizations\" is not a declared value (appStoreVersionLocalizations)"_s;
        QTest::newRow("update without id")
            << u"PATCH"_s << localization
            << R"({"data":{"type":"appStoreVersionLocalizations","attributes":{}}})"_ba
            << u"data.id: required but missing"_s;
        QTest::newRow("member beside data")
            << u"PATCH"_s << localization
            << R"({"data":{"type":"appStoreVersionLocalizations","id":"loc-1"},"meta":{}})"_ba
            << u"meta: not declared"_s;

        const QString create = u"/v1/appStoreVersionLocalizations"_s;
        const auto created = [](const char* attributes, const char* relationships) {
            return QByteArray(R"({"data":{"type":"appStoreVersionLocalizations","attributes":{)") +
                   attributes + R"(},"relationships":{)" + relationships + "}}}";
        };
        const char* parent = R"("appStoreVersion":{"data":{"type":"appStoreVersions","id":"ver-1"}})";
        QTest::newRow("create") << u"POST"_s << create << created(R"("locale":"de-DE")", parent) << QString();
        QTest::newRow("null in a create")
            << u"POST"_s << create << created(R"("locale":"de-DE","whatsNew":null)", parent)
            << u"data.attributes.whatsNew: null where string is declared"_s;
        QTest::newRow("missing required attribute") << u"POST"_s << create << created("", parent)
                                                    << u"data.attributes.locale: required but missing"_s;
        QTest::newRow("unknown relationship")
            << u"POST"_s << create
            << created(
                   R"("locale":"de-DE")",
                   R"("appStoreVersion":{"data":{"type":"appStoreVersions","id":"v"}},"app":{"data":{"type":"apps","id":"a"}})")
            << u"data.relationships.app: not declared for appStoreVersionLocalizations"_s;
        QTest::newRow("wrong type of a related resource")
            << u"POST"_s << create
            << created(R"("locale":"de-DE")", R"("appStoreVersion":{"data":{"type":"apps","id":"a"}})")
            << u"data.relationships.appStoreVersion.data.type: \"apps\" is not a declared value"_s;
        QTest::newRow("missing required relationship")
            << u"POST"_s << create
            << R"({"data":{"type":"appStoreVersionLocalizations","attributes":{"locale":"de-DE"}}})"_ba
            << u"data.relationships: required but missing"_s;
        QTest::newRow("fraction for an integer")
            << u"POST"_s << u"/v1/appStoreReviewAttachments"_s
            << R"({"data":{"type":"appStoreReviewAttachments","attributes":{"fileName":"a.pdf","fileSize":1.5},
                 "relationships":{"appStoreReviewDetail":{"data":{"type":"appStoreReviewDetails","id":"d"}}}}})"_ba
            << u"data.attributes.fileSize: number where integer is declared"_s;

        QTest::newRow("relationship linkage")
            << u"PATCH"_s << u"/v1/appStoreVersions/ver-1/relationships/build"_s
            << R"({"data":{"type":"builds","id":"b-1"}})"_ba << QString();
        QTest::newRow("no body where one is required") << u"PATCH"_s << localization << QByteArray()
                                                       << u"sends no body, but the operation requires one"_s;
        QTest::newRow("a body where none is taken") << u"DELETE"_s << version << R"({"data":[]})"_ba
                                                    << u"sends a body, but the operation takes none"_s;
        QTest::newRow("no JSON") << u"PATCH"_s << localization << "{data:"_ba << u"the body is no JSON"_s;
    }

    void contractChecksBodies() {
        QFETCH(QString, method);
        QFETCH(QString, path);
        QFETCH(QByteArray, body);
        QFETCH(QString, violation);
        verifyOutcome(OpenApiContract::checkBody(method, path, body), violation);
    }

    void contractChecksAnswers_data() {
        QTest::addColumn<QString>("path");
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QStringList>("undeclaredValues");
        QTest::addColumn<QString>("violation"); // empty: accepted

        const QString apps = u"/v1/apps"_s;
        const QString versions = u"/v1/apps/app-1/appStoreVersions"_s;
        const QByteArray app = R"({"type":"apps","id":"1","attributes":{"name":"Kladde","bundleId":"de.k"}})";
        QTest::newRow("list without links") << apps << 200 << list(app) << QStringList() << QString();
        const QByteArray newState =
            list(R"({"type":"appStoreVersions","id":"v","attributes":{"appVersionState":"BRAND_NEW"}})");
        QTest::newRow("unknown enumeration value")
            << versions << 200 << newState << QStringList()
            << u"data[0].attributes.appVersionState: \"BRAND_NEW\" is not a declared value"_s;
        QTest::newRow("unknown value on purpose")
            << versions << 200 << newState << QStringList{u"BRAND_NEW"_s} << QString();
        QTest::newRow("wrong resource type")
            << apps << 200 << list(R"({"type":"app","id":"1"})") << QStringList()
            << u"data[0].type: \"app\" is not a declared value (apps)"_s;
        QTest::newRow("resource without id") << apps << 200 << list(R"({"type":"apps"})") << QStringList()
                                             << u"data[0].id: required but missing"_s;
        QTest::newRow("included resource")
            << apps << 200
            << R"({"data":[],"included":[{"type":"appStoreVersions","id":"v","attributes":{"versionString":"1.0"}}]})"_ba
            << QStringList() << QString();
        QTest::newRow("misspelt attribute of an included resource")
            << apps << 200
            << R"({"data":[],"included":[{"type":"builds","id":"b"},{"type":"appStoreVersions","id":"v","attributes":{"versionStrin":"1.0"}}]})"_ba
            << QStringList() << u"included[1].attributes.versionStrin: not declared for appStoreVersions"_s;
        QTest::newRow("included resource of an undeclared type")
            << apps << 200 << R"({"data":[],"included":[{"type":"spaceships","id":"s"}]})"_ba << QStringList()
            << u"included[0].type: \"spaceships\" is none of the declared types"_s;
        QTest::newRow("a created resource")
            << u"/v1/appStoreVersions"_s << 201
            << R"({"data":{"type":"appStoreVersions","id":"v","attributes":{"platform":"IOS"}}})"_ba
            << QStringList() << QString();
        QTest::newRow("an error is no fixture")
            << apps << 409 << R"({"errors":[{"weird":1}]})"_ba << QStringList() << QString();
        QTest::newRow("no JSON") << apps << 200 << "<html>"_ba << QStringList() << u"answer 200 is no JSON"_s;
    }

    void contractChecksAnswers() {
        QFETCH(QString, path);
        QFETCH(int, status);
        QFETCH(QByteArray, body);
        QFETCH(QStringList, undeclaredValues);
        QFETCH(QString, violation);
        const QString method = status == 201 ? u"POST"_s : u"GET"_s;
        verifyOutcome(OpenApiContract::checkAnswer(method, path, status, body, undeclaredValues), violation);
    }

    // Each probe breaks the document and passes only through an allowlist entry made for it.
    void contractAllowsWhatTheAllowlistNames_data() {
        QTest::addColumn<QString>("check"); // "query", "body" or "answer"
        QTest::addColumn<QString>("method");
        QTest::addColumn<QString>("path");
        QTest::addColumn<QByteArray>("payload"); // query parameter names, comma-separated, or the JSON
        QTest::addColumn<bool>("allowed");

        QTest::newRow("undescribed operation")
            << u"query"_s << u"GET"_s << u"/v1/apps/app-1/newThings"_s << "limit"_ba << true;
        QTest::newRow("undescribed operation, other method")
            << u"query"_s << u"DELETE"_s << u"/v1/apps/app-1/newThings"_s << ""_ba << false;
        QTest::newRow("query parameter")
            << u"query"_s << u"GET"_s << u"/v1/apps"_s << "limit,filter[newThing]"_ba << true;
        QTest::newRow("query parameter of another operation")
            << u"query"_s << u"GET"_s << u"/v1/builds"_s << "filter[newThing]"_ba << false;
        QTest::newRow("member") << u"answer"_s << u"GET"_s << u"/v1/apps"_s
                                << list(R"({"type":"apps","id":"1","attributes":{"newThing":7}})") << true;
        QTest::newRow("member of another resource type")
            << u"answer"_s << u"GET"_s << u"/v1/builds"_s
            << list(R"({"type":"builds","id":"1","attributes":{"newThing":7}})") << false;
        QTest::newRow("value") << u"body"_s << u"PATCH"_s << u"/v1/appStoreVersions/v"_s
                               << update("appStoreVersions", R"("releaseType":"SOMETIME")") << true;
        QTest::newRow("other value") << u"body"_s << u"PATCH"_s << u"/v1/appStoreVersions/v"_s
                                     << update("appStoreVersions", R"("releaseType":"NEVER")") << false;
        QTest::newRow("null") << u"answer"_s << u"GET"_s << u"/v1/appStoreVersions/v/build"_s
                              << R"({"data":null})"_ba << true;
        QTest::newRow("null elsewhere")
            << u"answer"_s << u"GET"_s << u"/v1/appStoreVersions/v/appStoreReviewDetail"_s
            << R"({"data":null})"_ba << false;
        QTest::newRow("null text only in bodies of its method")
            << u"body"_s << u"POST"_s << u"/v1/appStoreVersions"_s
            << R"({"data":{"type":"appStoreVersions","attributes":{"platform":"IOS","versionString":"1","copyright":null},
                 "relationships":{"app":{"data":{"type":"apps","id":"a"}}}}})"_ba
            << false;
    }

    void contractAllowsWhatTheAllowlistNames() {
        QFETCH(QString, check);
        QFETCH(QString, method);
        QFETCH(QString, path);
        QFETCH(QByteArray, payload);
        QFETCH(bool, allowed);
        using Kind = OpenApiContract::Allowance::Kind;
        const QList<OpenApiContract::Allowance> probes{
            {.kind = Kind::Operation, .method = u"GET"_s, .path = u"/v1/apps/{id}/newThings"_s},
            {.kind = Kind::QueryParameter,
             .method = u"GET"_s,
             .path = u"/v1/apps"_s,
             .name = u"filter[newThing]"_s},
            {.kind = Kind::Member, .resourceType = u"apps"_s, .name = u"attributes.newThing"_s},
            {.kind = Kind::Value,
             .resourceType = u"appStoreVersions"_s,
             .name = u"attributes.releaseType"_s,
             .value = u"SOMETIME"_s},
            {.kind = Kind::Null,
             .method = u"GET"_s,
             .path = u"/v1/appStoreVersions/{id}/build"_s,
             .name = u"data"_s},
            {.kind = Kind::NullText, .method = u"PATCH"_s, .resourceType = u"*"_s, .name = u"attributes.*"_s},
        };
        const auto run = [&](const QList<OpenApiContract::Allowance>& allowed) {
            if (check == u"query"_s) {
                const QStringList names = QString::fromUtf8(payload).split(u',', Qt::SkipEmptyParts);
                return OpenApiContract::check(method, path, names, allowed);
            }
            if (check == u"body"_s) {
                return OpenApiContract::checkBody(method, path, payload, allowed);
            }
            return OpenApiContract::checkAnswer(method, path, 200, payload, {}, allowed);
        };
        QVERIFY2(run({}), "the probe breaks the document");
        const auto violation = run(probes);
        QVERIFY2(violation.has_value() != allowed, qPrintable(violation.value_or(u"accepted"_s)));
    }

    // An entry that the document has caught up with hides nothing any more and goes.
    void contractAllowlistIsNeededAndReasoned() {
        using Kind = OpenApiContract::Allowance::Kind;
        for (const auto& entry : OpenApiContract::allowlist()) {
            QVERIFY2(entry.reason.size() > 20, qPrintable(entry.name + u": no reason given"_s));
            const QString concrete =
                QString(entry.path).replace(QRegularExpression(u"\\{[^}]+\\}"_s), u"x"_s);
            if (entry.kind == Kind::Operation) {
                QVERIFY2(OpenApiContract::check(entry.method, concrete, {}, {}),
                         qPrintable(entry.path + u" is in the document now"_s));
            } else if (entry.kind == Kind::QueryParameter) {
                QVERIFY2(OpenApiContract::check(entry.method, concrete, {entry.name}, {}),
                         qPrintable(entry.name + u" is in the document now"_s));
            }
        }
    }

    // FakeTransport

    void doublesCheckBothDirections_data() {
        QTest::addColumn<QString>("method");
        QTest::addColumn<QString>("path");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<QStringList>("undeclaredValues");
        QTest::addColumn<QString>("violation"); // empty: none

        const QByteArray app = list(R"({"type":"apps","id":"1","attributes":{"name":"Kladde"}})");
        QTest::newRow("declared") << u"GET"_s << u"/v1/apps"_s << QByteArray() << app << QStringList()
                                  << QString();
        QTest::newRow("undeclared path")
            << u"GET"_s << u"/v1/nonsense"_s << QByteArray() << app << QStringList() << u"no path"_s;
        QTest::newRow("misspelt attribute in a body")
            << u"PATCH"_s << u"/v1/appStoreVersions/x"_s
            << update("appStoreVersions", R"("copyrigth":"2025")") << QByteArray("{}") << QStringList()
            << u"data.attributes.copyrigth: not declared"_s;
        const QByteArray unknownState =
            list(R"({"type":"appStoreVersions","id":"v","attributes":{"appStoreState":"NEXT_STATE"}})");
        QTest::newRow("unknown value in a fixture")
            << u"GET"_s << u"/v1/apps/1/appStoreVersions"_s << QByteArray() << unknownState << QStringList()
            << u"NEXT_STATE"_s;
        QTest::newRow("unknown value in a fixture on purpose")
            << u"GET"_s << u"/v1/apps/1/appStoreVersions"_s << QByteArray() << unknownState
            << QStringList{u"NEXT_STATE"_s} << QString();
        QTest::newRow("no API call") << u"PUT"_s << u"/upload/part-1"_s << QByteArray("bytes")
                                     << QByteArray("{}") << QStringList() << QString();
    }

    // The fake transport and the loopback server check what passes through them alike.
    void doublesCheckBothDirections() {
        QFETCH(QString, method);
        QFETCH(QString, path);
        QFETCH(QByteArray, body);
        QFETCH(QByteArray, answer);
        QFETCH(QStringList, undeclaredValues);
        QFETCH(QString, violation);
        const auto verifyViolations = [&](const QStringList& found) {
            QCOMPARE(found.size(), violation.isEmpty() ? 0 : 1);
            if (!violation.isEmpty()) {
                QVERIFY2(found.constFirst().contains(violation), qPrintable(found.constFirst()));
            }
        };
        if (!violation.isEmpty()) {
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"OpenAPI contract violation"_s));
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"OpenAPI contract violation"_s));
        }

        FakeTransport fake;
        fake.setContractMode(FakeTransport::ContractMode::Record);
        fake.script(method.toLatin1(), path,
                    {FakeTransport::Answer::json(200, answer).withUndeclaredValues(undeclaredValues)});
        HttpRequest request = apiGet(path);
        request.method = method.toLatin1();
        request.body = body;
        QCOMPARE(awaitTask(fake.send(request)).status, 200);
        verifyViolations(fake.violations());

        TestServer server;
        server.setContractMode(TestServer::ContractMode::Record);
        server.script(method.toLatin1(), path,
                      {TestServer::Reply::json(200, answer).withUndeclaredValues(undeclaredValues)});
        std::unique_ptr<QNetworkReply> reply(
            m_manager.sendCustomRequest(jsonRequest(server.url(path)), method.toLatin1(), body));
        QVERIFY(finished(reply.get()));
        QCOMPARE(reply->error(), QNetworkReply::NoError);
        verifyViolations(server.violations());
    }

    void fakeTransportFailsTheTestOnViolation() {
        FakeTransport fake;
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"OpenAPI contract violation.*/v1/nonsense"_s));
        QEXPECT_FAIL("", "the fake transport fails the test on a contract violation", Continue);
        awaitTask(fake.send(apiGet(u"/v1/nonsense"_s)));
        QCOMPARE(fake.violations().size(), 1);
    }

    // TestServer

    void serverReusesOneConnection() {
        TestServer server;
        server.setContractMode(TestServer::ContractMode::Off);
        server.script("GET", u"/v1/apps"_s, {TestServer::Reply::json(200, "{\"data\":[]}")});
        server.script("POST", u"/v1/things"_s, {TestServer::Reply::json(201, "{}")});
        for (int i = 0; i < 5; ++i) {
            std::unique_ptr<QNetworkReply> reply(
                i == 2 ? m_manager.post(jsonRequest(server.url(u"/v1/things"_s)), QByteArray(100000, 'x'))
                       : m_manager.get(QNetworkRequest(server.url(u"/v1/apps"_s))));
            QVERIFY(finished(reply.get()));
            QCOMPARE(reply->error(), QNetworkReply::NoError);
        }
        QCOMPARE(server.requests().size(), 5);
        QCOMPARE(server.requests().at(2).body, QByteArray(100000, 'x'));
        QCOMPARE(server.connectionCount(), 1);
    }

    void serverHandlesPipeliningPartialReadsAndClose() {
        TestServer server;
        server.route(
            "", u"/"_s,
            [](const TestServer::Request& request) {
                return TestServer::Reply{.body = request.method + ' ' + request.path.toUtf8() + ' ' +
                                                 request.body};
            },
            RouteMatch::Prefix);
        QTcpSocket socket;
        QByteArray received;
        connect(&socket, &QTcpSocket::readyRead, &socket, [&]() { received += socket.readAll(); });
        socket.connectToHost(QHostAddress::LocalHost, server.port());
        QVERIFY(socket.waitForConnected());
        // Two requests in one write, the second split in the middle of its body.
        socket.write(
            "GET /a HTTP/1.1\r\nHost: x\r\n\r\nPOST /b HTTP/1.1\r\nHost: x\r\nContent-Length: 6\r\n\r\nhal");
        QVERIFY(socket.waitForBytesWritten());
        QTRY_COMPARE(server.requests().size(), 1);
        socket.write("lo");
        QVERIFY(socket.waitForBytesWritten());
        QTRY_VERIFY(received.contains("GET /a "));
        socket.write("!GET /c HTTP/1.1\r\nHost: x\r\nConnection: close\r\n\r\nGET /ignored HTTP/1.1\r\n\r\n");
        QTRY_COMPARE(socket.state(), QAbstractSocket::UnconnectedState);
        received += socket.readAll();

        QCOMPARE(server.requests().size(), 3);
        QCOMPARE(server.requests().at(1).body, "hallo!");
        QCOMPARE(received.count("HTTP/1.1 200 OK"), 3);
        const qsizetype a = received.indexOf("GET /a "), b = received.indexOf("POST /b hallo!"),
                        c = received.indexOf("GET /c ");
        QVERIFY2(a > 0 && a < b && b < c, received.constData());
        QVERIFY(received.contains("Connection: close"));
        QVERIFY(received.contains("Content-Length: 14\r\n"));
        QCOMPARE(server.connectionCount(), 1);
    }

    // awaitTask

    void awaitTaskEndsEveryWait_data() {
        QTest::addColumn<QString>("how");
        QTest::addColumn<int>("timeoutMs");
        QTest::addColumn<QString>("outcome");
        QTest::newRow("at once") << u"now"_s << 10000 << u"7"_s;
        QTest::newRow("after a turn of the loop") << u"later"_s << 10000 << u"7"_s;
        QTest::newRow("raised") << u"raise"_s << 10000 << u"kaputt"_s;
        // A guard of 0 ms fires on the loop's first turn: no real time passes.
        QTest::newRow("never") << u"never"_s << 0 << u"the task did not finish within 0 ms"_s;
    }

    void awaitTaskEndsEveryWait() {
        QFETCH(QString, how);
        QFETCH(int, timeoutMs);
        QFETCH(QString, outcome);
        ManualClock clock;
        clock.setAutoAdvance(how == u"later"_s);
        if (how == u"never"_s) {
            QTest::ignoreMessage(QtCriticalMsg, QRegularExpression(u"did not finish"_s));
        }
        QString result;
        try {
            result = QString::number(awaitTask(endingBy(&clock, how), std::chrono::milliseconds(timeoutMs)));
        } catch (const VarnisTest::TaskTimedOut& timedOut) {
            result = QString::fromUtf8(timedOut.what());
        } catch (const std::exception& error) {
            result = QString::fromUtf8(error.what());
        }
        QVERIFY2(result.contains(outcome), qPrintable(result));
        // A task given up on still finishes somewhere that exists.
        clock.advance(1);
        QCoreApplication::processEvents();
    }

private:
    QNetworkAccessManager m_manager;
};

QTEST_MAIN(TestSupport)
#include "tst_support.moc"
