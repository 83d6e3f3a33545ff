// What the client's pipeline (governor, token cache, coalescer, decoding into ManagedApp) costs
// over the bare transport: the same GETs of a 200-app page against a loopback server, once
// through a bare QNetworkAccessManager and once through the full client, in one run.
#include "api/AppStoreConnectClient.h"
#include "api/AuditLog.h"
#include "api/AuthenticationService.h"
#include "api/RateLimitGovernor.h"
#include "api/TruncationRegistry.h"
#include "platform/Clock.h"
#include "platform/QtHttpTransport.h"
#include "support/RawEndpoints.h"
#include "support/TestKeys.h"
#include "support/TestServer.h"
#include "workspace/ManagedApp.h"

#include <QCoreApplication>
#include <QCoro/QCoroNetworkReply>
#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTemporaryDir>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

QByteArray pageOf200() {
    QJsonArray data;
    for (int i = 0; i < 200; ++i) {
        data.append(QJsonObject{{u"type"_s, u"apps"_s},
                                {u"id"_s, QString::number(1000000 + i)},
                                {u"attributes"_s, QJsonObject{{u"name"_s, u"App Nummer %1"_s.arg(i)},
                                                              {u"bundleId"_s, u"com.example.app%1"_s.arg(i)},
                                                              {u"sku"_s, u"SKU%1"_s.arg(i)},
                                                              {u"primaryLocale"_s, u"de-DE"_s},
                                                              {u"isOrEverWasMadeForKids"_s, false}}}});
    }
    return QJsonDocument(QJsonObject{{u"data"_s, data}, {u"links"_s, QJsonObject{{u"self"_s, u"x"_s}}}})
        .toJson(QJsonDocument::Compact);
}

QCoro::Task<qint64> bare(QUrl url, int count) {
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < count; ++i) {
        QNetworkRequest request(url);
        request.setRawHeader("Accept", "application/json");
        std::unique_ptr<QNetworkReply> reply(QtHttpTransport::sharedManager()->get(request));
        co_await qCoro(reply.get()).waitForFinished(std::chrono::milliseconds(-1));
        const QByteArray body = reply->readAll();
        if (body.isEmpty()) {
            std::fprintf(stderr, "empty reply\n");
        }
    }
    co_return timer.nsecsElapsed();
}

// The client's own stages without decoding: governor, token, coalescer, header reading.
QCoro::Task<qint64> raw(std::shared_ptr<AppStoreConnectClient> client, int count) {
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < count; ++i) {
        APIRequest request = APIRequest::get(u"/v1/apps"_s);
        request.queryItems = {{u"limit"_s, u"200"_s}, {u"sort"_s, u"name"_s}};
        auto task = client->call(bytesOf(request));
        const QByteArray body = co_await task;
        if (body.isEmpty()) {
            std::fprintf(stderr, "empty reply\n");
        }
    }
    co_return timer.nsecsElapsed();
}

// Parsing and mapping alone, without any network.
qint64 decodeOnly(const QByteArray& body, int count) {
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < count; ++i) {
        const auto page = JSONAPIDecode::list<JSONAPIResource<ASCAppAttributes>>(body);
        QList<ManagedApp> mapped;
        mapped.reserve(page.data.size());
        for (const auto& resource : page.data) {
            mapped.append(ManagedApp::fromResource(resource.id, resource.attributes));
        }
    }
    return timer.nsecsElapsed();
}

QCoro::Task<qint64> pipeline(std::shared_ptr<AppStoreConnectClient> client, int count, int* apps) {
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < count; ++i) {
        APIRequest request = APIRequest::get(u"/v1/apps"_s);
        request.queryItems = {{u"limit"_s, u"200"_s}, {u"sort"_s, u"name"_s}};
        auto task = client->call(Endpoint<Returns::Page<ASCAppAttributes>>::of(request));
        const auto page = co_await task;
        QList<ManagedApp> mapped;
        mapped.reserve(page.data.size());
        for (const auto& resource : page.data) {
            mapped.append(ManagedApp::fromResource(resource.id, resource.attributes));
        }
        *apps += int(mapped.size());
    }
    co_return timer.nsecsElapsed();
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const int count = argc > 1 ? QByteArray(argv[1]).toInt() : 2000;

    TestServer server;
    // What is measured is the client; the server's check of each page against Apple's
    // description would be counted with it.
    server.setContractMode(TestServer::ContractMode::Off);
    const QByteArray body = pageOf200();
    server.script(
        "GET", u"/v1/apps"_s,
        {TestServer::Reply::json(200, body, {{"X-Rate-Limit", "user-hour-lim:3600;user-hour-rem:3599;"}})});

    QTemporaryDir dir;
    auto clock = std::make_shared<SystemClock>();
    AppStoreConnectClient::Parts parts;
    parts.clock = clock;
    parts.transport = std::make_shared<QtHttpTransport>(clock);
    parts.apiRoot = server.baseUrl();
    parts.auth =
        std::make_shared<AuthenticationService>(u"ABCDE12345"_s, u"issuer"_s, makeTestKey().privateKeyPEM);
    parts.accountName = u"Bench"_s;
    parts.auditLog = std::make_shared<AuditLog>(dir.filePath(u"log.json"_s));
    parts.governor = std::make_shared<RateLimitGovernor>(clock);
    parts.truncationRegistry = std::make_shared<TruncationRegistry>();
    auto client = AppStoreConnectClient::create(parts);

    // Warm up the connection and the allocator on both paths.
    int apps = 0;
    QCoro::waitFor(bare(server.url(u"/v1/apps?limit=200&sort=name"_s), 50));
    QCoro::waitFor(pipeline(client, 50, &apps));

    // Alternate halves so that drift of the machine hits both paths alike.
    qint64 bareNs = 0;
    qint64 rawNs = 0;
    qint64 pipeNs = 0;
    apps = 0;
    for (int round = 0; round < 4; ++round) {
        bareNs += QCoro::waitFor(bare(server.url(u"/v1/apps?limit=200&sort=name"_s), count / 4));
        rawNs += QCoro::waitFor(raw(client, count / 4));
        pipeNs += QCoro::waitFor(pipeline(client, count / 4, &apps));
    }
    const double bareMs = double(bareNs) / 1e6;
    const double rawMs = double(rawNs) / 1e6;
    const double pipeMs = double(pipeNs) / 1e6;
    const double decodeMs = double(decodeOnly(body, count)) / 1e6;
    std::printf("client_pipeline: %d GETs of a 200-app page (%lld bytes)\n", count,
                static_cast<long long>(body.size()));
    std::printf("  bare QNetworkAccessManager: %8.1f ms  (%.3f ms per request)\n", bareMs, bareMs / count);
    std::printf("  full client, bytes only:    %8.1f ms  (%.3f ms per request, %+.1f %%)\n", rawMs,
                rawMs / count, (rawMs / bareMs - 1.0) * 100.0);
    std::printf("  full client + decode:       %8.1f ms  (%.3f ms per request, %+.1f %%)\n", pipeMs,
                pipeMs / count, (pipeMs / bareMs - 1.0) * 100.0);
    std::printf("  decode alone (no network):  %8.1f ms  (%.3f ms per page)\n", decodeMs, decodeMs / count);
    std::printf("  apps decoded: %d, ES256 signatures: %d\n", apps, client->auth().tokensMade());
    return 0;
}
