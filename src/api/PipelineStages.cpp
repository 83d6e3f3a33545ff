#include "api/PipelineStages.h"

#include "api/AuditLog.h"
#include "api/AuthenticationService.h"
#include "api/RateLimitGovernor.h"
#include "platform/Clock.h"
#include "wire/AppleErrorDocument.h"
#include "wire/VelmoraAPIError.h"

#include <QUuid>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

bool isSuccess(int status) {
    return status >= 200 && status <= 299;
}

} // namespace

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

QCoro::Task<HttpResponse> ErrorMappingStage::process(PipelineCall call, PipelineNext next) {
    HttpResponse response;
    try {
        response = co_await next(std::move(call));
    } catch (const TransportError& error) {
        throw VelmoraAPIError::network(error.description());
    }
    const int status = response.status;
    if (isSuccess(status)) {
        co_return response;
    }
    if (m_kind == Kind::Storage) {
        throw VelmoraAPIError::http(status, std::nullopt, {});
    }
    switch (status) {
    case 429:
        throw VelmoraAPIError::rateLimited(parseRetryAfter(response.header("Retry-After")));
    case 403:
        throw VelmoraAPIError::forbidden(AppleErrorDocument::decodeLenient(response.body));
    case 401:
        throw VelmoraAPIError::unauthorized();
    default:
        throw VelmoraAPIError::http(status, response.header("X-Apple-Request-Id"),
                                    AppleErrorDocument::decodeLenient(response.body));
    }
}

QCoro::Task<HttpResponse> RetryStage::process(PipelineCall call, PipelineNext next) {
    const QDateTime started = m_clock->now();
    double offlineWait = 2;
    for (;;) {
        HttpResponse response;
        bool offline = false;
        try {
            response = co_await next(call);
        } catch (const TransportError& error) {
            // Without a network the request waits for one to return, up to the window; these
            // waits are no tries.
            const double elapsed = double(started.msecsTo(m_clock->now())) / 1000.0;
            if (!error.isOffline() || elapsed + offlineWait > connectivityWindow) {
                throw;
            }
            offline = true;
        }
        double wait = 0;
        if (offline) {
            wait = offlineWait;
            offlineWait = std::min(offlineWait * 2, 30.0);
        } else if (m_policy == Policy::ConnectivityOnly || call.attempt >= maxAttempts) {
            co_return response;
        } else if (response.status == 429) {
            wait =
                parseRetryAfter(response.header("Retry-After")).value_or(double(call.attempt + call.attempt));
            ++call.attempt;
        } else if (response.status >= 500 && response.status <= 599) {
            wait = call.attempt * 1.5;
            ++call.attempt;
        } else {
            co_return response;
        }
        co_await pause(wait, offline ? WaitAnnouncer::Reason::Offline : WaitAnnouncer::Reason::RateLimited);
    }
}

QCoro::Task<> RetryStage::pause(double seconds, WaitAnnouncer::Reason reason) {
    if (!m_announcer || seconds <= WaitAnnouncer::threshold) {
        co_await m_clock->sleep(seconds);
        co_return;
    }
    const QDateTime until = m_clock->now().addMSecs(qint64(seconds * 1000));
    // Ends the announcement also when the waiting call is dropped half-way.
    struct Announced {
        WaitAnnouncer* announcer;
        int wait;
        ~Announced() { announcer->ended(wait); }
    } announced{m_announcer.get(), m_announcer->started(reason, until, m_accountName)};
    co_await m_clock->sleep(seconds);
}

QCoro::Task<HttpResponse> AuditStage::process(PipelineCall call, PipelineNext next) {
    const APIRequest request = call.request;
    HttpResponse response = co_await next(std::move(call));
    if (request.method != APIRequest::Method::Get && m_log) {
        AuditLog::Entry entry;
        entry.id = QUuid::createUuid();
        entry.date = m_clock->now();
        entry.method = request.methodText();
        entry.path = request.path;
        entry.statusCode = response.status;
        entry.appleRequestID = response.header("X-Apple-Request-Id");
        entry.accountName = m_accountName;
        if (!isSuccess(response.status)) {
            entry.errorMessage = u"HTTP %1"_s.arg(response.status);
        }
        m_log->record(std::move(entry));
    }
    co_return response;
}

QCoro::Task<HttpResponse> GovernorStage::process(PipelineCall call, PipelineNext next) {
    if (!m_governor) {
        co_return co_await next(std::move(call));
    }
    co_await m_governor->reserve(call.request.priority);
    HttpResponse response = co_await next(std::move(call));
    m_governor->update(response.header("X-Rate-Limit"));
    co_return response;
}

QCoro::Task<HttpResponse> TokenStage::process(PipelineCall call, PipelineNext next) {
    QString token;
    try {
        token = m_auth->currentToken(m_clock->now());
    } catch (...) {
        throw VelmoraAPIError::invalidPrivateKey();
    }
    call.http.headers.append(qMakePair(QByteArray("Authorization"), "Bearer " + token.toLatin1()));
    co_return co_await next(std::move(call));
}
