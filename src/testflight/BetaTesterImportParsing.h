#pragma once

#include <QList>
#include <QString>
#include <QStringView>
#include <QtGlobal>

#include <optional>

// One person accepted from a tester list.
struct ImportedBetaTester {
    // The address as it stood in the file, trimmed, in its original case.
    QString email;
    std::optional<QString> firstName;
    std::optional<QString> lastName;

    // "Anna Muster <anna@example.com>", or the address alone when the row has no names.
    QString displayName() const;
    friend bool operator==(const ImportedBetaTester&, const ImportedBetaTester&) = default;
};
// A QString and an optional QString move by their bytes; the result list of a large file then
// grows in place instead of copying every tester.
Q_DECLARE_TYPEINFO(ImportedBetaTester, Q_RELOCATABLE_TYPE);

// The tolerant reader of a tester list: any text from a spreadsheet export, a mailing list or a
// hand-written file. Pure functions of values; they know nothing of files, groups or the API.
namespace BetaTesterImportParsing {

// A line in which no field is an address: its physical line number (1-based) and its text.
struct RejectedLine {
    int line = 0;
    QString text;
    friend bool operator==(const RejectedLine&, const RejectedLine&) = default;
};

struct Result {
    // In file order, at most one per address (compared without regard to case).
    QList<ImportedBetaTester> testers;
    QList<RejectedLine> rejectedLines;
    // Lines that named an address already accepted from an earlier line.
    int duplicateCount = 0;
    friend bool operator==(const Result&, const Result&) = default;
};

// Never fails: any text gives a result. Line ends may be CR LF, CR or LF, mixed; the separator
// (";", ",", tab) is found per line, the address may stand in any column, and a first line of
// column titles is skipped.
Result parse(QStringView text);

// The separator of one line: ";" if the line has one, else "," if it has one, else a tab if it
// has one, else ",". Quotes play no part in the choice.
QChar separator(QStringView line);

// The fields of one line, each trimmed. A double quote toggles quoting and is dropped; the
// separator inside quotes belongs to the field; a trailing separator gives a last empty field.
QList<QString> splitRow(QStringView line, QChar separator);

// Whether `field` counts as an e-mail address: something before the first "@", a "." behind it
// but not at the end, and no blank anywhere. Nothing more is asked of it.
bool isValidAddress(QStringView field);

// How many testers one bulk assignment carries at most.
inline constexpr qsizetype chunkSize = 1000;

// The testers in order, cut into chunks of at most `chunkSize`; none for an empty list.
QList<QList<ImportedBetaTester>> chunks(const QList<ImportedBetaTester>& testers, qsizetype size = chunkSize);

} // namespace BetaTesterImportParsing
