#pragma once

#include <QHash>
#include <QObject>
#include <QSet>
#include <QStringList>

#include <memory>

class QSettings;

// Favourites, recent apps, background settings and saved filters, under the keys "velmora.*".
// Every setter writes its key at once.
class AppPreferencesStore : public QObject {
    Q_OBJECT
public:
    static constexpr int maxRecents = 8;

    // Takes the settings to use; none means the user's own.
    explicit AppPreferencesStore(std::shared_ptr<QSettings> settings = {}, QObject* parent = nullptr);
    ~AppPreferencesStore() override;

    const QSet<QString>& favoriteAppIDs() const { return m_favorites; }
    const QStringList& recentAppIDs() const { return m_recents; }
    bool isBackgroundRefreshEnabled() const { return m_backgroundRefresh; }
    int backgroundRefreshMinutes() const { return m_refreshMinutes; }
    bool areNotificationsEnabled() const { return m_notifications; }
    bool isMenuBarEnabled() const { return m_menuBar; }
    bool showsAppsOfAllAccounts() const { return m_allAccounts; }

    void setBackgroundRefreshEnabled(bool on);
    void setBackgroundRefreshMinutes(int minutes);
    void setNotificationsEnabled(bool on);
    void setMenuBarEnabled(bool on);
    void setShowsAppsOfAllAccounts(bool on);

    void markUsed(const QString& appID);
    void toggleFavorite(const QString& appID);
    QString savedFilter(const QString& key) const { return m_savedFilters.value(key); }
    // Small per-window texts ("velmora.main.appID"), kept so that a window opens where it was left.
    QString sceneText(const QString& key, const QString& fallback) const;
    void setSceneText(const QString& key, const QString& value);
    void setSavedFilter(const QString& value, const QString& key);

Q_SIGNALS:
    void changed();

private:
    std::shared_ptr<QSettings> m_settings;
    QSet<QString> m_favorites;
    QStringList m_recents;
    bool m_backgroundRefresh = false;
    int m_refreshMinutes = 60;
    bool m_notifications = false;
    bool m_menuBar = false;
    bool m_allAccounts = false;
    QHash<QString, QString> m_savedFilters;
};
