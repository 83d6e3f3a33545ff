// What loading a large sales report costs: a generated summary-sales report of 1,000,000 rows and
// 28 columns (about 191 MiB of text, about 20 MB as gzip), read from disk, unpacked, checked as
// UTF-8 and parsed into the table, against `zcat FILE > /dev/null` on the same file in the same
// run. Each stage runs in a child process of its own, so that its peak memory is its own.
//
//   bench_reports [rows]           the comparison, medians of three runs each
//   bench_reports --stage load F   one load in this process (used by the comparison)
//   bench_reports --stage export F OUT   one CSV export of the loaded report into OUT
//   bench_reports --stage summary F  the sales summary over all rows of a loaded report
#include "BenchSupport.h"
#include "reports/AnalyticsTable.h"
#include "reports/GzipDecoder.h"
#include "reports/ReportExport.h"
#include "reports/SalesReportsService.h"
#include "reports/SalesSummary.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>

#include <zlib.h>

#include <algorithm>
#include <cstdio>
#include <vector>

using namespace Qt::StringLiterals;
using Bench::Lcg;
using Bench::median;
using Bench::statusKB;

namespace {

// The columns of Apple's summary sales report, and rows of plausible values.
QByteArray generate(int rows) {
    static const char* const header =
        "Provider\tProvider Country\tSKU\tDeveloper\tTitle\tVersion\tProduct Type Identifier\tUnits\t"
        "Developer Proceeds\tBegin Date\tEnd Date\tCustomer Currency\tCountry Code\tCurrency of Proceeds\t"
        "Apple Identifier\tCustomer Price\tPromo Code\tParent "
        "Identifier\tSubscription\tPeriod\tCategory\tCMB\t"
        "Device\tSupported Platforms\tProceeds Reason\tPreserved Pricing\tClient\tOrder Type\n";
    static const char* const titles[] = {"Mein Reiseplaner", "Sternenhimmel Pro", "Kochbuch Deluxe",
                                         "Wetter & Radar",   "Fokus-Timer",       "Vokabeltrainer Spanisch"};
    static const char* const countries[] = {"DE", "AT", "CH", "US", "FR", "IT", "ES", "NL", "GB", "JP"};
    static const char* const currencies[] = {"EUR", "EUR", "CHF", "USD", "EUR",
                                             "EUR", "EUR", "EUR", "GBP", "JPY"};
    static const char* const devices[] = {"iPhone", "iPad", "Desktop", "Apple TV"};
    static const char* const types[] = {"1F", "IA1", "IAY", "3F", "1T"};
    Lcg random;
    QByteArray out(header);
    out.reserve(qsizetype(rows) * 200 + out.size());
    for (int r = 0; r < rows; ++r) {
        const quint32 app = random.next(6);
        const quint32 country = random.next(10);
        const quint32 day = 1 + random.next(28);
        char line[512];
        const int n = std::snprintf(
            line, sizeof line,
            "APPLE\tUS\tcom.example.app%u.premium\tBeispiel Software GmbH\t%s\t%u.%u.%u\t%s\t%u\t%u.%02u\t"
            "11/%02u/2026\t11/%02u/"
            "2026\t%s\t%s\t%s\t%u\t%u.%02u\t%s\t%s\t%s\t%s\tProductivity\t\t%s\tiOS\t%s\t"
            "\t%s\t%s\n",
            app, titles[app], 1 + random.next(4), random.next(10), random.next(20), types[random.next(5)],
            1 + random.next(5), random.next(40), random.next(100), day, day, currencies[country],
            countries[country], currencies[country], 1400000000 + app * 1000 + random.next(1000),
            random.next(60), random.next(100), random.next(20) == 0 ? "HERBST26" : "",
            random.next(3) == 0 ? "com.example.parent" : "", random.next(4) == 0 ? "Renewal" : "",
            random.next(4) == 0 ? "1 Month" : "", devices[random.next(4)],
            random.next(5) == 0 ? "Rate After One Year" : "", random.next(8) == 0 ? "Yes" : "",
            random.next(6) == 0 ? "Pre-Order" : "");
        out.append(line, n);
    }
    return out;
}

QByteArray gzipped(const QByteArray& text) {
    z_stream stream{};
    deflateInit2(&stream, 6, Z_DEFLATED, MAX_WBITS + 16, 8, Z_DEFAULT_STRATEGY);
    QByteArray out(qsizetype(deflateBound(&stream, uLong(text.size()))), Qt::Uninitialized);
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.constData()));
    stream.avail_in = uInt(text.size());
    stream.next_out = reinterpret_cast<Bytef*>(out.data());
    stream.avail_out = uInt(out.size());
    deflate(&stream, Z_FINISH);
    out.truncate(qsizetype(stream.total_out));
    deflateEnd(&stream);
    return out;
}

