#include "reports/AnalyticsTable.h"
#include "reports/GzipDecoder.h"

#include <QTest>
#include <zlib.h>

using namespace Qt::StringLiterals;

namespace {

QByteArray rawDeflate(const QByteArray& payload) {
    z_stream stream{};
    deflateInit2(&stream, 6, Z_DEFLATED, -MAX_WBITS, 8, Z_DEFAULT_STRATEGY);
    QByteArray out(qsizetype(deflateBound(&stream, uLong(payload.size()))), Qt::Uninitialized);
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(payload.constData()));
    stream.avail_in = uInt(payload.size());
    stream.next_out = reinterpret_cast<Bytef*>(out.data());
    stream.avail_out = uInt(out.size());
    deflate(&stream, Z_FINISH);
    out.truncate(qsizetype(stream.total_out));
    deflateEnd(&stream);
    return out;
}

void appendLE32(QByteArray& out, quint32 value) {
    for (int i = 0; i < 4; ++i) {
        out.append(char((value >> (8 * i)) & 0xFF));
    }
}

QByteArray gzip(const QByteArray& payload, uchar flags = 0, const QByteArray& extra = {}, const QByteArray& name = {},
               const QByteArray& comment = {}, bool rightTrailer = true) {
    QByteArray out("\x1F\x8B\x08", 3);
    out.append(char(flags));
    out.append(QByteArray(6, '\0'));
    if (flags & 4) {
        out.append(char(extra.size() & 0xFF));
        out.append(char(extra.size() >> 8));
        out.append(extra);
    }
    if (flags & 8) {
        out.append(name).append('\0');
    }
    if (flags & 16) {
        out.append(comment).append('\0');
    }
    if (flags & 2) {
        out.append("\xAB\xCD", 2);
    }
    out.append(rawDeflate(payload));
    const quint32 crc =
        quint32(crc32(0, reinterpret_cast<const Bytef*>(payload.constData()), uInt(payload.size())));
    appendLE32(out, rightTrailer ? crc : ~crc);
    appendLE32(out, rightTrailer ? quint32(payload.size()) : quint32(payload.size()) * 7 + 3);
    return out;
}

const QByteArray report = "Begin Date\tUnits\n2026-11-01\t3\n2026-11-02\t4\n"_ba;

using Kind = GzipDecoder::DecodingError::Kind;

} // namespace

class ReportTablesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void decompress_data() {
        QTest::addColumn<QByteArray>("data");
        QTest::addColumn<QByteArray>("expected");
        QTest::addColumn<int>("error"); // -1: none

        QTest::newRow("plain") << gzip(report) << report << -1;
        QTest::newRow("name and comment") << gzip(report, 8 | 16, {}, "sales.txt", "Apple") << report << -1;
        QTest::newRow("extra field and header CRC") << gzip(report, 4 | 2, "xyzw") << report << -1;
        QTest::newRow("damaged trailer still decodes")
            << gzip(report, 0, {}, {}, {}, false) << report << -1;
        QTest::newRow("two members, one after the other")
            << gzip(report) + gzip("more\n"_ba, 8, {}, "b") << report + "more\n"_ba << -1;
        QByteArray pattern;
        for (int i = 0; i < 20000; ++i) {
            pattern += QByteArray::number(i * 7919 % 10007) + '\t';
        }
        QTest::newRow("large, sized from the trailer") << gzip(pattern) << pattern << -1;

