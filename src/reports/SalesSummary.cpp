#include "reports/SalesSummary.h"

#include <QLocale>

#include <thread>

using namespace Qt::StringLiterals;

namespace {

// Below this the second thread costs more than it saves.
constexpr qsizetype parallelFromRows = 100000;

std::optional<QString> firstValue(const AnalyticsTable& table, std::optional<qsizetype> column) {
    if (!column) {
        return std::nullopt;
    }
    for (qsizetype row = 0; row < table.rowCount(); ++row) {
        const QByteArrayView cell = table.cellView(row, *column);
        if (!cell.trimmed().isEmpty()) {
            return QString::fromUtf8(cell).trimmed();
        }
    }
    return std::nullopt;
}

// German grouping and decimal comma, from the exact text.
QString germanAmount(const ReportDecimal& amount) {
    const QString plain = amount.toString(2);
    const bool negative = plain.startsWith(u'-');
    const QString digits = plain.mid(negative ? 1 : 0);
    const qsizetype point = digits.indexOf(u'.');
    QString whole = digits.left(point);
    for (qsizetype at = whole.size() - 3; at > 0; at -= 3) {
        whole.insert(at, u'.');
    }
    return (negative ? u"-"_s : QString()) + whole + u',' + digits.mid(point + 1);
}

QString narrowSign(const QString& code) {
    static const QHash<QString, QString> signs{{u"EUR"_s, u"€"_s}, {u"USD"_s, u"$"_s}, {u"GBP"_s, u"£"_s},
                                               {u"JPY"_s, u"¥"_s}, {u"CNY"_s, u"¥"_s}, {u"INR"_s, u"₹"_s},
                                               {u"KRW"_s, u"₩"_s}, {u"ILS"_s, u"₪"_s}};
    return signs.value(code.toUpper(), code);
}

} // namespace

SalesSummary SalesSummary::of(const AnalyticsTable& table) {
    SalesSummary summary;
    summary.rowCount = table.rowCount();
    const auto unitsColumn = table.index(u"Units");
    const auto shareColumn = table.index(u"Extended Partner Share");
    const auto perUnitColumn = table.index(u"Developer Proceeds");
    const bool weighted = !shareColumn && unitsColumn && perUnitColumn;

    struct Sums {
        ReportDecimal units;
        ReportDecimal proceeds;
    };
    const auto add = [&](qsizetype begin, qsizetype end) {
        Sums sums;
        for (qsizetype row = begin; row < end; ++row) {
            std::optional<ReportDecimal> rowUnits;
            if (unitsColumn) {
                rowUnits = ReportDecimal::parse(table.cellView(row, *unitsColumn));
                if (rowUnits) {
                    sums.units += *rowUnits;
                }
            }
            if (shareColumn) {
                if (const auto share = ReportDecimal::parse(table.cellView(row, *shareColumn))) {
                    sums.proceeds += *share;
                }
            } else if (weighted && rowUnits) {
                if (const auto perUnit = ReportDecimal::parse(table.cellView(row, *perUnitColumn))) {
                    sums.proceeds += *rowUnits * *perUnit;
                }
            }
        }
        return sums;
    };
    // Exact sums do not depend on the order of adding: a large report is split over two threads.
    Sums sums;
    if (summary.rowCount >= parallelFromRows) {
        const qsizetype middle = summary.rowCount / 2;
        Sums second;
        std::thread worker([&] { second = add(middle, summary.rowCount); });
        sums = add(0, middle);
        worker.join();
        sums.units += second.units;
        sums.proceeds += second.proceeds;
    } else {
        sums = add(0, summary.rowCount);
    }
    const ReportDecimal units = sums.units;
    const ReportDecimal proceeds = sums.proceeds;
    if (unitsColumn) {
        summary.units = units.truncated();
    }
    if (shareColumn || weighted) {
        summary.proceeds = proceeds;
    }
    summary.currency = firstValue(table, table.index(u"Currency of Proceeds"));
    if (!summary.currency) {
        summary.currency = firstValue(table, table.index(u"Partner Share Currency"));
    }
    return summary;
}

QString SalesSummary::formattedProceeds() const {
    if (!proceeds) {
        return missingColumnText();
    }
    const QString amount = germanAmount(*proceeds);
    return currency ? amount + u'\u00A0' + narrowSign(*currency) : amount;
}

QString SalesSummary::unitsText() const {
    return units ? QLocale(QLocale::German, QLocale::Germany).toString(*units) : missingColumnText();
}

QString SalesSummary::proceedsText() const {
    return formattedProceeds();
}

QString SalesSummary::missingColumnText() {
    return u"keine Spalte"_s;
}

QString SalesSummary::footnote() {
    return u"Gerechnet aus Apples eigenen Spalten (Units, Developer Proceeds). Eine Spalte, die der Bericht "
           u"nicht enthält, wird als „keine Spalte“ ausgewiesen – nicht als Null."_s;
}

std::optional<double> SalesComparison::unitsChangePercent() const {
    if (!previous || !current.units || !previous->units || *previous->units == 0) {
        return std::nullopt;
    }
    return double(*current.units - *previous->units) / double(*previous->units) * 100.0;
}

QString SalesComparison::text() const {
    if (!previous) {
        return noPreviousText();
    }
    const QLocale german(QLocale::German, QLocale::Germany);
    QString text = u"Einheiten: %1 (Vorperiode: %2)"_s.arg(current.unitsText(), previous->unitsText());
    if (const auto change = unitsChangePercent()) {
        const QString arrow = *change > 0 ? u"↑"_s : *change < 0 ? u"↓"_s : u"→"_s;
        text +=
            u" %1 %2%3 %"_s.arg(arrow, *change > 0 ? u"+"_s : QString(), german.toString(*change, 'f', 1));
    }
    return text;
}

QString SalesComparison::noPreviousText() {
    return u"Für die Vorperiode liegt kein Bericht vor – deshalb kein Vergleich."_s;
}
