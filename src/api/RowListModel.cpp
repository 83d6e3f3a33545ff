#include "api/RowListModel.h"

RowListModel::RowListModel(QList<QByteArray> roleNames, QObject* parent)
    : QAbstractListModel(parent), m_roleNames(std::move(roleNames)) {}

int RowListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : int(m_rows.size());
}

QVariant RowListModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid)) {
        return {};
    }
    return value(index.row(), role - FirstRole);
}

QHash<int, QByteArray> RowListModel::roleNames() const {
    QHash<int, QByteArray> names;
    for (int i = 0; i < m_roleNames.size(); ++i) {
        names.insert(FirstRole + i, m_roleNames[i]);
    }
    return names;
}

QVariant RowListModel::value(int row, int column) const {
    if (row < 0 || row >= m_rows.size() || column < 0 || column >= m_rows[row].size()) {
        return {};
    }
    return m_rows[row][column];
}

int RowListModel::indexOfKey(const QVariant& key) const {
    for (int i = 0; i < m_rows.size(); ++i) {
        if (!m_rows[i].isEmpty() && m_rows[i].first() == key) {
            return i;
        }
    }
    return -1;
}

void RowListModel::setRow(int index, const Row& row) {
    if (index < 0 || index >= m_rows.size()) {
        return;
    }
    QList<int> changed;
    Row& current = m_rows[index];
    for (int column = 0; column < row.size(); ++column) {
        if (column >= current.size() || current[column] != row[column]) {
            changed.append(FirstRole + column);
        }
    }
    if (changed.isEmpty() && current.size() == row.size()) {
        return;
    }
    current = row;
    const QModelIndex at = this->index(index);
    Q_EMIT dataChanged(at, at, changed);
}

void RowListModel::setRows(const QList<Row>& rows) {
    const qsizetype before = m_rows.size();
    for (int target = 0; target < rows.size(); ++target) {
        const QVariant key = rows[target].isEmpty() ? QVariant() : rows[target].first();
        int found = -1;
        for (int i = target; i < m_rows.size(); ++i) {
            if (!m_rows[i].isEmpty() && m_rows[i].first() == key) {
                found = i;
                break;
            }
        }
        if (found < 0) {
            beginInsertRows({}, target, target);
            m_rows.insert(target, rows[target]);
            endInsertRows();
            continue;
        }
        if (found != target) {
            beginMoveRows({}, found, found, {}, target);
            m_rows.move(found, target);
            endMoveRows();
        }
        setRow(target, rows[target]);
    }
    if (m_rows.size() > rows.size()) {
        beginRemoveRows({}, int(rows.size()), int(m_rows.size()) - 1);
        m_rows.resize(rows.size());
        endRemoveRows();
    }
    if (m_rows.size() != before) {
        Q_EMIT countChanged();
    }
}
