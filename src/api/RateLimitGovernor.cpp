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
        // Blanks only (spaces of any width and tabs): a line end inside the header is not part
        // of the format, and a number that still has one at its edge is not read.
        const auto isBlank = [](QChar c) {
            return c == u'\t' || c.category() == QChar::Separator_Space;
        };
        const auto trimBlanks = [&isBlank](const QString& s) {
            qsizetype start = 0;
            qsizetype end = s.size();
            while (start < end && isBlank(s[start])) {
                ++start;
            }
            while (end > start && isBlank(s[end - 1])) {
                --end;
            }
            return s.mid(start, end - start);
        };
        const QString number = trimBlanks(parts[1]);
        bool ok = false;
        // toInt() itself skips surrounding white space, line ends included; refuse that here.
        const int value = number.toInt(&ok);
        if (!ok || number.front().isSpace() || number.back().isSpace()) {
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
        qCDebug(lcRateLimit, "Hintergrundanfrage abgewiesen, Budget bei %ld %%", long(ratio * 100));
        throw VelmoraAPIError::rateLimitBudgetExhausted(*m_remaining, *m_limit);
    }
    if (ratio < throttleThreshold) {
        co_await m_clock->sleep(2);
    }
}
