#include "workspace/BackgroundSettingsViewModel.h"

#include "workspace/AppPreferencesStore.h"

#include <utility>

using namespace Qt::StringLiterals;

BackgroundSettingsViewModel::BackgroundSettingsViewModel(AppPreferencesStore& preferences, QObject* parent)
    : QObject(parent), m_preferences(preferences), m_shown(current()) {
    connect(&preferences, &AppPreferencesStore::changed, this,
            &BackgroundSettingsViewModel::preferencesChanged);
}

BackgroundSettingsViewModel::Shown BackgroundSettingsViewModel::current() const {
    return {isBackgroundRefreshEnabled(), areNotificationsEnabled(), isMenuBarEnabled(), intervalIndex()};
}

void BackgroundSettingsViewModel::preferencesChanged() {
    const Shown before = std::exchange(m_shown, current());
    if (before.backgroundRefresh != m_shown.backgroundRefresh) {
        Q_EMIT isBackgroundRefreshEnabledChanged();
    }
    if (before.notifications != m_shown.notifications) {
        Q_EMIT areNotificationsEnabledChanged();
    }
    if (before.menuBar != m_shown.menuBar) {
        Q_EMIT isMenuBarEnabledChanged();
    }
    if (before.interval != m_shown.interval) {
        Q_EMIT intervalIndexChanged();
    }
}

const QList<int>& BackgroundSettingsViewModel::intervalMinutes() {
    static const QList<int> minutes{15, 30, 60, 120, 240, 480};
    return minutes;
}

bool BackgroundSettingsViewModel::isBackgroundRefreshEnabled() const {
    return m_preferences.isBackgroundRefreshEnabled();
}

void BackgroundSettingsViewModel::setBackgroundRefreshEnabled(bool on) {
    if (on != isBackgroundRefreshEnabled()) {
        m_preferences.setBackgroundRefreshEnabled(on);
    }
}

bool BackgroundSettingsViewModel::areNotificationsEnabled() const {
    return m_preferences.areNotificationsEnabled();
}

void BackgroundSettingsViewModel::setNotificationsEnabled(bool on) {
    if (on != areNotificationsEnabled()) {
        m_preferences.setNotificationsEnabled(on);
    }
}

bool BackgroundSettingsViewModel::isMenuBarEnabled() const {
    return m_preferences.isMenuBarEnabled();
}

void BackgroundSettingsViewModel::setMenuBarEnabled(bool on) {
    if (on != isMenuBarEnabled()) {
        m_preferences.setMenuBarEnabled(on);
    }
}

int BackgroundSettingsViewModel::intervalIndex() const {
    const int minutes = m_preferences.backgroundRefreshMinutes();
    // A stored value between the choices shows the next longer one.
    for (int i = 0; i < intervalMinutes().size(); ++i) {
        if (intervalMinutes()[i] >= minutes) {
            return i;
        }
    }
    return int(intervalMinutes().size()) - 1;
}

void BackgroundSettingsViewModel::setIntervalIndex(int index) {
    if (index < 0 || index >= intervalMinutes().size() || index == intervalIndex()) {
        return;
    }
    m_preferences.setBackgroundRefreshMinutes(intervalMinutes()[index]);
}

QStringList BackgroundSettingsViewModel::intervalTitles() const {
    QStringList titles;
    for (int minutes : intervalMinutes()) {
        titles.append(minutes < 60    ? u"Alle %1 Minuten"_s.arg(minutes)
                      : minutes == 60 ? u"Jede Stunde"_s
                                      : u"Alle %1 Stunden"_s.arg(minutes / 60));
    }
    return titles;
}

QString BackgroundSettingsViewModel::explanation() const {
    return u"Die Hintergrundprüfung vergleicht den Stand deiner Apps mit dem letzten und meldet, was sich "
           "geändert hat – eine neue Build-Verarbeitung, ein Review-Ergebnis, eine neue Bewertung."_s;
}
