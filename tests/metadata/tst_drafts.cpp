#include "metadata/MetadataDraftStore.h"
#include "platform/Clock.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

ManagedLocalization saved(const QString& locale) {
    ManagedLocalization l;
    l.locale = locale;
    l.appInfoLocalizationID = u"info-"_s + locale;
    l.name = u"Kladde"_s;
    l.description = u"Alles an einem Ort."_s;
    return l;
}

ManagedLocalization edited(const QString& locale, const QString& name = u"Kladde Pro"_s) {
    ManagedLocalization l = saved(locale);
    l.name = name;
    return l;
}

} // namespace

class DraftsTest : public QObject {
    Q_OBJECT

    std::shared_ptr<ManualClock> m_clock;
    std::unique_ptr<MetadataDraftStore> m_store;

private Q_SLOTS:
    void init() {
        m_clock = std::make_shared<ManualClock>();
        m_store = std::make_unique<MetadataDraftStore>(m_clock);
    }

    void storeKeepsOnlyWhatDiffers_data() {
        QTest::addColumn<bool>("hasSaved");
        QTest::addColumn<QString>("secondName");
        QTest::addColumn<bool>("kept");

        QTest::newRow("changed again") << true << u"Kladde Plus"_s << true;
        QTest::newRow("taken back") << true << u"Kladde"_s << false;
        QTest::newRow("no saved state") << false << u"Kladde"_s << true;
    }

    void storeKeepsOnlyWhatDiffers() {
        QFETCH(bool, hasSaved);
        QFETCH(QString, secondName);
        QFETCH(bool, kept);
        const auto savedState = hasSaved ? std::optional(saved(u"de-DE"_s)) : std::nullopt;
        m_store->store(edited(u"de-DE"_s), u"app-1"_s, savedState);
        const QDateTime first = m_clock->now();
        m_clock->advance(5);

        m_store->store(edited(u"de-DE"_s, secondName), u"app-1"_s, savedState);

        const auto draft = m_store->draft(u"app-1"_s, u"de-DE"_s);
        QCOMPARE(draft.has_value(), kept);
        if (draft) {
            QCOMPARE(draft->localization, edited(u"de-DE"_s, secondName));
            QCOMPARE(draft->editedAt, first.addSecs(5));
        }
    }

    void keysAndLocales() {
        m_store->store(edited(u"fr-FR"_s), u"app-1"_s, saved(u"fr-FR"_s));
        m_store->store(edited(u"de-DE"_s), u"app-1"_s, saved(u"de-DE"_s));
        // An app id that starts with the other one must not pick up its drafts.
        m_store->store(edited(u"en-US"_s), u"app-10"_s, saved(u"en-US"_s));

        QCOMPARE(m_store->drafts().keys(),
                 (QStringList{u"app-1/de-DE"_s, u"app-1/fr-FR"_s, u"app-10/en-US"_s}));
        QCOMPARE(m_store->locales(u"app-1"_s), (QStringList{u"de-DE"_s, u"fr-FR"_s}));
        QCOMPARE(m_store->locales(u"app-10"_s), QStringList{u"en-US"_s});
        QCOMPARE(m_store->locales(u"app"_s), QStringList{});
        QVERIFY(!m_store->draft(u"app-10"_s, u"de-DE"_s));
    }

    void clearAndSignal() {
        QSignalSpy changed(m_store.get(), &MetadataDraftStore::draftsChanged);
        m_store->store(edited(u"de-DE"_s), u"app-1"_s, saved(u"de-DE"_s));
        m_store->store(edited(u"fr-FR"_s), u"app-1"_s, saved(u"fr-FR"_s));
        QCOMPARE(changed.size(), 2);

        m_store->clear(u"app-1"_s, u"de-DE"_s);
        m_store->clear(u"app-1"_s, u"de-DE"_s);                           // nothing left to clear: no signal
        m_store->store(saved(u"it-IT"_s), u"app-1"_s, saved(u"it-IT"_s)); // equal, nothing stored

        QCOMPARE(changed.size(), 3);
        QCOMPARE(m_store->locales(u"app-1"_s), QStringList{u"fr-FR"_s});
    }
};

QTEST_GUILESS_MAIN(DraftsTest)
#include "tst_drafts.moc"
