#include "metadata/MetadataValidator.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {

// Both sides present, every field filled and within its limits: no rule fails.
ManagedLocalization clean(const QString& locale = u"de-DE"_s) {
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

QStringList rulesOf(const QList<MetadataFinding>& findings) {
    QStringList rules;
    for (const MetadataFinding& f : findings) {
        rules.append(f.rule);
    }
    return rules;
}

const MetadataFinding* findingOf(const MetadataValidationResult& r, const QString& rule) {
    for (const MetadataFinding& f : r.findings) {
        if (f.rule == rule) {
            return &f;
        }
    }
    return nullptr;
}

// A family emoji: five code points, eight UTF-16 units, one character.
const QString family = u"\U0001F468\u200D\U0001F469\u200D\U0001F467"_s;

void setField(ManagedLocalization& l, MetadataField field, const QString& text) {
    l.*MetadataFields::info(field).member = text;
}

} // namespace

class TestValidator : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void lengthLimits_data();
    void lengthLimits();
    void keywords_data();
    void keywords();
    void gatesAndCounters();
    void ruleOrderAndBlocking();
    void subtitleRepeatsName_data();
    void subtitleRepeatsName();
    void httpsURL_data();
    void httpsURL();
    void acrossLocales();
    void hugeTextsDoNotBreak();
};

// Every field is measured against Apple's limit in user-perceived characters, and only its own
// length rule fires; a field without a limit takes any length.
void TestValidator::lengthLimits_data() {
    QTest::addColumn<MetadataField>("field");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("failingRule"); // empty: the text passes
    QTest::addColumn<QString>("title");       // how the finding's title ends

    const QString combined = u"e\u0301"_s; // e + combining acute: two units, one character
    const QMap<MetadataField, int> apple{{MetadataField::Name, 30},
                                         {MetadataField::Subtitle, 30},
                                         {MetadataField::Keywords, 100},
                                         {MetadataField::Description, 4000},
                                         {MetadataField::PromotionalText, 170},
                                         {MetadataField::WhatsNew, 4000}};
    for (const MetadataFieldInfo& info : MetadataFields::table()) {
        const QByteArray key = info.key.toLatin1();
        const int limit = apple.value(info.field, 5000);
        const QString rule = apple.contains(info.field) ? info.key.toString() + u".tooLong"_s : QString();
        const QString title = u"zu lang (%1/%2)"_s.arg(limit + 1).arg(limit);
        for (const auto& [unit, name] :
             {std::pair{u"x"_s, "letters"}, {family, "emoji"}, {combined, "marks"}}) {
            QTest::addRow("%s, %s at limit", key.constData(), name)
                << info.field << unit.repeated(limit) << QString() << QString();
            QTest::addRow("%s, %s over", key.constData(), name)
                << info.field << unit.repeated(limit + 1) << rule << (rule.isEmpty() ? QString() : title);
        }
    }
    // A flag is two regional indicators; a line break written as CR LF is one character.
    QTest::newRow("name of flags at limit")
        << MetadataField::Name << u"\U0001F1E9\U0001F1EA"_s.repeated(30) << QString() << QString();
    QTest::newRow("name of flags over") << MetadataField::Name << u"\U0001F1E9\U0001F1EA"_s.repeated(31)
                                        << u"name.tooLong"_s << u"App-Name zu lang (31/30)"_s;
    QTest::newRow("name with CRLF at limit")
        << MetadataField::Name << QString(28, u'a') + u"\r\n"_s + u"b"_s << QString() << QString();
    QTest::newRow("name with umlauts over")
        << MetadataField::Name << u"Ü"_s.repeated(31) << u"name.tooLong"_s << u"App-Name zu lang (31/30)"_s;
    QTest::newRow("what's new over") << MetadataField::WhatsNew << QString(4001, u'x')
                                     << u"whatsNew.tooLong"_s
                                     << u"Neues in dieser Version zu lang (4001/4000)"_s;
    QTest::newRow("description short below 200")
        << MetadataField::Description << combined.repeated(199) << u"description.short"_s
        << u"Beschreibung ist ungewöhnlich kurz (199 Zeichen)"_s;
    QTest::newRow("description of 200 is not short")
        << MetadataField::Description << family.repeated(200) << QString() << QString();
}

