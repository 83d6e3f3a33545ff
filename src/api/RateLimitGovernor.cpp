#include "api/RateLimitGovernor.h"

#include "platform/Clock.h"
#include "wire/VelmoraAPIError.h"

#include <QHash>
#include <QLoggingCategory>

#include <cmath>

using namespace Qt::StringLiterals;

Q_LOGGING_CATEGORY(lcRateLimit, "com.tolsenmark.Velmora.RateLimit", QtInfoMsg)

RateLimitGovernor::RateLimitGovernor(std::shared_ptr<Clock> clock, QObject* parent)
    : QObject(parent), m_clock(std::move(clock)) {}

void RateLimitGovernor::update(const std::optional<QString>& header) {
    if (!header) {
        return;
    }
    QHash<QString, int> pairs;
    const auto pieces = header->split(u';', Qt::SkipEmptyParts);
    for (const auto& piece : pieces) {
        const auto parts = piece.split(u':', Qt::SkipEmptyParts);
        if (parts.size() != 2) {
            continue;
        }
        // Blanks only: a line end inside the header is not part of the format.
        auto trimBlanks = [](QString s) {
            qsizetype start = 0;
            qsizetype end = s.size();
            while (start < end && (s[start] == u' ' || s[start] == u'\t')) {
                ++start;
            }
            while (end > start && (s[end - 1] == u' ' || s[end - 1] == u'\t')) {
                --end;
            }
            return s.mid(start, end - start);
        };
        bool ok = false;
        const int value = trimBlanks(parts[1]).toInt(&ok);
        if (!ok) {
            continue;
        }
        pairs.insert(trimBlanks(parts[0]), value);
    }
    if (auto it = pairs.constFind(u"user-hour-lim"_s); it != pairs.cend()) {
        m_limit = *it;
    }
    if (auto it = pairs.constFind(u"user-hour-rem"_s); it != pairs.cend()) {
        m_remaining = *it;
    }
    m_updatedAt = m_clock->now();
    Q_EMIT changed();
}

QCoro::Task<> RateLimitGovernor::reserve(RequestPriority priority) {
    if (priority == RequestPriority::Interactive) {
        co_return;
    }
    if (!m_limit || !m_remaining || *m_limit < 1) {
        co_return;
    }
    const double ratio = double(*m_remaining) / double(*m_limit);
    if (ratio < backgroundFloor) {
        qCDebug(lcRateLimit, "Hintergrundanfrage abgewiesen, Budget bei %ld %%", long(std::lround(ratio * 100)));
        throw VelmoraAPIError::rateLimitBudgetExhausted(*m_remaining, *m_limit);
    }
    if (ratio < throttleThreshold) {
        co_await m_clock->sleep(2);
    }
}
