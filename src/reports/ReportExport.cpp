#include "reports/ReportExport.h"

#include "platform/FileErrorText.h"

#include <QCoro/QCoroFuture>
#include <QFileInfo>
#include <QSaveFile>
#include <QtConcurrent/QtConcurrentRun>

#include <algorithm>
#include <cerrno>
#include <condition_variable>
#include <cstring>
#include <deque>
#include <mutex>
#include <thread>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

// Collects the output in one buffer of about `pieceBytes` and hands it on whenever it is full.
class PieceWriter {
public:
    explicit PieceWriter(const ReportExport::Sink& sink)
        : m_sink(sink), m_buffer(size_t(ReportExport::pieceBytes)) {}

    // Room for `bytes` more at `cursor()`.
    char* reserve(qsizetype bytes) {
        if (m_used + bytes > qsizetype(m_buffer.size())) {
            flush();
            if (bytes > qsizetype(m_buffer.size())) {
                m_buffer.resize(size_t(bytes));
            }
        }
        return m_buffer.data() + m_used;
    }
    void advance(qsizetype bytes) { m_used += bytes; }
    void append(QByteArrayView bytes) {
        char* at = reserve(bytes.size());
        if (!bytes.isEmpty()) {
            std::memcpy(at, bytes.data(), size_t(bytes.size()));
        }
        m_used += bytes.size();
    }
    void append(char c) {
        *reserve(1) = c;
        ++m_used;
    }
    bool flush() {
        if (m_ok && m_used > 0) {
            m_ok = m_sink(QByteArrayView(m_buffer.data(), m_used));
        }
        m_used = 0;
        return m_ok;
    }
    bool ok() const { return m_ok; }

private:
    const ReportExport::Sink& m_sink;
    std::vector<char> m_buffer;
    qsizetype m_used = 0;
    bool m_ok = true;
};

// Copies the field and looks for the bytes that need quotes in the same pass; the loop has no
// early exit, so the compiler turns it into vector instructions. Most fields need no quotes.
void appendCsvField(PieceWriter& out, QByteArrayView field) {
    const qsizetype size = field.size();
    const char* from = field.data();
    char* at = out.reserve(2 * size + 2);
    bool special = false;
    for (qsizetype i = 0; i < size; ++i) {
        const char c = from[i];
        at[i] = c;
        special |= (c == ',') | (c == '"') | (c == '\n');
    }
    if (!special) {
        out.advance(size);
        return;
    }
    char* p = at;
    *p++ = '"';
    for (qsizetype i = 0; i < size; ++i) {
        if (from[i] == '"') {
            *p++ = '"';
        }
        *p++ = from[i];
    }
    *p++ = '"';
    out.advance(p - at);
}

bool writeCsv(const AnalyticsTable& table, PieceWriter& out) {
    const QStringList& columns = table.columns();
    for (qsizetype c = 0; c < columns.size(); ++c) {
        if (c > 0) {
            out.append(',');
        }
        appendCsvField(out, columns[c].toUtf8());
    }
    const qsizetype rows = table.rowCount();
    for (qsizetype r = 0; r < rows && out.ok(); ++r) {
        out.append('\n');
        // The cleaning left no quote and no line end in a cell: without a comma the row needs
        // no quoting at all and goes over whole, separators turned into commas.
        const QByteArrayView text = table.rowText(r);
        if (!text.contains(',')) {
            char* at = out.reserve(text.size());
            std::replace_copy(text.begin(), text.end(), at, AnalyticsTable::cellSeparator, ',');
            out.advance(text.size());
            continue;
        }
        const QList<QByteArrayView> cells = table.cellViews(r);
        for (qsizetype c = 0; c < cells.size(); ++c) {
            if (c > 0) {
                out.append(',');
            }
            appendCsvField(out, cells[c]);
        }
    }
    return out.flush();
}

// `text` as the inside of a JSON string. Bytes from 0x80 up are valid UTF-8 and stand as they
// are; only the control characters, the quote and the backslash need a form of their own.
void appendJsonString(PieceWriter& out, QByteArrayView text) {
    out.append('"');
    qsizetype runStart = 0;
    const qsizetype size = text.size();
    for (qsizetype i = 0; i < size; ++i) {
        const uchar c = uchar(text[i]);
        if (c >= 0x20 && c != '"' && c != '\\') {
            continue;
        }
        out.append(text.sliced(runStart, i - runStart));
        runStart = i + 1;
        switch (c) {
        case '"':
            out.append("\\\""_ba);
            break;
        case '\\':
            out.append("\\\\"_ba);
            break;
        case '\n':
            out.append("\\n"_ba);
            break;
        case '\r':
            out.append("\\r"_ba);
            break;
        case '\t':
            out.append("\\t"_ba);
            break;
        case '\b':
            out.append("\\b"_ba);
            break;
        case '\f':
            out.append("\\f"_ba);
            break;
        default: {
            static constexpr char hex[] = "0123456789abcdef";
            const char escaped[] = {'\\', 'u', '0', '0', hex[c >> 4], hex[c & 0xF]};
            out.append(QByteArrayView(escaped, 6));
        }
        }
    }
    out.append(text.sliced(runStart));
    out.append('"');
}