void TestValidator::lengthLimits() {
    QFETCH(MetadataField, field);
    QFETCH(QString, text);
    QFETCH(QString, failingRule);
    QFETCH(QString, title);

    ManagedLocalization l = clean();
    setField(l, field, text);
    const MetadataValidationResult r = MetadataValidator::validate(l, context);
    QStringList lengthRules;
    for (const MetadataFinding& f : r.findings) {
        if (f.rule.endsWith(u".tooLong"_s) || f.rule.endsWith(u".short"_s)) {
            lengthRules.append(f.rule);
        }
    }
    QCOMPARE(lengthRules, failingRule.isEmpty() ? QStringList{} : QStringList{failingRule});
    if (failingRule.isEmpty()) {
        return;
    }
    const MetadataFinding& f = *findingOf(r, failingRule);
    QVERIFY2(f.title.endsWith(title), qPrintable(f.title));
    QCOMPARE(f.field, field);
    QCOMPARE(f.locale, u"de-DE"_s);
    QCOMPARE(f.id(), failingRule + u".de-DE"_s);
    if (failingRule.endsWith(u".tooLong"_s)) {
        QCOMPARE(f.severity, ReleaseCheckSeverity::Confirmed);
        QVERIFY(f.canFixAutomatically);
        QCOMPARE(f.weight, 5);
    }
}

void TestValidator::keywords_data() {
    QTest::addColumn<QString>("keywords");
    QTest::addColumn<QString>("appName");
    QTest::addColumn<QStringList>("findings"); // "rule: title" of the keyword findings

    QTest::newRow("clean") << u"foto,bild"_s << u"Kamera"_s << QStringList{};
    QTest::newRow("blanks only run the first rule")
        << u" \n "_s << u"Kamera"_s << QStringList{u"keywords.empty: Keywords fehlen"_s};
    QTest::newRow("double comma") << u"foto,,bild"_s << u"Kamera"_s
                                  << QStringList{u"keywords.emptyEntries: Leere Keywords in der Liste"_s};
    QTest::newRow("trailing comma") << u"foto,bild,"_s << u"Kamera"_s
                                    << QStringList{u"keywords.emptyEntries: Leere Keywords in der Liste"_s};
    QTest::newRow("blank entry") << u"foto, ,bild"_s << u"Kamera"_s
                                 << QStringList{u"keywords.emptyEntries: Leere Keywords in der Liste"_s,
                                                u"keywords.spacesAfterCommas: Leerzeichen nach Kommas"_s};
    QTest::newRow("case duplicate with blank")
        << u"Foto, foto"_s << u"Kamera"_s
        << QStringList{u"keywords.duplicates: Doppelte Keywords: foto"_s,
                       u"keywords.spacesAfterCommas: Leerzeichen nach Kommas"_s};
    QTest::newRow("duplicates sorted, non-ASCII case")
        << u"zoom,Übung,ZOOM,übung,Zoom"_s << u"Kamera"_s
        << QStringList{u"keywords.duplicates: Doppelte Keywords: zoom, übung"_s};
    QTest::newRow("blank before comma is no space after") << u"foto ,bild"_s << u"Kamera"_s << QStringList{};
    QTest::newRow("app name word, two-letter word ignored")
        << u"le,studio"_s << u"Le Foto Studio"_s
        << QStringList{u"keywords.containsAppName: Keywords wiederholen den App-Namen: studio"_s};
    QTest::newRow("app name split at punctuation")
        << u"PRO,studio,tool"_s << u"Foto-Studio Pro!"_s
        << QStringList{u"keywords.containsAppName: Keywords wiederholen den App-Namen: pro, studio"_s};
    QTest::newRow("app name word only as part of a term") << u"fotostudio"_s << u"Foto"_s << QStringList{};
    QTest::newRow("forbidden characters, as typed, in order")
        << u"50%,gut,Wow!,a/b,preis€,c\\d"_s << u"Kamera"_s
        << QStringList{
               u"keywords.invalidCharacters: Sonderzeichen in Keywords: 50%, Wow!, a/b, preis€, c\\d"_s};
    QTest::newRow("hyphen and apostrophe-like letters are fine")
        << u"e-mail,café,naïve"_s << u"Kamera"_s << QStringList{};
    QTest::newRow("over the limit and more")
        << u"foto, Foto,,"_s + QString(95, u'x') << u"Kamera"_s
        << QStringList{u"keywords.tooLong: Keywords zu lang (107/100)"_s,
                       u"keywords.emptyEntries: Leere Keywords in der Liste"_s,
                       u"keywords.duplicates: Doppelte Keywords: foto"_s,
                       u"keywords.spacesAfterCommas: Leerzeichen nach Kommas"_s};
}

