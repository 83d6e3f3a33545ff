#pragma once

#include "api/WaitAnnouncer.h"

#include <QHash>
#include <QPointer>
#include <QUuid>

#include <memory>

class Clock;
class TaskCenter;

// Each long wait of a request is a task in the task bar that names its end time, for as long
// as the wait lasts.
class TaskCenterWaitAnnouncer final : public WaitAnnouncer {
public:
    TaskCenterWaitAnnouncer(TaskCenter* center, std::shared_ptr<Clock> clock);
    int started(Reason reason, QDateTime until, QString accountName) override;
    void ended(int wait) override;

private:
    QPointer<TaskCenter> m_center;
    std::shared_ptr<Clock> m_clock;
    QHash<int, QUuid> m_tasks;
    int m_next = 0;
};
