#include "cli/CommandLine.h"
#include "platform/Clock.h"
#include "reports/ReportArchiveStore.h"
#include "reports/ReportExport.h"
#include "support/AwaitTask.h"
#include "support/RunCommandLine.h"
#include "support/TestPlatform.h"
#include "workspace/AppState.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTest>
#include <QTextStream>

#include <csignal>
#include <sys/resource.h>

using namespace Qt::StringLiterals;

namespace {

using Report = ReportArchiveStore::Report;
using Kind = ReportArchiveStore::Kind;

AnalyticsTable table(const char* tsv) {
    return AnalyticsTable::parseTSV(QByteArray(tsv));
}

Report salesMonth(const QString& date = u"2026-01"_s) {
    return {Kind::Sales, u"85012345"_s, u"SALES"_s, {}, u"MONTHLY"_s, date};
}

Report financeMonth(const QString& date = u"2026-01"_s) {
    return {Kind::Finance, u"85012345"_s, u"FINANCIAL"_s, u"ZZ"_s, u"MONTHLY"_s, date};
}

void writeFile(const QString& path, const QByteArray& bytes) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

QByteArray readFile(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// A good index line, with the file it names.
QJsonObject goodLine(const QString& folder) {
    writeFile(folder + u"/1-SALES-DAILY-2026-01-02.tsv"_s, "Units\n3");
    return QJsonObject{{u"fileName"_s, u"1-SALES-DAILY-2026-01-02.tsv"_s},
                       {u"vendorNumber"_s, u"1"_s},
                       {u"reportType"_s, u"SALES"_s},
                       {u"frequency"_s, u"DAILY"_s},
                       {u"reportDate"_s, u"2026-01-02"_s},
                       {u"savedAt"_s, 790000000.0},
                       {u"rowCount"_s, 1}};
}

struct Cli {
    TestPlatform test;
    AppState state{test.platform(), AppState::Options{test.settings}};
    QString out;
    QString err;

    int run(const QStringList& arguments) { return runCommandLine(state, arguments, out, err); }
};

} // namespace

class TestReportArchive : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // A name from a damaged index never reads, lists or deletes anything outside the folder.
    void foreignNamesStayOutside_data() {
        QTest::addColumn<QString>("name");
        QTest::newRow("parent") << u"../outside.tsv"_s;
        QTest::newRow("absolute") << u"/etc/passwd"_s;
        QTest::newRow("down and up twice") << u"a/../../outside.tsv"_s;
        QTest::newRow("down and up once") << u"a/../x.tsv"_s;
        QTest::newRow("empty") << QString();
        QTest::newRow("dots") << u".."_s;
        QTest::newRow("the index itself") << u"verzeichnis.json"_s;
        QTest::newRow("backslash") << u"..\\outside.tsv"_s;
        QTest::newRow("link out") << u"link.tsv"_s;
    }
    void foreignNamesStayOutside() {
        QFETCH(QString, name);
        QTemporaryDir root;
        const QString folder = root.filePath(u"Berichte"_s);
        const QString outside = root.filePath(u"outside.tsv"_s);
        writeFile(outside, "Secret\nkeep");
        writeFile(folder + u"/a/x.tsv"_s, "Deep\nkeep");
        QFile::link(outside, folder + u"/link.tsv"_s);
        QJsonObject bad = goodLine(folder);
        bad.insert(u"fileName"_s, name);
        const QByteArray index = QJsonDocument(QJsonArray{bad, goodLine(folder)}).toJson();
        writeFile(folder + u"/verzeichnis.json"_s, index);

        ReportArchiveStore store(folder, std::make_shared<ManualClock>());
        QVERIFY(!store.pathOf(name));
        const auto entries = store.entries();
        QCOMPARE(entries.size(), 1);
        QCOMPARE(entries[0].fileName, u"1-SALES-DAILY-2026-01-02.tsv"_s);
        QVERIFY(!store.reopen(name));
        QVERIFY(store.remove(name).has_value());
        QCOMPARE(readFile(outside), "Secret\nkeep"_ba);
        QCOMPARE(readFile(folder + u"/a/x.tsv"_s), "Deep\nkeep"_ba);
        QCOMPARE(readFile(folder + u"/verzeichnis.json"_s), index);
        QCOMPARE(store.reopen(entries[0].fileName)->cell(0, 0), u"3"_s);
    }

