#include "api/RowListModel.h"

#include <QSet>

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

namespace {
QString keyOf(const RowListModel::Row& row) {
    return row.isEmpty() ? QString() : row.first().toString();
}
} // namespace

void RowListModel::setRows(const QList<Row>& rows) {
    for ([[maybe_unused]] const Row& row : rows) {
        Q_ASSERT_X(row.size() == m_roleNames.size(), "RowListModel::setRows",
                   "a row needs one value per role");
    }
    const qsizetype before = m_rows.size();
    // Rows whose key is gone leave first, a run at a time, so that a filter that narrows a
    // thousand rows to ten costs a few signals, not a thousand.
    QSet<QString> wanted;
    wanted.reserve(rows.size());
    for (const Row& row : rows) {
        wanted.insert(keyOf(row));
    }
    for (int last = int(m_rows.size()) - 1; last >= 0;) {
        if (wanted.contains(keyOf(m_rows[last]))) {
            --last;
            continue;
        }
        int first = last;
        while (first > 0 && !wanted.contains(keyOf(m_rows[first - 1]))) {
            --first;
        }
        beginRemoveRows({}, first, last);
        m_rows.remove(first, last - first + 1);
        endRemoveRows();
        last = first - 1;
    }
    QSet<QString> present;
    present.reserve(m_rows.size());
    for (const Row& row : std::as_const(m_rows)) {
        present.insert(keyOf(row));
    }
    for (int target = 0; target < rows.size();) {
        const QString key = keyOf(rows[target]);
        int found = -1;
        if (present.contains(key)) {
            for (int i = target; i < m_rows.size(); ++i) {
                if (keyOf(m_rows[i]) == key) {
                    found = i;
                    break;
                }
            }
        }
        if (found < 0) {
            // New rows come in runs as well.
            int end = target + 1;
            while (end < rows.size() && !present.contains(keyOf(rows[end]))) {
                ++end;
            }
            beginInsertRows({}, target, end - 1);
            for (int i = target; i < end; ++i) {
                m_rows.insert(i, rows[i]);
            }
            endInsertRows();
            target = end;
            continue;
        }
        if (found != target) {
            beginMoveRows({}, found, found, {}, target);
            m_rows.move(found, target);
            endMoveRows();
        }
        setRow(target, rows[target]);
        ++target;
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