void TestValidator::keywords() {
    QFETCH(QString, keywords);
    QFETCH(QString, appName);
    QFETCH(QStringList, findings);

    ManagedLocalization l = clean();
    l.keywords = keywords;
    const MetadataValidationResult r = MetadataValidator::validate(l, {appName, false});
    QStringList actual;
    for (const MetadataFinding& f : r.findingsFor(MetadataField::Keywords)) {
        actual.append(f.rule + u": "_s + f.title);
    }
    QCOMPARE(actual, findings);
    QCOMPARE(r.findings.size(), findings.size());
}

void TestValidator::gatesAndCounters() {
    // Everything passes: 7 app-info and 18 version rules, all their weight.
    MetadataValidationResult r = MetadataValidator::validate(clean(), context);
    QCOMPARE(r.checkedCount, 25);
    QCOMPARE(r.passedCount, 25);
    QCOMPARE(r.passedWeight, 68);

    // The first version leaves both what's-new rules out of every counter.
    ManagedLocalization l = clean();
    l.whatsNew.clear();
    r = MetadataValidator::validate(l, {context.appName, true});
    QVERIFY(r.findings.isEmpty());
    QCOMPARE(r.checkedCount, 23);
    QCOMPARE(r.passedWeight, 58);

    // Neither side at Apple: nothing runs.
    l.appInfoLocalizationID.reset();
    l.versionLocalizationID.reset();
    r = MetadataValidator::validate(l, context);
    QVERIFY(r.findings.isEmpty());
    QCOMPARE(r.checkedCount, 0);
    QCOMPARE(r.passedCount, 0);
    QCOMPARE(r.passedWeight, 0);

    // A name of blanks is empty, yet not the empty text, so its length rule runs (and passes);
    // the empty subtitle and privacy URL skip their length, repetition and form rules.
    ManagedLocalization appInfoOnly;
    appInfoOnly.locale = u"fr-FR"_s;
    appInfoOnly.appInfoLocalizationID = u"ai"_s;
    appInfoOnly.name = u"   "_s;
    r = MetadataValidator::validate(appInfoOnly, context);
    QCOMPARE(rulesOf(r.findings), (QStringList{u"name.empty"_s, u"subtitle.empty"_s, u"privacyURL.empty"_s}));
    QCOMPARE(r.checkedCount, 4);
    QCOMPARE(r.passedCount, 1);
    QCOMPARE(r.passedWeight, 5);
    QCOMPARE(r.locale, u"fr-FR"_s);
}

