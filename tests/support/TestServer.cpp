#include "support/TestServer.h"

#include <QTcpSocket>
#include <QUrlQuery>
#include <QtDebug>

#include <zlib.h>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype maxHeaderBytes = 1 << 20;

QByteArray reasonPhrase(int status) {
    switch (status) {
    case 200:
        return "OK";
    case 201:
        return "Created";
    case 202:
        return "Accepted";
    case 204:
        return "No Content";
    case 301:
        return "Moved Permanently";
    case 302:
        return "Found";
    case 304:
        return "Not Modified";
    case 400:
        return "Bad Request";
    case 401:
        return "Unauthorized";
    case 403:
        return "Forbidden";
    case 404:
        return "Not Found";
    case 409:
        return "Conflict";
    case 422:
        return "Unprocessable Entity";
    case 429:
        return "Too Many Requests";
    case 500:
        return "Internal Server Error";
    case 501:
        return "Not Implemented";
    case 502:
        return "Bad Gateway";
    case 503:
        return "Service Unavailable";
    case 504:
        return "Gateway Timeout";
    default:
        return "Status";
    }
}

QByteArray gzip(const QByteArray& data) {
    z_stream stream{};
    // 15 + 16: the gzip wrapper rather than zlib's own.
    if (deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, 15 + 16, 8, Z_DEFAULT_STRATEGY) != Z_OK) {
        qFatal("zlib deflateInit2 failed");
    }
    QByteArray out(qsizetype(deflateBound(&stream, uLong(data.size()))) + 32, Qt::Uninitialized);
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data.constData()));
    stream.avail_in = uInt(data.size());
    stream.next_out = reinterpret_cast<Bytef*>(out.data());
    stream.avail_out = uInt(out.size());
    const int result = deflate(&stream, Z_FINISH);
    deflateEnd(&stream);
    if (result != Z_STREAM_END) {
        qFatal("zlib deflate failed");
    }
    out.truncate(qsizetype(stream.total_out));
    return out;
}

bool hasToken(const QByteArray& value, QByteArrayView token) {
    const QList<QByteArray> parts = value.split(',');
    return std::any_of(parts.cbegin(), parts.cend(), [&](const QByteArray& part) {
        return part.trimmed().compare(token, Qt::CaseInsensitive) == 0;
    });
}

} // namespace

std::optional<QByteArray> TestServer::Request::header(QByteArrayView name) const {
    for (const auto& [key, value] : headers) {
        if (key.compare(name, Qt::CaseInsensitive) == 0) {
            return value;
        }
    }
    return std::nullopt;
}

std::optional<QString> TestServer::Request::queryValue(const QString& name) const {
    for (const auto& [key, value] : query) {
        if (key == name) {
            return value;
        }
    }
    return std::nullopt;
}

TestServer::Reply TestServer::Reply::json(int status, QByteArray body,
                                          QList<QPair<QByteArray, QByteArray>> headers) {
    headers.prepend(qMakePair(QByteArray("Content-Type"), QByteArray("application/json")));
    return Reply{status, std::move(headers), std::move(body)};
}

TestServer::Reply TestServer::Reply::withUndeclaredValues(QStringList values) const {
    Reply result = *this;
    result.contract.undeclaredValues = std::move(values);
    return result;
}

TestServer::Reply TestServer::Reply::breakingContract(QString why) const {
    Q_ASSERT(!why.isEmpty());
    Reply result = *this;
    result.contract.breach = std::move(why);
    return result;
}

namespace {

// The path as it came on the wire, percent-encoded, without the query.
QString wirePath(const TestServer::Request& request) {
    const qsizetype query = request.target.indexOf('?');
    return QString::fromLatin1(query < 0 ? request.target : request.target.left(query));
}

} // namespace

TestServer::TestServer(QObject* parent) : QObject(parent) {
    connect(&m_server, &QTcpServer::newConnection, this, &TestServer::accept);
    if (!m_server.listen(QHostAddress::LocalHost, 0)) {
        qWarning("TestServer cannot listen: %s", qPrintable(m_server.errorString()));
    }
}

TestServer::~TestServer() {
    // The sockets go first, without their signals reaching a half-destroyed server.
    for (const auto& [socket, connection] : m_connections) {
        socket->disconnect(this);
        delete socket;
    }
    m_connections.clear();
}

QUrl TestServer::baseUrl() const {
    QUrl url;
    url.setScheme(u"http"_s);
    url.setHost(u"127.0.0.1"_s);
    url.setPort(port());
    return url;
}

QUrl TestServer::url(const QString& pathAndQuery) const {
    return QUrl(baseUrl().toString() + pathAndQuery);
}

