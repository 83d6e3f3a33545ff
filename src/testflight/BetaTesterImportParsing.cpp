#include "testflight/BetaTesterImportParsing.h"

#include <QVarLengthArray>

#include <algorithm>
#include <array>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

// Column titles that mark a first line as a header; compared with the lower-cased field.
constexpr std::array<QStringView, 9> headerWords{
    u"email",      u"e-mail",    u"mail",      u"vorname",  u"nachname",
    u"first name", u"last name", u"firstname", u"lastname",
};

bool isHeaderWord(QStringView field) {
    // Only the first line is ever asked, so the allocation of the lower-cased copy is no cost;
    // it keeps the comparison the same as lower-casing the field.
    if (field.size() < 4 || field.size() > 10) {
        return false;
    }
    const QString lowered = field.toString().toLower();
    return std::find(headerWords.begin(), headerWords.end(), QStringView(lowered)) != headerWords.end();
}

// Splits a line into trimmed fields without a string per field: a field without quotes is a
// view into the line; a field whose quotes are dropped is copied into a buffer that fills up
// from line to line until `recycle`. So the fields of several lines can wait together for the
// duplicate check, and a field stays valid until the next `recycle`.
class RowSplitter {
public:
    using Fields = QVarLengthArray<QStringView, 16>;

    // Whether `split` of a line this long can copy its quoted fields without moving the buffer.
    bool fits(qsizetype lineLength) const { return m_used + lineLength <= m_scratch.size(); }

    // Ends the life of every field handed out so far; only now may the buffer move.
    void recycle(qsizetype lineLength) {
        m_used = 0;
        if (m_scratch.size() < lineLength) {
            m_scratch.resize(std::max(lineLength, 2 * m_scratch.size()));
        }
    }

    // The fields of `line`, which must fit.
    const Fields& split(QStringView line, QChar separator) {
        struct Span {
            qsizetype begin;
            qsizetype end;
            bool quoted;
        };
        QVarLengthArray<Span, 16> spans;
        const char16_t sep = separator.unicode();
        const char16_t* const data = line.utf16();
        const qsizetype size = line.size();
        bool inQuotes = false;
        bool quoted = false;
        qsizetype begin = 0;
        for (qsizetype i = 0; i < size; ++i) {
            const char16_t c = data[i];
            if (c == u'"') {
                inQuotes = !inQuotes;
                quoted = true;
            } else if (c == sep && !inQuotes) {
                spans.append({begin, i, quoted});
                begin = i + 1;
                quoted = false;
            }
        }
        spans.append({begin, size, quoted});

        char16_t* out = reinterpret_cast<char16_t*>(m_scratch.data()) + m_used;
        m_fields.clear();
        for (const Span& span : spans) {
            if (!span.quoted) {
                m_fields.append(line.sliced(span.begin, span.end - span.begin).trimmed());
                continue;
            }
            char16_t* const fieldStart = out;
            for (qsizetype i = span.begin; i < span.end; ++i) {
                if (data[i] != u'"') {
                    *out++ = data[i];
                }
            }
            m_fields.append(QStringView(fieldStart, out - fieldStart).trimmed());
        }
        m_used = out - reinterpret_cast<char16_t*>(m_scratch.data());
        return m_fields;
    }

private:
    Fields m_fields;
    QString m_scratch = QString(4096, Qt::Uninitialized);
    qsizetype m_used = 0;
};

// The addresses accepted so far, compared lower-cased. The table holds only the index of each
// accepted tester and the hash of its lower-cased address: no second string per address, and a
// duplicate line costs no allocation at all. Addresses are almost always ASCII, which is
// lower-cased and hashed in place; any other text goes through QString::toLower.
class SeenAddresses {
public:
    explicit SeenAddresses(const QList<ImportedBetaTester>& testers) : m_testers(testers) {}

    // The hash of the lower-cased address.
    static quint32 hashOf(QStringView address) {
        for (const QChar c : address) {
            if (c.unicode() >= 0x80) {
                return asciiHash(address.toString().toLower());
            }
        }
        return asciiHash(address);
    }

