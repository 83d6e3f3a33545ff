#include "metadata/AppStoreLocales.h"
#include "metadata/LocalizationMatrix.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {

ManagedLocalization complete(const QString& locale) {
    ManagedLocalization l;
    l.locale = locale;
    l.appInfoLocalizationID = u"ai-"_s + locale;
    l.versionLocalizationID = u"v-"_s + locale;
    l.name = u"Fotostudio"_s;
    l.subtitle = u"Bilder schnell bearbeiten"_s;
    l.privacyPolicyURL = u"https://example.com/datenschutz"_s;
    l.description = QString(250, u'd');
    l.keywords = u"foto,bild,filter"_s;
    l.promotionalText = u"Jetzt neu"_s;
    l.whatsNew = u"Fehler behoben"_s;
    l.supportURL = u"https://example.com/hilfe"_s;
    l.marketingURL = u"https://example.com"_s;
    return l;
}

const MetadataValidator::Context context{u"Fotostudio"_s, false};

const LocalizationMatrix::Cell& cellOf(const LocalizationMatrix::Row& row, const QString& column) {
    for (const LocalizationMatrix::Cell& c : row.cells) {
        if (c.columnID == column) {
            return c;
        }
    }
    qFatal("no column");
}

} // namespace

using State = LocalizationMatrix::CellState;

class TestMatrix : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void looksValid_data();
    void looksValid();
    void availableAndNames();
    void textCells_data();
    void textCells();
    void screenshotCells_data();
    void screenshotCells();
    void rowsAndIncomplete();
};

void TestMatrix::looksValid_data() {
    QTest::addColumn<QString>("code");
    QTest::addColumn<bool>("valid");
    for (const char* ok : {"de", "de-DE", "fil", "zh-Hans", "pt-br", "de-", "de--DE", "-de"}) {
        QTest::newRow(ok) << QString::fromLatin1(ok) << true;
    }
    for (const char* bad : {"DE", "de-DE-x", "d", "de-1", "", "-", "deut", "De-DE", "de-D", "de-Hantx", " de",
                            "de_DE", "1de"}) {
        QTest::newRow(*bad ? bad : "empty") << QString::fromLatin1(bad) << false;
    }
}

void TestMatrix::looksValid() {
    QFETCH(QString, code);
    QFETCH(bool, valid);
    QCOMPARE(AppStoreLocales::looksValid(code), valid);
}

void TestMatrix::availableAndNames() {
    const QStringList all = AppStoreLocales::codes();
    QVERIFY(AppStoreLocales::available(all).isEmpty());
    QCOMPARE(AppStoreLocales::available({u"xx-YY"_s}), all);
    const QStringList rest = AppStoreLocales::available({u"en-US"_s, u"ar-SA"_s, u"zh-Hant"_s});
    QCOMPARE(rest.size(), all.size() - 3);
    QCOMPARE(rest.first(), u"ca"_s);
    QCOMPARE(rest.last(), u"zh-Hans"_s);

    // Every store language has a German name of its own; codes not known stay as typed.
    for (const QString& code : all) {
        QVERIFY2(AppStoreLocales::looksValid(code), qPrintable(code));
        QVERIFY2(AppStoreLocales::displayName(code) != code, qPrintable(code));
    }
    QCOMPARE(AppStoreLocales::displayName(u"zh-hans"_s), u"Chinesisch (vereinfacht)"_s);
    QCOMPARE(AppStoreLocales::displayName(u"de-XK"_s), u"de-XK"_s);
    QCOMPARE(AppStoreLocales::displayName(u"xx"_s), u"xx"_s);

    ManagedLocalization nameOnly;
    nameOnly.locale = u"fr-FR"_s;
    nameOnly.name = u"Studio"_s;
    ManagedLocalization blank;
    blank.locale = u"it"_s;
    blank.name = u"  "_s;
    blank.description = u"\n"_s;
    ManagedLocalization descriptionOnly;
    descriptionOnly.locale = u"ja"_s;
    descriptionOnly.description = u"Text"_s;
    QCOMPARE(AppStoreLocales::seedLocales({nameOnly, blank, descriptionOnly}),
             (QStringList{u"fr-FR"_s, u"ja"_s}));
}

