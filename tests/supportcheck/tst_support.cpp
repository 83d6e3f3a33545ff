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

} // namespace

// The contract accepts the request; otherwise the test fails with the violation.
#define VERIFY_ACCEPTED(...)                                                                                 \
    do {                                                                                                     \
        const auto violation = OpenApiContract::check(__VA_ARGS__);                                          \
        QVERIFY2(!violation, qPrintable(violation.value_or(QString())));                                     \
    } while (false)

class TestSupport : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { m_manager.setProxy(QNetworkProxy::NoProxy); }

    // OpenApiContract

    void contractAcceptsDeclaredRequests() {
        if (!OpenApiContract::isAvailable()) {
            QSKIP("The OpenAPI document is not on this checkout.");
        }
        VERIFY_ACCEPTED(u"GET"_s, u"/v1/apps"_s, {u"limit"_s, u"sort"_s});
        VERIFY_ACCEPTED(u"get"_s, u"/v1/apps"_s, {u"fields[apps]"_s, u"filter[bundleId]"_s});
        VERIFY_ACCEPTED(u"PATCH"_s, u"/v1/appStoreVersionLocalizations/abc"_s, {});
        VERIFY_ACCEPTED(u"GET"_s, u"/v1/apps/123/appStoreVersions"_s, {u"limit"_s});
        // The paging token of `next` links on a paged list.
        VERIFY_ACCEPTED(u"GET"_s, u"/v1/apps"_s, {u"cursor"_s, u"limit"_s});
    }

    void contractRejectsUndeclaredRequests() {
        if (!OpenApiContract::isAvailable()) {
            QSKIP("The OpenAPI document is not on this checkout.");
        }
        const auto bogus = OpenApiContract::check(u"GET"_s, u"/v1/apps"_s, {u"limit"_s, u"bogus"_s});
        QVERIFY(bogus);
        QVERIFY2(bogus->contains(u"bogus"_s) && !bogus->contains(u"limit"_s), qPrintable(*bogus));
        QVERIFY(OpenApiContract::check(u"GET"_s, u"/v1/nonsense"_s, {}));
        QVERIFY(OpenApiContract::check(u"GET"_s, u"/v1/apps/"_s, {}));
        QVERIFY(OpenApiContract::check(u"DELETE"_s, u"/v1/apps"_s, {}));
        QVERIFY(OpenApiContract::check(u"PUT"_s, u"/v1/appStoreVersionLocalizations/abc"_s, {}));
        // No `cursor` where there is no paging.
        QVERIFY(OpenApiContract::check(u"PATCH"_s, u"/v1/appStoreVersionLocalizations/abc"_s, {u"cursor"_s}));
    }

    // FakeTransport

    void fakeTransportFailsTheTestOnViolation() {
        if (!OpenApiContract::isAvailable()) {
            QSKIP("The OpenAPI document is not on this checkout.");
        }
        FakeTransport fake;
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"OpenAPI contract violation.*/v1/nonsense"_s));
        QEXPECT_FAIL("", "the fake transport fails the test on a contract violation", Continue);
        awaitTask(fake.send(apiGet(u"/v1/nonsense"_s)));
        QCOMPARE(fake.violations().size(), 1);
    }

    // TestServer

    void serverReusesOneConnection() {
        TestServer server;
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

    // MemorySecretStore

    // TestKeys

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
