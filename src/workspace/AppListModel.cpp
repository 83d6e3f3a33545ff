#include "workspace/AppListModel.h"

#include "workspace/AppPreferencesStore.h"
#include "workspace/AppState.h"

using namespace Qt::StringLiterals;

AppListModel::AppListModel(AppState& state, Kind kind, QObject* parent)
    : QAbstractListModel(parent), m_state(state), m_kind(kind) {
    connect(&state, &AppState::appsChanged, this, &AppListModel::refresh);
    connect(&state, &AppState::selectedAppChanged, this, &AppListModel::refresh);
    connect(&state.preferences(), &AppPreferencesStore::changed, this, &AppListModel::refresh);
    m_rows = computeRows();
}

QList<AppListModel::Row> AppListModel::computeRows() const {
    const auto& favorites = m_state.preferences().favoriteAppIDs();
    const QString selectedID = m_state.selectedApp() ? m_state.selectedApp()->id : QString();
    auto rowFor = [&](const ManagedApp& app) {
        return Row{app, favorites.contains(app.id), app.id == selectedID};
    };
    QList<Row> rows;
    switch (m_kind) {
    case Kind::All:
        rows.reserve(m_state.apps().size());
        for (const auto& app : m_state.apps()) {
            rows.append(rowFor(app));
        }
        break;
    case Kind::Favorites:
        for (const auto& app : m_state.apps()) {
            if (favorites.contains(app.id)) {
                rows.append(rowFor(app));
            }
        }
        break;
    case Kind::Recent: {
        // Newest first, as used; an id whose app is not in the list (another account) is skipped.
        QHash<QString, qsizetype> index;
        for (qsizetype i = 0; i < m_state.apps().size(); ++i) {
            index.insert(m_state.apps()[i].id, i);
        }
        for (const auto& id : m_state.preferences().recentAppIDs()) {
            if (auto it = index.constFind(id); it != index.cend()) {
                rows.append(rowFor(m_state.apps()[*it]));
            }
        }
        break;
    }
    }
    return rows;
}

void AppListModel::refresh() {
    QList<Row> rows = computeRows();
    const bool sameApps = rows.size() == m_rows.size() &&
                          std::equal(rows.cbegin(), rows.cend(), m_rows.cbegin(),
                                     [](const Row& a, const Row& b) { return a.app.id == b.app.id; });
    if (!sameApps) {
        beginResetModel();
        m_rows = std::move(rows);
        endResetModel();
        Q_EMIT countChanged();
        return;
    }
    // Same apps in the same order: only tell about the rows that changed.
    for (qsizetype i = 0; i < rows.size(); ++i) {
        if (!(rows[i] == m_rows[i])) {
            m_rows[i] = rows[i];
            const QModelIndex changed = index(int(i));
            Q_EMIT dataChanged(changed, changed);
        }
    }
}

int AppListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : int(m_rows.size());
}

QVariant AppListModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid)) {
        return {};
    }
    const Row& row = m_rows[index.row()];
    switch (role) {
    case Qt::DisplayRole:
    case NameRole:
        return row.app.name;
    case AppIdRole:
        return row.app.id;
    case BundleIdRole:
        return row.app.bundleID;
    case AccountNameRole:
        return row.app.accountName.value_or(QString());
    case SubtitleRole:
        return row.app.accountName ? row.app.bundleID + u" · "_s + *row.app.accountName : row.app.bundleID;
    case IsFavoriteRole:
        return row.isFavorite;
    case IsSelectedRole:
        return row.isSelected;
    default:
        return {};
    }
}

QHash<int, QByteArray> AppListModel::roleNames() const {
    return {{AppIdRole, "appId"},          {NameRole, "name"},
            {BundleIdRole, "bundleID"},    {AccountNameRole, "accountName"},
            {SubtitleRole, "subtitle"},    {IsFavoriteRole, "isFavorite"},
            {IsSelectedRole, "isSelected"}};
}