void TestMatrix::textCells_data() {
    QTest::addColumn<ManagedLocalization>("localization");
    QTest::addColumn<bool>("isFirstVersion");
    QTest::addColumn<QString>("column");
    QTest::addColumn<State>("state");
    QTest::addColumn<QString>("detail"); // empty: none

    ManagedLocalization l = complete(u"de-DE"_s);
    QTest::newRow("complete") << l << false << u"name"_s << State::Complete << QString();

    l = complete(u"de-DE"_s);
    l.subtitle.clear();
    QTest::newRow("empty optional subtitle")
        << l << false << u"subtitle"_s << State::Optional << u"Untertitel fehlt"_s;

    l = complete(u"de-DE"_s);
    l.name = u" "_s;
    QTest::newRow("empty name") << l << false << u"name"_s << State::Missing << u"App-Name fehlt"_s;

    l = complete(u"de-DE"_s);
    l.name = QString(31, u'n');
    QTest::newRow("name too long") << l << false << u"name"_s << State::Warning
                                   << u"App-Name zu lang (31/30)"_s;

    l = complete(u"de-DE"_s);
    l.keywords = u"foto,Foto"_s;
    QTest::newRow("advice on a filled field")
        << l << false << u"keywords"_s << State::Warning << u"Doppelte Keywords: foto"_s;

    l = complete(u"de-DE"_s);
    l.keywords.clear();
    QTest::newRow("empty keywords only advised")
        << l << false << u"keywords"_s << State::Optional << u"Keywords fehlen"_s;

    // The first finding that blocks names the cell, even behind an earlier piece of advice.
    l = complete(u"de-DE"_s);
    l.keywords = u"foto,,"_s + QString(100, u'k');
    QTest::newRow("blocking finding wins")
        << l << false << u"keywords"_s << State::Warning << u"Keywords zu lang (106/100)"_s;

    l = complete(u"de-DE"_s);
    l.whatsNew.clear();
    QTest::newRow("what's new missing")
        << l << false << u"whatsNew"_s << State::Missing << u"„Neues“ fehlt"_s;
    QTest::newRow("what's new not asked of a first version")
        << l << true << u"whatsNew"_s << State::Complete << QString();

    l = complete(u"de-DE"_s);
    l.description = u"kurz"_s;
    QTest::newRow("short description") << l << false << u"description"_s << State::Warning
                                       << u"Beschreibung ist ungewöhnlich kurz (4 Zeichen)"_s;
}

void TestMatrix::textCells() {
    QFETCH(ManagedLocalization, localization);
    QFETCH(bool, isFirstVersion);
    QFETCH(QString, column);
    QFETCH(State, state);
    QFETCH(QString, detail);

    const LocalizationMatrix m =
        LocalizationMatrix::make({localization}, {context.appName, isFirstVersion}, std::nullopt, {});
    QCOMPARE(m.rows.size(), 1);
    const LocalizationMatrix::Cell& cell = cellOf(m.rows.first(), column);
    QCOMPARE(cell.state, state);
    QCOMPARE(cell.detail, detail.isEmpty() ? std::nullopt : std::optional<QString>(detail));
    QCOMPARE(cell.id, u"de-DE."_s + column);
}

void TestMatrix::screenshotCells_data() {
    QTest::addColumn<std::optional<ScreenshotSummary>>("summary");
    QTest::addColumn<State>("state");
    QTest::addColumn<QString>("detail");

    QTest::newRow("not in the map") << std::optional<ScreenshotSummary>() << State::Unknown << QString();
    QTest::newRow("unavailable") << std::optional(ScreenshotSummary{3, 3, 9, true}) << State::Unknown
                                 << u"Nicht geladen"_s;
    QTest::newRow("no set") << std::optional(ScreenshotSummary{0, 0, 0, false}) << State::Missing
                            << u"Keine Screenshot-Gruppe"_s;
    QTest::newRow("one set") << std::optional(ScreenshotSummary{1, 1, 4, false}) << State::Complete
                             << u"4 in 1 Gruppe"_s;
    QTest::newRow("two sets") << std::optional(ScreenshotSummary{2, 2, 7, false}) << State::Complete
                              << u"7 in 2 Gruppen"_s;
    QTest::newRow("one of two filled")
        << std::optional(ScreenshotSummary{2, 1, 3, false}) << State::Warning << u"1 von 2 Gruppen gefüllt"_s;
}