void TestValidator::ruleOrderAndBlocking() {
    ManagedLocalization l;
    l.locale = u"en-US"_s;
    l.appInfoLocalizationID = u"ai"_s;
    l.versionLocalizationID = u"v"_s;
    l.name = QString(31, u'n');
    l.subtitle = u"x"_s;
    l.privacyPolicyURL = u"http://example.com"_s;
    l.description = u"kurz"_s;
    l.supportURL = u"ftp://example.com"_s;
    l.marketingURL = u"https://"_s;
    l.promotionalText = u"\t"_s;
    const MetadataValidationResult r = MetadataValidator::validate(l, context);
    QCOMPARE(rulesOf(r.findings),
             (QStringList{u"name.tooLong"_s, u"privacyPolicyURL.invalid"_s, u"description.short"_s,
                          u"keywords.empty"_s, u"promotionalText.empty"_s, u"whatsNew.empty"_s,
                          u"supportURL.invalid"_s, u"marketingURL.invalid"_s}));
    QCOMPARE(rulesOf(r.blockingFindings()), (QStringList{u"name.tooLong"_s, u"whatsNew.empty"_s}));
    QVERIFY(r.isBlocking());
    QCOMPARE(rulesOf(r.findingsFor(MetadataField::Description)), QStringList{u"description.short"_s});
    const MetadataFinding* whatsNew = findingOf(r, u"whatsNew.empty"_s);
    QCOMPARE(whatsNew->title, u"„Neues“ fehlt"_s);
    QVERIFY(!whatsNew->canFixAutomatically);
    QCOMPARE(findingOf(r, u"supportURL.invalid"_s)->severity, ReleaseCheckSeverity::Warning);
    QCOMPARE(findingOf(r, u"name.tooLong"_s)->explanation,
             u"Apple erlaubt höchstens 30 Zeichen und weist längere Texte ab."_s);

    // Empty required texts block; empty optional ones only advise.
    ManagedLocalization empty;
    empty.locale = u"ja"_s;
    empty.appInfoLocalizationID = u"ai"_s;
    empty.versionLocalizationID = u"v"_s;
    const MetadataValidationResult e = MetadataValidator::validate(empty, context);
    QCOMPARE(rulesOf(e.findings),
             (QStringList{u"name.empty"_s, u"subtitle.empty"_s, u"privacyURL.empty"_s, u"description.empty"_s,
                          u"keywords.empty"_s, u"promotionalText.empty"_s, u"whatsNew.empty"_s,
                          u"supportURL.empty"_s, u"marketingURL.empty"_s}));
    QCOMPARE(rulesOf(e.blockingFindings()), (QStringList{u"name.empty"_s, u"description.empty"_s,
                                                         u"whatsNew.empty"_s, u"supportURL.empty"_s}));
}

void TestValidator::subtitleRepeatsName_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("subtitle");
    QTest::addColumn<bool>("repeats");
    QTest::newRow("other case") << u" Fotostudio "_s << u"Das FOTOSTUDIO für alle"_s << true;
    QTest::newRow("umlaut in other case") << u"Übersicht"_s << u"ÜBERSICHT behalten"_s << true;
    QTest::newRow("only part of the name") << u"Fotostudio Pro"_s << u"Ein Fotostudio"_s << false;
    QTest::newRow("blank name") << u"  "_s << u"Fotostudio"_s << false;
}

void TestValidator::subtitleRepeatsName() {
    QFETCH(QString, name);
    QFETCH(QString, subtitle);
    QFETCH(bool, repeats);
    ManagedLocalization l = clean();
    l.name = name;
    l.subtitle = subtitle;
    const MetadataValidationResult r = MetadataValidator::validate(l, context);
    QCOMPARE(findingOf(r, u"subtitle.repeatsName"_s) != nullptr, repeats);
}

void TestValidator::httpsURL_data() {
    QTest::addColumn<QString>("url");
    QTest::addColumn<bool>("valid");
    QTest::newRow("https") << u"https://example.com/privacy"_s << true;
    QTest::newRow("capital scheme") << u"HTTPS://Example.com"_s << true;
    QTest::newRow("surrounding blanks") << u"  https://example.com \n"_s << true;
    QTest::newRow("with port and query") << u"https://example.com:8443/a?b=c#d"_s << true;
    QTest::newRow("http") << u"http://example.com"_s << false;
    QTest::newRow("no host") << u"https://"_s << false;
    QTest::newRow("path only") << u"https:///pfad"_s << false;
    QTest::newRow("no scheme") << u"example.com"_s << false;
    QTest::newRow("blank inside") << u"https://exa mple.com"_s << false;
    QTest::newRow("mail") << u"mailto:a@example.com"_s << false;
}

