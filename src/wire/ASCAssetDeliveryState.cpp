#include "wire/ASCAssetDeliveryState.h"

#include "wire/RawValueTable.h"

namespace {
using C = ASCAssetDeliveryState::Case;
constexpr std::array<RawValueRow<C>, 4> table{{
    {C::AwaitingUpload, u"AWAITING_UPLOAD", u"Wartet auf Upload"},
    {C::UploadComplete, u"UPLOAD_COMPLETE", u"Hochgeladen"},
    {C::Complete, u"COMPLETE", u"Fertig"},
    {C::Failed, u"FAILED", u"Fehlgeschlagen"},
}};
} // namespace

ASCAssetDeliveryState ASCAssetDeliveryState::fromRaw(const QString& raw) {
    ASCAssetDeliveryState s;
    if (auto c = caseForRaw(table, raw)) {
        s.m_case = *c;
    } else {
        s.m_unknown = raw;
    }
    return s;
}

QString ASCAssetDeliveryState::raw() const {
    const auto* row = rowForCase(table, m_case);
    return row ? row->raw.toString() : m_unknown;
}

QString ASCAssetDeliveryState::label() const {
    const auto* row = rowForCase(table, m_case);
    return row ? row->label.toString() : m_unknown;
}