void TestMatrix::screenshotCells() {
    QFETCH(std::optional<ScreenshotSummary>, summary);
    QFETCH(State, state);
    QFETCH(QString, detail);

    QHash<QString, ScreenshotSummary> map{{u"fr-FR"_s, ScreenshotSummary{5, 5, 5, false}}};
    if (summary) {
        map.insert(u"de-DE"_s, *summary);
    }
    const LocalizationMatrix m = LocalizationMatrix::make({complete(u"de-DE"_s)}, context, std::nullopt, map);
    const LocalizationMatrix::Cell& cell = cellOf(m.rows.first(), u"screenshots"_s);
    QCOMPARE(cell.state, state);
    QCOMPARE(cell.detail, detail.isEmpty() ? std::nullopt : std::optional<QString>(detail));
    QCOMPARE(cell.section, SidebarSection::Screenshots);
    QCOMPARE(m.rows.first().isIncomplete(), state == State::Missing || state == State::Warning);
}

void TestMatrix::rowsAndIncomplete() {
    QVERIFY(LocalizationMatrix::make({}, context, std::nullopt, {}).rows.isEmpty());
    QCOMPARE(LocalizationMatrix{}.summaryText(), u"Keine Lokalisierungen gefunden"_s);

    ManagedLocalization fr = complete(u"fr-FR"_s);
    fr.subtitle.clear(); // only optional: not incomplete
    ManagedLocalization ja = complete(u"ja"_s);
    ja.description.clear();
    ManagedLocalization custom = complete(u"aa-XX"_s);
    const QHash<QString, ScreenshotSummary> shots{{u"de-DE"_s, {1, 1, 2, false}},
                                                  {u"fr-FR"_s, {1, 1, 2, false}}};

    const LocalizationMatrix m =
        LocalizationMatrix::make({ja, fr, complete(u"de-DE"_s), custom}, context, u"de-DE"_s, shots);
    QStringList ids;
    for (const LocalizationMatrix::Row& r : m.rows) {
        ids.append(r.id);
        QCOMPARE(r.cells.size(), 6);
        QCOMPARE(r.isPrimary, r.locale == u"de-DE"_s);
    }
    QCOMPARE(ids, (QStringList{u"aa-XX"_s, u"de-DE"_s, u"fr-FR"_s, u"ja"_s}));
    QCOMPARE(m.rows.at(0).displayName, u"aa-XX"_s);
    QCOMPARE(m.rows.at(1).displayName, u"Deutsch (Deutschland)"_s);

    const QList<LocalizationMatrix::Row> incomplete = m.incompleteRows();
    QCOMPARE(incomplete.size(), 1);
    QCOMPARE(incomplete.first().locale, u"ja"_s);
    const LocalizationMatrix::Cell& description = cellOf(incomplete.first(), u"description"_s);
    QCOMPARE(description.state, State::Missing);
    QCOMPARE(description.section, SidebarSection::AppInformation);
    QCOMPARE(description.locale, u"ja"_s);
    QCOMPARE(cellOf(incomplete.first(), u"keywords"_s).section, SidebarSection::AppStoreOptimization);
    QCOMPARE(m.summaryText(), u"1 von 4 Sprachen brauchen noch etwas"_s);

    const LocalizationMatrix done =
        LocalizationMatrix::make({fr, complete(u"de-DE"_s)}, context, std::nullopt, shots);
    QCOMPARE(done.summaryText(), u"Alle 2 Sprachen sind vollständig."_s);
}

QTEST_GUILESS_MAIN(TestMatrix)
#include "tst_matrix.moc"