// One key of the objects: its text ready to write, and the columns of that name from the last
// to the first, since the later cell wins where a row has it.
struct JsonKey {
    QByteArray prefix;
    std::vector<qsizetype> columnsLastFirst;
};

std::vector<JsonKey> jsonKeys(const QStringList& columns) {
    std::vector<std::pair<QByteArray, qsizetype>> named;
    for (qsizetype c = 0; c < columns.size(); ++c) {
        named.emplace_back(columns[c].toUtf8(), c);
    }
    // UTF-8 compared byte by byte is code point order.
    std::stable_sort(named.begin(), named.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    std::vector<JsonKey> keys;
    for (const auto& [name, column] : named) {
        if (keys.empty() || keys.back().prefix != name) {
            keys.push_back({name, {}});
        }
        keys.back().columnsLastFirst.insert(keys.back().columnsLastFirst.begin(), column);
    }
    for (JsonKey& key : keys) {
        key.prefix = "    "_ba + ReportExport::jsonString(key.prefix) + " : "_ba;
    }
    return keys;
}

bool writeJson(const AnalyticsTable& table, PieceWriter& out) {
    const qsizetype rows = table.rowCount();
    if (rows == 0) {
        out.append("[]"_ba);
        return out.flush();
    }
    const std::vector<JsonKey> keys = jsonKeys(table.columns());
    out.append('[');
    for (qsizetype r = 0; r < rows && out.ok(); ++r) {
        out.append(r == 0 ? "\n  {"_ba : ",\n  {"_ba);
        const QList<QByteArrayView> cells = table.cellViews(r);
        bool first = true;
        for (const JsonKey& key : keys) {
            const auto column = std::find_if(key.columnsLastFirst.begin(), key.columnsLastFirst.end(),
                                             [&](qsizetype c) { return c < cells.size(); });
            if (column == key.columnsLastFirst.end()) {
                continue;
            }
            out.append(first ? "\n"_ba : ",\n"_ba);
            first = false;
            out.append(key.prefix);
            appendJsonString(out, cells[*column]);
        }
        out.append(first ? "}"_ba : "\n  }"_ba);
    }
    out.append("\n]"_ba);
    return out.flush();
}

// Writes pieces into a file on a thread of its own. At most `maxWaiting` pieces wait for the
// disk; a producer that is faster waits for room, so the memory stays bounded whatever the size.
class PipelinedWriter {
public:
    static constexpr size_t maxWaiting = 4;

    explicit PipelinedWriter(QIODevice& file) : m_file(file), m_thread([this] { run(); }) {}
    ~PipelinedWriter() { finish(); }

    // Copies the piece; false once an earlier piece could not be written.
    bool write(QByteArrayView piece) {
        QByteArray copy(piece.data(), piece.size());
        std::unique_lock lock(m_mutex);
        m_roomOrDone.wait(lock, [&] { return m_waiting.size() < maxWaiting || m_error != 0; });
        if (m_error != 0) {
            return false;
        }
        m_waiting.push_back(std::move(copy));
        m_work.notify_one();
        return true;
    }

    // Waits until everything is on disk; the error number of the first failed write, or 0.
    int finish() {
        {
            std::lock_guard lock(m_mutex);
            m_closing = true;
        }
        m_work.notify_one();
        if (m_thread.joinable()) {
            m_thread.join();
        }
        return m_error;
    }

private:
    void run() {
        std::unique_lock lock(m_mutex);
        for (;;) {
            m_work.wait(lock, [&] { return !m_waiting.empty() || m_closing; });
            if (m_waiting.empty()) {
                return;
            }
            QByteArray piece = std::move(m_waiting.front());
            m_waiting.pop_front();
            lock.unlock();
            errno = 0;
            const bool written = m_file.write(piece) == piece.size();
            const int error = written ? 0 : (errno != 0 ? errno : EIO);
            piece = QByteArray();
            lock.lock();
            if (error != 0) {
                m_error = error;
                m_waiting.clear();
            }
            m_roomOrDone.notify_one();
            if (error != 0) {
                return;
            }
        }
    }

    QIODevice& m_file;
    std::mutex m_mutex;
    std::condition_variable m_work;
    std::condition_variable m_roomOrDone;
    std::deque<QByteArray> m_waiting;
    bool m_closing = false;
    int m_error = 0;
    std::thread m_thread;
};

QByteArray collect(const AnalyticsTable& table, ReportExport::Format format) {
    QByteArray text;
    ReportExport::write(table, format, [&](QByteArrayView piece) {
        text.append(piece);
        return true;
    });
    return text;
}

} // namespace

