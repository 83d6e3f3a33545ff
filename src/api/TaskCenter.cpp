#include "api/TaskCenter.h"

void TaskCenter::start(BackgroundTask task, std::function<void()> cancel) {
    if (task.isCancellable && cancel) {
        m_cancellations.insert(task.id, std::move(cancel));
    }
    m_tasks.append(std::move(task));
    Q_EMIT tasksChanged();
}

void TaskCenter::update(const QUuid& id, std::optional<double> progress, std::optional<QString> detail) {
    for (auto& task : m_tasks) {
        if (task.id == id) {
            task.progress = progress;
            if (detail) {
                task.detail = std::move(detail);
            }
            Q_EMIT tasksChanged();
            return;
        }
    }
}

void TaskCenter::finish(const QUuid& id) {
    const auto removed = m_tasks.removeIf([&](const BackgroundTask& t) { return t.id == id; });
    m_cancellations.remove(id);
    if (removed > 0) {
        Q_EMIT tasksChanged();
    }
}

void TaskCenter::cancel(const QUuid& id) {
    if (auto fn = m_cancellations.take(id)) {
        fn();
    }
    finish(id);
}
