#pragma once

#include <QObject>
#include <QVariantList>

class AppPreferencesStore;

// The settings page of the background watch: the switches and the interval are kept now and
// read by the watch when it runs.
class BackgroundSettingsViewModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isBackgroundRefreshEnabled READ isBackgroundRefreshEnabled WRITE
                   setBackgroundRefreshEnabled NOTIFY isBackgroundRefreshEnabledChanged)
    Q_PROPERTY(bool areNotificationsEnabled READ areNotificationsEnabled WRITE setNotificationsEnabled NOTIFY
                   areNotificationsEnabledChanged)
    Q_PROPERTY(
        bool isMenuBarEnabled READ isMenuBarEnabled WRITE setMenuBarEnabled NOTIFY isMenuBarEnabledChanged)
    Q_PROPERTY(int intervalIndex READ intervalIndex WRITE setIntervalIndex NOTIFY intervalIndexChanged)
    Q_PROPERTY(QStringList intervalTitles READ intervalTitles CONSTANT)
    Q_PROPERTY(QString explanation READ explanation CONSTANT)
public:
    explicit BackgroundSettingsViewModel(AppPreferencesStore& preferences, QObject* parent = nullptr);

    bool isBackgroundRefreshEnabled() const;
    void setBackgroundRefreshEnabled(bool on);
    bool areNotificationsEnabled() const;
    void setNotificationsEnabled(bool on);
    bool isMenuBarEnabled() const;
    void setMenuBarEnabled(bool on);
    int intervalIndex() const;
    void setIntervalIndex(int index);
    QStringList intervalTitles() const;
    QString explanation() const;

    static const QList<int>& intervalMinutes();

Q_SIGNALS:
    void isBackgroundRefreshEnabledChanged();
    void areNotificationsEnabledChanged();
    void isMenuBarEnabledChanged();
    void intervalIndexChanged();

private:
    struct Shown {
        bool backgroundRefresh;
        bool notifications;
        bool menuBar;
        int interval;
    };
    Shown current() const;
    // The store announces any change of any preference; only the switches that moved are told.
    void preferencesChanged();

    AppPreferencesStore& m_preferences;
    Shown m_shown;
};
