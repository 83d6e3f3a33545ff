// A report from Apple: gzip container, inflated text, table. Anything may arrive; what comes out
// must be a table whose cells are clean, or the one German error.

#include "FuzzSupport.h"

#include "reports/AnalyticsTable.h"
#include "reports/GzipDecoder.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    Fuzz::startApplication();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    QByteArray text = Fuzz::bytes(data, size);
    if (GzipDecoder::isGzip(text)) {
        try {
            text = GzipDecoder::decompress(text);
        } catch (const GzipDecoder::DecodingError& error) {
            Fuzz::check(!error.errorDescription().isEmpty(), "a decoding error without words");
            return 0;
        }
    }
    if (!QByteArrayView(text).isValidUtf8()) {
        return 0;
    }
    const qsizetype lines = text.count('\n') + 1;
    const AnalyticsTable table = AnalyticsTable::parseTSV(std::move(text));
    Fuzz::check(table.rowCount() < lines, "more rows than lines after the header");
    Fuzz::check(table.columns().isEmpty() || !table.columns().constFirst().startsWith(QChar(0xFEFF)),
                "the byte-order mark in the first column");
    for (qsizetype row = 0; row < table.rowCount(); ++row) {
        bool hasValue = false;
        const QList<QByteArrayView> cells = table.cellViews(row);
        Fuzz::check(cells.size() == table.cellCount(row), "two counts of one row's cells");
        for (const QByteArrayView cell : cells) {
            hasValue = hasValue || !cell.isEmpty();
            Fuzz::check(!cell.contains('\r') && !cell.contains('"'), "a quote or carriage return in a cell");
            Fuzz::check(cell.isEmpty() || (cell.front() != ' ' && cell.front() != '\t' &&
                                           cell.back() != ' ' && cell.back() != '\t'),
                        "a cell not trimmed");
            Fuzz::check(cell.isValidUtf8(), "a cell cut inside a character");
        }
        Fuzz::check(hasValue, "a row without any value");
    }
    (void)table.numericColumnIndices();
    (void)table.dateColumnIndex();
    return 0;
}
