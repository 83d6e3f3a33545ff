#include "cli/ReportArchiveCommand.h"

#include "reports/ReportArchiveStore.h"
#include "reports/ReportExport.h"
#include "workspace/AppState.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QStringDecoder>
#include <QTextStream>

using namespace Qt::StringLiterals;

namespace {

const QString jsonFlag = u"json"_s;
const QString formatOption = u"format"_s;
const QString outOption = u"out"_s;

QJsonObject entryJson(const ReportArchiveStore::Entry& entry) {
    QJsonObject object = entry.toJson();
    object.insert(u"savedAt"_s, entry.savedAt.toUTC().toString(Qt::ISODate));
    return object;
}

int list(const Invocation& call) {
    if (!call.args.positional.value(1).isEmpty()) {
        return call.usage(u"„report archive list“ nimmt keine weiteren Angaben."_s);
    }
    const QList<ReportArchiveStore::Entry> entries = call.state.reportArchive().entries();
    if (call.args.isSet(jsonFlag)) {
        QJsonArray array;
        for (const auto& entry : entries) {
            array.append(entryJson(entry));
        }
        call.printJson(array);
        return 0;
    }
    if (entries.isEmpty()) {
        call.out << ReportArchiveStore::emptyText() << u'\n';
        return 0;
    }
    QList<QPair<QString, QString>> rows;
    for (const auto& entry : entries) {
        rows.append(
            {entry.fileName, u"%1  %2"_s.arg(entry.savedAt.toLocalTime().toString(u"dd.MM.yyyy HH:mm"_s),
                                             ReportArchiveStore::rowsText(entry))});
    }
    call.out << formatColumns(rows);
    return 0;
}

QCoro::Task<int> exportEntry(const Invocation& call) {
    const QStringList& positional = call.args.positional;
    if (positional.size() != 2) {
        co_return call.usage(
            u"„report archive export“ nimmt genau einen abgelegten Bericht (seinen Dateinamen)."_s);
    }
    const QString rawFormat = call.args.value(formatOption);
    const auto format = ReportExport::formatFromRaw(rawFormat);
    if (!format) {
        co_return call.usage(rawFormat.isEmpty()
                                 ? u"Es fehlt --format csv oder --format json."_s
                                 : u"Unbekanntes Format: %1 (csv oder json)"_s.arg(rawFormat));
    }
    ReportArchiveStore& archive = call.state.reportArchive();
    const QString id = positional[1];
    if (!archive.entry(id)) {
        co_return call.fail(
            u"Im Verlauf liegt kein Bericht „%1“. „varnis report archive list“ zeigt die abgelegten."_s.arg(
                id));
    }
    const std::optional<AnalyticsTable> table = co_await archive.reopenAsync(id);
    if (!table) {
        co_return call.fail(ReportArchiveStore::unreadableMessage());
    }
    if (call.args.values.contains(outOption)) {
        if (auto failure =
                co_await ReportExport::writeFileInBackground(*table, *format, call.args.value(outOption))) {
            co_return call.fail(ReportExport::failureMessage(*failure));
        }
        call.err << ReportExport::successMessage(*format) << u'\n';
        co_return 0;
    }
    // A piece may end inside a character; the decoder carries it over to the next one.
    QStringDecoder decoder(QStringDecoder::Utf8);
    ReportExport::write(*table, *format, [&](QByteArrayView piece) {
        call.out << decoder.decode(piece);
        return call.out.status() == QTextStream::Ok;
    });
    call.out << u'\n';
    call.out.flush();
    co_return call.out.status() == QTextStream::Ok
        ? 0
        : call.fail(ReportExport::failureMessage(u"Die Ausgabe nimmt nichts mehr an."_s));
}

} // namespace

void ReportArchiveCommand::declare(CommandSyntax& syntax) {
    syntax.addPositional(u"list|export"_s, u"zeigt die abgelegten Berichte oder exportiert einen davon"_s);
    syntax.addPositional(u"[ID]"_s, u"beim Export: der Dateiname des Berichts, wie ihn „list“ zeigt"_s);
    syntax.addFlag(jsonFlag, u"list: gibt die Liste als JSON aus"_s);
    syntax.addValue(formatOption, u"csv|json"_s, u"export: das Format der Ausgabe"_s);
    syntax.addValue(outOption, u"P"_s,
                    u"export: die Datei, in die geschrieben wird; ohne sie die Standardausgabe"_s);
    syntax.addNote(
        u"Der Verlauf liegt im Ordner „Berichte“ der Daten von Varnis; abgelegt wird im Fenster."_s);
}

QCoro::Task<int> ReportArchiveCommand::run(Invocation call) {
    const QString action = call.args.positional.value(0);
    if (action == u"list"_s) {
        co_return list(call);
    }
    if (action == u"export"_s) {
        co_return co_await exportEntry(call);
    }
    co_return call.usage(action.isEmpty() ? u"Es fehlt list oder export."_s
                                          : u"Unbekannter Unterbefehl: report archive %1"_s.arg(action));
}
