#pragma once

#include "platform/Clock.h"

#include <QDateTime>
#include <QHash>
#include <QString>

#include <memory>
#include <optional>

// The short memory of a service: values by key with the time they were fetched, fresh while
// younger than the lifetime (an entry exactly as old as the lifetime is stale; so is one from
// the future, after the clock was set back). Invalidation by key or by key prefix.
template <class Value> class TimedCache {
public:
    TimedCache(std::shared_ptr<Clock> clock, int lifetimeSeconds)
        : m_clock(std::move(clock)), m_lifetimeMs(qint64(lifetimeSeconds) * 1000) {}

    std::optional<Value> fresh(const QString& key) const {
        const auto it = m_entries.constFind(key);
        if (it == m_entries.cend()) {
            return std::nullopt;
        }
        const qint64 age = it->fetchedAt.msecsTo(m_clock->now());
        if (age < 0 || age >= m_lifetimeMs) {
            return std::nullopt;
        }
        return it->value;
    }

    void insert(const QString& key, Value value) {
        m_entries.insert(key, Entry{std::move(value), m_clock->now()});
    }
    void remove(const QString& key) { m_entries.remove(key); }
    void removePrefix(const QString& prefix) {
        m_entries.removeIf([&](const auto& entry) { return entry.key().startsWith(prefix); });
    }
    void clear() { m_entries.clear(); }

private:
    struct Entry {
        Value value;
        QDateTime fetchedAt;
    };
    std::shared_ptr<Clock> m_clock;
    qint64 m_lifetimeMs;
    QHash<QString, Entry> m_entries;
};