// The generated file, made once and kept for later runs.
QString reportFile(int rows) {
    const QString path = QDir::temp().filePath(u"varnis-bench-sales-%1.txt.gz"_s.arg(rows));
    if (!QFileInfo::exists(path)) {
        std::printf("generating %s …\n", qPrintable(path));
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly) || file.write(gzipped(generate(rows))) < 0) {
            qFatal("cannot write the report");
        }
    }
    return path;
}

// One load, as the application does it; prints "seconds peakKB baseKB rows unpackedBytes".
int loadStage(const QString& path) {
    const qint64 baseKB = statusKB("VmRSS");
    QElapsedTimer timer;
    timer.start();
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return 1;
    }
    QByteArray packed = file.readAll();
    file.close();
    QByteArray text = GzipDecoder::decompress(packed);
    packed = QByteArray();
    if (!QByteArrayView(text).isValidUtf8()) {
        return 1;
    }
    const qint64 unpacked = text.size();
    const AnalyticsTable table = AnalyticsTable::parseTSV(std::move(text));
    const double seconds = double(timer.nsecsElapsed()) / 1e9;
    std::printf("%.4f %lld %lld %lld %lld\n", seconds, statusKB("VmHWM"), baseKB, qint64(table.rowCount()),
                unpacked);
    return 0;
}

// The summary of the sales screen over every row, the table already loaded; prints "seconds rows
// units proceeds".
int summaryStage(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return 1;
    }
    const AnalyticsTable table = SalesReportsService::tableFromBytes(file.readAll());
    file.close();
    QElapsedTimer timer;
    timer.start();
    const SalesSummary summary = SalesSummary::of(table);
    const double seconds = double(timer.nsecsElapsed()) / 1e9;
    std::printf("%.4f %lld %lld %s\n", seconds, qint64(summary.rowCount), summary.units.value_or(-1),
                qPrintable(summary.proceeds ? summary.proceeds->toString(2) : u"-"_s));
    return 0;
}

// One CSV export of the whole table into `out`, the loading not counted; prints "seconds bytes".
int exportStage(const QString& path, const QString& out) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return 1;
    }
    const AnalyticsTable table = AnalyticsTable::parseTSV(GzipDecoder::decompress(file.readAll()));
    QElapsedTimer timer;
    timer.start();
    if (const auto failure = ReportExport::writeFile(table, ReportExport::Format::Csv, out)) {
        std::fprintf(stderr, "%s\n", qPrintable(*failure));
        return 1;
    }
    std::printf("%.4f %lld\n", double(timer.nsecsElapsed()) / 1e9, QFileInfo(out).size());
    return 0;
}