void TestServer::script(const QByteArray& method, const QString& path, QList<Reply> replies,
                        RouteMatch match) {
    m_routes.addSequence(method, path, match, std::move(replies));
}

void TestServer::route(const QByteArray& method, const QString& path, Handler handler, RouteMatch match) {
    m_routes.add(method, path, match, std::move(handler));
}

int TestServer::heldCount() const {
    int count = 0;
    for (const auto& [socket, connection] : m_connections) {
        count += int(std::count_if(connection->pending.cbegin(), connection->pending.cend(),
                                   [](const Pending& p) { return p.held; }));
    }
    return count;
}

void TestServer::releaseHeld() {
    for (const auto& [socket, connection] : m_connections) {
        for (Pending& pending : connection->pending) {
            pending.held = false;
        }
    }
    // Across connections in order of arrival, so that scripted sequences are dealt out that way.
    for (;;) {
        Connection* next = nullptr;
        for (const auto& [socket, connection] : m_connections) {
            if (!connection->closing && !connection->pending.isEmpty() && connection->unsent.isEmpty() &&
                (!next || connection->pending.first().sequence < next->pending.first().sequence)) {
                next = connection.get();
            }
        }
        if (!next) {
            return;
        }
        answerFirst(*next);
    }
}

void TestServer::feed(qsizetype bytes) {
    for (const auto& [socket, connection] : m_connections) {
        if (connection->closing || connection->unsent.isEmpty()) {
            continue;
        }
        socket->write(connection->unsent.left(bytes));
        connection->unsent.remove(0, bytes);
        if (!connection->unsent.isEmpty()) {
            continue;
        }
        if (connection->closeWhenSent) {
            close(*connection);
        } else {
            pump(*connection);
        }
    }
}

void TestServer::accept() {
    while (QTcpSocket* socket = m_server.nextPendingConnection()) {
        ++m_connectionCount;
        m_connections.emplace(socket,
                              std::make_unique<Connection>(Connection{socket, m_connectionCount, {}, {}}));
        connect(socket, &QTcpSocket::readyRead, this, [this, socket]() { readFrom(socket); });
        connect(socket, &QTcpSocket::disconnected, this, [this, socket]() {
            const auto it = m_connections.find(socket);
            if (it != m_connections.end()) {
                it->second->closing = true;
                it->second->pending.clear();
            }
            socket->deleteLater();
        });
        // The record goes only with the socket, so that no caller up the stack is left holding it.
        connect(socket, &QObject::destroyed, this, [this, socket]() { m_connections.erase(socket); });
        // Data may have come with the connection.
        if (socket->bytesAvailable() > 0) {
            readFrom(socket);
        }
    }
}

void TestServer::readFrom(QTcpSocket* socket) {
    const auto it = m_connections.find(socket);
    if (it == m_connections.end()) {
        return;
    }
    Connection& connection = *it->second;
    const QByteArray data = socket->readAll();
    if (connection.closing || connection.inputDone) {
        return;
    }
    connection.buffer += data;
    while (!connection.inputDone) {
        Request request;
        bool closeAfter = false;
        const Parse result = parse(connection, request, closeAfter);
        if (result == Parse::Incomplete) {
            break;
        }
        if (result == Parse::Bad) {
            // Answered with 400 after whatever is still due on this connection, then closed.
            connection.inputDone = true;
            connection.buffer.clear();
            connection.pending.append(Pending{{}, m_nextSequence++, false, true, true});
            break;
        }
        request.connection = connection.number;
        m_requests.append(request);
        QStringList queryNames;
        for (const auto& item : request.query) {
            queryNames.append(item.first);
        }
        m_contract.request(request.method, wirePath(request), queryNames, request.body);
        connection.pending.append(Pending{request, m_nextSequence++, m_holding, closeAfter});
        connection.inputDone = closeAfter;
    }
    pump(connection);
}

