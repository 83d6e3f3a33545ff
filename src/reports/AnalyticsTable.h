#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QList>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>
#include <vector>

// A report's tab-separated text as a table: the header's names and the rows as they stand, a row
// neither padded nor cut to the header's length. Quotes group a field (a tab inside stays) and
// vanish, carriage returns vanish, each field is trimmed of blanks and tabs, rows without any
// value and blank lines at the end are left out, and a byte-order mark never reaches the first
// name.
//
// A report may hold a million rows of thirty columns. The text is therefore kept once, as UTF-8,
// rewritten in place into its cleaned form, with one offset per row; a cell becomes a QString
// only when asked for. Copies share the same immutable text.
class AnalyticsTable {
public:
    AnalyticsTable();

    // `utf8` must be valid UTF-8 (a byte that UTF-8 never uses separates the cells inside).
    // The bytes are taken over and rewritten; large texts are cleaned on two threads.
    static AnalyticsTable parseTSV(QByteArray utf8);
    static AnalyticsTable parseTSV(const QString& text);

    const QStringList& columns() const;
    qsizetype rowCount() const;
    qsizetype cellCount(qsizetype row) const;
    // The cell's bytes, or an empty view where the row is shorter.
    QByteArrayView cellView(qsizetype row, qsizetype column) const;
    QString cell(qsizetype row, qsizetype column) const;
    QStringList row(qsizetype row) const;
    // Every cell of the row, in one pass over it.
    QList<QByteArrayView> cellViews(qsizetype row) const;
    // The row's cleaned text: its cells, each followed by `cellSeparator` but the last. A cell
    // never holds a quote, a line feed or a carriage return (the cleaning took them), so a
    // writer can often take a row whole.
    QByteArrayView rowText(qsizetype row) const;
    static constexpr char cellSeparator = char(0xFF);

    // The first column of this name, compared without regard to case.
    std::optional<qsizetype> index(QStringView name) const;
    // The first column whose name holds "date"; failing that, "datum".
    std::optional<qsizetype> dateColumnIndex() const;
    // The columns, other than the date column, in which more than 70 % of the first 50 rows hold
    // a number (thousands commas allowed).
    QList<qsizetype> numericColumnIndices() const;

    friend bool operator==(const AnalyticsTable& a, const AnalyticsTable& b);
    friend bool operator!=(const AnalyticsTable& a, const AnalyticsTable& b) { return !(a == b); }

private:
    struct Data;
    explicit AnalyticsTable(std::shared_ptr<const Data> data);
    std::shared_ptr<const Data> d;
};
