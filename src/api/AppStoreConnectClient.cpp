#include "api/AppStoreConnectClient.h"

#include "api/AuditLog.h"
#include "api/AuthenticationService.h"
#include "api/RateLimitGovernor.h"
#include "api/RequestCoalescer.h"
#include "api/TruncationRegistry.h"
#include "platform/Clock.h"
#include "platform/HttpTransport.h"

#include <QLoggingCategory>

#include <cmath>

using namespace Qt::StringLiterals;

Q_LOGGING_CATEGORY(lcClient, "com.tolsenmark.Velmora.AppStoreConnectClient", QtInfoMsg)

struct AppStoreConnectClient::Private {
    Parts parts;
    RequestCoalescer coalescer;
};

struct AppStoreConnectClient::BuiltRequest {
    HttpRequest http;
};

namespace {

constexpr int maxAttempts = 4;

// Percent-encodes everything but the unreserved characters and the brackets of filter[...]
// names, so that a "+" in a value cannot turn into a blank on the server.
QByteArray encodeQueryPart(const QString& text) {
    return QUrl::toPercentEncoding(text, "[]");
}

std::optional<double> parseRetryAfter(const std::optional<QString>& header) {
    if (!header) {
        return std::nullopt;
    }
    bool ok = false;
    const double value = header->trimmed().toDouble(&ok);
    // "inf", "nan" and negative waits are no usable answer; an hour is the longest we wait.
    if (!ok || !std::isfinite(value) || value < 0) {
        return std::nullopt;
    }
    return std::min(value, 3600.0);
}

} // namespace

std::shared_ptr<AppStoreConnectClient> AppStoreConnectClient::create(Parts parts) {
    return std::shared_ptr<AppStoreConnectClient>(new AppStoreConnectClient(std::move(parts)));
}

