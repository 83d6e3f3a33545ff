#pragma once

#include "api/TaskCenter.h"

#include <QAbstractListModel>
#include <QPointer>

// The task bar's rows: the long-running jobs of the TaskCenter, with their progress. Follows the
// center row by row, so that a progress tick repaints one row and not the whole bar.
class TaskListModel : public QAbstractListModel {
    Q_OBJECT
    Q_PROPERTY(int count READ count NOTIFY countChanged)
    Q_PROPERTY(bool hasTasks READ hasTasks NOTIFY hasTasksChanged)
    Q_PROPERTY(QString cancelLabel READ cancelLabel CONSTANT)

public:
    enum Role {
        TaskIdRole = Qt::UserRole + 1,
        TitleRole,
        DetailRole,
        ProgressRole,
        HasProgressRole,
        IsCancellableRole,
        AccessibilityLabelRole,
    };

    explicit TaskListModel(TaskCenter& center, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    int count() const { return int(m_tasks.size()); }
    // The bar shows nothing while there is no task.
    bool hasTasks() const { return !m_tasks.isEmpty(); }
    QString cancelLabel() const;

    // The job is told to stop and leaves the list at once.
    Q_INVOKABLE void cancel(const QString& taskId);

Q_SIGNALS:
    void countChanged();
    void hasTasksChanged();

private:
    void sync();

    QPointer<TaskCenter> m_center;
    QList<BackgroundTask> m_tasks;
};
