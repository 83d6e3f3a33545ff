#pragma once

#include "wire/JsonReader.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonValue>
#include <QList>
#include <QString>

#include <memory>
#include <optional>

class Clock;

// The last good answer of a few central lists, one JSON file per key, so that something shows
// at once after a launch and while the network is away. Nothing expires; a value only tells
// its age.
class DiskCache {
public:
    struct Cached {
        QJsonValue value;
        QDateTime storedAt;
    };
    template <class T> struct CachedList {
        QList<T> value;
        QDateTime storedAt;
    };

    DiskCache(QString directory, std::shared_ptr<Clock> clock);

    // Never raises: a failed store must not disturb the work that produced the value.
    void storeJson(const QString& key, const QJsonValue& value);
    // Nothing for a missing, damaged or foreign file.
    std::optional<Cached> loadJson(const QString& key) const;

    // `T` has `QJsonObject toJson() const` and `static T fromJson(const JsonReader&)`.
    template <class T> void storeList(const QString& key, const QList<T>& list) {
        QJsonArray array;
        for (const auto& item : list) {
            array.append(item.toJson());
        }
        storeJson(key, array);
    }
    template <class T> std::optional<CachedList<T>> loadList(const QString& key) const {
        const auto cached = loadJson(key);
        if (!cached || !cached->value.isArray()) {
            return std::nullopt;
        }
        CachedList<T> result{{}, cached->storedAt};
        try {
            for (const auto& item : cached->value.toArray()) {
                result.value.append(T::fromJson(JsonReader::of(item)));
            }
        } catch (const DecodingError&) {
            return std::nullopt;
        }
        return result;
    }

    // "vor 2 Stunden", measured against the clock.
    QString ageDescription(const QDateTime& storedAt) const;

    QString fileForKey(const QString& key) const;
    const QString& directory() const { return m_directory; }

private:
    QString m_directory;
    std::shared_ptr<Clock> m_clock;
};
