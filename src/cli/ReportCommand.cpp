#include "cli/ReportCommand.h"

#include "reports/GzipDecoder.h"
#include "reports/ReportDecimal.h"
#include "reports/SalesReportsService.h"
#include "reports/SalesSummary.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>
#include <QMap>
#include <QTextStream>
#include <QTimeZone>

using namespace Qt::StringLiterals;

namespace {

const QString jsonFlag = u"json"_s;
const QString columnOption = u"column"_s;
const QString daysOption = u"days"_s;

// The three ways Apple writes a day, tried in this order.
QDate parseDay(QByteArrayView cell) {
    const QString text = QString::fromUtf8(cell).trimmed();
    for (const QString& format : {u"yyyy-MM-dd"_s, u"yyyy/MM/dd"_s, u"MM/dd/yyyy"_s}) {
        const QDate day = QDate::fromString(text, format);
        if (day.isValid()) {
            return day;
        }
    }
    return {};
}

// A numeric column over the whole file and, with a number of days, over the last days the file
// covers against as many days before them. The window ends at the newest day in the file, so
// that an old file says something too.
struct ColumnFigures {
    QString name;
    ReportDecimal total;
    int days = 0;
    QDate windowEnd;
    ReportDecimal windowTotal;
    std::optional<ReportDecimal> previousTotal;
};

ColumnFigures columnFigures(const AnalyticsTable& table, qsizetype column, int days) {
    ColumnFigures figures;
    figures.name = table.columns().value(column);
    figures.days = days;
    const auto dateColumn = table.dateColumnIndex();
    QList<QPair<QDate, ReportDecimal>> dated;
    for (qsizetype row = 0; row < table.rowCount(); ++row) {
        const auto value = ReportDecimal::parse(table.cellView(row, column));
        if (!value) {
            continue;
        }
        figures.total += *value;
        if (days > 0 && dateColumn) {
            const QDate day = parseDay(table.cellView(row, *dateColumn));
            if (day.isValid()) {
                dated.append({day, *value});
                figures.windowEnd = std::max(figures.windowEnd, day);
            }
        }
    }
    if (days > 0 && figures.windowEnd.isValid()) {
        const QDate windowStart = figures.windowEnd.addDays(1 - days);
        const QDate previousStart = windowStart.addDays(-days);
        for (const auto& [day, value] : std::as_const(dated)) {
            if (day >= windowStart) {
                figures.windowTotal += value;
            } else if (day >= previousStart) {
                figures.previousTotal = figures.previousTotal.value_or(ReportDecimal()) + value;
            }
        }
    }
    return figures;
}

QJsonValue optionalDecimal(const std::optional<ReportDecimal>& value) {
    return value ? QJsonValue(value->toString(2)) : QJsonValue(QJsonValue::Null);
}

QStringList namesOf(const AnalyticsTable& table, const QList<qsizetype>& indices) {
    QStringList names;
    for (const qsizetype index : indices) {
        names.append(table.columns().value(index));
    }
    return names;
}

} // namespace

