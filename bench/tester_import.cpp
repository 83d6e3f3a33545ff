// What reading a large tester list costs: a 200,000-line file of mixed separators, quotes,
// blank lines, duplicates, line ends and umlauts, decoded and parsed the way the import does it,
// against the least any reader must do (UTF-8 decoding, then splitting by line and separator),
// timed in the same run. Then the memory the import needs on top of the file's bytes, from the
// process's peak resident size.
#include "BenchSupport.h"
#include "testflight/BetaTesterImportFile.h"
#include "testflight/BetaTesterImportParsing.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QStringList>

#include <malloc.h>

#include <algorithm>
#include <cstdio>
#include <vector>

using namespace Qt::StringLiterals;
using Bench::Lcg;

namespace {

QByteArray generate(int lines) {
    static const char* const first[] = {"Anna",  "Bernd", "Jörg", "Zoë",  "Mia",
                                        "Lukas", "Şule",  "Noah", "Emma", "Ben"};
    static const char* const last[] = {"Müller", "Schmidt", "Weiß", "O'Brien", "Nguyen",
                                       "Becker", "Groß",    "Kaya", "Fischer", "Lange"};
    static const char* const domains[] = {"example.com", "beispiel.de", "firma.example.org", "mail.test"};
    Lcg random;
    QByteArray out;
    out.reserve(qsizetype(lines) * 48);
    out += "Vorname;Nachname;E-Mail\r\n";
    QList<QByteArray> earlier;
    for (int i = 1; i < lines; ++i) {
        const QByteArray f = first[random.next(10)];
        const QByteArray l = last[random.next(10)];
        const QByteArray address =
            QByteArray(f).toLower() + '.' + QByteArray::number(i) + '@' + domains[random.next(4)];
        const quint32 kind = random.next(100);
        QByteArray line;
        if (kind < 3) {
            line = "";
        } else if (kind < 5) {
            line = f + ' ' + l + " (ohne Adresse)";
        } else if (kind < 15 && !earlier.isEmpty()) {
            line = earlier.at(random.next(quint32(earlier.size()))).toUpper() + ";Doppelt";
        } else if (kind < 40) {
            line = f + ';' + l + ';' + address;
        } else if (kind < 60) {
            line = '"' + l + ", " + f + "\"," + address;
        } else if (kind < 75) {
            line = address + '\t' + f + '\t' + l;
        } else if (kind < 85) {
            line = "\"" + f + " \"\"Spitzname\"\" " + l + "\";" + address + ";";
        } else {
            line = "  " + address + " , " + f + " ,  " + l + "  ";
        }
        if (kind >= 15 && earlier.size() < 5000) {
            earlier.append(address);
        }
        out += line;
        out += (i % 3 == 0) ? "\r\n" : "\n";
    }
    return out;
}

// The least a reader must do: decode, split into lines, split each line at its separator.
qsizetype baseline(const QByteArray& bytes) {
    const QString text = QString::fromUtf8(bytes);
    qsizetype fields = 0;
    for (const QString& line : text.split(u'\n')) {
        const QChar separator = line.contains(u';') ? u';' : line.contains(u',') ? u',' : u'\t';
        fields += line.split(separator).size();
    }
    return fields;
}

BetaTesterImportParsing::Result import(const QByteArray& bytes) {
    return BetaTesterImportParsing::parse(BetaTesterImportFile::decode(bytes));
}

// Forgets the peak so far: from here on VmHWM is the peak of what follows.
bool resetPeak() {
    malloc_trim(0);
    return Bench::resetPeak();
}

template <typename Body> qint64 peakGrowth(Body&& body) {
    if (!resetPeak()) {
        return -1;
    }
    const qint64 before = Bench::statusKB("VmRSS") * 1024;
    body();
    return Bench::statusKB("VmHWM") * 1024 - before;
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const int lines = 200000;
    const QByteArray bytes = generate(lines);
    const double mb = double(bytes.size()) / (1024.0 * 1024.0);

    // Memory first, before the timing loops have grown the heap.
    BetaTesterImportParsing::Result result;
    const qint64 importPeak = peakGrowth([&] { result = import(bytes); });
    qsizetype baselineFields = 0;
    const qint64 baselinePeak = peakGrowth([&] { baselineFields = baseline(bytes); });

    // Alternating rounds, so that both see the same state of the machine.
    const int rounds = 9;
    std::vector<double> importTimes;
    std::vector<double> baselineTimes;
    QElapsedTimer timer;
    qsizetype sink = 0;
    for (int i = 0; i < rounds; ++i) {
        timer.start();
        sink += import(bytes).testers.size();
        importTimes.push_back(double(timer.nsecsElapsed()) / 1e6);
        timer.start();
        sink += baseline(bytes);
        baselineTimes.push_back(double(timer.nsecsElapsed()) / 1e6);
    }
    // The two steps of the import on their own, to see where its time goes.
    std::vector<double> decodeTimes;
    std::vector<double> parseTimes;
    const QString text = BetaTesterImportFile::decode(bytes);
    for (int i = 0; i < rounds; ++i) {
        timer.start();
        sink += BetaTesterImportFile::decode(bytes).size();
        decodeTimes.push_back(double(timer.nsecsElapsed()) / 1e6);
        timer.start();
        sink += BetaTesterImportParsing::parse(text).testers.size();
        parseTimes.push_back(double(timer.nsecsElapsed()) / 1e6);
    }
    const double importMs = Bench::median(importTimes);
    const double baselineMs = Bench::median(baselineTimes);
    const double ratio = importMs / baselineMs;

    std::printf("file: %d lines, %.2f MB; %lld testers, %d duplicates, %lld rejected lines, %lld fields\n",
                lines, mb, static_cast<long long>(result.testers.size()), result.duplicateCount,
                static_cast<long long>(result.rejectedLines.size()), static_cast<long long>(baselineFields));
    std::printf("import (decode + parse):          %8.1f ms (median of %d)\n", importMs, rounds);
    std::printf("  decode alone:                   %8.1f ms\n", Bench::median(decodeTimes));
    std::printf("  parse alone:                    %8.1f ms\n", Bench::median(parseTimes));
    std::printf("baseline (fromUtf8 + split, split): %6.1f ms\n", baselineMs);
    std::printf("ratio: %.2fx (target <= 2x) %s\n", ratio, ratio <= 2.0 ? "met" : "MISSED");
    if (importPeak < 0) {
        std::printf("peak memory: not measurable here (no /proc/self/clear_refs)\n");
    } else {
        const double growth = double(importPeak) / double(bytes.size());
        std::printf(
            "peak memory growth: import %.1f MB = %.1fx the file (target <= 10x) %s; baseline %.1f MB = "
            "%.1fx\n",
            double(importPeak) / (1024.0 * 1024.0), growth, growth <= 10.0 ? "met" : "MISSED",
            double(baselinePeak) / (1024.0 * 1024.0), double(baselinePeak) / double(bytes.size()));
    }
    return sink == 42 ? 2 : 0;
}
