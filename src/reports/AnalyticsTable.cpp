#include "reports/AnalyticsTable.h"

#include <cstring>
#include <thread>

using namespace Qt::StringLiterals;

namespace {

// Never part of valid UTF-8, so it can stand between the cells of the cleaned text.
constexpr char separator = AnalyticsTable::cellSeparator;

// Below this the second thread costs more than it saves.
constexpr qint64 parallelFromBytes = 8 * 1024 * 1024;

constexpr qsizetype numericSampleRows = 50;

bool isAsciiBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\v' || c == '\f';
}

// A line of whitespace only, in the wide sense (a no-break space counts).
bool isBlankLine(QByteArrayView line) {
    bool ascii = true;
    for (const char c : line) {
        if (uchar(c) >= 0x80) {
            ascii = false;
        } else if (!isAsciiBlank(c)) {
            return false;
        }
    }
    return ascii || QString::fromUtf8(line).trimmed().isEmpty();
}

// Rewrites lines in place into their cleaned form: each cell's bytes, cells separated by
// `separator`, rows one after the other. The writing position never passes the reading one, as
// nothing is ever longer cleaned than it was.
struct Cleaner {
    char* buf;
    std::vector<qint64> rowStarts;

    // The cells of the line [read, lineEnd) from `write` on; returns whether any is not empty.
    bool cleanLine(qint64 read, qint64 lineEnd, qint64& write) const {
        bool quoted = false;
        bool hasValue = false;
        qint64 fieldStart = write;
        const auto endField = [&] {
            while (write > fieldStart && (buf[write - 1] == ' ' || buf[write - 1] == '\t')) {
                --write;
            }
            hasValue = hasValue || write > fieldStart;
        };
        qint64 p = read;
        while (p < lineEnd) {
            if (write == fieldStart) {
                while (p < lineEnd && buf[p] == ' ') {
                    ++p;
                }
            }
            // The plain run up to the next byte that means something, moved as one piece.
            qint64 q = p;
            while (q < lineEnd && buf[q] != '\t' && buf[q] != '"' && buf[q] != '\r') {
                ++q;
            }
            if (q > p) {
                if (write != p) {
                    std::memmove(buf + write, buf + p, size_t(q - p));
                }
                write += q - p;
                p = q;
            }
            if (p == lineEnd) {
                break;
            }
            const char c = buf[p++];
            if (c == '"') {
                quoted = !quoted;
            } else if (c == '\t' && !quoted) {
                endField();
                buf[write++] = separator;
                fieldStart = write;
            } else if (c == '\t' && write != fieldStart) {
                buf[write++] = c;
            }
            // A carriage return, or a quoted tab at a field's start, is dropped.
        }
        endField();
        return hasValue;
    }

    // Cleans the lines of [read, end) from `write` on, keeping rows with a value; returns where
    // the writing ended.
    qint64 clean(qint64 read, qint64 end, qint64 write) {
        while (read < end) {
            const void* newline = std::memchr(buf + read, '\n', size_t(end - read));
            const qint64 lineEnd = newline ? static_cast<const char*>(newline) - buf : end;
            const qint64 rowStart = write;
            if (cleanLine(read, lineEnd, write)) {
                rowStarts.push_back(rowStart);
            } else {
                write = rowStart;
            }
            read = lineEnd + 1;
        }
        return write;
    }
};

bool readsAsNumber(QByteArrayView cell) {
    QByteArray digits;
    digits.reserve(cell.size());
    for (const char c : cell) {
        if (c != ',') {
            digits.append(c);
        }
    }
    digits = digits.trimmed();
    bool ok = false;
    if (!digits.isEmpty()) {
        digits.toDouble(&ok);
    }
    return ok;
}

} // namespace

struct AnalyticsTable::Data {
    QStringList columns;
    QByteArray text;
    // Where each row begins in `text`, and one more entry where the last ends.
    std::vector<qint64> rowStarts{0};

    QByteArrayView rowBytes(qsizetype row) const {
        return QByteArrayView(text.constData() + rowStarts[size_t(row)],
                              rowStarts[size_t(row) + 1] - rowStarts[size_t(row)]);
    }
};

AnalyticsTable::AnalyticsTable() : d(std::make_shared<const Data>()) {}

AnalyticsTable::AnalyticsTable(std::shared_ptr<const Data> data) : d(std::move(data)) {}

AnalyticsTable AnalyticsTable::parseTSV(const QString& text) {
    return parseTSV(text.toUtf8());
}

