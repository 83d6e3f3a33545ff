#include "api/TaskListModel.h"

#include <QSet>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

QList<int> changedRoles(const BackgroundTask& before, const BackgroundTask& after) {
    QList<int> roles;
    if (before.title != after.title) {
        roles << TaskListModel::TitleRole;
    }
    if (before.detail != after.detail) {
        roles << TaskListModel::DetailRole;
    }
    if (before.progress != after.progress) {
        roles << TaskListModel::ProgressRole << TaskListModel::HasProgressRole;
    }
    if (before.isCancellable != after.isCancellable) {
        roles << TaskListModel::IsCancellableRole;
    }
    if (before.title != after.title || before.detail != after.detail) {
        roles << TaskListModel::AccessibilityLabelRole;
    }
    return roles;
}

} // namespace

TaskListModel::TaskListModel(TaskCenter& center, QObject* parent)
    : QAbstractListModel(parent), m_center(&center), m_tasks(center.tasks()) {
    connect(&center, &TaskCenter::tasksChanged, this, &TaskListModel::sync);
}

int TaskListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : count();
}

QVariant TaskListModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid)) {
        return {};
    }
    const BackgroundTask& task = m_tasks.at(index.row());
    switch (role) {
    case TaskIdRole:
        return task.id.toString(QUuid::WithoutBraces);
    case TitleRole:
        return task.title;
    case DetailRole:
        return task.detail.value_or(QString());
    case ProgressRole:
        return std::clamp(task.progress.value_or(0.0), 0.0, 1.0);
    case HasProgressRole:
        return task.progress.has_value();
    case IsCancellableRole:
        return task.isCancellable;
    case AccessibilityLabelRole:
        return task.detail ? task.title + u", "_s + *task.detail : task.title;
    default:
        return {};
    }
}

QHash<int, QByteArray> TaskListModel::roleNames() const {
    return {
        {TaskIdRole, "taskId"},
        {TitleRole, "title"},
        {DetailRole, "detail"},
        {ProgressRole, "progress"},
        {HasProgressRole, "hasProgress"},
        {IsCancellableRole, "isCancellable"},
        {AccessibilityLabelRole, "accessibilityLabel"},
    };
}

QString TaskListModel::cancelLabel() const {
    return u"Abbrechen"_s;
}

void TaskListModel::cancel(const QString& taskId) {
    const QUuid id = QUuid::fromString(taskId);
    if (m_center && !id.isNull()) {
        m_center->cancel(id);
    }
}

void TaskListModel::sync() {
    if (!m_center) {
        return;
    }
    const QList<BackgroundTask>& fresh = m_center->tasks();
    const int countBefore = count();
    QSet<QUuid> freshIDs;
    for (const auto& task : fresh) {
        freshIDs.insert(task.id);
    }

    // Rows whose task has gone, from the end so that the rows still to look at keep their place.
    for (int row = int(m_tasks.size()) - 1; row >= 0; --row) {
        if (!freshIDs.contains(m_tasks.at(row).id)) {
            beginRemoveRows({}, row, row);
            m_tasks.removeAt(row);
            endRemoveRows();
        }
    }

    // The center keeps the order of start, so in practice new tasks come at the end; a task
    // that changed place is moved rather than the bar rebuilt, so that no row under the mouse
    // is recreated.
    for (int row = 0; row < fresh.size(); ++row) {
        const BackgroundTask& task = fresh.at(row);
        int found = -1;
        for (int i = row; i < m_tasks.size(); ++i) {
            if (m_tasks.at(i).id == task.id) {
                found = i;
                break;
            }
        }
        if (found < 0) {
            beginInsertRows({}, row, row);
            m_tasks.insert(row, task);
            endInsertRows();
            continue;
        }
        if (found != row) {
            beginMoveRows({}, found, found, {}, row);
            m_tasks.move(found, row);
            endMoveRows();
        }
        const QList<int> roles = changedRoles(m_tasks.at(row), task);
        m_tasks[row] = task;
        if (!roles.isEmpty()) {
            Q_EMIT dataChanged(index(row), index(row), roles);
        }
    }
    if (count() != countBefore) {
        Q_EMIT countChanged();
    }
    if ((countBefore > 0) != hasTasks()) {
        Q_EMIT hasTasksChanged();
    }
}
