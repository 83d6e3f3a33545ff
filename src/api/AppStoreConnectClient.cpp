#include "api/AppStoreConnectClient.h"

#include "api/AuditLog.h"
#include "api/AuthenticationService.h"
#include "api/MediaTypes.h"
#include "api/PipelineStages.h"
#include "api/RateLimitGovernor.h"
#include "api/RequestCoalescer.h"
#include "api/RequestPipeline.h"
#include "api/TruncationRegistry.h"
#include "platform/Clock.h"
#include "platform/HttpTransport.h"

#include <QLoggingCategory>

using namespace Qt::StringLiterals;

Q_LOGGING_CATEGORY(lcClient, "com.tolsenmark.Velmora.AppStoreConnectClient", QtInfoMsg)

namespace {

std::unique_ptr<RequestPipeline> apiPipeline(const AppStoreConnectClient::Parts& parts) {
    // The order is the one written down with the stages.
    std::vector<std::unique_ptr<PipelineStage>> stages;
    stages.push_back(std::make_unique<ErrorMappingStage>(ErrorMappingStage::Kind::Api));
    stages.push_back(std::make_unique<RetryStage>(parts.clock, RetryStage::Policy::ApiAnswers,
                                                  parts.waitAnnouncer, parts.accountName));
    stages.push_back(std::make_unique<AuditStage>(parts.auditLog, parts.clock, parts.accountName));
    stages.push_back(std::make_unique<GovernorStage>(parts.governor));
    stages.push_back(std::make_unique<TokenStage>(parts.auth, parts.clock));
    return std::make_unique<RequestPipeline>(std::move(stages), parts.transport);
}

// Storage addresses of uploads and presigned downloads take neither token nor budget, and leave
// no audit entry.
std::unique_ptr<RequestPipeline> storagePipeline(const AppStoreConnectClient::Parts& parts) {
    std::vector<std::unique_ptr<PipelineStage>> stages;
    stages.push_back(std::make_unique<ErrorMappingStage>(ErrorMappingStage::Kind::Storage));
    stages.push_back(std::make_unique<RetryStage>(parts.clock, RetryStage::Policy::ConnectivityOnly,
                                                  parts.waitAnnouncer, parts.accountName));
    return std::make_unique<RequestPipeline>(std::move(stages), parts.transport);
}

// Percent-encodes everything but the unreserved characters and the brackets of filter[...]
// names, so that a "+" in a value cannot turn into a blank on the server.
QByteArray encodeQueryPart(const QString& text) {
    return QUrl::toPercentEncoding(text, "[]");
}

} // namespace

struct AppStoreConnectClient::Private {
    Parts parts;
    RequestCoalescer coalescer;
    std::unique_ptr<RequestPipeline> api;
    std::unique_ptr<RequestPipeline> storage;
};

std::shared_ptr<AppStoreConnectClient> AppStoreConnectClient::create(Parts parts) {
    return std::shared_ptr<AppStoreConnectClient>(new AppStoreConnectClient(std::move(parts)));
}

AppStoreConnectClient::AppStoreConnectClient(Parts parts) : d(std::make_unique<Private>()) {
    d->parts = std::move(parts);
    d->api = apiPipeline(d->parts);
    d->storage = storagePipeline(d->parts);
}

AppStoreConnectClient::~AppStoreConnectClient() = default;

const QString& AppStoreConnectClient::accountName() const {
    return d->parts.accountName;
}

AuthenticationService& AppStoreConnectClient::auth() const {
    return *d->parts.auth;
}

RequestCoalescer& AppStoreConnectClient::coalescer() const {
    return d->coalescer;
}

QCoro::Task<> AppStoreConnectClient::testConnection() {
    auto self = shared_from_this();
    // A named endpoint rather than a temporary in the co_await (see fetch).
    auto endpoint = Endpoint<Returns::Nothing>::get(u"/v1/apps"_s, {QueryItem{u"limit"_s, u"1"_s}});
    co_await self->call(std::move(endpoint));
}

QCoro::Task<QByteArray> AppStoreConnectClient::fetch(APIRequest request) {
    auto self = shared_from_this();
    if (request.method != APIRequest::Method::Get) {
        co_return co_await self->execute(std::move(request));
    }
    // Named locals rather than temporaries inside the co_await: g++ 12 mishandles the lifetime
    // of temporaries that initialise a coroutine's by-value parameters.
    const QString key = request.coalescingKey();
    RequestCoalescer::Operation operation = [self, request]() {
        return self->execute(request);
    };
    auto task = self->d->coalescer.data(key, operation);
    QByteArray body = co_await task;
    co_return body;
}