    // What is kept reads back as the same cells, a quoted tab, a comma and umlauts included.
    void reopenGivesTheSameTable() {
        QTemporaryDir root;
        ReportArchiveStore store(root.path(), std::make_shared<ManualClock>());
        const AnalyticsTable kept = table("Title\tUnits\n\"Mein\tSpiel\"\t1,5\nGrüße\t\t\n");
        const auto entry = std::get<ReportArchiveStore::Entry>(store.store(kept, salesMonth()));
        QVERIFY(*store.reopen(entry.fileName) == kept);
    }

    void damagedIndexLeavesTheRest_data() {
        QTest::addColumn<QByteArray>("index");
        QTest::addColumn<int>("readable");
        const QByteArray good = QJsonDocument(QJsonObject{{u"fileName"_s, u"1-SALES-DAILY-2026-01-02.tsv"_s},
                                                          {u"vendorNumber"_s, u"1"_s},
                                                          {u"reportType"_s, u"SALES"_s},
                                                          {u"frequency"_s, u"DAILY"_s},
                                                          {u"reportDate"_s, u"2026-01-02"_s},
                                                          {u"savedAt"_s, 790000000},
                                                          {u"rowCount"_s, 1}})
                                    .toJson(QJsonDocument::Compact);
        QTest::newRow("not JSON") << "[{\"fileName\":"_ba << 0;
        QTest::newRow("an object") << "{}"_ba << 0;
        QTest::newRow("a line that is no object") << "[3, " + good + "]" << 1;
        QTest::newRow("fileName a number") << "[{\"fileName\":7}, " + good + "]" << 1;
        QTest::newRow("savedAt as text")
            << "[" + QByteArray(good).replace("790000000", "\"gestern\"") + ", " + good + "]" << 1;
        QTest::newRow("negative rows")
            << "[" + QByteArray(good).replace("\"rowCount\":1", "\"rowCount\":-4") + ", " + good + "]" << 1;
        QTest::newRow("older line without kind") << "[" + good + "]" << 1;
    }
    void damagedIndexLeavesTheRest() {
        QFETCH(QByteArray, index);
        QFETCH(int, readable);
        QTemporaryDir root;
        writeFile(root.filePath(u"verzeichnis.json"_s), index);
        ReportArchiveStore store(root.path(), std::make_shared<ManualClock>());
        QCOMPARE(store.entries().size(), readable);
        // Storing after a damaged index works and keeps the readable lines.
        QVERIFY(
            std::holds_alternative<ReportArchiveStore::Entry>(store.store(table("Units\n1"), salesMonth())));
        QCOMPARE(ReportArchiveStore(root.path(), std::make_shared<ManualClock>()).entries().size(),
                 readable + 1);
    }

    void financeAndSalesOfOneMonthBothStay() {
        QTemporaryDir root;
        auto clock = std::make_shared<ManualClock>();
        ReportArchiveStore store(root.path(), clock);
        const auto sales = std::get<ReportArchiveStore::Entry>(store.store(table("Units\n5"), salesMonth()));
        clock->advance(60);
        const auto finance = std::get<ReportArchiveStore::Entry>(
            VarnisTest::awaitTask(store.storeAsync(table("Extended Partner Share\n9.90"), financeMonth())));
        QVERIFY(sales.fileName != finance.fileName);
        // Newest first, from a fresh start on the files.
        ReportArchiveStore reread(root.path(), clock);
        const auto entries = reread.entries();
        QCOMPARE(entries.size(), 2);
        QCOMPARE(entries[0], finance);
        QCOMPARE(entries[1], sales);
        QCOMPARE(entries[0].report.region, u"ZZ"_s);
        QCOMPARE(reread.reopen(sales.fileName)->columns(), QStringList{u"Units"_s});
        QCOMPARE(reread.reopen(finance.fileName)->cell(0, 0), u"9.90"_s);

        // The same report again: one file, one line, the later time.
        clock->advance(60);
        const auto again =
            std::get<ReportArchiveStore::Entry>(reread.store(table("Units\n6\n7"), salesMonth()));
        QCOMPARE(again.fileName, sales.fileName);
        const auto after = reread.entries();
        QCOMPARE(after.size(), 2);
        QCOMPARE(after[0], again);
        QCOMPARE(after[0].rowCount, 2);
        QCOMPARE(QDir(root.path()).entryList(QDir::Files).size(), 3);
    }

