#include "workspace/AppPreferencesStore.h"

#include <QSettings>

using namespace Qt::StringLiterals;

namespace {
const QString kFavorites = u"velmora.favoriteAppIDs"_s;
const QString kRecents = u"velmora.recentAppIDs"_s;
const QString kBackgroundRefresh = u"velmora.backgroundRefreshEnabled"_s;
const QString kRefreshMinutes = u"velmora.backgroundRefreshMinutes"_s;
const QString kNotifications = u"velmora.notificationsEnabled"_s;
const QString kMenuBar = u"velmora.menuBarEnabled"_s;
const QString kAllAccounts = u"velmora.showsAppsOfAllAccounts"_s;
const QString kSavedFilters = u"velmora.savedFilters"_s;

int sanitizedMinutes(int minutes) {
    return minutes < 15 ? 60 : minutes;
}
} // namespace

AppPreferencesStore::AppPreferencesStore(std::shared_ptr<QSettings> settings, QObject* parent)
    : QObject(parent), m_settings(settings ? std::move(settings) : std::make_shared<QSettings>()) {
    const QStringList favorites = m_settings->value(kFavorites).toStringList();
    m_favorites = QSet<QString>(favorites.cbegin(), favorites.cend());
    m_recents = m_settings->value(kRecents).toStringList();
    m_backgroundRefresh = m_settings->value(kBackgroundRefresh, false).toBool();
    m_refreshMinutes = sanitizedMinutes(m_settings->value(kRefreshMinutes, 60).toInt());
    m_notifications = m_settings->value(kNotifications, false).toBool();
    m_menuBar = m_settings->value(kMenuBar, false).toBool();
    m_allAccounts = m_settings->value(kAllAccounts, false).toBool();
    const QVariantMap filters = m_settings->value(kSavedFilters).toMap();
    for (auto it = filters.cbegin(); it != filters.cend(); ++it) {
        m_savedFilters.insert(it.key(), it.value().toString());
    }
}

AppPreferencesStore::~AppPreferencesStore() = default;

void AppPreferencesStore::setBackgroundRefreshEnabled(bool on) {
    m_backgroundRefresh = on;
    m_settings->setValue(kBackgroundRefresh, on);
    Q_EMIT changed();
}

void AppPreferencesStore::setBackgroundRefreshMinutes(int minutes) {
    m_refreshMinutes = sanitizedMinutes(minutes);
    m_settings->setValue(kRefreshMinutes, minutes);
    Q_EMIT changed();
}

void AppPreferencesStore::setNotificationsEnabled(bool on) {
    m_notifications = on;
    m_settings->setValue(kNotifications, on);
    Q_EMIT changed();
}

void AppPreferencesStore::setMenuBarEnabled(bool on) {
    m_menuBar = on;
    m_settings->setValue(kMenuBar, on);
    Q_EMIT changed();
}

void AppPreferencesStore::setShowsAppsOfAllAccounts(bool on) {
    m_allAccounts = on;
    m_settings->setValue(kAllAccounts, on);
    Q_EMIT changed();
}

void AppPreferencesStore::markUsed(const QString& appID) {
    m_recents.removeAll(appID);
    m_recents.prepend(appID);
    if (m_recents.size() > maxRecents) {
        m_recents.resize(maxRecents);
    }
    m_settings->setValue(kRecents, m_recents);
    Q_EMIT changed();
}

void AppPreferencesStore::toggleFavorite(const QString& appID) {
    if (!m_favorites.remove(appID)) {
        m_favorites.insert(appID);
    }
    m_settings->setValue(kFavorites, QStringList(m_favorites.cbegin(), m_favorites.cend()));
    Q_EMIT changed();
}

void AppPreferencesStore::setSavedFilter(const QString& value, const QString& key) {
    if (value.trimmed().isEmpty()) {
        m_savedFilters.remove(key);
    } else {
        m_savedFilters.insert(key, value);
    }
    QVariantMap map;
    for (auto it = m_savedFilters.cbegin(); it != m_savedFilters.cend(); ++it) {
        map.insert(it.key(), it.value());
    }
    m_settings->setValue(kSavedFilters, map);
    Q_EMIT changed();
}

QString AppPreferencesStore::sceneText(const QString& key, const QString& fallback) const {
    return m_settings->value(key, fallback).toString();
}

void AppPreferencesStore::setSceneText(const QString& key, const QString& value) {
    m_settings->setValue(key, value);
}
