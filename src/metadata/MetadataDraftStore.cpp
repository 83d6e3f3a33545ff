#include "metadata/MetadataDraftStore.h"

#include "platform/Clock.h"

MetadataDraftStore::MetadataDraftStore(std::shared_ptr<Clock> clock, QObject* parent)
    : QObject(parent), m_clock(std::move(clock)) {}

QString MetadataDraftStore::key(const QString& appID, const QString& locale) {
    return appID + u'/' + locale;
}

std::optional<MetadataDraftStore::Draft> MetadataDraftStore::draft(const QString& appID,
                                                                   const QString& locale) const {
    if (auto it = m_drafts.constFind(key(appID, locale)); it != m_drafts.cend()) {
        return *it;
    }
    return std::nullopt;
}

void MetadataDraftStore::store(const ManagedLocalization& localization, const QString& appID,
                               const std::optional<ManagedLocalization>& savedState) {
    const QString draftKey = key(appID, localization.locale);
    if (savedState && *savedState == localization) {
        if (m_drafts.remove(draftKey) > 0) {
            Q_EMIT draftsChanged();
        }
        return;
    }
    m_drafts.insert(draftKey, Draft{localization, m_clock->now()});
    Q_EMIT draftsChanged();
}

void MetadataDraftStore::clear(const QString& appID, const QString& locale) {
    if (m_drafts.remove(key(appID, locale)) > 0) {
        Q_EMIT draftsChanged();
    }
}

QStringList MetadataDraftStore::locales(const QString& appID) const {
    const QString prefix = key(appID, QString());
    QStringList result;
    for (auto it = m_drafts.cbegin(); it != m_drafts.cend(); ++it) {
        if (it.key().startsWith(prefix)) {
            result.append(it.key().mid(prefix.size()));
        }
    }
    result.sort();
    return result;
}