    void nameKeepsToOneFolder_data() {
        QTest::addColumn<QString>("vendor");
        QTest::addColumn<QString>("date");
        QTest::addColumn<QString>("expected");
        QTest::newRow("plain") << u"85012345"_s << u"2026-01-15"_s
                               << u"85012345-SALES-DAILY-2026-01-15.tsv"_s;
        QTest::newRow("vendor with path")
            << u"../../etc"_s << u"2026-01-15"_s << u"______etc-SALES-DAILY-2026-01-15.tsv"_s;
        QTest::newRow("date with slash") << u"1"_s << u"2026/../x"_s << u"1-SALES-DAILY-2026____x.tsv"_s;
    }
    void nameKeepsToOneFolder() {
        QFETCH(QString, vendor);
        QFETCH(QString, date);
        QFETCH(QString, expected);
        const Report report{Kind::Sales, vendor, u"SALES"_s, {}, u"DAILY"_s, date};
        QCOMPARE(ReportArchiveStore::fileName(report), expected);
    }

    void removeDeletesExactlyThatReport() {
        QTemporaryDir root;
        ReportArchiveStore store(root.path(), std::make_shared<ManualClock>());
        QStringList names;
        for (const QString& month : {u"2026-01"_s, u"2026-02"_s, u"2026-03"_s}) {
            names << std::get<ReportArchiveStore::Entry>(store.store(table("Units\n1"), salesMonth(month)))
                         .fileName;
        }
        QVERIFY(!store.remove(names[1]));
        QVERIFY(!QFile::exists(root.filePath(names[1])));
        QVERIFY(QFile::exists(root.filePath(names[0])));
        QVERIFY(QFile::exists(root.filePath(names[2])));
        QVERIFY(QFile::exists(root.filePath(u"verzeichnis.json"_s)));
        const auto left = ReportArchiveStore(root.path(), std::make_shared<ManualClock>()).entries();
        QCOMPARE(left.size(), 2);
        QVERIFY(!store.reopen(names[1]));
        // A file already gone is no failure; its line goes.
        QFile::remove(root.filePath(names[0]));
        QVERIFY(!store.remove(names[0]));
        QCOMPARE(store.entries().size(), 1);
    }

    void failedStoreKeepsTheIndex() {
        QTemporaryDir root;
        writeFile(root.filePath(u"plain"_s), "a file");
        ReportArchiveStore store(root.filePath(u"plain/Berichte"_s), std::make_shared<ManualClock>());
        const auto result = store.store(table("Units\n1"), salesMonth());
        QCOMPARE(ReportArchiveStore::archiveFailedMessage(std::get<QString>(result)),
                 u"Ablegen fehlgeschlagen: Ein Teil des Pfads ist eine Datei, kein Ordner."_s);
        QVERIFY(store.entries().isEmpty());
    }

    void unreadableFileGivesNothing() {
        QTemporaryDir root;
        ReportArchiveStore store(root.path(), std::make_shared<ManualClock>());
        const auto entry = std::get<ReportArchiveStore::Entry>(store.store(table("Units\n1"), salesMonth()));
        writeFile(root.filePath(entry.fileName), "Units\n\xC3\x28");
        QVERIFY(!VarnisTest::awaitTask(store.reopenAsync(entry.fileName)));
    }

