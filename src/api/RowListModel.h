#pragma once

#include <QAbstractListModel>
#include <QByteArray>
#include <QList>
#include <QVariant>

// The rows of a list a screen shows, as values by role. `setRows` changes the list in place:
// a row whose key (its first role) stays keeps its delegate and only gets `dataChanged` for the
// roles that differ; new keys are inserted, vanished ones removed, moved ones moved. So a
// Repeater or ListView never rebuilds the item under the user's cursor or focus.
//
// The owning model names the roles once (`{"key", "title", …}`) and keeps an enum of the same
// order for building rows.
class RowListModel : public QAbstractListModel {
    Q_OBJECT
    Q_PROPERTY(int count READ count NOTIFY countChanged)
public:
    using Row = QList<QVariant>;

    RowListModel(QList<QByteArray> roleNames, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    int count() const { return int(m_rows.size()); }
    const QList<Row>& rows() const { return m_rows; }
    // The value of a role (by its position in the role names) in a row.
    QVariant value(int row, int column) const;
    // The row whose key is `key`, or -1.
    int indexOfKey(const QVariant& key) const;

    // Makes the list equal to `rows`, touching only what differs. Keys should be unique; a
    // repeated key is kept as a row of its own.
    void setRows(const QList<Row>& rows);
    // Changes the roles of one row that differ from `row`.
    void setRow(int index, const Row& row);

    static constexpr int FirstRole = Qt::UserRole + 1;

Q_SIGNALS:
    void countChanged();

private:
    QList<QByteArray> m_roleNames;
    QList<Row> m_rows;
};
