#pragma once

#include "metadata/ManagedLocalization.h"
#include "metadata/ReleaseCheckSeverity.h"

#include <QList>
#include <QString>

#include <optional>

// One rule that a language's texts fail. `rule` is a stable dotted id ("keywords.tooLong").
struct MetadataFinding {
    QString rule;
    MetadataField field = MetadataField::Name;
    QString locale;
    ReleaseCheckSeverity severity = ReleaseCheckSeverity::Warning;
    QString title;
    QString explanation;
    // The assistant can shorten the text; set for the too-long rules.
    bool canFixAutomatically = false;
    int weight = 0;

    QString id() const { return rule + u'.' + locale; }
    friend bool operator==(const MetadataFinding&, const MetadataFinding&) = default;
};

struct MetadataValidationResult {
    QString locale;
    QList<MetadataFinding> findings; // in rule order
    int checkedCount = 0;
    int passedCount = 0;
    int passedWeight = 0;

    QList<MetadataFinding> findingsFor(MetadataField field) const;
    // The findings that stop a submission: severity `Confirmed`.
    QList<MetadataFinding> blockingFindings() const;
    bool isBlocking() const;
    friend bool operator==(const MetadataValidationResult&, const MetadataValidationResult&) = default;
};

// Checks the texts of a language against Apple's limits (those of MetadataFields) and against what makes a
// good store page, before anything is sent. Stateless and pure: no network, no clock.
class MetadataValidator {
public:
    struct Context {
        QString appName;
        // The app has fewer than two versions, so "what's new" is not asked for yet.
        bool isFirstVersion = false;
    };

    // Below this many characters a description reads as unfinished.
    static constexpr int shortDescriptionThreshold = 200;

    // User-perceived characters (grapheme clusters) of the untrimmed text.
    static int characterCount(const QString& text);

    static MetadataValidationResult validate(const ManagedLocalization& localization, const Context& context);
    // Languages whose subtitle and description are copies of another language's.
    static QList<MetadataFinding> validateAcrossLocales(const QList<ManagedLocalization>& localizations);
    // Only the form of the address; reachability is never tested.
    static bool isValidHTTPSURL(const QString& text);
};
