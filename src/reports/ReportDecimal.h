#pragma once

#include <QByteArrayView>
#include <QString>

#include <compare>
#include <optional>

// A money amount of a report as an exact decimal: millionths in a 64-bit integer, so that
// 0.10 added ten times is 1.00 and a million rows add up to the cent. Apple writes at most a few
// fractional digits; a seventh is rounded half away from zero.
class ReportDecimal {
public:
    static constexpr int scale = 6;
    static constexpr qint64 one = 1000000;

    constexpr ReportDecimal() = default;
    static constexpr ReportDecimal fromMillionths(qint64 value) {
        ReportDecimal d;
        d.m_value = value;
        return d;
    }
    static constexpr ReportDecimal fromInteger(qint64 value) { return fromMillionths(value * one); }

    // A report cell read as a number: commas (thousands separators) left out, blanks and tabs
    // around it ignored, an exponent allowed. Blank or unreadable: nothing.
    static std::optional<ReportDecimal> parse(QByteArrayView cell);

    qint64 millionths() const { return m_value; }
    // Towards zero, as a count of units is.
    qint64 truncated() const { return m_value / one; }
    double toDouble() const { return double(m_value) / double(one); }
    // "-1234.50" with exactly `fractionDigits` digits after the point (at most 6), rounded half
    // away from zero; no grouping.
    QString toString(int fractionDigits = 2) const;

    ReportDecimal& operator+=(ReportDecimal other) {
        m_value += other.m_value;
        return *this;
    }
    friend ReportDecimal operator+(ReportDecimal a, ReportDecimal b) { return a += b; }
    friend ReportDecimal operator-(ReportDecimal a, ReportDecimal b) {
        return fromMillionths(a.m_value - b.m_value);
    }
    // Rounded to millionths, half away from zero.
    friend ReportDecimal operator*(ReportDecimal a, ReportDecimal b);
    friend auto operator<=>(const ReportDecimal&, const ReportDecimal&) = default;

private:
    qint64 m_value = 0;
};
