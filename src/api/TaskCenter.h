#pragma once

#include <QDateTime>
#include <QHash>
#include <QList>
#include <QObject>
#include <QString>
#include <QUuid>

#include <functional>
#include <optional>

// A long-running job as the task bar shows it.
struct BackgroundTask {
    QUuid id = QUuid::createUuid();
    QString title;
    std::optional<QString> detail;
    // 0 to 1; none means an unknown amount.
    std::optional<double> progress;
    bool isCancellable = false;
    QDateTime startedAt;

    QString accessibilityLabel() const { return title + QStringLiteral(", ") + detail.value_or(QString()); }
};

// The list of long-running jobs. It knows nothing of what a job does; the job's owner reports.
class TaskCenter : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;

    const QList<BackgroundTask>& tasks() const { return m_tasks; }

    // `cancel` is kept when the task can be cancelled.
    void start(BackgroundTask task, std::function<void()> cancel = {});
    // Sets progress (also to none); sets the detail only when one is given.
    void update(const QUuid& id, std::optional<double> progress,
                std::optional<QString> detail = std::nullopt);
    void finish(const QUuid& id);
    // Calls the job's cancel function, if any, and removes the task at once.
    void cancel(const QUuid& id);

Q_SIGNALS:
    void tasksChanged();

private:
    QList<BackgroundTask> m_tasks;
    QHash<QUuid, std::function<void()>> m_cancellations;
};
