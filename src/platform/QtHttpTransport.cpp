#include "platform/QtHttpTransport.h"

#include "platform/BackgroundFileWriter.h"
#include "platform/Clock.h"

#include <QCoreApplication>
#include <QCoro/QCoroNetworkReply>
#include <QDir>
#include <QFileInfo>
#include <QNetworkAccessManager>
#include <QNetworkInformation>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QPointer>

#include <algorithm>
#include <limits>
#include <utility>

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
// `total` seconds in all (a download has no such limit). Its timer lives no longer
// than the reply (the reply is the timer's context), so a plain pointer to the clock is enough and
// no cycle runs through the clock's own list of timers.
struct InactivityWatch {
    Clock* clock;
    QNetworkReply* reply;
    double timeout;
    QDateTime lastActivity;
    QDateTime started;
    double total;
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

// The longest an answer kept in memory may take in all.
constexpr double answerWindowSeconds = 300;

// Apple's error documents are a few hundred bytes; an error answer longer than this is cut here
// rather than held in memory whole.
constexpr qsizetype maxErrorBodyBytes = 64 * 1024;

// How much of a download Qt passes on to the reply before it has been written out; beyond it
// Qt's network thread stops reading, so a slow disk or a busy event loop holds the sender back
// instead of piling the body up in memory. Without a limit every piece read is queued for the
// event loop at once.
constexpr qint64 downloadBufferBytes = 1024 * 1024;

// True when the reply announced a length, was not inflated on the way, and fell short of it.
bool isShortOfAnnounced(const QNetworkReply& reply, qint64 received) {
    const QVariant announced = reply.header(QNetworkRequest::ContentLengthHeader);
    const QByteArray encoding = reply.rawHeader("Content-Encoding").trimmed().toLower();
    const bool inflated = !encoding.isEmpty() && encoding != "identity";
    return announced.isValid() && !inflated && received < announced.toLongLong();
}

// Takes a download's body off the reply as it arrives: a success's to a file written on a thread
// of its own, which appears under its name only on commit(), anything else's start into memory
// for the error mapping. A fresh one per attempt, so that a retry never appends to an earlier try.
//
// While the writer is behind by more than it may hold, the sink leaves the body with Qt, whose
// network thread then stops reading: a slow disk holds the sender back instead of piling the
// body up in memory. The writer says when it has caught up, and the sink goes on.
class DownloadSink {
public:
    DownloadSink(const DownloadTarget& target, QNetworkReply* reply, std::function<void()> resumed)
        : m_target(target), m_reply(reply), m_resumed(std::move(resumed)) {}

    // Called on readyRead, when the writer has caught up, and at the end with `all`, when Qt
    // holds the last of the body and nothing may stay behind.
    void take(bool all = false) {
        if (m_mode == Mode::Undecided) {
            const int status = m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
            if (status < 200 || status > 299) {
                m_mode = Mode::Memory;
            } else if (open()) {
                m_mode = Mode::File;
            } else {
                return;
            }
        }
        switch (m_mode) {
        case Mode::File: {
            if (const auto failure = m_writer->failure()) {
                fail(*failure);
                return;
            }
            const qint64 before = m_written;
            while (m_reply->bytesAvailable() > 0 && (all || !m_writer->isFull())) {
                // Qt hands over the pieces it holds without copying them, and so does the writer.
                QByteArray chunk = m_reply->readAll();
                m_written += chunk.size();
                m_writer->append(std::move(chunk));
            }
            if (m_target.progress && m_written > before) {
                const QVariant total = m_reply->header(QNetworkRequest::ContentLengthHeader);
                m_target.progress(m_written, total.isValid() ? total.toLongLong() : -1);
            }
            break;
        }
        case Mode::Memory:
            m_errorBody += m_reply->read(maxErrorBodyBytes - m_errorBody.size());
            m_reply->readAll();
            break;
        case Mode::Undecided:
        case Mode::Failed:
            break;
        }
    }

    // The reply ended as a complete 2xx and take(true) has had the rest: once the writer has
    // caught up, the file takes its name, an empty one included.
    QCoro::Task<qint64> commit() {
        if (m_failure) {
            throw DownloadFileError(m_target.path, *m_failure);
        }
        const std::optional<QString> failure = co_await m_writer->commit();
        if (failure) {
            throw DownloadFileError(m_target.path, *failure);
        }
        co_return m_written;
    }

    const std::optional<QString>& failure() const { return m_failure; }
    qint64 written() const { return m_written; }
    QByteArray takeErrorBody() { return std::exchange(m_errorBody, {}); }

private:
    enum class Mode { Undecided, File, Memory, Failed };

    bool open() {
        const QString dir = QFileInfo(m_target.path).absolutePath();
        if (!QDir().mkpath(dir)) {
            fail(u"Ordner %1 konnte nicht angelegt werden."_s.arg(dir));
            return false;
        }
        // The reply outlives the writer (the sink goes first), so the call on catching up
        // cannot reach a reply that is gone.
        m_writer = std::make_unique<BackgroundFileWriter>(m_target.path, m_reply, m_resumed);
        return true;
    }

