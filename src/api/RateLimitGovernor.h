#pragma once

#include "wire/APIRequest.h"

#include <QCoro/QCoroTask>
#include <QDateTime>
#include <QObject>

#include <memory>
#include <optional>

class Clock;

// Reads Apple's hourly budget from X-Rate-Limit and holds background requests back so that
// something stays for what the user is doing. One governor serves every account.
class RateLimitGovernor : public QObject {
    Q_OBJECT
public:
    static constexpr double backgroundFloor = 0.15;
    static constexpr double throttleThreshold = 0.35;

    explicit RateLimitGovernor(std::shared_ptr<Clock> clock, QObject* parent = nullptr);

    // Returns at once for interactive requests; may wait 2 s, or raise
    // VelmoraAPIError::rateLimitBudgetExhausted, for background ones.
    QCoro::Task<> reserve(RequestPriority priority);
    // Takes the header's text; a missing header changes nothing, a malformed one only the time.
    void update(const std::optional<QString>& header);

    std::optional<int> limit() const { return m_limit; }
    std::optional<int> remaining() const { return m_remaining; }
    std::optional<QDateTime> updatedAt() const { return m_updatedAt; }

Q_SIGNALS:
    void changed();

private:
    std::shared_ptr<Clock> m_clock;
    std::optional<int> m_limit;
    std::optional<int> m_remaining;
    std::optional<QDateTime> m_updatedAt;
};
