#include "platform/VarnisError.h"

#include "platform/HttpTransport.h"

#include <algorithm>

using namespace Qt::StringLiterals;

const char* VarnisError::what() const noexcept {
    m_what = errorDescription().toUtf8();
    return m_what.constData();
}

QString describeError(const std::exception& error) {
    if (const auto* known = dynamic_cast<const VarnisError*>(&error)) {
        return printableText(known->errorDescription());
    }
    if (const auto* transport = dynamic_cast<const TransportError*>(&error)) {
        return printableText(transport->description());
    }
    return u"Unerwarteter Fehler."_s;
}

QString printableText(const QString& text) {
    const auto isControl = [](QChar c) {
        return c.category() == QChar::Other_Control && c != u'\n' && c != u'\t';
    };
    if (std::none_of(text.cbegin(), text.cend(), isControl)) {
        return text;
    }
    QString out;
    out.reserve(text.size() + 16);
    for (const QChar c : text) {
        if (!isControl(c)) {
            out.append(c);
        } else {
            const bool ascii = c.unicode() < 0x80;
            out += (ascii ? u"\\x"_s : u"\\u"_s) +
                   QString::number(c.unicode(), 16).toUpper().rightJustified(ascii ? 2 : 4, u'0');
        }
    }
    return out;
}
