#pragma once

#include <QString>
#include <QStringView>

#include <array>
#include <cstddef>
#include <optional>

// One row of an enumeration's table: the case, Apple's raw text, and a German label where the
// case has one. Tables are constexpr arrays in the .cpp of their type.
template <class Case> struct RawValueRow {
    Case value;
    QStringView raw;
    QStringView label = {};
};

template <class Case, std::size_t N>
std::optional<Case> caseForRaw(const std::array<RawValueRow<Case>, N>& table, QStringView raw) {
    for (const auto& row : table) {
        if (row.raw == raw) {
            return row.value;
        }
    }
    return std::nullopt;
}

template <class Case, std::size_t N>
const RawValueRow<Case>* rowForCase(const std::array<RawValueRow<Case>, N>& table, Case value) {
    for (const auto& row : table) {
        if (row.value == value) {
            return &row;
        }
    }
    return nullptr;
}

// The three operations every such type needs: read Apple's text into a case (an unknown text is
// kept as it came), and give back the raw text or the label of a case (an unknown case gives its
// kept text).
template <class Case, std::size_t N>
void assignRaw(const std::array<RawValueRow<Case>, N>& table, const QString& raw, Case& value,
               QString& unknown) {
    if (auto known = caseForRaw(table, raw)) {
        value = *known;
    } else {
        unknown = raw;
    }
}

template <class Case, std::size_t N>
QString rawText(const std::array<RawValueRow<Case>, N>& table, Case value, const QString& unknown) {
    const auto* row = rowForCase(table, value);
    return row ? row->raw.toString() : unknown;
}

template <class Case, std::size_t N>
QString labelText(const std::array<RawValueRow<Case>, N>& table, Case value, const QString& unknown) {
    const auto* row = rowForCase(table, value);
    return row ? row->label.toString() : unknown;
}