AnalyticsTable AnalyticsTable::parseTSV(QByteArray utf8) {
    auto data = std::make_shared<Data>();
    qint64 start = utf8.startsWith("\xEF\xBB\xBF") ? 3 : 0;
    qint64 end = utf8.size();
    // Blank lines at the end go, one by one; nothing left is the empty table.
    for (;;) {
        const qint64 lineStart = QByteArrayView(utf8.constData() + start, end - start).lastIndexOf('\n') + 1;
        if (!isBlankLine(QByteArrayView(utf8.constData() + start + lineStart, end - start - lineStart))) {
            break;
        }
        if (lineStart == 0) {
            return AnalyticsTable(std::move(data));
        }
        end = start + lineStart - 1;
    }

    char* buf = utf8.data();
    Cleaner header{buf, {}};
    const void* newline = std::memchr(buf + start, '\n', size_t(end - start));
    const qint64 headerEnd = newline ? static_cast<const char*>(newline) - buf : end;
    qint64 headerWrite = start;
    header.cleanLine(start, headerEnd, headerWrite);
    for (const QByteArray& name :
         QByteArray::fromRawData(buf + start, headerWrite - start).split(separator)) {
        data->columns.append(QString::fromUtf8(name));
    }

    // The rows, in two halves at a line end when there is much of them; the second half is then
    // moved down behind the first.
    const qint64 rowsStart = std::min(headerEnd + 1, end);
    Cleaner first{buf, {}};
    qint64 written = 0;
    qint64 middle = end;
    if (end - rowsStart >= parallelFromBytes) {
        const void* cut = std::memchr(buf + rowsStart + (end - rowsStart) / 2, '\n',
                                      size_t(end - rowsStart - (end - rowsStart) / 2));
        middle = cut ? static_cast<const char*>(cut) - buf + 1 : end;
    }
    if (middle < end) {
        Cleaner second{buf, {}};
        qint64 secondWritten = middle;
        std::thread worker([&] { secondWritten = second.clean(middle, end, middle); });
        written = first.clean(rowsStart, middle, 0);
        worker.join();
        std::memmove(buf + written, buf + middle, size_t(secondWritten - middle));
        const qint64 shift = middle - written;
        first.rowStarts.reserve(first.rowStarts.size() + second.rowStarts.size() + 1);
        for (const qint64 rowStart : second.rowStarts) {
            first.rowStarts.push_back(rowStart - shift);
        }
        written = secondWritten - shift;
    } else {
        written = first.clean(rowsStart, end, 0);
    }
    first.rowStarts.push_back(written);
    utf8.truncate(written);
    data->text = std::move(utf8);
    data->rowStarts = std::move(first.rowStarts);
    return AnalyticsTable(std::move(data));
}

const QStringList& AnalyticsTable::columns() const {
    return d->columns;
}

qsizetype AnalyticsTable::rowCount() const {
    return qsizetype(d->rowStarts.size()) - 1;
}

qsizetype AnalyticsTable::cellCount(qsizetype row) const {
    return d->rowBytes(row).count(separator) + 1;
}

QByteArrayView AnalyticsTable::cellView(qsizetype row, qsizetype column) const {
    QByteArrayView rest = d->rowBytes(row);
    for (qsizetype i = 0; i < column; ++i) {
        const qsizetype next = rest.indexOf(separator);
        if (next < 0) {
            return {};
        }
        rest = rest.sliced(next + 1);
    }
    const qsizetype next = rest.indexOf(separator);
    return next < 0 ? rest : rest.first(next);
}

QByteArrayView AnalyticsTable::rowText(qsizetype row) const {
    return d->rowBytes(row);
}

QString AnalyticsTable::cell(qsizetype row, qsizetype column) const {
    return QString::fromUtf8(cellView(row, column));
}

QList<QByteArrayView> AnalyticsTable::cellViews(qsizetype row) const {
    QList<QByteArrayView> cells;
    QByteArrayView rest = d->rowBytes(row);
    for (;;) {
        const qsizetype next = rest.indexOf(separator);
        if (next < 0) {
            cells.append(rest);
            return cells;
        }
        cells.append(rest.first(next));
        rest = rest.sliced(next + 1);
    }
}

QStringList AnalyticsTable::row(qsizetype row) const {
    QStringList cells;
    for (const QByteArrayView cell : cellViews(row)) {
        cells.append(QString::fromUtf8(cell));
    }
    return cells;
}

std::optional<qsizetype> AnalyticsTable::index(QStringView name) const {
    for (qsizetype i = 0; i < d->columns.size(); ++i) {
        if (QStringView(d->columns[i]).compare(name, Qt::CaseInsensitive) == 0) {
            return i;
        }
    }
    return std::nullopt;
}

std::optional<qsizetype> AnalyticsTable::dateColumnIndex() const {
    for (const QString& word : {u"date"_s, u"datum"_s}) {
        for (qsizetype i = 0; i < d->columns.size(); ++i) {
            if (d->columns[i].contains(word, Qt::CaseInsensitive)) {
                return i;
            }
        }
    }
    return std::nullopt;
}

QList<qsizetype> AnalyticsTable::numericColumnIndices() const {
    QList<qsizetype> numeric;
    const qsizetype sample = std::min(rowCount(), numericSampleRows);
    if (sample == 0 || d->columns.isEmpty()) {
        return numeric;
    }
    QList<QList<QByteArrayView>> rows;
    for (qsizetype r = 0; r < sample; ++r) {
        rows.append(cellViews(r));
    }
    const std::optional<qsizetype> date = dateColumnIndex();
    for (qsizetype column = 0; column < d->columns.size(); ++column) {
        if (column == date) {
            continue;
        }
        qsizetype count = 0;
        for (const QList<QByteArrayView>& cells : rows) {
            count += column < cells.size() && readsAsNumber(cells[column]) ? 1 : 0;
        }
        if (double(count) / double(sample) > 0.7) {
            numeric.append(column);
        }
    }
    return numeric;
}

bool operator==(const AnalyticsTable& a, const AnalyticsTable& b) {
    if (a.d == b.d) {
        return true;
    }
    if (a.d->columns != b.d->columns || a.rowCount() != b.rowCount()) {
        return false;
    }
    for (qsizetype row = 0; row < a.rowCount(); ++row) {
        if (a.d->rowBytes(row) != b.d->rowBytes(row)) {
            return false;
        }
    }
    return true;
}
