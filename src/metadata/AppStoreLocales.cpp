#include "metadata/AppStoreLocales.h"

#include <QHash>

using namespace Qt::StringLiterals;

namespace {

// German names of the store's languages and of a few more that users type.
const QHash<QString, QString>& languageNames() {
    static const QHash<QString, QString> names{
        {u"ar"_s, u"Arabisch"_s},
        {u"bn"_s, u"Bengalisch"_s},
        {u"ca"_s, u"Katalanisch"_s},
        {u"cs"_s, u"Tschechisch"_s},
        {u"da"_s, u"Dänisch"_s},
        {u"de"_s, u"Deutsch"_s},
        {u"el"_s, u"Griechisch"_s},
        {u"en"_s, u"Englisch"_s},
        {u"es"_s, u"Spanisch"_s},
        {u"fi"_s, u"Finnisch"_s},
        {u"fr"_s, u"Französisch"_s},
        {u"gu"_s, u"Gujarati"_s},
        {u"he"_s, u"Hebräisch"_s},
        {u"hi"_s, u"Hindi"_s},
        {u"hr"_s, u"Kroatisch"_s},
        {u"hu"_s, u"Ungarisch"_s},
        {u"id"_s, u"Indonesisch"_s},
        {u"it"_s, u"Italienisch"_s},
        {u"ja"_s, u"Japanisch"_s},
        {u"kn"_s, u"Kannada"_s},
        {u"ko"_s, u"Koreanisch"_s},
        {u"ml"_s, u"Malayalam"_s},
        {u"mr"_s, u"Marathi"_s},
        {u"ms"_s, u"Malaiisch"_s},
        {u"nb"_s, u"Norwegisch (Bokmål)"_s},
        {u"nl"_s, u"Niederländisch"_s},
        {u"no"_s, u"Norwegisch"_s},
        {u"or"_s, u"Oriya"_s},
        {u"pa"_s, u"Punjabi"_s},
        {u"pl"_s, u"Polnisch"_s},
        {u"pt"_s, u"Portugiesisch"_s},
        {u"ro"_s, u"Rumänisch"_s},
        {u"ru"_s, u"Russisch"_s},
        {u"sk"_s, u"Slowakisch"_s},
        {u"sl"_s, u"Slowenisch"_s},
        {u"sv"_s, u"Schwedisch"_s},
        {u"ta"_s, u"Tamil"_s},
        {u"te"_s, u"Telugu"_s},
        {u"th"_s, u"Thailändisch"_s},
        {u"tr"_s, u"Türkisch"_s},
        {u"uk"_s, u"Ukrainisch"_s},
        {u"ur"_s, u"Urdu"_s},
        {u"vi"_s, u"Vietnamesisch"_s},
        {u"zh"_s, u"Chinesisch"_s},
    };
    return names;
}

// Regions in upper case, scripts in title case, as the codes write them.
const QHash<QString, QString>& subtagNames() {
    static const QHash<QString, QString> names{
        {u"AT"_s, u"Österreich"_s},
        {u"AU"_s, u"Australien"_s},
        {u"BE"_s, u"Belgien"_s},
        {u"BR"_s, u"Brasilien"_s},
        {u"CA"_s, u"Kanada"_s},
        {u"CH"_s, u"Schweiz"_s},
        {u"CN"_s, u"China"_s},
        {u"DE"_s, u"Deutschland"_s},
        {u"ES"_s, u"Spanien"_s},
        {u"FR"_s, u"Frankreich"_s},
        {u"GB"_s, u"Vereinigtes Königreich"_s},
        {u"HK"_s, u"Sonderverwaltungsregion Hongkong"_s},
        {u"IE"_s, u"Irland"_s},
        {u"IN"_s, u"Indien"_s},
        {u"MX"_s, u"Mexiko"_s},
        {u"NL"_s, u"Niederlande"_s},
        {u"NZ"_s, u"Neuseeland"_s},
        {u"PT"_s, u"Portugal"_s},
        {u"SA"_s, u"Saudi-Arabien"_s},
        {u"TW"_s, u"Taiwan"_s},
        {u"US"_s, u"Vereinigte Staaten"_s},
        {u"Hans"_s, u"vereinfacht"_s},
        {u"Hant"_s, u"traditionell"_s},
    };
    return names;
}

bool allLetters(QStringView piece) {
    for (QChar c : piece) {
        if (!c.isLetter()) {
            return false;
        }
    }
    return true;
}

} // namespace

namespace AppStoreLocales {

const QStringList& codes() {
    static const QStringList table{
        u"ar-SA"_s, u"ca"_s,    u"cs"_s,    u"da"_s,    u"de-DE"_s, u"el"_s,      u"en-AU"_s,   u"en-CA"_s,
        u"en-GB"_s, u"en-US"_s, u"es-ES"_s, u"es-MX"_s, u"fi"_s,    u"fr-CA"_s,   u"fr-FR"_s,   u"he"_s,
        u"hi"_s,    u"hr"_s,    u"hu"_s,    u"id"_s,    u"it"_s,    u"ja"_s,      u"ko"_s,      u"ms"_s,
        u"nl-NL"_s, u"no"_s,    u"pl"_s,    u"pt-BR"_s, u"pt-PT"_s, u"ro"_s,      u"ru"_s,      u"sk"_s,
        u"sv"_s,    u"th"_s,    u"tr"_s,    u"uk"_s,    u"vi"_s,    u"zh-Hans"_s, u"zh-Hant"_s,
    };
    return table;
}

QStringList available(const QStringList& excluded) {
    QStringList result;
    for (const QString& code : codes()) {
        if (!excluded.contains(code)) {
            result.append(code);
        }
    }
    return result;
}

bool looksValid(const QString& code) {
    const QList<QStringView> pieces = QStringView(code).split(u'-', Qt::SkipEmptyParts);
    if (pieces.isEmpty() || pieces.size() > 2) {
        return false;
    }
    const QStringView language = pieces.first();
    if (language.size() < 2 || language.size() > 3 || !allLetters(language)) {
        return false;
    }
    for (QChar c : language) {
        if (!c.isLower()) {
            return false;
        }
    }
    if (pieces.size() == 2) {
        const QStringView subtag = pieces.at(1);
        return subtag.size() >= 2 && subtag.size() <= 4 && allLetters(subtag);
    }
    return true;
}

QString displayName(const QString& code) {
    const QList<QStringView> pieces = QStringView(code).split(u'-');
    if (pieces.isEmpty() || pieces.size() > 2) {
        return code;
    }
    const QString language = languageNames().value(pieces.first().toString().toLower());
    if (language.isEmpty()) {
        return code;
    }
    if (pieces.size() == 1) {
        return language;
    }
    // "de-de" and "zh-hans" name the same languages as "de-DE" and "zh-Hans".
    QString subtag = pieces.at(1).toString();
    subtag = subtag.size() == 4 ? subtag.left(1).toUpper() + subtag.mid(1).toLower() : subtag.toUpper();
    const QString sub = subtagNames().value(subtag);
    return sub.isEmpty() ? code : language + u" ("_s + sub + u')';
}

QStringList seedLocales(const QList<ManagedLocalization>& localizations) {
    QStringList result;
    for (const ManagedLocalization& l : localizations) {
        if (!l.name.trimmed().isEmpty() || !l.description.trimmed().isEmpty()) {
            result.append(l.locale);
        }
    }
    return result;
}

} // namespace AppStoreLocales
