#pragma once

#include <QString>
#include <QStringView>

#include <array>
#include <cstddef>
#include <optional>

// One row of an enumeration's table: the case, Apple's raw text, and a German label where the
// case has one. Tables are constexpr arrays, beside their enumeration.
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
