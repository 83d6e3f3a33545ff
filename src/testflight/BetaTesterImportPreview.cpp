#include "testflight/BetaTesterImportPreview.h"

#include "platform/VarnisError.h"

#include <QLocale>

using namespace Qt::StringLiterals;

namespace {

QString count(qsizetype n) {
    return QString::number(n);
}

// With the German thousands separator: "1.234".
QString grouped(qsizetype n) {
    return QLocale(QLocale::German, QLocale::Germany).toString(qlonglong(n));
}

} // namespace

BetaTesterImportPreview BetaTesterImportPreview::of(const BetaTesterImportParsing::Result& result,
                                                    std::optional<int> remainingRequests) {
    BetaTesterImportPreview p;
    const qsizetype testers = result.testers.size();
    p.recognizedTitle = u"Erkannt ("_s + count(testers) + u')';
    const qsizetype listed = std::min(testers, maxListedNames);
    p.listedNames.reserve(listed);
    for (qsizetype i = 0; i < listed; ++i) {
        // Names come from a file of unknown origin; a control character must not hide in a label.
        p.listedNames.append(printableText(result.testers.at(i).displayName()));
    }
    if (testers > maxListedNames) {
        p.moreNames = count(testers - maxListedNames) + u" weitere"_s;
    }
    if (result.duplicateCount >= 1) {
        p.duplicateSentence = duplicateText(result.duplicateCount);
    }
    if (!result.rejectedLines.isEmpty()) {
        p.rejectedTitle = u"Ohne erkennbare Adresse ("_s + count(result.rejectedLines.size()) + u')';
        p.rejectedRows.reserve(result.rejectedLines.size());
        for (const BetaTesterImportParsing::RejectedLine& line : result.rejectedLines) {
            p.rejectedRows.append({u"Zeile "_s + count(line.line), printableText(line.text)});
        }
    }
    p.footer = count(testers) + u" Tester bereit"_s;
    if (testers > 0) {
        p.costSentence = costText(testers, remainingRequests);
    }
    p.hasTesters = testers > 0;
    return p;
}

QString BetaTesterImportPreview::targetCaption(const std::optional<QString>& groupName) {
    return groupName ? u"Ziel: "_s + *groupName : u"Keine Gruppe gewählt"_s;
}

QString BetaTesterImportPreview::duplicateText(int n) {
    const bool one = n == 1;
    return count(n) + (one ? u" Adresse"_s : u" Adressen"_s) + (one ? u" kam"_s : u" kamen"_s) +
           (one ? u" mehrfach vor und wurde"_s : u" mehrfach vor und wurden"_s) +
           u" nur einmal übernommen."_s;
}

QString BetaTesterImportPreview::costText(qsizetype testers, std::optional<int> remainingRequests) {
    QString text = u"Der Import kostet "_s + grouped(testers) +
                   (testers == 1 ? u" Anfrage"_s : u" Anfragen"_s) + u" vom stündlichen Kontingent."_s;
    if (remainingRequests && testers > *remainingRequests) {
        text += u" Apple meldet für diese Stunde nur noch "_s + grouped(std::max(*remainingRequests, 0)) +
                u" übrig."_s;
    }
    return text;
}

bool BetaTesterImportPreview::canImport(const BetaTesterImportParsing::Result& result, bool isImporting) {
    return !result.testers.isEmpty() && !isImporting;
}

QString BetaTesterImportPreview::chooseFileTitle() {
    return u"CSV-Datei wählen"_s;
}

QString BetaTesterImportPreview::chooseFileHint() {
    return u"Eine Spalte mit E-Mail-Adressen genügt. Vor- und Nachname werden übernommen, wenn sie "
           u"danebenstehen. Komma, Semikolon und Tabulator werden erkannt."_s;
}

QString BetaTesterImportPreview::chooseFileAction() {
    return u"Datei wählen …"_s;
}

QString BetaTesterImportPreview::duplicatesTitle() {
    return u"Dubletten"_s;
}

QString BetaTesterImportPreview::otherFileAction() {
    return u"Andere Datei"_s;
}

QString BetaTesterImportPreview::cancelAction() {
    return u"Abbrechen"_s;
}

QString BetaTesterImportPreview::importAction() {
    return u"Importieren"_s;
}

PendingWrite BetaTesterImportPreview::confirmation(const QString& groupName,
                                                   const BetaTesterImportParsing::Result& result) {
    PendingWrite write;
    write.title = u"Tester importieren"_s;
    write.explanation =
        u"Apple lädt die neuen Tester zu „"_s + groupName +
        u"“ ein und verschickt dabei E-Mails. Bereits vorhandene Adressen überspringt Apple."_s;
    write.confirmLabel = u"Importieren"_s;
    write.isDestructive = false;
    const auto row = [&write](const QString& field, const QString& after) {
        WriteChange change;
        change.field = field;
        change.after = after;
        write.changes.append(change);
    };
    row(u"Gruppe"_s, groupName);
    row(u"Tester"_s, count(result.testers.size()) + u" Adressen"_s);
    if (result.duplicateCount >= 1) {
        row(u"Dubletten in der Datei"_s, count(result.duplicateCount) + u" übersprungen"_s);
    }
    if (!result.rejectedLines.isEmpty()) {
        row(u"Nicht lesbare Zeilen"_s, count(result.rejectedLines.size()) + u" übersprungen"_s);
    }
    return write;
}

QString BetaTesterImportPreview::handedOverMessage(int n) {
    return count(n) + u" Tester an Apple übergeben."_s;
}