void TestValidator::httpsURL() {
    QFETCH(QString, url);
    QFETCH(bool, valid);
    QCOMPARE(MetadataValidator::isValidHTTPSURL(url), valid);

    // The same form test stands behind the privacy URL rule of the app-info side.
    ManagedLocalization l = clean();
    l.privacyPolicyURL = url;
    const MetadataValidationResult r = MetadataValidator::validate(l, context);
    QCOMPARE(rulesOf(r.findings), valid ? QStringList{} : QStringList{u"privacyPolicyURL.invalid"_s});
}

void TestValidator::acrossLocales() {
    ManagedLocalization de = clean(u"de-DE"_s);
    ManagedLocalization at = clean(u"de-AT"_s);
    ManagedLocalization fr = clean(u"fr-FR"_s);
    ManagedLocalization en = clean(u"en-US"_s);
    en.subtitle = u"  "_s + en.subtitle + u"\n"_s; // equal after trimming
    ManagedLocalization ja = clean(u"ja"_s);
    ja.description = u"anders"_s;
    ManagedLocalization noSubtitle = clean(u"it"_s);
    noSubtitle.subtitle = u" "_s;

    // Sorted by locale the first is de-AT; every later copy points at it.
    const QList<MetadataFinding> findings =
        MetadataValidator::validateAcrossLocales({fr, ja, de, noSubtitle, en, at});
    QCOMPARE(rulesOf(findings), QStringList(3, u"locale.untranslated"_s));
    QStringList locales;
    for (const MetadataFinding& f : findings) {
        locales.append(f.locale);
        QCOMPARE(f.title, u"Texte identisch mit Deutsch (Österreich)"_s);
        QCOMPARE(f.field, MetadataField::Description);
        QCOMPARE(f.severity, ReleaseCheckSeverity::Recommendation);
    }
    QCOMPARE(locales, (QStringList{u"de-DE"_s, u"en-US"_s, u"fr-FR"_s}));
    QCOMPARE(findings.first().explanation,
             u"Untertitel und Beschreibung stimmen Zeichen für Zeichen mit Deutsch (Österreich) überein. Das "
             u"deutet auf eine kopierte, nicht übersetzte Store-Seite hin."_s);

    // An unknown code is named by itself; one candidate alone is never a copy.
    ManagedLocalization custom = clean(u"aa-XX"_s);
    QCOMPARE(MetadataValidator::validateAcrossLocales({de, custom}).first().title,
             u"Texte identisch mit aa-XX"_s);
    QVERIFY(MetadataValidator::validateAcrossLocales({de, noSubtitle}).isEmpty());
}

void TestValidator::hugeTextsDoNotBreak() {
    ManagedLocalization l = clean();
    const QString huge =
        (family + u"e\u0301,x\r\n"_s).repeated(20000) + QChar(0xD800); // ends in a lone surrogate
    for (MetadataField field : MetadataFields::all()) {
        setField(l, field, huge);
    }
    const MetadataValidationResult r = MetadataValidator::validate(l, {huge, false});
    for (const char* rule : {"name.tooLong", "subtitle.tooLong", "keywords.tooLong", "description.tooLong",
                             "promotionalText.tooLong", "whatsNew.tooLong"}) {
        QVERIFY2(findingOf(r, QString::fromLatin1(rule)), rule);
    }
    QCOMPARE(findingOf(r, u"name.tooLong"_s)->title, u"App-Name zu lang (100001/30)"_s);
    QCOMPARE(MetadataValidator::validateAcrossLocales({l, clean(u"en-US"_s), l}).size(), 1);
}

QTEST_GUILESS_MAIN(TestValidator)
#include "tst_validator.moc"
