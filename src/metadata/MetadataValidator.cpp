#include "metadata/MetadataValidator.h"

#include "metadata/AppStoreLocales.h"

#include <QHash>
#include <QSet>
#include <QTextBoundaryFinder>
#include <QUrl>

#include <algorithm>
#include <limits>

using namespace Qt::StringLiterals;

QList<MetadataFinding> MetadataValidationResult::findingsFor(MetadataField field) const {
    QList<MetadataFinding> kept;
    for (const MetadataFinding& f : findings) {
        if (f.field == field) {
            kept.append(f);
        }
    }
    return kept;
}

QList<MetadataFinding> MetadataValidationResult::blockingFindings() const {
    QList<MetadataFinding> kept;
    for (const MetadataFinding& f : findings) {
        if (f.severity == ReleaseCheckSeverity::Confirmed) {
            kept.append(f);
        }
    }
    return kept;
}

bool MetadataValidationResult::isBlocking() const {
    return std::any_of(findings.cbegin(), findings.cend(), [](const MetadataFinding& f) {
        return f.severity == ReleaseCheckSeverity::Confirmed;
    });
}

namespace {

using Severity = ReleaseCheckSeverity;

// Empty means nothing but whitespace and line ends; checked without building a trimmed copy.
bool isBlank(const QString& text) {
    return std::all_of(text.cbegin(), text.cend(), [](QChar c) { return c.isSpace(); });
}

struct Rule {
    QString id;
    MetadataField field;
    Severity severity;
    int weight;
    bool canFix = false;
};

// Runs the rules of one language: every rule that runs is counted, a pass adds its weight, a
// failure adds its finding. Titles and explanations are only composed for failures.
class Run {
public:
    explicit Run(MetadataValidationResult& result) : m_result(result) {}

    template <typename Describe> void step(const Rule& rule, bool fails, Describe&& describe) {
        ++m_result.checkedCount;
        if (!fails) {
            ++m_result.passedCount;
            m_result.passedWeight += rule.weight;
            return;
        }
        auto [title, explanation] = describe();
        m_result.findings.append(MetadataFinding{rule.id, rule.field, m_result.locale, rule.severity,
                                                 std::move(title), std::move(explanation), rule.canFix,
                                                 rule.weight});
    }

