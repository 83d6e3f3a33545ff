#pragma once

#include "api/RowListModel.h"

#include <QCollator>

class AppState;

// One of the three lists of the sidebar: favourites, recently used apps, or all apps, each
// narrowed by the filter text. A list model changed in place, so that a list of a thousand apps
// stays fluid and a changed favourite mark touches one row.
class AppListModel : public RowListModel {
    Q_OBJECT
public:
    enum class Kind { Favorites, Recent, All };
    enum Role {
        AppIdRole = FirstRole,
        NameRole,
        BundleIdRole,
        AccountNameRole,
        SubtitleRole,
        IsFavoriteRole,
        IsSelectedRole,
        AccessibleNameRole,
    };

    AppListModel(AppState& state, Kind kind, QObject* parent = nullptr);

    // Recomputes the rows from the application state.
    void refresh();
    // Only apps whose name or bundle id holds this text, in any case.
    void setFilter(const QString& text);
    // While frozen the rows stay where they are (the pointer is over them); the changes come when
    // it thaws.
    void setFrozen(bool frozen);
    // The lists shown above this one: the selected app is marked in the first list that shows
    // it, so this one marks it only if none of these has it on screen.
    void setListsAbove(QList<const AppListModel*> lists);

private:
    QList<Row> computeRows() const;

    AppState& m_state;
    Kind m_kind;
    QString m_filter;
    bool m_frozen = false;
    bool m_stale = false;
    QList<const AppListModel*> m_above;
    // Made once: every refresh sorts, and a refresh comes with every key typed into the filter.
    QCollator m_collator;
};