HttpRequest AppStoreConnectClient::buildRequest(const APIRequest& request) const {
    QUrl url;
    if (!request.path.startsWith(u'/') || request.path.startsWith(u"//"_s)) {
        // A `next` link is followed as Apple wrote it, host and query included, but only over
        // https (or plain http when the API itself is reached that way, as in tests): the
        // token goes with it.
        url = QUrl(request.path, QUrl::StrictMode);
        const QString scheme = url.scheme().toLower();
        const bool allowed =
            scheme == u"https"_s || (scheme == u"http"_s && d->parts.apiRoot.scheme() == u"http"_s);
        if (!allowed || url.host().isEmpty()) {
            throw VelmoraAPIError::network(TransportError::protocolViolation());
        }
    } else {
        url = d->parts.apiRoot;
        QString basePath = url.path(QUrl::FullyEncoded);
        while (basePath.endsWith(u'/')) {
            basePath.chop(1);
        }
        // The path's segments are percent-encoded already and stay as they are.
        url.setPath(basePath + (request.path.startsWith(u'/') ? request.path : u'/' + request.path),
                    QUrl::StrictMode);
        if (!request.queryItems.isEmpty()) {
            QByteArray query;
            for (const auto& item : request.queryItems) {
                if (!query.isEmpty()) {
                    query += '&';
                }
                query += encodeQueryPart(item.name);
                if (item.value) {
                    query += '=' + encodeQueryPart(*item.value);
                }
            }
            url.setQuery(QString::fromLatin1(query), QUrl::StrictMode);
        }
    }
    if (!url.isValid() || url.scheme().isEmpty() || url.host().isEmpty()) {
        throw VelmoraAPIError::unknown(-1);
    }

    HttpRequest http;
    http.method = request.methodText().toLatin1();
    http.url = url;
    http.timeoutSeconds = 60;
    if (request.accept) {
        http.accept = *request.accept;
    }
    if (request.body) {
        http.body = *request.body;
    }
    for (auto it = request.headers.cbegin(); it != request.headers.cend(); ++it) {
        http.headers.append(qMakePair(it.key().toUtf8(), it.value().toUtf8()));
    }
    if (request.body) {
        // Ours wins over a caller's own Content-Type for a JSON body.
        http.headers.removeIf(
            [](const auto& h) { return h.first.compare("Content-Type", Qt::CaseInsensitive) == 0; });
        http.headers.append(qMakePair(QByteArray("Content-Type"), QByteArray("application/json")));
    }
    return http;
}

QCoro::Task<QByteArray> AppStoreConnectClient::execute(APIRequest request) {
    auto self = shared_from_this();
    PipelineCall call;
    call.http = self->buildRequest(request);
    call.request = std::move(request);
    HttpResponse response = co_await self->d->api->send(std::move(call));
    co_return std::move(response.body);
}

QCoro::Task<SavedFile> AppStoreConnectClient::download(Endpoint<Returns::File> endpoint,
                                                       DownloadTarget target) {
    auto self = shared_from_this();
    PipelineCall call;
    call.http = self->buildRequest(endpoint.request);
    call.http.saveTo = target;
    call.request = std::move(endpoint.request);
    const HttpResponse response = co_await self->d->api->send(std::move(call));
    co_return SavedFile{target.path, response.savedBytes.value_or(0)};
}

QCoro::Task<SavedFile> AppStoreConnectClient::downloadPresigned(QUrl url, DownloadTarget target) {
    auto self = shared_from_this();
    const QString scheme = url.scheme().toLower();
    if (!url.isValid() || (scheme != u"https"_s && scheme != u"http"_s) || url.host().isEmpty()) {
        throw VelmoraAPIError::unknown(-1);
    }
    PipelineCall call;
    call.request.path = url.path();
    call.http.url = url;
    call.http.accept = MediaType::any.toByteArray();
    call.http.saveTo = target;
    const HttpResponse response = co_await self->d->storage->send(std::move(call));
    co_return SavedFile{target.path, response.savedBytes.value_or(0)};
}

void AppStoreConnectClient::pageListComplete(const QString& path) {
    if (d->parts.truncationRegistry) {
        d->parts.truncationRegistry->remove(path);
    }
}

void AppStoreConnectClient::pageListTruncated(const QString& path, int pages) {
    qCDebug(lcClient, "Liste gekürzt nach %ld Seiten: %s", long(pages), qPrintable(path));
    if (d->parts.truncationRegistry) {
        d->parts.truncationRegistry->insert(path);
    }
}

QCoro::Task<> AppStoreConnectClient::performUploadOperation(ASCUploadOperation operation, QByteArray data) {
    auto self = shared_from_this();
    if (!operation.url) {
        throw VelmoraAPIError::unknown(-1);
    }
    const QUrl url(*operation.url, QUrl::StrictMode);
    if (!url.isValid() || url.scheme().isEmpty()) {
        throw VelmoraAPIError::unknown(-1);
    }
    const qint64 offset = operation.offset.value_or(0);
    const qint64 length = operation.length.value_or(data.size());
    if (offset < 0 || offset > data.size() || length < 0) {
        throw VelmoraAPIError::unknown(-1);
    }
    // Cut at the end of the data; no `offset + length` that could overflow.
    const qint64 end = offset + std::min<qint64>(length, data.size() - offset);
    PipelineCall call;
    call.request.path = url.path();
    call.http.method = operation.method.value_or(u"PUT"_s).toLatin1();
    call.http.url = url;
    call.http.timeoutSeconds = 60;
    if (operation.requestHeaders) {
        for (const auto& header : *operation.requestHeaders) {
            if (header.name && header.value) {
                call.http.headers.append(qMakePair(header.name->toUtf8(), header.value->toUtf8()));
            }
        }
    }
    // Shares `data` when the operation covers all of it, as the uploader's parts do.
    call.http.body = data.mid(offset, end - offset);
    qCDebug(lcClient, "UPLOAD chunk %ld+%ld", long(offset), long(length));
    co_await self->d->storage->send(std::move(call));
}