    void step(const Rule& rule, bool fails, const QString& title, const QString& explanation) {
        step(rule, fails, [&] { return std::pair{title, explanation}; });
    }

private:
    MetadataValidationResult& m_result;
};

QString tooLongExplanation(int limit) {
    return u"Apple erlaubt höchstens %1 Zeichen und weist längere Texte ab."_s.arg(limit);
}

// Only fields with a limit are measured.
int limitOf(MetadataField field) {
    const std::optional<int> limit = MetadataFields::info(field).limit;
    Q_ASSERT(limit);
    return limit.value_or(std::numeric_limits<int>::max());
}

// A too-long rule: "<label> zu lang (count/limit)", with the field's limit.
void lengthStep(Run& run, const Rule& rule, const QString& text, const QString& label) {
    const int limit = limitOf(rule.field);
    const int count = MetadataValidator::characterCount(text);
    run.step(rule, count > limit, [&] {
        return std::pair{u"%1 zu lang (%2/%3)"_s.arg(label).arg(count).arg(limit), tooLongExplanation(limit)};
    });
}

const QString invalidURLExplanation =
    u"Apple erwartet eine erreichbare HTTPS-URL. Geprüft wird hier nur die Form der Adresse, nicht ihre "
    u"Erreichbarkeit."_s;

void urlSteps(Run& run, const Rule& empty, const QString& emptyTitle, const QString& emptyExplanation,
              const Rule& invalid, const QString& invalidTitle, const QString& url) {
    const bool blank = isBlank(url);
    run.step(empty, blank, emptyTitle, emptyExplanation);
    if (!blank) {
        run.step(invalid, !MetadataValidator::isValidHTTPSURL(url), invalidTitle, invalidURLExplanation);
    }
}

void appInfoRules(Run& run, const ManagedLocalization& l) {
    const bool nameBlank = isBlank(l.name);
    run.step({u"name.empty"_s, MetadataField::Name, Severity::Confirmed, 5}, nameBlank, u"App-Name fehlt"_s,
             u"Der App-Name ist Pflicht. Ohne ihn lässt sich die Version nicht einreichen."_s);
    // A name of blanks still has a length: only the truly empty text skips the limit.
    if (!l.name.isEmpty()) {
        lengthStep(run, {u"name.tooLong"_s, MetadataField::Name, Severity::Confirmed, 5, true}, l.name,
                   u"App-Name"_s);
    }

    const bool subtitleBlank = isBlank(l.subtitle);
    run.step(
        {u"subtitle.empty"_s, MetadataField::Subtitle, Severity::Recommendation, 1}, subtitleBlank,
        u"Untertitel fehlt"_s,
        u"Der Untertitel ist optional, erscheint aber direkt unter dem Namen in Suche und Produktseite – "
        u"ungenutzter Platz für die wichtigste Aussage der App."_s);
    if (!l.subtitle.isEmpty()) {
        lengthStep(run, {u"subtitle.tooLong"_s, MetadataField::Subtitle, Severity::Confirmed, 5, true},
                   l.subtitle, u"Untertitel"_s);
    }
    if (!subtitleBlank && !nameBlank) {
        // Case folding rather than a collator: it finds "FOTOSTUDIO" in "Das Fotostudio" in every
        // language, which is what the reader of the store page sees as a repetition.
        const bool repeats = l.subtitle.contains(l.name.trimmed(), Qt::CaseInsensitive);
        run.step(
            {u"subtitle.repeatsName"_s, MetadataField::Subtitle, Severity::Recommendation, 0}, repeats,
            u"Untertitel wiederholt den App-Namen"_s,
            u"Name und Untertitel stehen im App Store direkt untereinander. Die Wiederholung kostet Platz, "
            u"den ein zusätzliches Nutzenversprechen besser füllt."_s);
    }

    urlSteps(
        run, {u"privacyURL.empty"_s, MetadataField::PrivacyPolicyURL, Severity::Warning, 3},
        u"Datenschutz-URL fehlt"_s,
        u"Apple verlangt für praktisch jede App eine Datenschutzerklärung. Ob sie für diese App zwingend "
        u"ist, gibt die API nicht aus – fehlt sie, blockiert Apple die Einreichung in aller Regel."_s,
        {u"privacyPolicyURL.invalid"_s, MetadataField::PrivacyPolicyURL, Severity::Warning, 3},
        u"Datenschutz-URL ist keine gültige HTTPS-Adresse"_s, l.privacyPolicyURL);
}

// Lower-cased words of the app name of more than two characters. Anything that is not a letter,
// digit or mark separates words, so "Foto-Studio" gives "foto" and "studio".
QSet<QString> appNameWords(const QString& appName) {
    QSet<QString> words;
    QString word;
    auto flush = [&] {
        if (MetadataValidator::characterCount(word) > 2) {
            words.insert(word.toLower());
        }
        word.clear();
    };
    // By code point, so that letters outside the BMP stay inside their word.
    for (const char32_t c : appName.toUcs4()) {
        if (QChar::isLetterOrNumber(c) || QChar::isMark(c)) {
            word.append(QString::fromUcs4(&c, 1));
        } else {
            flush();
        }
    }
    flush();
    return words;
}

QString sortedJoined(QStringList list) {
    std::sort(list.begin(), list.end());
    return list.join(u", "_s);
}

void keywordRules(Run& run, const QString& keywords, const QString& appName) {
    const MetadataField field = MetadataField::Keywords;
    const bool blank = isBlank(keywords);
    run.step({u"keywords.empty"_s, field, Severity::Warning, 3}, blank, u"Keywords fehlen"_s,
             u"Ohne Keywords findet die App-Store-Suche die App nur über Name und Untertitel."_s);
    if (blank) {
        return;
    }

    const int limit = limitOf(field);
    const int count = MetadataValidator::characterCount(keywords);
    run.step({u"keywords.tooLong"_s, field, Severity::Confirmed, 5, true}, count > limit, [&] {
        return std::pair{u"Keywords zu lang (%1/%2)"_s.arg(count).arg(limit),
                         u"Apple erlaubt höchstens %1 Zeichen inklusive Trennkommas."_s.arg(limit)};
    });

    bool hasEmptyEntry = false;
    QStringList terms;
    for (const QString& piece : keywords.split(u',', Qt::KeepEmptyParts)) {
        QString entry = piece.trimmed();
        if (entry.isEmpty()) {
            hasEmptyEntry = true;
        } else {
            terms.append(std::move(entry));
        }
    }
    run.step({u"keywords.emptyEntries"_s, field, Severity::Warning, 0}, hasEmptyEntry,
             u"Leere Keywords in der Liste"_s,
             u"Aufeinanderfolgende oder abschließende Kommas erzeugen leere Einträge, die nur Zeichen "
             u"verbrauchen."_s);

    QHash<QString, int> occurrences;
    for (const QString& term : std::as_const(terms)) {
        ++occurrences[term.toLower()];
    }
    QStringList duplicates;
    for (auto it = occurrences.cbegin(); it != occurrences.cend(); ++it) {
        if (it.value() > 1) {
            duplicates.append(it.key());
        }
    }
    run.step({u"keywords.duplicates"_s, field, Severity::Warning, 0}, !duplicates.isEmpty(), [&] {
        return std::pair{
            u"Doppelte Keywords: "_s + sortedJoined(duplicates),
            u"Ein Begriff wirkt durch Wiederholung nicht stärker, verbraucht aber jedes Mal Zeichen "
            u"vom %1er-Budget."_s.arg(limit)};
    });

    QStringList nameTerms;
    for (const QString& word : appNameWords(appName)) {
        if (occurrences.contains(word)) {
            nameTerms.append(word);
        }
    }
    run.step({u"keywords.containsAppName"_s, field, Severity::Recommendation, 0}, !nameTerms.isEmpty(), [&] {
        return std::pair{u"Keywords wiederholen den App-Namen: "_s + sortedJoined(nameTerms),
                         u"Der App-Name wird von der App-Store-Suche bereits indiziert. Diese Begriffe im "
                         u"Keyword-Feld zu wiederholen bringt nichts und kostet Zeichen."_s};
    });

    run.step({u"keywords.spacesAfterCommas"_s, field, Severity::Recommendation, 0},
             keywords.contains(u", "_s), u"Leerzeichen nach Kommas"_s,
             u"Jedes Leerzeichen zählt gegen das %1-Zeichen-Budget. „a,b,c“ statt „a, b, c“ macht mehr "
             u"Suchbegriffe möglich."_s.arg(limit));

    static const QString forbidden = u"!?.;:\"'()[]{}<>|/\\*#@&%$€"_s;
    QStringList offending;
    for (const QString& term : std::as_const(terms)) {
        if (std::any_of(term.cbegin(), term.cend(), [](QChar c) { return forbidden.contains(c); })) {
            offending.append(term);
        }
    }
    run.step({u"keywords.invalidCharacters"_s, field, Severity::Warning, 0}, !offending.isEmpty(), [&] {
        return std::pair{
            u"Sonderzeichen in Keywords: "_s + offending.join(u", "_s),
            u"Das Keyword-Feld ist eine reine Begriffsliste. Satz- und Sonderzeichen verbrauchen "
            u"Zeichen, ohne die Auffindbarkeit zu verbessern."_s};
    });
}

void versionRules(Run& run, const ManagedLocalization& l, const MetadataValidator::Context& context) {
    const bool descriptionBlank = isBlank(l.description);
    run.step({u"description.empty"_s, MetadataField::Description, Severity::Confirmed, 5}, descriptionBlank,
             u"Beschreibung fehlt"_s, u"Die Beschreibung ist für jede angelegte Sprache Pflicht."_s);
    if (!descriptionBlank) {
        const int limit = limitOf(MetadataField::Description);
        const int threshold = MetadataValidator::shortDescriptionThreshold;
        const int count = MetadataValidator::characterCount(l.description);
        run.step({u"description.tooLong"_s, MetadataField::Description, Severity::Confirmed, 5, true},
                 count > limit, [&] {
                     return std::pair{u"Beschreibung zu lang (%1/%2)"_s.arg(count).arg(limit),
                                      tooLongExplanation(limit)};
                 });
        run.step({u"description.short"_s, MetadataField::Description, Severity::Recommendation, 0},
                 count < threshold, [&] {
                     return std::pair{
                         u"Beschreibung ist ungewöhnlich kurz (%1 Zeichen)"_s.arg(count),
                         u"Apple schreibt keine Mindestlänge vor – erfahrungsgemäß wirken "
                         u"Beschreibungen unter %1 Zeichen aber unfertig und lassen Suchbegriffe "
                         u"ungenutzt."_s.arg(threshold)};
                 });
    }

    keywordRules(run, l.keywords, context.appName);

    const bool promoBlank = isBlank(l.promotionalText);
    run.step({u"promotionalText.empty"_s, MetadataField::PromotionalText, Severity::Recommendation, 1},
             promoBlank, u"Werbetext fehlt"_s,
             u"Der Werbetext lässt sich ohne neue Einreichung ändern – der einzige Store-Text, der zwischen "
             u"Releases aktualisiert werden kann."_s);
    if (!promoBlank) {
        lengthStep(
            run, {u"promotionalText.tooLong"_s, MetadataField::PromotionalText, Severity::Confirmed, 5, true},
            l.promotionalText, u"Werbetext"_s);
    }

    // The first release has nothing to tell about news, so neither rule runs for it.
    if (!context.isFirstVersion) {
        const bool whatsNewBlank = isBlank(l.whatsNew);
        run.step({u"whatsNew.empty"_s, MetadataField::WhatsNew, Severity::Confirmed, 5}, whatsNewBlank,
                 u"„Neues“ fehlt"_s,
                 u"Ab dem zweiten Release verlangt Apple je Sprache einen Text zu den Neuerungen."_s);
        if (!whatsNewBlank) {
            lengthStep(run, {u"whatsNew.tooLong"_s, MetadataField::WhatsNew, Severity::Confirmed, 5, true},
                       l.whatsNew, u"Neues in dieser Version"_s);
        }
    }

    urlSteps(run, {u"supportURL.empty"_s, MetadataField::SupportURL, Severity::Confirmed, 5},
             u"Support-URL fehlt"_s, u"Apple verlangt für jede Sprache eine Support-URL."_s,
             {u"supportURL.invalid"_s, MetadataField::SupportURL, Severity::Warning, 3},
             u"Support-URL ist keine gültige HTTPS-Adresse"_s, l.supportURL);
    urlSteps(run, {u"marketingURL.empty"_s, MetadataField::MarketingURL, Severity::Recommendation, 1},
             u"Marketing-URL fehlt"_s, u"Optional. Verlinkt von der Produktseite auf die eigene Website."_s,
             {u"marketingURL.invalid"_s, MetadataField::MarketingURL, Severity::Warning, 3},
             u"Marketing-URL ist keine gültige HTTPS-Adresse"_s, l.marketingURL);
}

} // namespace

