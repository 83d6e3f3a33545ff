#include "workspace/AppListModel.h"

#include "workspace/AppPreferencesStore.h"
#include "workspace/AppState.h"

#include <QCollator>
#include <QSet>

using namespace Qt::StringLiterals;

AppListModel::AppListModel(AppState& state, Kind kind, QObject* parent)
    : RowListModel({"appId", "name", "bundleID", "accountName", "subtitle", "isFavorite", "isSelected",
                    "accessibleName"},
                   parent),
      m_state(state), m_kind(kind), m_collator(QLocale(QLocale::German, QLocale::Germany)) {
    m_collator.setCaseSensitivity(Qt::CaseInsensitive);
    connect(&state, &AppState::appsChanged, this, &AppListModel::refresh);
    connect(&state, &AppState::selectedAppChanged, this, &AppListModel::refresh);
    connect(&state.preferences(), &AppPreferencesStore::changed, this, &AppListModel::refresh);
    refresh();
}

void AppListModel::setFilter(const QString& text) {
    const QString trimmed = text.trimmed();
    if (trimmed == m_filter) {
        return;
    }
    m_filter = trimmed;
    refresh();
}

void AppListModel::setListsAbove(QList<const AppListModel*> lists) {
    m_above = std::move(lists);
    for (const AppListModel* list : std::as_const(m_above)) {
        connect(list, &QAbstractItemModel::rowsInserted, this, &AppListModel::refresh);
        connect(list, &QAbstractItemModel::rowsRemoved, this, &AppListModel::refresh);
    }
    refresh();
}

void AppListModel::setFrozen(bool frozen) {
    m_frozen = frozen;
    if (!frozen && m_stale) {
        refresh();
    }
}

QList<RowListModel::Row> AppListModel::computeRows() const {
    const auto& favorites = m_state.preferences().favoriteAppIDs();
    const QStringList recent = m_state.preferences().recentAppIDs();
    const QString selectedID = m_state.selectedApp() ? m_state.selectedApp()->id : QString();
    // The selected app is marked once, in the first list that shows it.
    const bool marksSelection = std::none_of(m_above.cbegin(), m_above.cend(), [&](const AppListModel* list) {
        return list->indexOfKey(selectedID) >= 0;
    });
    const auto matches = [this](const ManagedApp& app) {
        return m_filter.isEmpty() || app.name.contains(m_filter, Qt::CaseInsensitive) ||
               app.bundleID.contains(m_filter, Qt::CaseInsensitive);
    };
    const auto rowFor = [&](const ManagedApp& app) {
        const QString subtitle = app.accountName ? app.bundleID + u" · "_s + *app.accountName : app.bundleID;
        const bool isFavorite = favorites.contains(app.id);
        return Row{app.id,
                   app.name,
                   app.bundleID,
                   app.accountName.value_or(QString()),
                   subtitle,
                   isFavorite,
                   marksSelection && app.id == selectedID,
                   app.name + u", "_s + subtitle + (isFavorite ? u", Favorit"_s : QString())};
    };
    QList<const ManagedApp*> apps;
    switch (m_kind) {
    case Kind::All:
    case Kind::Favorites:
        for (const auto& app : m_state.apps()) {
            if (m_kind == Kind::All || favorites.contains(app.id)) {
                apps.append(&app);
            }
        }
        std::stable_sort(apps.begin(), apps.end(), [this](const ManagedApp* a, const ManagedApp* b) {
            return m_collator.compare(a->name, b->name) < 0;
        });
        break;
    case Kind::Recent: {
        // Newest first, as used; an id whose app is not in the list (another account) is skipped.
        QHash<QString, const ManagedApp*> byID;
        for (const auto& app : m_state.apps()) {
            byID.insert(app.id, &app);
        }
        for (const auto& id : recent) {
            if (const ManagedApp* app = byID.value(id)) {
                apps.append(app);
            }
        }
        break;
    }
    }
    QList<Row> rows;
    rows.reserve(apps.size());
    for (const ManagedApp* app : std::as_const(apps)) {
        if (matches(*app)) {
            rows.append(rowFor(*app));
        }
    }
    return rows;
}

void AppListModel::refresh() {
    if (m_frozen) {
        m_stale = true;
        return;
    }
    m_stale = false;
    setRows(computeRows());
}
