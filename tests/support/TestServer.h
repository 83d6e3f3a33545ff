#pragma once

#include "support/ContractCheck.h"
#include "support/RouteTable.h"

#include <QList>
#include <QObject>
#include <QPair>
#include <QTcpServer>
#include <QUrl>

#include <map>
#include <memory>
#include <optional>

class QTcpSocket;

// A real HTTP/1.1 server on 127.0.0.1 with a free port, for tests of the real transport.
// Persistent connections and pipelining are supported, request bodies only with
// Content-Length. Every reply carries Content-Length. Unscripted requests get Apple's 404 error
// document. Everything runs on the event loop of the thread that made the server.
//
// Requests and replies are checked against Apple's OpenAPI document (ContractCheck), as the
// fake transport does. Tests of the transport that send made-up requests use
// setContractMode(ContractMode::Off); a reply that leaves the document on purpose says so
// itself (Reply::withUndeclaredValues, Reply::breakingContract).
class TestServer : public QObject {
    Q_OBJECT

public:
    struct Request {
        QByteArray method;
        QByteArray target;                            // as on the wire: "/v1/apps?limit=2"
        QString path;                                 // decoded, without the query
        QList<QPair<QString, QString>> query;         // decoded, in wire order
        QList<QPair<QByteArray, QByteArray>> headers; // as received
        QByteArray body;
        int connection = 0; // the number of the TCP connection it came on, from 1

        // Case-insensitive; absent when the header was not sent.
        std::optional<QByteArray> header(QByteArrayView name) const;
        std::optional<QString> queryValue(const QString& name) const;
    };

    struct Reply {
        int status = 200;
        QList<QPair<QByteArray, QByteArray>> headers = {}; // Content-Length is always the server's own
        QByteArray body = {};
        bool gzip = false;       // send the body gzip-compressed, with "Content-Encoding: gzip"
        qsizetype cutAfter = -1; // announce the whole body, send this many bytes of it, close
        ContractCheck::Leeway contract = {};
        qsizetype pauseAfter = -1; // send this many bytes of the body, the rest only on feed()

        // A reply with "Content-Type: application/json".
        static Reply json(int status, QByteArray body, QList<QPair<QByteArray, QByteArray>> headers = {});
        Reply withUndeclaredValues(QStringList values) const;
        Reply breakingContract(QString why) const;
    };
    using Handler = std::function<Reply(const Request&)>;

    using ContractMode = ContractCheck::Mode;

    explicit TestServer(QObject* parent = nullptr);
    ~TestServer() override;

    bool isListening() const { return m_server.isListening(); }
    quint16 port() const { return m_server.serverPort(); }
    // "http://127.0.0.1:<port>"
    QUrl baseUrl() const;
    // baseUrl() with `pathAndQuery` ("/v1/apps?limit=2") appended.
    QUrl url(const QString& pathAndQuery) const;

    // Answers `method` on `path` (query ignored) with `replies` in order; the last one repeats.
    // A later script for the same route replaces it. An empty method matches every method.
    void script(const QByteArray& method, const QString& path, QList<Reply> replies,
                RouteMatch match = RouteMatch::Exact);
    void route(const QByteArray& method, const QString& path, Handler handler,
               RouteMatch match = RouteMatch::Exact);

    // While holding, requests are recorded but not answered until releaseHeld(). The reply is
    // chosen on release, in the order the requests arrived.
    void holdReplies(bool hold) { m_holding = hold; }
    // Answers every held request. Turning holding off does not do this.
    void releaseHeld();
    int heldCount() const;

    // Sends up to `bytes` more of every reply paused by `pauseAfter`; a connection answers its
    // next request once the paused body is out.
    void feed(qsizetype bytes);

    // Every request received, in order of arrival (held ones included).
    const QList<Request>& requests() const { return m_requests; }
    void clearRequests() { m_requests.clear(); }
    // TCP connections accepted so far.
    int connectionCount() const { return m_connectionCount; }

    void setContractMode(ContractMode mode) { m_contract.setMode(mode); }
    const QStringList& violations() const { return m_contract.violations(); }

private:
    struct Pending {
        Request request;
        quint64 sequence;
        bool held;
        bool closeAfter;
        bool unparseable = false;
    };
    struct Connection {
        QTcpSocket* socket;
        int number;
        QByteArray buffer;
        QList<Pending> pending; // answered in this order: HTTP/1.1 keeps replies in request order
        bool closing = false;
        bool inputDone = false; // after "Connection: close" or garbage, later bytes are ignored
        bool continueSent = false;
        QByteArray unsent = {}; // the rest of a paused body
        bool closeWhenSent = false;
    };
    enum class Parse { Incomplete, Complete, Bad };

    void accept();
    void readFrom(QTcpSocket* socket);
    Parse parse(Connection& connection, Request& request, bool& closeAfter);
    void pump(Connection& connection);
    void answerFirst(Connection& connection);
    void writeReply(Connection& connection, const Request& request, const Reply& reply, bool close);
    void close(Connection& connection);

    QTcpServer m_server;
    RouteTable<Request, Reply> m_routes;
    std::map<QTcpSocket*, std::unique_ptr<Connection>> m_connections;
    QList<Request> m_requests;
    quint64 m_nextSequence = 0;
    int m_connectionCount = 0;
    bool m_holding = false;
    ContractCheck m_contract;
};