    void csvField_data() {
        QTest::addColumn<QByteArray>("field");
        QTest::addColumn<QByteArray>("expected");
        QTest::newRow("plain") << "abc"_ba
                               << "abc"_ba;
        QTest::newRow("empty") << ""_ba
                               << ""_ba;
        QTest::newRow("comma") << "1,234.50"_ba
                               << "\"1,234.50\""_ba;
        QTest::newRow("quote doubled") << "5\" Display"_ba
                                       << "\"5\"\" Display\""_ba;
        QTest::newRow("only a quote") << "\""_ba
                                      << "\"\"\"\""_ba;
        QTest::newRow("line feed") << "a\nb"_ba
                                   << "\"a\nb\""_ba;
        QTest::newRow("carriage return alone") << "a\rb"_ba
                                               << "a\rb"_ba;
        QTest::newRow("tab") << "a\tb"_ba
                             << "a\tb"_ba;
        QTest::newRow("umlaut and emoji") << "Grüße 😀"_ba
                                          << "Grüße 😀"_ba;
    }
    void csvField() {
        QFETCH(QByteArray, field);
        QFETCH(QByteArray, expected);
        QCOMPARE(ReportExport::csvField(field), expected);
    }

    void jsonString_data() {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QByteArray>("expected");
        QTest::newRow("plain") << "abc"_ba
                               << "\"abc\""_ba;
        QTest::newRow("quote and backslash") << "a\"b\\c"_ba
                                             << "\"a\\\"b\\\\c\""_ba;
        QTest::newRow("short escapes") << "\n\r\t\b\f"_ba
                                       << "\"\\n\\r\\t\\b\\f\""_ba;
        QTest::newRow("other control") << QByteArray("\x00\x01\x1f", 3) << "\"\\u0000\\u0001\\u001f\""_ba;
        QTest::newRow("delete stays") << "\x7f"_ba
                                      << "\"\x7f\""_ba;
        QTest::newRow("slash stays") << "a/b"_ba
                                     << "\"a/b\""_ba;
        QTest::newRow("outside the BMP") << "😀"_ba
                                         << "\"😀\""_ba;
        QTest::newRow("escape at both ends") << "\"x\""_ba
                                             << "\"\\\"x\\\"\""_ba;
    }
    void jsonString() {
        QFETCH(QByteArray, text);
        QFETCH(QByteArray, expected);
        const QByteArray written = ReportExport::jsonString(text);
        QCOMPARE(written, expected);
        // A JSON reader gets the text back.
        const QJsonArray back = QJsonDocument::fromJson("[" + written + "]").array();
        QCOMPARE(back.at(0).toString(), QString::fromUtf8(text));
    }

    void exportTable_data() {
        QTest::addColumn<QByteArray>("tsv");
        QTest::addColumn<QByteArray>("csv");
        QTest::addColumn<QByteArray>("json");
        QTest::newRow("no rows") << "A\tB"_ba
                                 << "A,B"_ba
                                 << "[]"_ba;
        QTest::newRow("short and long rows")
            << "B\tA\n1\n2\t3\t4"_ba
            << "B,A\n1\n2,3,4"_ba
            << "[\n  {\n    \"B\" : \"1\"\n  },\n  {\n    \"A\" : \"3\",\n    \"B\" : \"2\"\n  }\n]"_ba;
        QTest::newRow("two columns of one name, the later wins where there")
            << "X\tY\tX\na\tb\tc\nd"_ba
            << "X,Y,X\na,b,c\nd"_ba
            << "[\n  {\n    \"X\" : \"c\",\n    \"Y\" : \"b\"\n  },\n  {\n    \"X\" : \"d\"\n  }\n]"_ba;
        QTest::newRow("comma in header and cell, nothing a number")
            << "Name\tUnits, total\n\"A, B\"\t1,234.50"_ba
            << "Name,\"Units, total\"\n\"A, B\",\"1,234.50\""_ba
            << "[\n  {\n    \"Name\" : \"A, B\",\n    \"Units, total\" : \"1,234.50\"\n  }\n]"_ba;
        QTest::newRow("keys by code point")
            << "b\tÄ\tB\n1\t2\t3"_ba
            << "b,Ä,B\n1,2,3"_ba
            << "[\n  {\n    \"B\" : \"3\",\n    \"b\" : \"1\",\n    \"Ä\" : \"2\"\n  }\n]"_ba;
    }
    void exportTable() {
        QFETCH(QByteArray, tsv);
        QFETCH(QByteArray, csv);
        QFETCH(QByteArray, json);
        const AnalyticsTable t = AnalyticsTable::parseTSV(QByteArray(tsv));
        QCOMPARE(ReportExport::csv(t), csv);
        QCOMPARE(ReportExport::json(t), json);
        QTemporaryDir root;
        const QString path = root.filePath(u"out.json"_s);
        QVERIFY(
            !VarnisTest::awaitTask(ReportExport::writeFileInBackground(t, ReportExport::Format::Json, path)));
        QCOMPARE(readFile(path), json);
    }

