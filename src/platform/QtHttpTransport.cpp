#include "platform/QtHttpTransport.h"

#include "platform/Clock.h"

#include <QCoreApplication>
#include <QCoro/QCoroNetworkReply>
#include <QNetworkAccessManager>
#include <QNetworkInformation>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QPointer>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

QString germanDescription(QNetworkReply::NetworkError error) {
    switch (error) {
    case QNetworkReply::ConnectionRefusedError:
        return u"Der Server hat die Verbindung abgelehnt."_s;
    case QNetworkReply::RemoteHostClosedError:
        return u"Der Server hat die Verbindung unerwartet geschlossen."_s;
    case QNetworkReply::HostNotFoundError:
        return u"Der Server wurde nicht gefunden."_s;
    case QNetworkReply::TimeoutError:
        return u"Zeitüberschreitung: Der Server hat nicht rechtzeitig geantwortet."_s;
    case QNetworkReply::OperationCanceledError:
        return u"Die Anfrage wurde abgebrochen."_s;
    case QNetworkReply::SslHandshakeFailedError:
        return u"Die sichere Verbindung konnte nicht aufgebaut werden."_s;
    case QNetworkReply::TemporaryNetworkFailureError:
    case QNetworkReply::NetworkSessionFailedError:
        return u"Keine Netzwerkverbindung."_s;
    case QNetworkReply::ProxyConnectionRefusedError:
    case QNetworkReply::ProxyConnectionClosedError:
    case QNetworkReply::ProxyNotFoundError:
    case QNetworkReply::ProxyTimeoutError:
    case QNetworkReply::ProxyAuthenticationRequiredError:
        return u"Der Proxy-Server ist nicht erreichbar."_s;
    case QNetworkReply::ProtocolUnknownError:
    case QNetworkReply::ProtocolInvalidOperationError:
    case QNetworkReply::ProtocolFailure:
        return TransportError::protocolViolation();
    default:
        return u"Die Verbindung ist fehlgeschlagen (Code %1)."_s.arg(int(error));
    }
}

bool machineIsOffline() {
    static const bool loaded =
        QNetworkInformation::loadBackendByFeatures(QNetworkInformation::Feature::Reachability);
    if (!loaded || !QNetworkInformation::instance()) {
        return false;
    }
    const auto reach = QNetworkInformation::instance()->reachability();
    return reach == QNetworkInformation::Reachability::Disconnected ||
           reach == QNetworkInformation::Reachability::Local;
}

// Errors that say "no network right now" rather than "this server is wrong": worth waiting for.
bool waitsForConnectivity(QNetworkReply::NetworkError error) {
    switch (error) {
    case QNetworkReply::TemporaryNetworkFailureError:
    case QNetworkReply::NetworkSessionFailedError:
    case QNetworkReply::UnknownNetworkError:
        return true;
    case QNetworkReply::HostNotFoundError:
        return machineIsOffline();
    default:
        return false;
    }
}

// Aborts a reply after `timeout` seconds without any transfer progress, or once it has taken
// `total` seconds in all. Its timer lives no longer
// than the reply (the reply is the timer's context), so a plain pointer to the clock is enough and
// no cycle runs through the clock's own list of timers.
struct InactivityWatch {
    Clock* clock;
    QNetworkReply* reply;
    double timeout;
    QDateTime lastActivity;
    QDateTime started;
    double total = 300;
    bool fired = false;

    void arm(double seconds, const std::shared_ptr<InactivityWatch>& self) {
        clock->schedule(seconds, reply, [self]() {
            const QDateTime now = self->clock->now();
            const double idle = double(self->lastActivity.msecsTo(now)) / 1000.0;
            const double elapsed = double(self->started.msecsTo(now)) / 1000.0;
            if (idle >= self->timeout || elapsed >= self->total) {
                self->fired = true;
                self->reply->abort();
            } else {
                self->arm(std::min(self->timeout - idle, self->total - elapsed), self);
            }
        });
    }
};

} // namespace

QtHttpTransport::QtHttpTransport(std::shared_ptr<Clock> clock) : m_clock(std::move(clock)) {}

QNetworkAccessManager* QtHttpTransport::sharedManager() {
    static QPointer<QNetworkAccessManager> manager;
    if (!manager) {
        // Parented to the application so that it goes before the application object does.
        manager = new QNetworkAccessManager(QCoreApplication::instance());
        // Redirects are not followed: Qt would carry the Authorization header to wherever the
        // redirect points. A 3xx comes back to the caller as what it is.
        manager->setRedirectPolicy(QNetworkRequest::ManualRedirectPolicy);
    }
    return manager;
}

QCoro::Task<HttpResponse> QtHttpTransport::send(HttpRequest request) {
    QNetworkRequest req(request.url);
    req.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    req.setAttribute(QNetworkRequest::CacheSaveControlAttribute, false);
    req.setRawHeader("Accept", "application/json");
    for (const auto& [name, value] : request.headers) {
        req.setRawHeader(name, value);
    }
    std::unique_ptr<QNetworkReply> reply(
        request.body.isEmpty() && request.method == "GET"
            ? sharedManager()->get(req)
            : sharedManager()->sendCustomRequest(req, request.method, request.body));

    auto watch = std::make_shared<InactivityWatch>(
        InactivityWatch{m_clock.get(), reply.get(), request.timeoutSeconds, m_clock->now(), m_clock->now()});
    auto touch = [watch]() {
        watch->lastActivity = watch->clock->now();
    };
    QObject::connect(reply.get(), &QNetworkReply::downloadProgress, reply.get(), touch);
    QObject::connect(reply.get(), &QNetworkReply::uploadProgress, reply.get(), touch);
    watch->arm(request.timeoutSeconds, watch);

    co_await qCoro(reply.get()).waitForFinished(std::chrono::milliseconds(-1));

    if (watch->fired) {
        throw TransportError(germanDescription(QNetworkReply::TimeoutError));
    }
    const QVariant statusAttr = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
    if (!statusAttr.isValid()) {
        const auto error = reply->error();
        if (error == QNetworkReply::NoError) {
            HttpResponse notHttp;
            notHttp.isHttp = false;
            notHttp.body = reply->readAll();
            co_return notHttp;
        }
        throw TransportError(germanDescription(error), waitsForConnectivity(error));
    }
    const int status = statusAttr.toInt();
    // A success whose body was cut off, or that Qt refused to inflate, is no success: the
    // decoder would take a short body for the whole answer. Error answers go up as they are.
    if (status >= 200 && status <= 299 && reply->error() != QNetworkReply::NoError) {
        throw TransportError(reply->error() == QNetworkReply::UnknownContentError
                                 ? u"Die Antwort des Servers kam beschädigt an."_s
                                 : germanDescription(reply->error()));
    }
    HttpResponse response;
    response.status = status;
    response.headers = reply->rawHeaderPairs();
    response.body = reply->readAll();
    co_return response;
}
