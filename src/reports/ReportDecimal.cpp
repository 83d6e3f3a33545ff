#include "reports/ReportDecimal.h"

#include <QByteArray>

#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

bool isBlank(char c) {
    return c == ' ' || c == '\t';
}

// Plain decimal notation, the only one Apple writes: exact.
std::optional<qint64> parsePlain(QByteArrayView text) {
    qsizetype i = 0;
    bool negative = false;
    if (i < text.size() && (text[i] == '-' || text[i] == '+')) {
        negative = text[i] == '-';
        ++i;
    }
    qint64 whole = 0;
    int digits = 0;
    for (; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i, ++digits) {
        if (whole > (std::numeric_limits<qint64>::max() / 10 - 9) / ReportDecimal::one) {
            return std::nullopt;
        }
        whole = whole * 10 + (text[i] - '0');
    }
    qint64 fraction = 0;
    int fractionDigits = 0;
    bool roundUp = false;
    if (i < text.size() && text[i] == '.') {
        for (++i; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i, ++digits) {
            if (fractionDigits < ReportDecimal::scale) {
                fraction = fraction * 10 + (text[i] - '0');
                ++fractionDigits;
            } else if (fractionDigits == ReportDecimal::scale) {
                roundUp = text[i] >= '5';
                ++fractionDigits;
            }
        }
    }
    if (i != text.size() || digits == 0) {
        return std::nullopt;
    }
    for (int d = std::min(fractionDigits, ReportDecimal::scale); d < ReportDecimal::scale; ++d) {
        fraction *= 10;
    }
    const qint64 value = whole * ReportDecimal::one + fraction + (roundUp ? 1 : 0);
    return negative ? -value : value;
}

} // namespace

std::optional<ReportDecimal> ReportDecimal::parse(QByteArrayView cell) {
    // Most cells need neither the comma nor the blank removed: no copy for them.
    char buffer[64];
    qsizetype length = 0;
    for (const char c : cell) {
        if (c == ',') {
            continue;
        }
        if (length == qsizetype(sizeof buffer)) {
            return std::nullopt;
        }
        buffer[length++] = c;
    }
    qsizetype start = 0;
    while (start < length && isBlank(buffer[start])) {
        ++start;
    }
    while (length > start && isBlank(buffer[length - 1])) {
        --length;
    }
    const QByteArrayView text(buffer + start, length - start);
    if (text.isEmpty()) {
        return std::nullopt;
    }
    if (const auto plain = parsePlain(text)) {
        return fromMillionths(*plain);
    }
    // Any other way of writing a floating number ("1e3"), rounded to millionths.
    bool ok = false;
    const double value = QByteArray(text.data(), text.size()).toDouble(&ok);
    if (!ok || !std::isfinite(value) || std::fabs(value) > 9.0e12) {
        return std::nullopt;
    }
    return fromMillionths(qint64(std::llround(value * double(one))));
}

QString ReportDecimal::toString(int fractionDigits) const {
    fractionDigits = std::clamp(fractionDigits, 0, scale);
    qint64 divisor = 1;
    for (int d = fractionDigits; d < scale; ++d) {
        divisor *= 10;
    }
    const bool negative = m_value < 0;
    // In unsigned arithmetic, so that the smallest value has a magnitude too.
    const quint64 magnitude = negative ? quint64(0) - quint64(m_value) : quint64(m_value);
    const quint64 rounded = (magnitude + quint64(divisor) / 2) / quint64(divisor);
    quint64 unit = 1;
    for (int d = 0; d < fractionDigits; ++d) {
        unit *= 10;
    }
    QString text = QString::number(rounded / unit);
    if (fractionDigits > 0) {
        text += u'.' + u"%1"_s.arg(rounded % unit, fractionDigits, 10, QChar(u'0'));
    }
    return negative && rounded != 0 ? u'-' + text : text;
}

ReportDecimal operator*(ReportDecimal a, ReportDecimal b) {
    const __int128 product = __int128(a.m_value) * __int128(b.m_value);
    const __int128 half = ReportDecimal::one / 2;
    const __int128 rounded =
        product >= 0 ? (product + half) / ReportDecimal::one : -((-product + half) / ReportDecimal::one);
    return ReportDecimal::fromMillionths(qint64(rounded));
}