TestServer::Parse TestServer::parse(Connection& connection, Request& request, bool& closeAfter) {
    QByteArray& buffer = connection.buffer;
    while (buffer.startsWith("\r\n")) { // empty lines before a request line are allowed
        buffer.remove(0, 2);
    }
    const qsizetype headerEnd = buffer.indexOf("\r\n\r\n");
    if (headerEnd < 0) {
        return buffer.size() > maxHeaderBytes ? Parse::Bad : Parse::Incomplete;
    }
    const QList<QByteArray> lines = buffer.left(headerEnd).split('\n');
    const QList<QByteArray> requestLine = lines.first().trimmed().split(' ');
    if (requestLine.size() != 3 || !requestLine[2].startsWith("HTTP/1.")) {
        return Parse::Bad;
    }
    request.method = requestLine[0];
    request.target = requestLine[1];
    request.headers.clear();
    for (qsizetype i = 1; i < lines.size(); ++i) {
        const qsizetype colon = lines[i].indexOf(':');
        if (colon <= 0) {
            return Parse::Bad;
        }
        request.headers.append({lines[i].left(colon).trimmed(), lines[i].mid(colon + 1).trimmed()});
    }
    if (request.header("Transfer-Encoding")) {
        return Parse::Bad; // chunked request bodies are not supported
    }
    qsizetype length = 0;
    if (const auto value = request.header("Content-Length")) {
        bool ok = false;
        length = value->toLongLong(&ok);
        if (!ok || length < 0) {
            return Parse::Bad;
        }
    }
    const qsizetype bodyStart = headerEnd + 4;
    if (buffer.size() < bodyStart + length) {
        const auto expect = request.header("Expect");
        if (expect && expect->compare("100-continue", Qt::CaseInsensitive) == 0 && !connection.continueSent) {
            connection.continueSent = true;
            connection.socket->write("HTTP/1.1 100 Continue\r\n\r\n");
        }
        return Parse::Incomplete;
    }
    request.body = buffer.mid(bodyStart, length);
    buffer.remove(0, bodyStart + length);
    connection.continueSent = false;

    const QByteArray connectionHeader = request.header("Connection").value_or(QByteArray());
    closeAfter = hasToken(connectionHeader, "close") ||
                 (requestLine[2] == "HTTP/1.0" && !hasToken(connectionHeader, "keep-alive"));

    const QString target = QString::fromLatin1(request.target);
    const QUrl url = target.startsWith(u'/') ? QUrl(u"http://127.0.0.1"_s + target) : QUrl(target);
    request.path = url.path(QUrl::FullyDecoded);
    request.query = QUrlQuery(url).queryItems(QUrl::FullyDecoded);
    return Parse::Complete;
}

void TestServer::pump(Connection& connection) {
    while (!connection.closing && connection.unsent.isEmpty() && !connection.pending.isEmpty() &&
           !connection.pending.first().held) {
        answerFirst(connection);
    }
}

void TestServer::answerFirst(Connection& connection) {
    const Pending pending = connection.pending.takeFirst();
    if (pending.unparseable) {
        writeReply(connection, pending.request,
                   Reply::json(400, appleErrorBody(400, u"PARAMETER_ERROR.INVALID"_s, u"Bad request"_s,
                                                   u"The test server could not parse the request."_s)),
                   true);
        return;
    }
    Reply reply;
    if (const auto handler = m_routes.find(pending.request.method, pending.request.path)) {
        reply = (*handler)(pending.request);
    } else {
        reply = Reply::json(404, appleNotFoundBody());
    }
    if (reply.cutAfter < 0) {
        m_contract.answer(pending.request.method, wirePath(pending.request), reply.status, reply.headers,
                          reply.body, reply.contract);
    }
    writeReply(connection, pending.request, reply, pending.closeAfter);
}

void TestServer::writeReply(Connection& connection, const Request& request, const Reply& reply, bool close) {
    const QByteArray body = reply.gzip ? gzip(reply.body) : reply.body;
    QByteArray out =
        "HTTP/1.1 " + QByteArray::number(reply.status) + ' ' + reasonPhrase(reply.status) + "\r\n";
    for (const auto& [name, value] : reply.headers) {
        if (name.compare("Content-Length", Qt::CaseInsensitive) != 0 &&
            name.compare("Connection", Qt::CaseInsensitive) != 0) {
            out += name + ": " + value + "\r\n";
        }
    }
    if (reply.gzip) {
        out += "Content-Encoding: gzip\r\n";
    }
    // No body, and no Content-Length, for 1xx, 204 and 304.
    const bool bodyless = reply.status < 200 || reply.status == 204 || reply.status == 304;
    if (!bodyless) {
        out += "Content-Length: " + QByteArray::number(body.size()) + "\r\n";
    }
    if (close) {
        out += "Connection: close\r\n";
    }
    out += "\r\n";
    if (!bodyless && request.method != "HEAD") {
        if (reply.pauseAfter >= 0 && reply.pauseAfter < body.size()) {
            out += body.left(reply.pauseAfter);
            connection.unsent = body.mid(reply.pauseAfter);
            connection.closeWhenSent = close;
            connection.socket->write(out);
            return;
        }
        out += reply.cutAfter >= 0 ? body.left(reply.cutAfter) : body;
    }
    connection.socket->write(out);
    if (close || reply.cutAfter >= 0) {
        TestServer::close(connection);
    }
}

void TestServer::close(Connection& connection) {
    connection.closing = true;
    connection.pending.clear();
    // Sends what is written first; the record goes when the socket is deleted.
    connection.socket->disconnectFromHost();
}
