#pragma once

#include "workspace/ManagedApp.h"

#include <QAbstractListModel>
#include <QPointer>

class AppState;

// One of the three lists of the sidebar: favourites, recently used apps, or all apps. A list
// model rather than an array, so that a list of a thousand apps stays fluid and a changed
// favourite mark touches one row.
class AppListModel : public QAbstractListModel {
    Q_OBJECT
    Q_PROPERTY(int count READ count NOTIFY countChanged)
public:
    enum class Kind { Favorites, Recent, All };
    enum Role {
        AppIdRole = Qt::UserRole + 1,
        NameRole,
        BundleIdRole,
        AccountNameRole,
        SubtitleRole,
        IsFavoriteRole,
        IsSelectedRole,
    };

    AppListModel(AppState& state, Kind kind, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;
    int count() const { return int(m_rows.size()); }

    // Recomputes the rows from the application state.
    void refresh();

Q_SIGNALS:
    void countChanged();

private:
    struct Row {
        ManagedApp app;
        bool isFavorite = false;
        bool isSelected = false;
        friend bool operator==(const Row&, const Row&) = default;
    };
    QList<Row> computeRows() const;

    AppState& m_state;
    Kind m_kind;
    QList<Row> m_rows;
};
