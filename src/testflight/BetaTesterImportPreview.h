#pragma once

#include "api/PendingWrite.h"
#include "testflight/BetaTesterImportParsing.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

// What the import sheet shows of a parsed tester list, every text composed, in the order the
// sheet shows it. A value: the TestFlight model builds it from a result and publishes its fields.
struct BetaTesterImportPreview {
    // More names than this would make the sheet a list nobody reads; the rest is a count.
    static constexpr qsizetype maxListedNames = 200;

    struct RejectedRow {
        QString label; // "Zeile 4"
        QString text;  // the line as it stood, trimmed
        friend bool operator==(const RejectedRow&, const RejectedRow&) = default;
    };

    // "Erkannt (1234)"
    QString recognizedTitle;
    // The display names of the first testers, at most `maxListedNames`.
    QStringList listedNames;
    // "1034 weitere" when more testers were recognised than are listed.
    std::optional<QString> moreNames;
    // The sentence under "Dubletten", when the file named an address more than once.
    std::optional<QString> duplicateSentence;
    // "Ohne erkennbare Adresse (3)" and its rows, when lines without an address were found.
    std::optional<QString> rejectedTitle;
    QList<RejectedRow> rejectedRows;
    // "1234 Tester bereit"
    QString footer;
    // What sending costs of Apple's hourly request budget; none when there is nothing to send.
    std::optional<QString> costSentence;
    bool hasTesters = false;

    // `remainingRequests` is what Apple last reported as left of the hour, if known.
    static BetaTesterImportPreview of(const BetaTesterImportParsing::Result& result,
                                      std::optional<int> remainingRequests = std::nullopt);

    // "Ziel: " with the group's name, or that none is chosen.
    static QString targetCaption(const std::optional<QString>& groupName);
    // "3 Adressen kamen mehrfach vor und wurden nur einmal übernommen."
    static QString duplicateText(int count);
    // "Der Import kostet 1.234 Anfragen vom stündlichen Kontingent." Apple takes testers one
    // request at a time, so every tester costs one request.
    static QString costText(qsizetype testers, std::optional<int> remainingRequests = std::nullopt);
    // Whether "Importieren" may be pressed.
    static bool canImport(const BetaTesterImportParsing::Result& result, bool isImporting);

    // The fixed texts of the sheet.
    static QString chooseFileTitle();  // "CSV-Datei wählen"
    static QString chooseFileHint();   // what a file must hold
    static QString chooseFileAction(); // "Datei wählen …"
    static QString duplicatesTitle();  // "Dubletten"
    static QString otherFileAction();  // "Andere Datei"
    static QString cancelAction();     // "Abbrechen"
    static QString importAction();     // "Importieren"

    // The write to confirm before sending; the caller sets `perform`.
    static PendingWrite confirmation(const QString& groupName, const BetaTesterImportParsing::Result& result);
    // The message after Apple took `count` testers.
    static QString handedOverMessage(int count);

    friend bool operator==(const BetaTesterImportPreview&, const BetaTesterImportPreview&) = default;
};
