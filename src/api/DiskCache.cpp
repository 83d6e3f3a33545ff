#include "api/DiskCache.h"

#include "platform/AtomicFile.h"
#include "platform/Clock.h"
#include "platform/GermanRelativeTime.h"

#include <QDir>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLoggingCategory>

using namespace Qt::StringLiterals;

Q_LOGGING_CATEGORY(lcDiskCache, "com.tolsenmark.Velmora.DiskCache", QtInfoMsg)

DiskCache::DiskCache(QString directory, std::shared_ptr<Clock> clock)
    : m_directory(std::move(directory)), m_clock(std::move(clock)) {}

QString DiskCache::fileForKey(const QString& key) const {
    QString name = key;
    name.replace(u'/', u'_').replace(u':', u'_');
    return QDir(m_directory).filePath(name + u".json"_s);
}

void DiskCache::storeJson(const QString& key, const QJsonValue& value) {
    const QJsonObject envelope{{u"value"_s, value},
                               {u"storedAt"_s, ASCDateFormatting::encodePlain(m_clock->now())}};
    if (auto error =
            AtomicFile::write(fileForKey(key), QJsonDocument(envelope).toJson(QJsonDocument::Compact))) {
        qCDebug(lcDiskCache, "Konnte %s nicht ablegen: %s", qPrintable(key), qPrintable(*error));
    }
}

std::optional<DiskCache::Cached> DiskCache::loadJson(const QString& key) const {
    const auto bytes = AtomicFile::read(fileForKey(key));
    if (!bytes) {
        return std::nullopt;
    }
    const auto doc = QJsonDocument::fromJson(*bytes);
    if (!doc.isObject()) {
        return std::nullopt;
    }
    const QJsonObject envelope = doc.object();
    const QJsonValue storedAt = envelope.value(u"storedAt"_s);
    if (!envelope.contains(u"value"_s) || !storedAt.isString()) {
        return std::nullopt;
    }
    const auto date = ASCDateFormatting::parse(storedAt.toString());
    if (!date) {
        return std::nullopt;
    }
    return Cached{envelope.value(u"value"_s), *date};
}

QString DiskCache::ageDescription(const QDateTime& storedAt) const {
    return GermanRelativeTime::describe(storedAt, m_clock->now());
}