    // Makes room for `more` addresses, so that the slots of their hashes stay where they are.
    void reserve(qsizetype more) {
        while ((m_count + more) * 2 > qsizetype(m_slots.size())) {
            grow();
        }
    }

    // Asks the processor for the slot of `hash` ahead of the lookup. A large table lives in
    // main memory, and a file of many thousand new addresses would otherwise wait for it once
    // per address.
    void prefetch([[maybe_unused]] quint32 hash) const {
#if defined(__GNUC__)
        __builtin_prefetch(&m_slots[hash & (m_slots.size() - 1)]);
#endif
    }

    // Whether an accepted tester has this address already; if not, the tester about to be
    // appended at `index` is entered under it. Room must have been reserved.
    bool containsElseInsert(QStringView address, quint32 hash, qsizetype index) {
        const size_t mask = m_slots.size() - 1;
        for (size_t i = hash & mask;; i = (i + 1) & mask) {
            Slot& slot = m_slots[i];
            if (slot.index < 0) {
                slot = {hash, qint32(index)};
                ++m_count;
                return false;
            }
            if (slot.hash == hash && sameLowered(address, m_testers.at(slot.index).email)) {
                return true;
            }
        }
    }

private:
    struct Slot {
        quint32 hash = 0;
        qint32 index = -1;
    };

    static char16_t asciiLower(char16_t c) {
        return c >= u'A' && c <= u'Z' ? char16_t(c + 32) : c;
    }

    // FNV-1a over the text with ASCII capitals lowered; the same for a text and its lower case.
    static quint32 asciiHash(QStringView text) {
        quint64 h = 0xcbf29ce484222325ull;
        for (const QChar c : text) {
            h = (h ^ asciiLower(c.unicode())) * 0x100000001b3ull;
        }
        return quint32(h ^ (h >> 32));
    }

    static bool isAscii(QStringView text) {
        return std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 0x80; });
    }

    static bool sameLowered(QStringView a, QStringView b) {
        if (!isAscii(a) || !isAscii(b)) {
            return a.toString().toLower() == b.toString().toLower();
        }
        return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](QChar x, QChar y) {
                   return asciiLower(x.unicode()) == asciiLower(y.unicode());
               });
    }

    void grow() {
        std::vector<Slot> old(std::max<size_t>(64, m_slots.size() * 2));
        old.swap(m_slots);
        const size_t mask = m_slots.size() - 1;
        for (const Slot& slot : old) {
            if (slot.index >= 0) {
                size_t i = slot.hash & mask;
                while (m_slots[i].index >= 0) {
                    i = (i + 1) & mask;
                }
                m_slots[i] = slot;
            }
        }
    }

    const QList<ImportedBetaTester>& m_testers;
    std::vector<Slot> m_slots;
    qsizetype m_count = 0;
};

// A row with an address, waiting with a few others for the duplicate check: the lookups of a
// batch are prefetched together, so that their waits for memory overlap. The views point into
// the text or into the splitter's buffer.
struct PendingRow {
    QStringView address;
    QStringView firstName;
    QStringView lastName;
    quint32 hash = 0;
};

constexpr qsizetype batchSize = 32;

std::optional<QString> nameFrom(QStringView field) {
    return field.isEmpty() ? std::nullopt : std::optional<QString>(field.toString());
}

} // namespace

QString ImportedBetaTester::displayName() const {
    QString name;
    for (const auto& part : {firstName, lastName}) {
        if (part && !part->isEmpty()) {
            if (!name.isEmpty()) {
                name += u' ';
            }
            name += *part;
        }
    }
    if (name.isEmpty()) {
        return email;
    }
    return name + u" <"_s + email + u'>';
}

