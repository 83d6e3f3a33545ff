#pragma once

#include "platform/VarnisError.h"

#include <QByteArray>
#include <QCoro/QCoroTask>
#include <QList>
#include <QPair>
#include <QString>
#include <QUrl>

#include <exception>
#include <functional>
#include <optional>

// Where the body of a download goes: it is written into `path` as it arrives, and the file
// appears there only once the whole of a 2xx body is in; until then an older file at `path`
// stays as it was. `progress` hears (bytes written, bytes announced or -1) along the way.
struct DownloadTarget {
    QString path;
    std::function<void(qint64 received, qint64 total)> progress;
};

struct HttpRequest {
    QByteArray method = QByteArrayLiteral("GET");
    QUrl url;
    QList<QPair<QByteArray, QByteArray>> headers;
    QByteArray body;
    QByteArray accept = QByteArrayLiteral("application/json");
    // Seconds without a byte moving after which the request is given up. An answer kept in
    // memory also has at most five minutes in all; a download may take as long as it keeps
    // moving.
    double timeoutSeconds = 60;
    // Absent: the body comes back in HttpResponse::body.
    std::optional<DownloadTarget> saveTo;
};

struct HttpResponse {
    // False when the answer was not an HTTP response at all.
    bool isHttp = true;
    int status = 0;
    QList<QPair<QByteArray, QByteArray>> headers;
    // Of a download only the start of an answer that is no success (its error document): a
    // success's body is in the file.
    QByteArray body;
    // For a download that succeeded: the bytes in the file.
    std::optional<qint64> savedBytes;

    // Case-insensitive lookup of a header; absent when it was not sent.
    std::optional<QString> header(const QByteArray& name) const;
};

// A request that never produced a response: no connection, a timeout, a cancelled transfer.
// `offline` says "no network right now" rather than "this server is wrong": worth waiting for.
class TransportError : public std::exception {
public:
    explicit TransportError(QString description, bool offline = false)
        : m_description(std::move(description)), m_offline(offline) {}
    const QString& description() const { return m_description; }
    bool isOffline() const { return m_offline; }
    const char* what() const noexcept override { return "transport error"; }

    // The words for an answer that breaks the rules of HTTP or of the API's links.
    static QString protocolViolation();

private:
    QString m_description;
    bool m_offline;
};

// A download whose file could not be written: the disk, not the network, is at fault, so
// nothing tries it again.
class DownloadFileError : public VarnisError {
public:
    DownloadFileError(QString path, QString reason) : m_path(std::move(path)), m_reason(std::move(reason)) {}
    QString errorDescription() const override;

private:
    QString m_path;
    QString m_reason;
};

// Writes a body that a transport handed back in memory into the download's file, so that a
// download ends the same way over every transport. Raises DownloadFileError.
void saveBody(const DownloadTarget& target, HttpResponse& response);

// The seam to HTTP. The application uses QtHttpTransport; tests plug in scripted transports.
class HttpTransport {
public:
    virtual ~HttpTransport() = default;
    // With `saveTo`, a transport may stream a success's body into the file itself (and set
    // `savedBytes`) or hand it back in `body` for the caller to save.
    virtual QCoro::Task<HttpResponse> send(HttpRequest request) = 0;
};