    // Gives the transfer up. The abort waits for the next turn of the event loop: aborting
    // inside the reply's own readyRead would finish the reply, and so the coroutine that owns
    // it, under the signal's feet.
    void fail(QString reason) {
        m_failure = std::move(reason);
        m_mode = Mode::Failed;
        m_writer.reset(); // drops what was written so far
        QMetaObject::invokeMethod(m_reply, &QNetworkReply::abort, Qt::QueuedConnection);
    }

    const DownloadTarget& m_target;
    QNetworkReply* m_reply;
    std::function<void()> m_resumed;
    Mode m_mode = Mode::Undecided;
    std::unique_ptr<BackgroundFileWriter> m_writer;
    qint64 m_written = 0;
    QByteArray m_errorBody;
    std::optional<QString> m_failure;
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
    req.setRawHeader("Accept", request.accept);
    if (request.saveTo) {
        // A download asks for the body as stored. Qt then inflates nothing: its limit on what
        // it will inflate (setDecompressedSafetyCheckThreshold) cannot cut or refuse a large
        // file, the file holds the bytes that were sent (reports come gzip-compressed as
        // files anyway, so compressing them again on the way would only cost time), and the
        // announced length is the file's length. A server that compresses all the same gets
        // its bytes written as they came; readers of gzip files know them by their magic bytes.
        req.setRawHeader("Accept-Encoding", "identity");
    }
    for (const auto& [name, value] : request.headers) {
        req.setRawHeader(name, value);
    }
    std::unique_ptr<QNetworkReply> reply(
        request.body.isEmpty() && request.method == "GET"
            ? sharedManager()->get(req)
            : sharedManager()->sendCustomRequest(req, request.method, request.body));
    if (request.saveTo) {
        // At once: Qt's network thread starts on the request already and learns of the limit
        // only when this reaches it; whatever it passes on before that does not count.
        reply->setReadBufferSize(downloadBufferBytes);
    }

    const double total = request.saveTo ? std::numeric_limits<double>::infinity() : answerWindowSeconds;
    auto watch = std::make_shared<InactivityWatch>(InactivityWatch{
        m_clock.get(), reply.get(), request.timeoutSeconds, m_clock->now(), m_clock->now(), total});
    auto touch = [watch]() {
        watch->lastActivity = watch->clock->now();
    };
    // readyRead comes with every piece of a body; Qt sends downloadProgress at most every
    // 100 ms, and uploadProgress is all there is while a body goes out.
    QObject::connect(reply.get(), &QNetworkReply::readyRead, reply.get(), touch);
    QObject::connect(reply.get(), &QNetworkReply::downloadProgress, reply.get(), touch);
    QObject::connect(reply.get(), &QNetworkReply::uploadProgress, reply.get(), touch);
    watch->arm(request.timeoutSeconds, watch);

    std::unique_ptr<DownloadSink> sink;
    if (request.saveTo) {
        sink = std::make_unique<DownloadSink>(*request.saveTo, reply.get(), [&sink, touch]() {
            touch();
            sink->take();
        });
        QObject::connect(reply.get(), &QNetworkReply::readyRead, reply.get(), [&sink]() { sink->take(); });
    }

    co_await qCoro(reply.get()).waitForFinished(std::chrono::milliseconds(-1));

    if (watch->fired) {
        throw TransportError(germanDescription(QNetworkReply::TimeoutError));
    }
    if (sink && sink->failure()) {
        throw DownloadFileError(request.saveTo->path, *sink->failure());
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
    const bool success = status >= 200 && status <= 299;
    // A success whose body was cut off, or that Qt refused to inflate, is no success: the
    // decoder would take a short body for the whole answer, and a download's file would be
    // short. Its file goes with the sink. Error answers go up as they are.
    if (success && reply->error() != QNetworkReply::NoError) {
        throw TransportError(reply->error() == QNetworkReply::UnknownContentError
                                 ? u"Die Antwort des Servers kam beschädigt an."_s
                                 : germanDescription(reply->error()));
    }
    HttpResponse response;
    response.status = status;
    response.headers = reply->rawHeaderPairs();
    if (!sink) {
        response.body = reply->readAll();
    } else {
        sink->take(true);
    }
    // Qt does not always notice a connection closed before the announced length (seen on a busy
    // machine): count the bytes. Only a body that was not inflated can be counted.
    const qint64 received = sink ? sink->written() : response.body.size();
    if (success && isShortOfAnnounced(*reply, received)) {
        throw TransportError(germanDescription(QNetworkReply::RemoteHostClosedError));
    }
    if (!sink) {
        co_return response;
    }
    if (success) {
        response.savedBytes = co_await sink->commit();
    } else {
        response.body = sink->takeErrorBody();
    }
    co_return response;
}
