#include "platform/SingleInstance.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLocalServer>
#include <QLocalSocket>
#include <QtEndian>

using namespace Qt::StringLiterals;

namespace {

// Links are short; anything larger is not from us and the connection is dropped.
constexpr quint32 maxPayload = 1024 * 1024;
constexpr char acknowledgement = 'k';

QString userName() {
    QString name = qEnvironmentVariable("USER");
    if (name.isEmpty()) {
        name = qEnvironmentVariable("USERNAME");
    }
    if (name.isEmpty()) {
        name = QDir::home().dirName();
    }
    // The name becomes part of a file or pipe name.
    for (QChar& c : name) {
        if (!(c.isLetterOrNumber() || c == u'-' || c == u'_' || c == u'.')) {
            c = u'_';
        }
    }
    return name;
}

void drop(QLocalSocket* socket) {
    socket->abort();
    socket->deleteLater();
}

QByteArray frame(const QStringList& messages) {
    const QByteArray body =
        QJsonDocument(QJsonArray::fromStringList(messages)).toJson(QJsonDocument::Compact);
    QByteArray result(4, '\0');
    qToBigEndian(quint32(body.size()), result.data());
    return result + body;
}

} // namespace

QString SingleInstance::defaultServerName() {
    const QString name = u"velmora-"_s + userName();
#ifdef Q_OS_UNIX
    // The runtime folder belongs to the user alone; the shared temporary folder, Qt's default
    // for plain names, would let another user take the name first.
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (!runtime.isEmpty() && QFileInfo(runtime).isDir()) {
        return QDir(runtime).filePath(name);
    }
#endif
    return name;
}

SingleInstance::SingleInstance(QString serverName, QObject* parent)
    : QObject(parent), m_serverName(std::move(serverName)) {}

SingleInstance::~SingleInstance() = default;

bool SingleInstance::forwardToRunning(const QStringList& messages) const {
    QLocalSocket socket;
    socket.connectToServer(m_serverName);
    if (!socket.waitForConnected(timeoutMs)) {
        return false;
    }
    socket.write(frame(messages));
    const QDeadlineTimer deadline(timeoutMs);
    while (socket.bytesToWrite() > 0) {
        if (!socket.waitForBytesWritten(int(deadline.remainingTime()))) {
            return false;
        }
    }
    while (socket.bytesAvailable() < 1) {
        if (!socket.waitForReadyRead(int(deadline.remainingTime()))) {
            return false;
        }
    }
    char answer = 0;
    const bool confirmed = socket.getChar(&answer) && answer == acknowledgement;
    socket.disconnectFromServer();
    return confirmed;
}

bool SingleInstance::isListening() const {
    return m_server && m_server->isListening();
}

bool SingleInstance::someoneAnswers() const {
    QLocalSocket probe;
    probe.connectToServer(m_serverName);
    const bool answers = probe.waitForConnected(timeoutMs);
    probe.abort();
    return answers;
}

bool SingleInstance::listen() {
    if (isListening()) {
        return true;
    }
    if (!m_server) {
        m_server = new QLocalServer(this);
        connect(m_server, &QLocalServer::newConnection, this, &SingleInstance::accept);
    }
    // Plain listening fails while the name exists, so two starts cannot both take it. Access
    // options would bind elsewhere and rename over the name, displacing a running instance.
    if (m_server->listen(m_serverName)) {
        return true;
    }
    if (m_server->serverError() != QAbstractSocket::AddressInUseError || someoneAnswers()) {
        return false;
    }
    // Nobody behind the name: an instance crashed and left its socket.
    QLocalServer::removeServer(m_serverName);
    return m_server->listen(m_serverName);
}

void SingleInstance::accept() {
    while (QLocalSocket* socket = m_server->nextPendingConnection()) {
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] { readFrom(socket); });
        // Data may have arrived together with the connection.
        readFrom(socket);
    }
}

void SingleInstance::readFrom(QLocalSocket* socket) {
    if (socket->bytesAvailable() < 4) {
        return;
    }
    const QByteArray header = socket->peek(4);
    const quint32 length = qFromBigEndian<quint32>(header.constData());
    if (length > maxPayload) {
        drop(socket);
        return;
    }
    if (socket->bytesAvailable() < qint64(4 + length)) {
        return;
    }
    socket->skip(4);
    const QJsonDocument document = QJsonDocument::fromJson(socket->read(length));
    if (!document.isArray()) {
        drop(socket);
        return;
    }
    QStringList messages;
    for (const auto& value : document.array()) {
        messages.append(value.toString());
    }
    // Out at once: the sender is waiting for it, possibly blocking on its socket.
    socket->putChar(acknowledgement);
    socket->flush();
    socket->disconnectFromServer();
    Q_EMIT messagesReceived(messages);
}
