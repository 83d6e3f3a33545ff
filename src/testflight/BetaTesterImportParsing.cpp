#include "testflight/BetaTesterImportParsing.h"

#include <QSet>
#include <QVarLengthArray>

#include <algorithm>
#include <array>

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

// Splits one line into trimmed fields without a string per field: a field without quotes is a
// view into the line; a field whose quotes are dropped is copied into one buffer that the
// splitter keeps from line to line. The views stay valid until the next call.
class RowSplitter {
public:
    using Fields = QVarLengthArray<QStringView, 16>;

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
        qsizetype quotedLength = 0;
        for (qsizetype i = 0; i < size; ++i) {
            const char16_t c = data[i];
            if (c == u'"') {
                inQuotes = !inQuotes;
                quoted = true;
            } else if (c == sep && !inQuotes) {
                spans.append({begin, i, quoted});
                quotedLength += quoted ? i - begin : 0;
                begin = i + 1;
                quoted = false;
            }
        }
        spans.append({begin, size, quoted});
        quotedLength += quoted ? size - begin : 0;

        // Sized before any view into it is taken, so that no view outlives a reallocation.
        if (m_scratch.size() < quotedLength) {
            m_scratch.resize(quotedLength);
        }
        char16_t* out = reinterpret_cast<char16_t*>(m_scratch.data());
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
        return m_fields;
    }

private:
    Fields m_fields;
    QString m_scratch;
};

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
    QSet<QString> seen;

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

        QString email = address->toString();
        // For an address without capitals this shares the text instead of copying it.
        QString key = email.toLower();
        if (seen.contains(key)) {
            ++result.duplicateCount;
            continue;
        }
        seen.insert(std::move(key));

        ImportedBetaTester tester;
        tester.email = std::move(email);
        for (auto field = fields.begin(); field != fields.end(); ++field) {
            if (field == address || field->isEmpty()) {
                continue;
            }
            if (!tester.firstName) {
                tester.firstName = field->toString();
            } else {
                tester.lastName = field->toString();
                break;
            }
        }
        result.testers.append(std::move(tester));
    }
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