QString ReportExport::rawValue(Format format) {
    return format == Format::Csv ? u"csv"_s : u"json"_s;
}

std::optional<ReportExport::Format> ReportExport::formatFromRaw(QStringView raw) {
    if (raw == u"csv") {
        return Format::Csv;
    }
    if (raw == u"json") {
        return Format::Json;
    }
    return std::nullopt;
}

bool ReportExport::write(const AnalyticsTable& table, Format format, const Sink& sink) {
    PieceWriter out(sink);
    return format == Format::Csv ? writeCsv(table, out) : writeJson(table, out);
}

QByteArray ReportExport::csvField(QByteArrayView field) {
    QByteArray text;
    const Sink collect = [&](QByteArrayView piece) {
        text.append(piece);
        return true;
    };
    PieceWriter out(collect);
    appendCsvField(out, field);
    out.flush();
    return text;
}

QByteArray ReportExport::jsonString(QByteArrayView utf8) {
    QByteArray text;
    const Sink collect = [&](QByteArrayView piece) {
        text.append(piece);
        return true;
    };
    PieceWriter out(collect);
    appendJsonString(out, utf8);
    out.flush();
    return text;
}

QByteArray ReportExport::csv(const AnalyticsTable& table) {
    return collect(table, Format::Csv);
}

QByteArray ReportExport::json(const AnalyticsTable& table) {
    return collect(table, Format::Json);
}

bool ReportExport::writeTsv(const AnalyticsTable& table, const Sink& sink) {
    PieceWriter out(sink);
    const QStringList& columns = table.columns();
    out.append(columns.join(u'\t').toUtf8());
    const qsizetype rows = table.rowCount();
    for (qsizetype r = 0; r < rows && out.ok(); ++r) {
        out.append('\n');
        // The cells joined by tabs, separators turned into tabs. A tab inside a cell came
        // quoted and goes back quoted, so that reading the file again gives the same cells; no
        // cell holds a quote of its own.
        const QByteArrayView text = table.rowText(r);
        if (!text.contains('\t')) {
            char* at = out.reserve(text.size());
            std::replace_copy(text.begin(), text.end(), at, AnalyticsTable::cellSeparator, '\t');
            out.advance(text.size());
            continue;
        }
        const QList<QByteArrayView> cells = table.cellViews(r);
        for (qsizetype c = 0; c < cells.size(); ++c) {
            if (c > 0) {
                out.append('\t');
            }
            const bool quoted = cells[c].contains('\t');
            if (quoted) {
                out.append('"');
            }
            out.append(cells[c]);
            if (quoted) {
                out.append('"');
            }
        }
    }
    return out.flush();
}

std::optional<QString> ReportExport::writeAtomically(const QString& path,
                                                     const std::function<bool(const Sink&)>& produce) {
    QSaveFile file(path);
    // Beside a folder QSaveFile would write its temporary file and fail only at the rename.
    errno = QFileInfo(path).isDir() ? EISDIR : 0;
    if (errno != 0 || !file.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) {
        return germanFileError(errno);
    }
    // The disk gets the pieces on a thread of its own, so that turning the next rows into text
    // and copying the last ones into the page cache run side by side.
    PipelinedWriter writer(file);
    const bool produced = produce([&](QByteArrayView piece) { return writer.write(piece); });
    const int writeError = writer.finish();
    if (!produced || writeError != 0) {
        file.cancelWriting();
        return germanFileError(writeError);
    }
    errno = 0;
    if (!file.commit()) {
        return germanFileError(errno);
    }
    return std::nullopt;
}

std::optional<QString> ReportExport::writeFile(const AnalyticsTable& table, Format format,
                                               const QString& path) {
    return writeAtomically(path, [&](const Sink& sink) { return write(table, format, sink); });
}

QCoro::Task<std::optional<QString>> ReportExport::writeFileInBackground(AnalyticsTable table, Format format,
                                                                        QString path) {
    // Named before it is awaited: GCC 12 destroys a lambda's captures twice when the lambda is a
    // temporary inside a co_await expression.
    QFuture<std::optional<QString>> done =
        QtConcurrent::run([table, format, path] { return writeFile(table, format, path); });
    std::optional<QString> failure = co_await done;
    co_return failure;
}

QString ReportExport::successMessage(Format format) {
    return u"Als %1 exportiert."_s.arg(rawValue(format).toUpper());
}

QString ReportExport::failureMessage(const QString& reason) {
    return u"Export fehlgeschlagen: "_s + reason;
}

QString ReportExport::proposedFileName(const QString& reportType, const QString& reportDate, Format format) {
    return reportType.toLower() + u'-' + reportDate + u'.' + rawValue(format);
}
