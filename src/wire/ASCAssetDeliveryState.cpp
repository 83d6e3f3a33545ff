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
    assignRaw(table, raw, s.m_case, s.m_unknown);
    return s;
}

QString ASCAssetDeliveryState::raw() const {
    return rawText(table, m_case, m_unknown);
}

QString ASCAssetDeliveryState::label() const {
    return labelText(table, m_case, m_unknown);
}
