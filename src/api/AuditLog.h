#pragma once

#include <QDateTime>
#include <QList>
#include <QString>
#include <QUuid>

#include <memory>
#include <optional>

class Clock;

// The user's record of every write that left the application: method, path, status and Apple's
// request id, never the content. Reading and writing fail silently: the log must never stand in
// the way of the write it records.
class AuditLog {
public:
    static constexpr int maxEntries = 500;

    struct Entry {
        QUuid id;
        QDateTime date;
        QString method;
        QString path;
        std::optional<int> statusCode;
        std::optional<QString> appleRequestID;
        std::optional<QString> accountName;
        std::optional<QString> errorMessage;

        bool isSuccess() const { return statusCode && *statusCode >= 200 && *statusCode <= 299; }
        friend bool operator==(const Entry&, const Entry&) = default;
    };

    explicit AuditLog(QString filePath);

    // Newest first; the file is read at the first use, not at launch.
    QList<Entry> entries();
    void record(Entry entry);
    void clear();
    // One tab-separated line per entry, newest first, no header, no final line feed.
    QString exportText();

    const QString& filePath() const { return m_filePath; }

private:
    void ensureLoaded();
    void save();

    QString m_filePath;
    QList<Entry> m_entries;
    bool m_didLoad = false;
};
