#include "platform/Clock.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QPointer>
#include <QTimer>

#include <algorithm>
#include <cmath>
#include <coroutine>

namespace {

// With no clock, resumes on the next turn of the event loop.
struct SleepAwaiter {
    Clock* clock;
    double seconds;

    bool await_ready() const noexcept { return false; }
    void await_suspend(std::coroutine_handle<> handle) {
        if (!clock) {
            QTimer::singleShot(0, QCoreApplication::instance(), [handle]() { handle.resume(); });
            return;
        }
        // The application object is the context: a sleep outlives any single view.
        clock->schedule(seconds, QCoreApplication::instance(), [handle]() { handle.resume(); });
    }
    void await_resume() const noexcept {}
};

} // namespace

QCoro::Task<> Clock::sleep(double seconds) {
    co_await SleepAwaiter{this, seconds};
}

QDateTime SystemClock::now() const {
    return QDateTime::currentDateTimeUtc();
}

namespace {

// A wait in whole milliseconds for virtual time: never negative, never beyond a day.
qint64 timerMilliseconds(double seconds) {
    if (!std::isfinite(seconds) || seconds <= 0) {
        return 0;
    }
    return qint64(std::llround(std::min(seconds, 86400.0) * 1000.0));
}

// Runs `callback` once `deadline` has passed, never before. Even a precise timer may fire a
// little early (a coarse one by up to 5 %), so an early wake-up waits again for the rest.
void runWhenExpired(QDeadlineTimer deadline, QPointer<QObject> context, bool hasContext,
                    std::function<void()> callback) {
    QObject* receiver = hasContext ? context.data() : QCoreApplication::instance();
    if (!receiver) {
        return;
    }
    const qint64 remainingNs = deadline.remainingTimeNSecs();
    if (remainingNs <= 0) {
        callback();
        return;
    }
    // Whole milliseconds, rounded up.
    const auto ms = std::chrono::milliseconds((remainingNs + 999999) / 1000000);
    QTimer::singleShot(ms, Qt::PreciseTimer, receiver,
                       [deadline, context, hasContext, callback = std::move(callback)]() mutable {
                           if (hasContext && !context) {
                               return;
                           }
                           runWhenExpired(deadline, context, hasContext, std::move(callback));
                       });
}

} // namespace

void SystemClock::schedule(double seconds, QObject* context, std::function<void()> callback) {
    // Never negative, never beyond a day; a wait that is no number is no wait.
    const double bounded = std::isfinite(seconds) ? std::clamp(seconds, 0.0, 86400.0) : 0.0;
    const QDeadlineTimer deadline(std::chrono::nanoseconds(qint64(std::ceil(bounded * 1e9))),
                                  Qt::PreciseTimer);
    // The first turn always goes through the event loop, also for a wait of zero.
    QTimer::singleShot(0, Qt::PreciseTimer, context ? context : QCoreApplication::instance(),
                       [deadline, guard = QPointer<QObject>(context), hasContext = context != nullptr,
                        callback = std::move(callback)]() mutable {
                           if (hasContext && !guard) {
                               return;
                           }
                           runWhenExpired(deadline, guard, hasContext, std::move(callback));
                       });
}

ManualClock::ManualClock(QDateTime start) : m_now(std::move(start)) {}

QCoro::Task<> ManualClock::sleep(double seconds) {
    m_sleeps.append(seconds);
    if (!m_autoAdvance) {
        co_await Clock::sleep(seconds);
        co_return;
    }
    m_now = m_now.addMSecs(timerMilliseconds(seconds));
    // Resume from the event loop rather than inside the caller's stack, as a real timer would.
    co_await SleepAwaiter{nullptr, 0};
}

void ManualClock::schedule(double seconds, QObject* context, std::function<void()> callback) {
    // Entries whose context is gone can never fire; drop them so that long runs stay small.
    m_pending.removeIf([](const Pending& p) { return p.hasContext && !p.context; });
    const qint64 ms = timerMilliseconds(seconds);
    m_pending.append(Pending{m_now.addMSecs(ms), m_nextOrder++, QPointer<QObject>(context),
                             context != nullptr, std::move(callback)});
}

void ManualClock::advance(double seconds) {
    const QDateTime target = m_now.addMSecs(qint64(std::llround(seconds * 1000.0)));
    for (;;) {
        auto next =
            std::min_element(m_pending.begin(), m_pending.end(), [](const Pending& a, const Pending& b) {
                return a.due < b.due || (a.due == b.due && a.order < b.order);
            });
        if (next == m_pending.end() || next->due > target) {
            break;
        }
        Pending due = std::move(*next);
        m_pending.erase(next);
        if (due.due > m_now) {
            m_now = due.due;
        }
        if (!due.hasContext || due.context) {
            due.callback();
        }
    }
    m_now = target;
}