    // Rows across several pieces come out whole, and a sink that refuses stops the writing.
    void exportInPieces() {
        QByteArray tsv = "Title\tUnits\n";
        for (int i = 0; i < 100000; ++i) {
            tsv += "Nordlicht „Pro“ 😀, Edition\t" + QByteArray::number(i) + "\n";
        }
        const AnalyticsTable t = AnalyticsTable::parseTSV(std::move(tsv));
        const QByteArray whole = ReportExport::csv(t);
        QVERIFY(whole.size() > 2 * ReportExport::pieceBytes);
        QVERIFY(whole.endsWith("\"Nordlicht „Pro“ 😀, Edition\",99999"));
        int pieces = 0;
        QVERIFY(!ReportExport::write(t, ReportExport::Format::Json,
                                     [&](QByteArrayView) { return ++pieces < 2; }));
        QCOMPARE(pieces, 2);
    }

    void exportFailure_data() {
        QTest::addColumn<QString>("target");
        QTest::addColumn<QString>("message");
        QTest::newRow("under a file")
            << u"plain/out.csv"_s
            << u"Export fehlgeschlagen: Ein Teil des Pfads ist eine Datei, kein Ordner."_s;
        QTest::newRow("a folder") << u"folder"_s
                                  << u"Export fehlgeschlagen: Dort liegt ein Ordner, keine Datei."_s;
        QTest::newRow("missing folder")
            << u"nowhere/out.csv"_s << u"Export fehlgeschlagen: Der Ordner oder die Datei existiert nicht."_s;
    }
    void exportFailure() {
        QFETCH(QString, target);
        QFETCH(QString, message);
        QTemporaryDir root;
        writeFile(root.filePath(u"plain"_s), "a file");
        QDir(root.path()).mkdir(u"folder"_s);
        const auto failure =
            ReportExport::writeFile(table("A\n1"), ReportExport::Format::Csv, root.filePath(target));
        QCOMPARE(ReportExport::failureMessage(failure.value_or(QString())), message);
        QCOMPARE(readFile(root.filePath(u"plain"_s)), "a file"_ba);
    }

    // A write that fails after many pieces went to the disk (here: the file grows past the limit
    // the process may write) ends in the file system's reason; the file under its name stays as
    // it was and no half file is left beside it.
    void exportFailsMidway() {
        QTemporaryDir root;
        const QString target = root.filePath(u"out.csv"_s);
        writeFile(target, "old");
        QByteArray text = "A\tB";
        const QByteArray row = "\n" + QByteArray(100, 'x') + "\t" + QByteArray(100, 'y');
        for (int r = 0; r < 20000; ++r) {
            text += row;
        }
        const AnalyticsTable big = AnalyticsTable::parseTSV(text);
        rlimit before{};
        QCOMPARE(getrlimit(RLIMIT_FSIZE, &before), 0);
        rlimit limited = before;
        limited.rlim_cur = 256 * 1024;
        const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
        QCOMPARE(setrlimit(RLIMIT_FSIZE, &limited), 0);
        const auto failure = ReportExport::writeFile(big, ReportExport::Format::Csv, target);
        setrlimit(RLIMIT_FSIZE, &before);
        std::signal(SIGXFSZ, oldHandler);
        QCOMPARE(ReportExport::failureMessage(failure.value_or(QString())),
                 u"Export fehlgeschlagen: Die Datei wird für das Dateisystem zu groß."_s);
        QCOMPARE(readFile(target), "old"_ba);
        QCOMPARE(QDir(root.path()).entryList(QDir::Files), QStringList{u"out.csv"_s});
    }