namespace ReportCommand {

QJsonObject summaryJson(const SalesSummary& summary) {
    return QJsonObject{
        {u"rowCount"_s, qint64(summary.rowCount)},
        {u"units"_s, summary.units ? QJsonValue(*summary.units) : QJsonValue(QJsonValue::Null)},
        {u"proceeds"_s, optionalDecimal(summary.proceeds)},
        {u"currency"_s, optionalJson(summary.currency)}};
}

void printSummary(const Invocation& call, const SalesSummary& summary) {
    call.out << u"Einheiten: "_s << summary.unitsText() << u'\n';
    call.out << u"Erlöse: "_s << summary.proceedsText() << u'\n';
}

QJsonArray rowsJson(const AnalyticsTable& table, qsizetype limit) {
    QJsonArray rows;
    for (qsizetype row = 0; row < std::min(limit, table.rowCount()); ++row) {
        rows.append(QJsonArray::fromStringList(table.row(row)));
    }
    return rows;
}

void declareInspect(CommandSyntax& syntax) {
    syntax.addPositional(u"DATEI"_s, u"ein Bericht von Apple, als .gz oder entpackt"_s);
    syntax.addValue(columnOption, u"NAME"_s, u"summiert diese Zahlenspalte"_s);
    syntax.addValue(daysOption, u"N"_s,
                    u"summiert die Spalte auch über die letzten N Tage der Datei und die N Tage davor"_s);
    syntax.addFlag(jsonFlag, u"gibt das Ergebnis als JSON aus"_s);
    syntax.addNote(u"Liest nur die Datei, ohne Netz: Spalten, Zeilen, Datums- und Zahlenspalten und die "
                   u"Zusammenfassung aus Apples eigenen Spalten. Fehlt eine Spalte, steht dort „keine "
                   u"Spalte“, nie eine Null."_s);
}

QCoro::Task<int> inspect(Invocation call) {
    if (call.args.positional.size() != 1) {
        co_return call.usage(u"„report inspect“ nimmt genau eine Datei."_s);
    }
    int days = 0;
    if (call.args.values.contains(daysOption)) {
        bool ok = false;
        days = call.args.value(daysOption).trimmed().toInt(&ok);
        if (!ok || days < 1 || days > 36600) {
            co_return call.usage(u"--days erwartet eine ganze Zahl von Tagen ab 1."_s);
        }
    }
    const QString path = call.args.positional.first();
    if (!QFileInfo(path).isFile()) {
        co_return call.fail(u"Die Datei „%1“ gibt es nicht."_s.arg(path));
    }
    AnalyticsTable table;
    try {
        table = co_await SalesReportsService::readTable(path);
    } catch (const std::exception& error) {
        co_return call.fail(describeError(error));
    }

    std::optional<qsizetype> column;
    if (call.args.values.contains(columnOption)) {
        const QString name = call.args.value(columnOption).trimmed();
        column = table.index(name);
        if (!column) {
            co_return call.fail(u"Der Bericht hat keine Spalte „%1“."_s.arg(name));
        }
    } else if (days > 0 && !table.numericColumnIndices().isEmpty()) {
        column = table.numericColumnIndices().constFirst();
    }
    if (days > 0 && !table.dateColumnIndex()) {
        co_return call.fail(u"Der Bericht hat keine Datumsspalte; eine Auswertung über Tage ist damit nicht "
                            u"möglich."_s);
    }
    const SalesSummary summary = SalesSummary::of(table);
    const auto dateColumn = table.dateColumnIndex();
    const QStringList numeric = namesOf(table, table.numericColumnIndices());
    std::optional<ColumnFigures> figures;
    if (column) {
        figures = columnFigures(table, *column, days);
    }

    if (call.args.isSet(jsonFlag)) {
        QJsonObject json{{u"file"_s, path},
                         {u"columns"_s, QJsonArray::fromStringList(table.columns())},
                         {u"rowCount"_s, qint64(table.rowCount())},
                         {u"dateColumn"_s, dateColumn ? QJsonValue(table.columns().value(*dateColumn))
                                                      : QJsonValue(QJsonValue::Null)},
                         {u"numericColumns"_s, QJsonArray::fromStringList(numeric)},
                         {u"summary"_s, summaryJson(summary)}};
        if (figures) {
            QJsonObject columnJson{{u"name"_s, figures->name}, {u"total"_s, figures->total.toString(2)}};
            if (days > 0) {
                columnJson.insert(u"days"_s, days);
                columnJson.insert(u"windowEnd"_s, figures->windowEnd.isValid()
                                                      ? QJsonValue(figures->windowEnd.toString(Qt::ISODate))
                                                      : QJsonValue(QJsonValue::Null));
                columnJson.insert(u"windowTotal"_s, figures->windowTotal.toString(2));
                columnJson.insert(u"previousTotal"_s, optionalDecimal(figures->previousTotal));
            }
            json.insert(u"column"_s, columnJson);
        }
        call.printJson(json);
        co_return 0;
    }
    call.out << u"Datei: "_s << path << u'\n';
    call.out << u"Zeilen: "_s << table.rowCount() << u'\n';
    call.out << u"Spalten ("_s << table.columns().size() << u"): "_s << table.columns().join(u", "_s)
             << u'\n';
    call.out << u"Datumsspalte: "_s << (dateColumn ? table.columns().value(*dateColumn) : u"keine"_s)
             << u'\n';
    call.out << u"Zahlenspalten: "_s << (numeric.isEmpty() ? u"keine"_s : numeric.join(u", "_s)) << u'\n';
    printSummary(call, summary);
    if (figures) {
        call.out << u"Summe „"_s << figures->name << u"“: "_s << figures->total.toString(2) << u'\n';
        if (days > 0) {
            if (!figures->windowEnd.isValid()) {
                call.out << u"Kein Datum der Datei ist lesbar; keine Auswertung über Tage.\n"_s;
            } else {
                call.out << u"Letzte %1 Tage bis %2: "_s.arg(days).arg(
                                figures->windowEnd.toString(Qt::ISODate))
                         << figures->windowTotal.toString(2) << u'\n';
                call.out << u"Die %1 Tage davor: "_s.arg(days)
                         << (figures->previousTotal
                                 ? figures->previousTotal->toString(2)
                                 : u"keine Zeilen – die Datei reicht nicht so weit zurück"_s)
                         << u'\n';
            }
        }
    }
    co_return 0;
}

} // namespace ReportCommand
