#pragma once

#include <QObject>
#include <QStringList>

class QLocalServer;
class QLocalSocket;

// Keeps one running instance per user. A later start hands its messages (the links it was given,
// or none, which means "come to the front") to the running instance and ends; the running instance
// receives them through messagesReceived.
//
// The wire form of one message batch is a 4-byte big-endian length and a UTF-8 JSON array of
// texts; the receiver answers one byte once it has taken the batch, so that the sender knows it
// arrived and does not exit with a link that got lost.
class SingleInstance : public QObject {
    Q_OBJECT
public:
    // "velmora-" and the user's name, in the user's private runtime folder where there is one:
    // two users on one machine each get an instance of their own.
    static QString defaultServerName();

    // How long a sender waits on the socket for the running instance at each step.
    static constexpr int timeoutMs = 2000;

    explicit SingleInstance(QString serverName = defaultServerName(), QObject* parent = nullptr);
    ~SingleInstance() override;

    QString serverName() const { return m_serverName; }

    // Sends `messages` to the running instance. True only when it confirmed that it took them;
    // false when no instance runs or it did not answer in time. Blocks for at most a few seconds
    // and needs no event loop, so it can run before the application object exists.
    bool forwardToRunning(const QStringList& messages) const;

    // Becomes the running instance. A socket left behind by an instance that crashed is removed;
    // an instance that still answers is never displaced, and then this returns false.
    bool listen();
    bool isListening() const;

Q_SIGNALS:
    void messagesReceived(const QStringList& messages);

private:
    bool someoneAnswers() const;
    void accept();
    void readFrom(QLocalSocket* socket);

    QString m_serverName;
    QLocalServer* m_server = nullptr;
};
