#pragma once

#include "metadata/ManagedLocalization.h"

#include <QDateTime>
#include <QMap>
#include <QObject>
#include <QStringList>

#include <memory>
#include <optional>

class Clock;

// Edited store texts that differ from what Apple has, per app and language, so that an edit
// survives switching languages or apps. Kept in memory only: a draft outlives the screens, not
// the program. UI thread only.
class MetadataDraftStore : public QObject {
    Q_OBJECT

public:
    struct Draft {
        ManagedLocalization localization;
        QDateTime editedAt;
        friend bool operator==(const Draft&, const Draft&) = default;
    };

    explicit MetadataDraftStore(std::shared_ptr<Clock> clock, QObject* parent = nullptr);

    std::optional<Draft> draft(const QString& appID, const QString& locale) const;
    // Keeps `localization` as the draft of its locale, unless it equals `savedState` in every
    // field: a change typed and taken back leaves no draft.
    void store(const ManagedLocalization& localization, const QString& appID,
               const std::optional<ManagedLocalization>& savedState);
    void clear(const QString& appID, const QString& locale);
    // The locales of the app that have a draft, ascending.
    QStringList locales(const QString& appID) const;

    const QMap<QString, Draft>& drafts() const { return m_drafts; }

    // App ids hold no "/", so "appID/" selects exactly the drafts of one app.
    static QString key(const QString& appID, const QString& locale);

Q_SIGNALS:
    void draftsChanged();

private:
    std::shared_ptr<Clock> m_clock;
    QMap<QString, Draft> m_drafts;
};