// The CSV export against `cat` of the unpacked report, medians of three runs each.
int compareExport(const QString& path) {
    const QString unpacked = QDir::temp().filePath(QFileInfo(path).completeBaseName());
    if (!QFileInfo::exists(unpacked)) {
        QFile in(path);
        QFile text(unpacked);
        if (!in.open(QIODevice::ReadOnly) || !text.open(QIODevice::WriteOnly) ||
            text.write(GzipDecoder::decompress(in.readAll())) < 0) {
            qFatal("cannot write the unpacked report");
        }
    }
    const QString out = QDir::temp().filePath(u"varnis-bench-export.csv"_s);
    std::vector<double> cat;
    std::vector<double> catToFile;
    std::vector<double> ddSynced;
    std::vector<double> exported;
    for (int run = 0; run < 3; ++run) {
        // cat into /dev/null only reads; into a file next to ours it does what an export must do
        // at the least, write the bytes.
        for (const QString& target : {QProcess::nullDevice(), out}) {
            QProcess reader;
            reader.setStandardOutputFile(target);
            QElapsedTimer timer;
            timer.start();
            reader.start(u"cat"_s, {unpacked});
            reader.waitForFinished(120000);
            (target == out ? catToFile : cat).push_back(double(timer.nsecsElapsed()) / 1e9);
        }
        QFile::remove(out);
        // The export makes its file durable before giving it its name (the save file syncs it to
        // disk); dd with fdatasync writes the same bytes with the same promise.
        {
            QProcess copier;
            QElapsedTimer timer;
            timer.start();
            copier.start(u"dd"_s, {u"if="_s + unpacked, u"of="_s + out, u"bs=1M"_s, u"conv=fdatasync"_s,
                                   u"status=none"_s});
            copier.waitForFinished(120000);
            ddSynced.push_back(double(timer.nsecsElapsed()) / 1e9);
        }
        QFile::remove(out);

        QProcess stage;
        stage.start(QCoreApplication::applicationFilePath(), {u"--stage"_s, u"export"_s, path, out});
        stage.waitForFinished(300000);
        const QList<QByteArray> figures = stage.readAllStandardOutput().trimmed().split(' ');
        if (stage.exitCode() != 0 || figures.size() != 2) {
            std::fprintf(stderr, "export failed\n");
            return 1;
        }
        exported.push_back(figures[0].toDouble());
        std::printf("run %d: cat %.3f s, export csv %.3f s, %.0f MiB\n", run + 1, cat.back(), exported.back(),
                    figures[1].toDouble() / (1024.0 * 1024.0));
    }
    QFile::remove(out);
    std::printf("  cat FILE > /dev/null           %7.3f s\n", median(cat));
    std::printf("  cat FILE > OTHER               %7.3f s\n", median(catToFile));
    std::printf(
        "  export csv into a file         %7.3f s   ratio %.2f to cat > /dev/null, %.2f to cat > OTHER "
        "(target <= 1.5)\n",
        median(exported), median(exported) / median(cat), median(exported) / median(catToFile));
    std::printf("  dd FILE > OTHER, synced        %7.3f s   export's ratio to it %.2f\n", median(ddSynced),
                median(exported) / median(ddSynced));
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const QStringList args = QCoreApplication::arguments();
    if (args.size() == 4 && args[1] == u"--stage"_s && args[2] == u"load"_s) {
        return loadStage(args[3]);
    }
    if (args.size() == 5 && args[1] == u"--stage"_s && args[2] == u"export"_s) {
        return exportStage(args[3], args[4]);
    }
    if (args.size() == 4 && args[1] == u"--stage"_s && args[2] == u"summary"_s) {
        return summaryStage(args[3]);
    }
    const int rows = args.size() > 1 ? std::max(1, args[1].toInt()) : 1000000;
    const QString path = reportFile(rows);

    std::vector<double> zcat;
    std::vector<double> load;
    std::vector<double> summary;
    QByteArray summaryFigures;
    qint64 peakKB = 0;
    qint64 baseKB = 0;
    qint64 unpacked = 0;
    for (int run = 0; run < 3; ++run) {
        QProcess unzip;
        unzip.setStandardOutputFile(QProcess::nullDevice());
        QElapsedTimer timer;
        timer.start();
        unzip.start(u"zcat"_s, {path});
        unzip.waitForFinished(120000);
        zcat.push_back(double(timer.nsecsElapsed()) / 1e9);

        QProcess stage;
        stage.start(QCoreApplication::applicationFilePath(), {u"--stage"_s, u"load"_s, path});
        stage.waitForFinished(120000);
        const QList<QByteArray> figures = stage.readAllStandardOutput().trimmed().split(' ');
        if (stage.exitCode() != 0 || figures.size() != 5) {
            std::fprintf(stderr, "load failed\n");
            return 1;
        }
        load.push_back(figures[0].toDouble());
        peakKB = std::max(peakKB, figures[1].toLongLong());
        baseKB = figures[2].toLongLong();
        unpacked = figures[4].toLongLong();

        QProcess summaryRun;
        summaryRun.start(QCoreApplication::applicationFilePath(), {u"--stage"_s, u"summary"_s, path});
        summaryRun.waitForFinished(120000);
        const QList<QByteArray> summed = summaryRun.readAllStandardOutput().trimmed().split(' ');
        if (summaryRun.exitCode() != 0 || summed.size() != 4) {
            std::fprintf(stderr, "summary failed\n");
            return 1;
        }
        summary.push_back(summed[0].toDouble());
        summaryFigures = summed.mid(1).join(' ');
        std::printf("run %d: zcat %.3f s, load %.3f s, summary %.1f ms, %lld rows\n", run + 1, zcat.back(),
                    load.back(), summary.back() * 1000.0, figures[3].toLongLong());
    }
    const double unpackedMB = double(unpacked) / (1024.0 * 1024.0);
    std::printf("report of %d rows: %.0f MiB unpacked, %.1f MB gzip; medians of 3:\n", rows, unpackedMB,
                double(QFileInfo(path).size()) / 1e6);
    std::printf("  zcat FILE > /dev/null          %7.3f s\n", median(zcat));
    std::printf("  read, unpack, check, parse     %7.3f s   ratio %.2f (target <= 1.0)\n", median(load),
                median(load) / median(zcat));
    std::printf("  sales summary over all rows    %7.1f ms  (target <= 100 ms; rows, units, proceeds: %s)\n",
                median(summary) * 1000.0, summaryFigures.constData());
    std::printf(
        "  peak memory of the load        %7.0f MiB  %.2f x unpacked (target <= 1.2); %.0f MiB over the "
        "process's start\n",
        double(peakKB) / 1024.0, double(peakKB) / 1024.0 / unpackedMB, double(peakKB - baseKB) / 1024.0);
    return compareExport(path);
}
