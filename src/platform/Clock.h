#pragma once

#include <QCoro/QCoroTask>
#include <QDateTime>
#include <QList>
#include <QPointer>
#include <QTimeZone>

#include <functional>

// The one source of time. Every time-to-live, retry wait, timeout and timestamp goes through
// it, so that tests run on virtual time and never wait for real.
class Clock {
public:
    virtual ~Clock() = default;

    virtual QDateTime now() const = 0;

    // Calls `callback` after `seconds`, unless `context` is destroyed first.
    virtual void schedule(double seconds, QObject* context, std::function<void()> callback) = 0;

    // Suspends the calling coroutine for `seconds`.
    virtual QCoro::Task<> sleep(double seconds);
};

class SystemClock final : public Clock {
public:
    QDateTime now() const override;
    void schedule(double seconds, QObject* context, std::function<void()> callback) override;
};

// Virtual time for tests: nothing happens until the test advances the clock. With auto-advance
// on, every sleep completes at once and moves the clock by its length, which lets a test run a
// chain of retries without stepping through it; scheduled timeouts never auto-advance.
class ManualClock final : public Clock {
public:
    explicit ManualClock(QDateTime start = QDateTime(QDate(2026, 1, 15), QTime(10, 0), Qt::UTC));

    QDateTime now() const override { return m_now; }
    void schedule(double seconds, QObject* context, std::function<void()> callback) override;
    QCoro::Task<> sleep(double seconds) override;

    // Moves time forward and runs, in order of their due time, every callback that falls due.
    void advance(double seconds);
    void setNow(const QDateTime& now) { m_now = now; }
    void setAutoAdvance(bool on) { m_autoAdvance = on; }

    // Lengths of every sleep so far, in order; tests read retry waits from it.
    const QList<double>& sleeps() const { return m_sleeps; }
    void clearSleeps() { m_sleeps.clear(); }
    int pendingCount() const { return int(m_pending.size()); }

private:
    struct Pending {
        QDateTime due;
        quint64 order;
        QPointer<QObject> context;
        bool hasContext;
        std::function<void()> callback;
    };
    QDateTime m_now;
    QList<Pending> m_pending;
    QList<double> m_sleeps;
    quint64 m_nextOrder = 0;
    bool m_autoAdvance = false;
};