AppStoreConnectClient::AppStoreConnectClient(Parts parts) : d(std::make_unique<Private>()) {
    d->parts = std::move(parts);
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

QCoro::Task<QByteArray> AppStoreConnectClient::sendRawData(APIRequest request) {
    auto self = shared_from_this();
    co_return co_await self->fetch(std::move(request));
}

QCoro::Task<> AppStoreConnectClient::sendVoid(APIRequest request) {
    auto self = shared_from_this();
    co_await self->fetch(std::move(request));
}

QCoro::Task<> AppStoreConnectClient::testConnection() {
    auto self = shared_from_this();
    APIRequest request = APIRequest::get(u"/v1/apps"_s);
    request.queryItems.append(QueryItem{u"limit"_s, u"1"_s});
    co_await self->fetch(std::move(request));
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

AppStoreConnectClient::BuiltRequest AppStoreConnectClient::buildRequest(const APIRequest& request) const {
    QUrl url;
    if (request.path.startsWith(u"http"_s)) {
        // A `next` link is followed as Apple wrote it, host and query included.
        url = QUrl(request.path, QUrl::StrictMode);
    } else {
        url = d->parts.apiRoot;
        QString basePath = url.path();
        while (basePath.endsWith(u'/')) {
            basePath.chop(1);
        }
        url.setPath(basePath + (request.path.startsWith(u'/') ? request.path : u'/' + request.path));
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

    BuiltRequest built;
    built.http.method = request.methodText().toLatin1();
    built.http.url = url;
    built.http.timeoutSeconds = 60;
    if (request.body) {
        built.http.body = *request.body;
    }
    for (auto it = request.headers.cbegin(); it != request.headers.cend(); ++it) {
        built.http.headers.append(qMakePair(it.key().toUtf8(), it.value().toUtf8()));
    }
    if (request.body) {
        // Ours wins over a caller's own Content-Type for a JSON body.
        built.http.headers.removeIf(
            [](const auto& h) { return h.first.compare("Content-Type", Qt::CaseInsensitive) == 0; });
        built.http.headers.append(qMakePair(QByteArray("Content-Type"), QByteArray("application/json")));
    }
    QString token;
    try {
        token = d->parts.auth->currentToken(d->parts.clock->now());
    } catch (...) {
        // Whatever went wrong with the key, the user learns one thing; the cause may hold key data.
        throw VelmoraAPIError::invalidPrivateKey();
    }
    built.http.headers.append(qMakePair(QByteArray("Authorization"), "Bearer " + token.toLatin1()));
    return built;
}

QCoro::Task<QByteArray> AppStoreConnectClient::execute(APIRequest request) {
    auto self = shared_from_this();
    const Parts& parts = self->d->parts;
    for (int attempt = 1;; ++attempt) {
        if (parts.governor) {
            co_await parts.governor->reserve(request.priority);
        }
        BuiltRequest built = self->buildRequest(request);

        HttpResponse response;
        try {
            response = co_await parts.transport->send(std::move(built.http));
        } catch (const TransportError& error) {
            throw VelmoraAPIError::network(error.description());
        }
        if (!response.isHttp) {
            throw VelmoraAPIError::unknown(-1);
        }
        const int status = response.status;
        qCDebug(lcClient, "%s %s -> %ld", qPrintable(request.methodText()), qPrintable(request.path),
                long(status));

        if (parts.governor) {
            parts.governor->update(response.header("X-Rate-Limit"));
        }
        const std::optional<QString> requestID = response.header("X-Apple-Request-Id");
        const bool success = status >= 200 && status <= 299;

        if (request.method != APIRequest::Method::Get && parts.auditLog) {
            AuditLog::Entry entry;
            entry.id = QUuid::createUuid();
            entry.date = parts.clock->now();
            entry.method = request.methodText();
            entry.path = request.path;
            entry.statusCode = status;
            entry.appleRequestID = requestID;
            entry.accountName = parts.accountName;
            if (!success) {
                entry.errorMessage = u"HTTP %1"_s.arg(status);
            }
            parts.auditLog->record(std::move(entry));
        }

        if (success) {
            co_return response.body;
        }
        if (status == 429) {
            const auto retryAfter = parseRetryAfter(response.header("Retry-After"));
            if (attempt < maxAttempts) {
                co_await parts.clock->sleep(retryAfter.value_or(double(attempt + attempt)));
                continue;
            }
            throw VelmoraAPIError::rateLimited(retryAfter);
        }
        if (status == 403) {
            throw VelmoraAPIError::forbidden(AppleErrorDocument::decodeLenient(response.body));
        }
        if (status == 401) {
            throw VelmoraAPIError::unauthorized();
        }
        if (status >= 500 && status <= 599 && attempt < maxAttempts) {
            co_await parts.clock->sleep(attempt * 1.5);
            continue;
        }
        throw VelmoraAPIError::http(status, requestID, AppleErrorDocument::decodeLenient(response.body));
    }
}

void AppStoreConnectClient::pageListComplete(const QString& path, bool removeFromRegistry) {
    if (removeFromRegistry && d->parts.truncationRegistry) {
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
    const qint64 end = std::min<qint64>(offset + length, data.size());
    if (offset < 0 || end < offset) {
        throw VelmoraAPIError::unknown(-1);
    }
    HttpRequest http;
    http.method = operation.method.value_or(u"PUT"_s).toLatin1();
    http.url = url;
    http.timeoutSeconds = 60;
    if (operation.requestHeaders) {
        for (const auto& header : *operation.requestHeaders) {
            if (header.name && header.value) {
                http.headers.append(qMakePair(header.name->toUtf8(), header.value->toUtf8()));
            }
        }
    }
    http.body = data.mid(offset, end - offset);

    HttpResponse response;
    try {
        response = co_await self->d->parts.transport->send(std::move(http));
    } catch (const TransportError& error) {
        throw VelmoraAPIError::network(error.description());
    }
    if (!response.isHttp) {
        throw VelmoraAPIError::unknown(-1);
    }
    qCDebug(lcClient, "UPLOAD chunk %ld+%ld -> %ld", long(offset), long(length), long(response.status));
    if (response.status < 200 || response.status > 299) {
        throw VelmoraAPIError::http(response.status, std::nullopt, {});
    }
}