int MetadataValidator::characterCount(const QString& text) {
    if (text.isEmpty()) {
        return 0;
    }
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    int count = 0;
    while (finder.toNextBoundary() != -1) {
        ++count;
    }
    return count;
}

MetadataValidationResult MetadataValidator::validate(const ManagedLocalization& localization,
                                                     const Context& context) {
    MetadataValidationResult result;
    result.locale = localization.locale;
    Run run(result);
    if (localization.appInfoLocalizationID) {
        appInfoRules(run, localization);
    }
    if (localization.versionLocalizationID) {
        versionRules(run, localization, context);
    }
    return result;
}

QList<MetadataFinding>
MetadataValidator::validateAcrossLocales(const QList<ManagedLocalization>& localizations) {
    struct Keyed {
        QString locale;
        QString key;
    };
    QList<Keyed> candidates;
    for (const ManagedLocalization& l : localizations) {
        const QString subtitle = l.subtitle.trimmed();
        const QString description = l.description.trimmed();
        if (!subtitle.isEmpty() && !description.isEmpty()) {
            candidates.append({l.locale, subtitle + QChar(0x0001) + description});
        }
    }
    if (candidates.size() < 2) {
        return {};
    }
    std::stable_sort(candidates.begin(), candidates.end(),
                     [](const Keyed& a, const Keyed& b) { return a.locale < b.locale; });

    QList<MetadataFinding> findings;
    QHash<QString, QString> firstLocaleOfKey;
    for (const Keyed& c : std::as_const(candidates)) {
        const auto first = firstLocaleOfKey.constFind(c.key);
        if (first == firstLocaleOfKey.cend()) {
            firstLocaleOfKey.insert(c.key, c.locale);
            continue;
        }
        const QString firstName = AppStoreLocales::displayName(first.value());
        findings.append(MetadataFinding{
            u"locale.untranslated"_s, MetadataField::Description, c.locale,
            ReleaseCheckSeverity::Recommendation, u"Texte identisch mit "_s + firstName,
            u"Untertitel und Beschreibung stimmen Zeichen für Zeichen mit "_s + firstName +
                u" überein. Das deutet auf eine kopierte, nicht übersetzte Store-Seite hin."_s,
            false, 0});
    }
    return findings;
}

bool MetadataValidator::isValidHTTPSURL(const QString& text) {
    const QUrl url(text.trimmed(), QUrl::StrictMode);
    return url.isValid() && url.scheme().toLower() == u"https"_s && !url.host().isEmpty();
}
