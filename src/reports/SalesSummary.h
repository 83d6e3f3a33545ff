#pragma once

#include "reports/AnalyticsTable.h"
#include "reports/ReportDecimal.h"

#include <QString>

#include <optional>

// The few figures a sales or finance report yields, taken strictly from the columns it has: a
// figure whose column is missing stays absent and is shown as "keine Spalte", never as zero.
struct SalesSummary {
    std::optional<qint64> units;
    std::optional<ReportDecimal> proceeds;
    std::optional<QString> currency;
    qsizetype rowCount = 0;

    // Units: the sum of "Units". Proceeds: the sum of "Extended Partner Share" (finance reports,
    // already the line's total) or else of "Units" times "Developer Proceeds" per row (sales
    // reports, where the proceeds are per unit). Currency: the first value of "Currency of
    // Proceeds", else of "Partner Share Currency"; mixed currencies are added as they stand.
    static SalesSummary of(const AnalyticsTable& table);

    // "1.234,50 €" with a known currency (its narrow sign, or its code), "1.234,50" without.
    QString formattedProceeds() const;
    QString unitsText() const;
    QString proceedsText() const;

    static QString missingColumnText();
    static QString footnote();

    friend bool operator==(const SalesSummary&, const SalesSummary&) = default;
};

// A report's summary against the one of the period before; the previous one is absent when
// Apple had none (or its request failed), which is not the same as no sales.
struct SalesComparison {
    SalesSummary current;
    std::optional<SalesSummary> previous;

    // (current - previous) / previous * 100 of the units; absent without both or with a previous 0.
    std::optional<double> unitsChangePercent() const;
    // "Einheiten: 120 (Vorperiode: 100) ↑ +20,0 %", or why there is no comparison.
    QString text() const;

    static QString noPreviousText();
};