    void commandLine_data() {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("out");
        QTest::addColumn<QString>("err");
        const QString name = u"85012345-SALES-MONTHLY-2026-01.tsv"_s;
        QTest::newRow("list") << QStringList{u"list"_s} << 0 << name << QString();
        QTest::newRow("list json") << QStringList{u"list"_s, u"--json"_s} << 0
                                   << u"\"fileName\": \"%1\""_s.arg(name) << QString();
        QTest::newRow("csv to stdout") << QStringList{u"export"_s, name, u"--format"_s, u"csv"_s} << 0
                                       << u"Title,Units\n\"Grüße, 😀\",3\n"_s << QString();
        QTest::newRow("json to stdout") << QStringList{u"export"_s, name, u"--format"_s, u"json"_s} << 0
                                        << u"\"Title\" : \"Grüße, 😀\""_s << QString();
        QTest::newRow("out into a folder")
            << QStringList{u"export"_s, name, u"--format"_s, u"csv"_s, u"--out"_s, u"."_s} << 1 << QString()
            << u"Export fehlgeschlagen: Dort liegt ein Ordner, keine Datei."_s;
        QTest::newRow("unknown report")
            << QStringList{u"export"_s, u"../outside.tsv"_s, u"--format"_s, u"csv"_s} << 1 << QString()
            << u"Im Verlauf liegt kein Bericht „../outside.tsv“."_s;
        QTest::newRow("unknown format") << QStringList{u"export"_s, name, u"--format"_s, u"xml"_s} << 2
                                        << QString() << u"Unbekanntes Format: xml (csv oder json)"_s;
        QTest::newRow("no format") << QStringList{u"export"_s, name} << 2 << QString()
                                   << u"Es fehlt --format csv oder --format json."_s;
        QTest::newRow("no action") << QStringList{} << 2 << QString() << u"Es fehlt list oder export."_s;
    }
    void commandLine() {
        QFETCH(QStringList, arguments);
        QFETCH(int, status);
        QFETCH(QString, out);
        QFETCH(QString, err);
        Cli cli;
        QVERIFY(std::holds_alternative<ReportArchiveStore::Entry>(
            cli.state.reportArchive().store(table("Title\tUnits\n\"Grüße, 😀\"\t3"), salesMonth())));
        QCOMPARE(cli.run(QStringList{u"report"_s, u"archive"_s} + arguments), status);
        QVERIFY2(cli.out.contains(out), qPrintable(cli.out));
        QVERIFY2(cli.err.contains(err), qPrintable(cli.err));
    }

    void commandLineWritesTheFile() {
        Cli cli;
        QVERIFY(cli.run({u"report"_s, u"archive"_s, u"list"_s}) == 0);
        QVERIFY(cli.out.startsWith(u"Noch nichts abgelegt."_s));
        const auto entry = std::get<ReportArchiveStore::Entry>(
            cli.state.reportArchive().store(table("A\tB\n1\t2"), financeMonth()));
        const QString path = cli.test.dir.filePath(u"bericht.csv"_s);
        QCOMPARE(cli.run({u"report"_s, u"archive"_s, u"export"_s, entry.fileName, u"--format=csv"_s,
                          u"--out"_s, path}),
                 0);
        QCOMPARE(readFile(path), "A,B\n1,2"_ba);
        QCOMPARE(cli.err, u"Als CSV exportiert.\n"_s);
    }
};

QTEST_GUILESS_MAIN(TestReportArchive)
#include "tst_reportarchive.moc"
