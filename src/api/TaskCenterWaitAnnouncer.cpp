#include "api/TaskCenterWaitAnnouncer.h"

#include "api/TaskCenter.h"
#include "platform/Clock.h"

using namespace Qt::StringLiterals;

TaskCenterWaitAnnouncer::TaskCenterWaitAnnouncer(TaskCenter* center, std::shared_ptr<Clock> clock)
    : m_center(center), m_clock(std::move(clock)) {}

int TaskCenterWaitAnnouncer::started(Reason reason, QDateTime until, QString accountName) {
    const int wait = ++m_next;
    if (!m_center) {
        return wait;
    }
    BackgroundTask task;
    task.title = reason == Reason::RateLimited ? u"Warten auf Apple"_s : u"Warten auf das Netzwerk"_s;
    const QString text = describe(reason, until, m_clock->now());
    task.detail = accountName.isEmpty() ? text : accountName + u": "_s + text;
    task.startedAt = m_clock->now();
    m_tasks.insert(wait, task.id);
    m_center->start(std::move(task));
    return wait;
}

void TaskCenterWaitAnnouncer::ended(int wait) {
    const QUuid id = m_tasks.take(wait);
    if (m_center && !id.isNull()) {
        m_center->finish(id);
    }
}
