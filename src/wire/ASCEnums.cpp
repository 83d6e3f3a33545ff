#include "wire/ASCEnums.h"

#include "wire/RawValueTable.h"

using namespace Qt::StringLiterals;

namespace {

using P = ASCPlatform::Case;
constexpr std::array<RawValueRow<P>, 4> platformTable{{
    {P::Ios, u"IOS"},
    {P::MacOS, u"MAC_OS"},
    {P::TvOS, u"TV_OS"},
    {P::VisionOS, u"VISION_OS"},
}};

using S = ASCProcessingState::Case;
constexpr std::array<RawValueRow<S>, 4> processingTable{{
    {S::Processing, u"PROCESSING"},
    {S::Failed, u"FAILED"},
    {S::Invalid, u"INVALID"},
    {S::Valid, u"VALID"},
}};

using V = ASCAppStoreVersionState::Case;
constexpr std::array<RawValueRow<V>, 20> versionTable{{
    {V::Accepted, u"ACCEPTED", u"Akzeptiert"},
    {V::DeveloperRemovedFromSale, u"DEVELOPER_REMOVED_FROM_SALE", u"Vom Verkauf genommen"},
    {V::DeveloperRejected, u"DEVELOPER_REJECTED", u"Vom Entwickler abgelehnt"},
    {V::InReview, u"IN_REVIEW", u"In Review"},
    {V::InvalidBinary, u"INVALID_BINARY", u"Ungültige Binärdatei"},
    {V::MetadataRejected, u"METADATA_REJECTED", u"Metadaten abgelehnt"},
    {V::PendingAppleRelease, u"PENDING_APPLE_RELEASE", u"Warten auf Apple-Freigabe"},
    {V::PendingContract, u"PENDING_CONTRACT", u"Vertrag ausstehend"},
    {V::PendingDeveloperRelease, u"PENDING_DEVELOPER_RELEASE", u"Warten auf Freigabe"},
    {V::PrepareForSubmission, u"PREPARE_FOR_SUBMISSION", u"Zur Einreichung vorbereiten"},
    {V::PreorderReadyForSale, u"PREORDER_READY_FOR_SALE", u"Vorbestellung bereit"},
    {V::ProcessingForAppStore, u"PROCESSING_FOR_APP_STORE", u"Wird verarbeitet"},
    {V::ReadyForReview, u"READY_FOR_REVIEW", u"Bereit zur Prüfung"},
    {V::ReadyForSale, u"READY_FOR_SALE", u"Im Verkauf"},
    {V::Rejected, u"REJECTED", u"Abgelehnt"},
    {V::RemovedFromSale, u"REMOVED_FROM_SALE", u"Vom Verkauf entfernt"},
    {V::WaitingForExportCompliance, u"WAITING_FOR_EXPORT_COMPLIANCE", u"Warten auf Exportkonformität"},
    {V::WaitingForReview, u"WAITING_FOR_REVIEW", u"Warten auf Prüfung"},
    {V::ReplacedWithNewVersion, u"REPLACED_WITH_NEW_VERSION", u"Durch neue Version ersetzt"},
    {V::NotApplicable, u"NOT_APPLICABLE", u"Nicht zutreffend"},
}};

} // namespace

ASCPlatform ASCPlatform::fromRaw(const QString& raw) {
    ASCPlatform p;
    assignRaw(platformTable, raw, p.m_case, p.m_unknown);
    return p;
}

QString ASCPlatform::raw() const {
    return rawText(platformTable, m_case, m_unknown);
}

ASCProcessingState ASCProcessingState::fromRaw(const QString& raw) {
    ASCProcessingState s;
    assignRaw(processingTable, raw, s.m_case, s.m_unknown);
    return s;
}

QString ASCProcessingState::raw() const {
    return rawText(processingTable, m_case, m_unknown);
}

ASCAppStoreVersionState ASCAppStoreVersionState::fromRaw(const QString& raw) {
    ASCAppStoreVersionState s;
    assignRaw(versionTable, raw, s.m_case, s.m_unknown);
    return s;
}

QString ASCAppStoreVersionState::raw() const {
    return rawText(versionTable, m_case, m_unknown);
}

QString ASCAppStoreVersionState::displayName() const {
    return labelText(versionTable, m_case, m_unknown);
}