namespace BetaTesterImportParsing {

QChar separator(QStringView line) {
    bool comma = false;
    bool tab = false;
    for (const QChar c : line) {
        if (c == u';') {
            return u';';
        }
        comma = comma || c == u',';
        tab = tab || c == u'\t';
    }
    if (comma) {
        return u',';
    }
    return tab ? u'\t' : u',';
}

QList<QString> splitRow(QStringView line, QChar separator) {
    RowSplitter splitter;
    splitter.recycle(line.size());
    QList<QString> fields;
    for (const QStringView field : splitter.split(line, separator)) {
        fields.append(field.toString());
    }
    return fields;
}

bool isValidAddress(QStringView field) {
    const qsizetype at = field.indexOf(u'@');
    if (at <= 0) {
        return false;
    }
    const QStringView domain = field.sliced(at + 1);
    if (!domain.contains(u'.') || domain.endsWith(u'.')) {
        return false;
    }
    return !field.contains(u' ');
}

Result parse(QStringView text) {
    Result result;
    RowSplitter splitter;
    SeenAddresses seen(result.testers);
    QVarLengthArray<PendingRow, batchSize> pending;

    // File order holds: rows are checked and appended in the order they were read.
    const auto settle = [&](qsizetype nextLineLength) {
        seen.reserve(pending.size());
        for (const PendingRow& row : pending) {
            seen.prefetch(row.hash);
        }
        for (const PendingRow& row : pending) {
            if (seen.containsElseInsert(row.address, row.hash, result.testers.size())) {
                ++result.duplicateCount;
                continue;
            }
            result.testers.append({row.address.toString(), nameFrom(row.firstName), nameFrom(row.lastName)});
        }
        pending.clear();
        splitter.recycle(nextLineLength);
    };

    const char16_t* const data = text.utf16();
    const qsizetype size = text.size();
    qsizetype lineStart = 0;
    int index = 0;
    // One more line than line ends: a text that ends in a line end has an empty last line.
    while (lineStart <= size) {
        // CR LF, a lone CR and a lone LF each end one line, so that line numbers are those of the
        // file whatever system wrote it.
        qsizetype lineEnd = lineStart;
        while (lineEnd < size && data[lineEnd] != u'\n' && data[lineEnd] != u'\r') {
            ++lineEnd;
        }
        const QStringView line = text.sliced(lineStart, lineEnd - lineStart).trimmed();
        const int lineIndex = index++;
        const bool crlf = lineEnd + 1 < size && data[lineEnd] == u'\r' && data[lineEnd + 1] == u'\n';
        lineStart = lineEnd + (crlf ? 2 : 1);
        if (line.isEmpty()) {
            continue;
        }

        if (!splitter.fits(line.size())) {
            settle(line.size());
        }
        const RowSplitter::Fields& fields = splitter.split(line, separator(line));
        const auto address = std::find_if(fields.begin(), fields.end(), isValidAddress);
        if (address == fields.end()) {
            // Only the file's very first line may hold column titles; one that also holds an
            // address is data.
            if (lineIndex == 0 && std::any_of(fields.begin(), fields.end(), isHeaderWord)) {
                continue;
            }
            result.rejectedLines.append({lineIndex + 1, line.toString()});
            continue;
        }

        // The names are the first two non-empty fields beside the address; further ones are
        // ignored.
        PendingRow row{*address, {}, {}, SeenAddresses::hashOf(*address)};
        for (auto field = fields.begin(); field != fields.end(); ++field) {
            if (field == address || field->isEmpty()) {
                continue;
            }
            if (row.firstName.isEmpty()) {
                row.firstName = *field;
            } else {
                row.lastName = *field;
                break;
            }
        }
        pending.append(row);
        if (pending.size() == batchSize) {
            settle(0);
        }
    }
    settle(0);
    return result;
}

QList<QList<ImportedBetaTester>> chunks(const QList<ImportedBetaTester>& testers, qsizetype size) {
    QList<QList<ImportedBetaTester>> out;
    size = std::max<qsizetype>(size, 1);
    out.reserve((testers.size() + size - 1) / size);
    for (qsizetype start = 0; start < testers.size(); start += size) {
        out.append(testers.mid(start, size));
    }
    return out;
}

} // namespace BetaTesterImportParsing