        QTest::newRow("two bytes without the magic") << "ab"_ba << QByteArray() << int(Kind::NotGzip);
        QTest::newRow("empty") << QByteArray() << QByteArray() << int(Kind::NotGzip);
        QTest::newRow("18 bytes") << gzip(report).first(18) << QByteArray() << int(Kind::Truncated);
        QByteArray nameToEnd("\x1F\x8B\x08\x08", 4);
        nameToEnd += QByteArray(6, '\0') + QByteArray(20, 'n');
        QTest::newRow("name runs to the end") << nameToEnd << QByteArray() << int(Kind::Truncated);
        QByteArray cut = gzip(pattern);
        cut = cut.first(cut.size() / 2) + QByteArray(8, '\0');
        QTest::newRow("stream cut short") << cut << QByteArray() << int(Kind::InflateFailed);
        QByteArray garbage("\x1F\x8B\x08\x00", 4);
        garbage += QByteArray(6, '\0') + QByteArray(30, '\xFF');
        QTest::newRow("no deflate stream") << garbage << QByteArray() << int(Kind::InflateFailed);
    }

    void decompress() {
        QFETCH(QByteArray, data);
        QFETCH(QByteArray, expected);
        QFETCH(int, error);
        try {
            const QByteArray out = GzipDecoder::decompress(data);
            QCOMPARE(error, -1);
            QCOMPARE(out, expected);
        } catch (const GzipDecoder::DecodingError& e) {
            QCOMPARE(int(e.kind()), error);
            QVERIFY(e.errorDescription().startsWith(u"Die Datei von Apple "_s));
        }
    }

    void parse_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("columns");
        QTest::addColumn<QList<QStringList>>("rows");

        QTest::newRow("empty") << QString() << QStringList() << QList<QStringList>();
        QTest::newRow("blank lines only") << u"\n \n\t\n"_s << QStringList() << QList<QStringList>();
        QTest::newRow("last line without line end, blank lines at the end")
            << u"a\tb\n1\t2\n3\t4\n\n\n\n"_s << QStringList{u"a"_s, u"b"_s}
            << QList<QStringList>{{u"1"_s, u"2"_s}, {u"3"_s, u"4"_s}};
        QTest::newRow("no line end at all")
            << u"a\tb\n1\t2"_s << QStringList{u"a"_s, u"b"_s} << QList<QStringList>{{u"1"_s, u"2"_s}};
        QTest::newRow("quoted tab stays one field, quotes vanish")
            << u"a\tb\n\"x\ty\"\t\"z\"\n"_s << QStringList{u"a"_s, u"b"_s}
            << QList<QStringList>{{u"x\ty"_s, u"z"_s}};
        QTest::newRow("row of tabs dropped, short row kept, trailing tab keeps its cell")
            << u"a\tb\tc\n\t\t\nonly\n1\t2\t\n"_s << QStringList{u"a"_s, u"b"_s, u"c"_s}
            << QList<QStringList>{{u"only"_s}, {u"1"_s, u"2"_s, u""_s}};
        QTest::newRow("CR LF and stray CR") << u"a\tb\r\n1\t2\r\n3\r\t4\r\n"_s << QStringList{u"a"_s, u"b"_s}
                                            << QList<QStringList>{{u"1"_s, u"2"_s}, {u"3"_s, u"4"_s}};
        QTest::newRow("blanks trimmed, inner blanks kept, quoted blanks trimmed")
            << u" Title  \t Units\n  Mein Spiel \t\" 3 \"\n"_s << QStringList{u"Title"_s, u"Units"_s}
            << QList<QStringList>{{u"Mein Spiel"_s, u"3"_s}};
        QTest::newRow("byte-order mark") << u"\uFEFFDate\tX\n1\t2\n"_s << QStringList{u"Date"_s, u"X"_s}
                                         << QList<QStringList>{{u"1"_s, u"2"_s}};
        QTest::newRow("empty rows in the middle dropped, no-break space line at the end")
            << u"a\n1\n\n\"\"\n2\n\u00A0\n"_s << QStringList{u"a"_s}
            << QList<QStringList>{{u"1"_s}, {u"2"_s}};
        QTest::newRow("no tab: one column")
            << u"Name, Wert\nx, 1\n"_s << QStringList{u"Name, Wert"_s} << QList<QStringList>{{u"x, 1"_s}};
        QTest::newRow("umlauts") << u"Land\tÄnderung\nÖsterreich\t€ 3\n"_s
                                 << QStringList{u"Land"_s, u"Änderung"_s}
                                 << QList<QStringList>{{u"Österreich"_s, u"€ 3"_s}};
    }

    void parse() {
        QFETCH(QString, text);
        QFETCH(QStringList, columns);
        QFETCH(QList<QStringList>, rows);
        const AnalyticsTable table = AnalyticsTable::parseTSV(text);
        QCOMPARE(table.columns(), columns);
        QCOMPARE(table.rowCount(), rows.size());
        for (qsizetype r = 0; r < rows.size(); ++r) {
            QCOMPARE(table.row(r), rows[r]);
            QCOMPARE(table.cellCount(r), rows[r].size());
            QCOMPARE(table.cell(r, rows[r].size()), QString()); // past a short row's end
        }
        QVERIFY(table == AnalyticsTable::parseTSV(text));
    }

    // A text large enough to be cleaned on two threads gives the same rows as its pieces do.
    void largeTextSplitsCleanly() {
        const QByteArray block = "\"a\tb\"\t 1,234.50 \r\n\t\t\n x \t2\n"_ba;
        QByteArray text = "Name\tUnits\n"_ba;
        const int blocks = 9 * 1024 * 1024 / int(block.size()) + 1;
        text.reserve(text.size() + qsizetype(blocks) * block.size());
        for (int i = 0; i < blocks; ++i) {
            text += block;
        }
        const AnalyticsTable table = AnalyticsTable::parseTSV(std::move(text));
        QCOMPARE(table.rowCount(), qsizetype(blocks) * 2);
        for (qsizetype r = 0; r < table.rowCount(); ++r) {
            const QStringList expected =
                r % 2 == 0 ? QStringList{u"a\tb"_s, u"1,234.50"_s} : QStringList{u"x"_s, u"2"_s};
            if (table.row(r) != expected) {
                QFAIL(qPrintable(u"row %1: %2"_s.arg(r).arg(table.row(r).join(u'|'))));
            }
        }
    }

    void columnsFoundByName_data() {
        QTest::addColumn<QString>("header");
        QTest::addColumn<int>("date");
        QTest::addColumn<int>("units"); // index of "UNITS"
        QTest::newRow("English date wins over a German one further left")
            << u"Datum\tUnits\tBegin Date"_s << 2 << 1;
        QTest::newRow("German date") << u"SKU\tBerichtsdatum\tunits"_s << 1 << 2;
        QTest::newRow("none") << u"SKU\tTitle"_s << -1 << -1;
    }

    void columnsFoundByName() {
        QFETCH(QString, header);
        QFETCH(int, date);
        QFETCH(int, units);
        const AnalyticsTable table = AnalyticsTable::parseTSV(header + u"\n"_s);
        QCOMPARE(table.dateColumnIndex().value_or(-1), date);
        QCOMPARE(table.index(u"UNITS").value_or(-1), units);
    }

    void numericColumns_data() {
        QTest::addColumn<int>("numericRows"); // of 50, in column 1
        QTest::addColumn<bool>("numeric");
        QTest::newRow("40 of 50") << 40 << true;
        QTest::newRow("35 of 50 is exactly 0.7") << 35 << false;
        QTest::newRow("36 of 50") << 36 << true;
    }

    void numericColumns() {
        QFETCH(int, numericRows);
        QFETCH(bool, numeric);
        QString text = u"Report Date\tProceeds\tTitle\tUnits\n"_s;
        for (int i = 0; i < 60; ++i) {
            // Rows past the 50th are not looked at; a short row counts against the columns it lacks.
            const QString proceeds = i < numericRows ? u"1,234.50"_s : (i % 2 ? u"n/a"_s : QString());
            text += i == 49 ? u"2026-11-01\t%1\n"_s.arg(proceeds)
                            : u"2026-11-01\t%1\tSpiel\t%2\n"_s.arg(proceeds).arg(i);
        }
        const AnalyticsTable table = AnalyticsTable::parseTSV(text);
        const QList<qsizetype> expected = numeric ? QList<qsizetype>{1, 3} : QList<qsizetype>{3};
        QCOMPARE(table.numericColumnIndices(), expected);
    }
};

QTEST_GUILESS_MAIN(ReportTablesTest)
#include "tst_reporttables.moc"
