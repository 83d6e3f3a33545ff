// The beta details of many builds through TestFlightService::buildBetaDetails against a loopback
// server that answers each request only after a fixed delay, as Apple's servers take their time:
// how many requests were under way at once (at most three) and the wall time against the same
// builds loaded one after another (the three at once should take at most 0.4 of it).
#include "api/RateLimitGovernor.h"
#include "fixtures/TestClient.h"
#include "platform/Clock.h"
#include "platform/QtHttpTransport.h"
#include "support/AwaitTask.h"
#include "testflight/TestFlightService.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QPointer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

// Answers every GET of /v1/builds/<id>/buildBetaDetail with that build's details, `delay` after
// the request came in, on persistent connections. Counts the requests it holds at once.
class SlowServer : public QObject {
public:
    explicit SlowServer(std::chrono::milliseconds delay) : m_delay(delay) {
        connect(&m_server, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket* socket = m_server.nextPendingConnection()) {
                connect(socket, &QTcpSocket::readyRead, this, [this, socket] { read(socket); });
                connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
            }
        });
        if (!m_server.listen(QHostAddress::LocalHost)) {
            qFatal("bench server cannot listen");
        }
    }

    QUrl baseUrl() const { return QUrl(u"http://127.0.0.1:%1"_s.arg(m_server.serverPort())); }
    int mostAtOnce() const { return m_mostAtOnce; }
    int answered() const { return m_answered; }
    void reset() { m_mostAtOnce = m_answered = 0; }

private:
    void read(QTcpSocket* socket) {
        QByteArray& buffer = m_buffers[socket];
        buffer += socket->readAll();
        // GETs only: a request ends with its head.
        for (qsizetype end = buffer.indexOf("\r\n\r\n"); end >= 0; end = buffer.indexOf("\r\n\r\n")) {
            const QByteArray target = buffer.left(buffer.indexOf("\r\n")).split(' ').value(1);
            buffer.remove(0, end + 4);
            m_mostAtOnce = std::max(m_mostAtOnce, ++m_atOnce);
            QTimer::singleShot(m_delay, this, [this, socket = QPointer<QTcpSocket>(socket), target] {
                --m_atOnce;
                ++m_answered;
                if (socket) {
                    socket->write(answer(target));
                }
            });
        }
    }

    static QByteArray answer(const QByteArray& target) {
        const QByteArray id = target.split('/').value(3);
        const QByteArray body = R"({"data":{"type":"buildBetaDetails","id":")" + id +
                                R"(","attributes":{"internalBuildState":"IN_BETA_TESTING",)"
                                R"("externalBuildState":"READY_FOR_BETA_TESTING"}}})";
        return "HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Length: " +
               QByteArray::number(body.size()) + "\r\n\r\n" + body;
    }

    QTcpServer m_server;
    std::chrono::milliseconds m_delay;
    QHash<QTcpSocket*, QByteArray> m_buffers;
    int m_atOnce = 0;
    int m_mostAtOnce = 0;
    int m_answered = 0;
};

QCoro::Task<int> oneAfterAnother(TestFlightService* service, QStringList builds,
                                 std::shared_ptr<AppStoreConnectClient> client) {
    int loaded = 0;
    for (const QString& build : builds) {
        co_await service->buildBetaDetail(build, client);
        ++loaded;
    }
    co_return loaded;
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const int count = argc > 1 ? std::max(1, QByteArray(argv[1]).toInt()) : 200;
    const auto delay = std::chrono::milliseconds(argc > 2 ? QByteArray(argv[2]).toInt() : 20);

    SlowServer server(delay);
    auto clock = std::make_shared<SystemClock>();
    // A real client over the real HTTP stack, as the application builds it.
    auto parts = clientParts(clock, std::make_shared<QtHttpTransport>(clock), makeTestKey().privateKeyPEM,
                             server.baseUrl());
    parts.governor = std::make_shared<RateLimitGovernor>(clock);
    auto client = AppStoreConnectClient::create(parts);
    TestFlightService service(clock);

    QStringList builds;
    for (int i = 0; i < count; ++i) {
        builds.append(u"build-%1"_s.arg(i));
    }
    // Connections, token and allocator are set up before the figures.
    VarnisTest::awaitTask(service.buildBetaDetails(builds.mid(0, 6), client), std::chrono::minutes(1));
    server.reset();

    QElapsedTimer timer;
    timer.start();
    const int sequentialLoaded =
        VarnisTest::awaitTask(oneAfterAnother(&service, builds, client), std::chrono::minutes(5));
    const double sequentialMs = double(timer.nsecsElapsed()) / 1e6;
    const int sequentialMost = server.mostAtOnce();
    server.reset();

    int arrived = 0;
    timer.restart();
    const BuildBetaDetails details = VarnisTest::awaitTask(
        service.buildBetaDetails(builds, client, [&](const QString&, const auto&) { ++arrived; }),
        std::chrono::minutes(5));
    const double parallelMs = double(timer.nsecsElapsed()) / 1e6;
    const int parallelMost = server.mostAtOnce();

    const double ratio = parallelMs / sequentialMs;
    const bool inFlightOk = parallelMost <= TestFlightService::maxDetailsInFlight;
    const bool ratioOk = ratio <= 0.4;
    std::printf("builds_beta_details: %d builds, %lld ms per answer\n", count,
                static_cast<long long>(delay.count()));
    std::printf("  one after another: %8.1f ms  (%d loaded, at most %d in flight)\n", sequentialMs,
                sequentialLoaded, sequentialMost);
    std::printf(
        "  buildBetaDetails:  %8.1f ms  (%lld loaded, %lld errors, %d reported, at most %d in flight)\n",
        parallelMs, static_cast<long long>(details.details.size()),
        static_cast<long long>(details.errors.size()), arrived, parallelMost);
    std::printf("  in flight: %d (limit %d) %s\n", parallelMost, TestFlightService::maxDetailsInFlight,
                inFlightOk ? "ok" : "TOO MANY");
    std::printf("  wall time: %.2f x one after another (target <= 0.40) %s\n", ratio,
                ratioOk ? "ok" : "TOO SLOW");
    return inFlightOk && ratioOk && details.details.size() == count ? 0 : 1;
}
