#pragma once

#include <QByteArray>
#include <QCoro/QCoroTask>
#include <QList>
#include <QPair>
#include <QString>
#include <QUrl>

#include <exception>
#include <optional>

struct HttpRequest {
    QByteArray method = QByteArrayLiteral("GET");
    QUrl url;
    QList<QPair<QByteArray, QByteArray>> headers;
    QByteArray body;
    double timeoutSeconds = 60;
};

struct HttpResponse {
    // False when the answer was not an HTTP response at all.
    bool isHttp = true;
    int status = 0;
    QList<QPair<QByteArray, QByteArray>> headers;
    QByteArray body;

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

// The seam to HTTP. The application uses QtHttpTransport; tests plug in scripted transports.
class HttpTransport {
public:
    virtual ~HttpTransport() = default;
    virtual QCoro::Task<HttpResponse> send(HttpRequest request) = 0;
};
