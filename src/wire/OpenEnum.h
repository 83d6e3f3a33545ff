#pragma once

#include "wire/RawValueTable.h"

#include <QString>

// An enumeration of the API that Apple may extend at any time. A text it does not know lands in
// Unknown and is kept as it came, so that decoding never breaks on a new value and the text is
// still there to show or to send back.
//
// `Traits` holds the whole type: `enum class Case` with an `Unknown` case, and
// `static constexpr std::array<RawValueRow<Case>, N> rows` with every other case, its raw text
// and, where the case has one, its German label.
template <class Traits> class OpenEnum {
public:
    using Case = typename Traits::Case;

    OpenEnum() = default;
    explicit OpenEnum(Case value) : m_case(value) {}

    static OpenEnum fromRaw(const QString& raw) {
        OpenEnum result;
        if (const auto known = caseForRaw(Traits::rows, raw)) {
            result.m_case = *known;
        } else {
            result.m_unknown = raw;
        }
        return result;
    }

    Case value() const { return m_case; }

    // Apple's text; for Unknown the kept text, unchanged.
    QString raw() const {
        const auto* row = rowForCase(Traits::rows, m_case);
        return row ? row->raw.toString() : m_unknown;
    }

    // The German label; a case without one, and Unknown, show the raw text.
    QString displayName() const {
        const auto* row = rowForCase(Traits::rows, m_case);
        return row && !row->label.isEmpty() ? row->label.toString() : raw();
    }

    friend bool operator==(const OpenEnum&, const OpenEnum&) = default;

private:
    Case m_case = Case::Unknown;
    QString m_unknown;
};
