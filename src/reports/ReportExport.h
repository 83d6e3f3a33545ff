#pragma once

#include "reports/AnalyticsTable.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QCoro/QCoroTask>
#include <QString>

#include <functional>
#include <optional>

// A report table as CSV or JSON for use elsewhere, written piece by piece: a table of a million
// rows never exists a second time in memory, neither as one text nor as a JSON document.
//
// CSV: every field, of the header and of the rows, is quoted when it holds a comma, a double
// quote or a line feed (quotes doubled inside); a carriage return alone is no reason. Fields are
// joined by ",", lines by "\n", with none after the last. A short row keeps its fewer fields.
//
// JSON: an array with one object per row, keys the column names, values the cells as text
// (nothing becomes a number: the text stays the authority). A row shorter than the header leaves
// its missing keys out; cells beyond the last column are dropped, as they have no name; of two
// columns with one name the later cell wins. Keys stand sorted by code point and the output is
// indented by two spaces, so that equal tables give equal files. Characters beyond ASCII are
// written as UTF-8 (a character outside the BMP as its four bytes); control characters, quotes
// and backslashes are escaped.
namespace ReportExport {

enum class Format { Csv, Json };

// "csv" / "json", and back; nothing for anything else.
QString rawValue(Format format);
std::optional<Format> formatFromRaw(QStringView raw);

// Receives the output in pieces of about `pieceBytes`; returning false stops the writing.
using Sink = std::function<bool(QByteArrayView piece)>;
constexpr qsizetype pieceBytes = 1024 * 1024;

// Whether every piece was taken.
bool write(const AnalyticsTable& table, Format format, const Sink& sink);

// One field as CSV writes it, and one text as a JSON string with its quotes.
QByteArray csvField(QByteArrayView field);
QByteArray jsonString(QByteArrayView utf8);

// The whole output at once, for small tables.
QByteArray csv(const AnalyticsTable& table);
QByteArray json(const AnalyticsTable& table);

// The archive's own form: the header and each row with their cells joined by tabs, lines by "\n".
// Nothing is quoted, so a cell that held a tab does not come back the same.
bool writeTsv(const AnalyticsTable& table, const Sink& sink);

// Opens `path` for an atomic write and lets `produce` fill it through the sink it is given;
// whether it finished decides between giving the file its name and leaving everything as it
// was. The reason of a failure in German.
std::optional<QString> writeAtomically(const QString& path, const std::function<bool(const Sink&)>& produce);

// Writes the file atomically: it appears whole under its name, or an existing one stays as it
// was. The reason of a failure in German.
std::optional<QString> writeFile(const AnalyticsTable& table, Format format, const QString& path);
// The same on a worker thread, so that a large export never stalls the window.
QCoro::Task<std::optional<QString>> writeFileInBackground(AnalyticsTable table, Format format, QString path);

// What the user reads afterwards: "Als CSV exportiert." / "Export fehlgeschlagen: " + reason.
QString successMessage(Format format);
QString failureMessage(const QString& reason);
// The name a save dialog proposes: lower-cased report type, "-", report date, "." format.
QString proposedFileName(const QString& reportType, const QString& reportDate, Format format);

} // namespace ReportExport
