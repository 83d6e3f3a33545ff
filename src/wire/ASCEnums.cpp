#include "wire/ASCEnums.h"

#include <array>

using namespace Qt::StringLiterals;

namespace {

template <class Case> struct Row {
    Case value;
    QStringView raw;
    QStringView display;
};

template <class Case, size_t N>
Case lookup(const std::array<Row<Case>, N>& table, const QString& raw, bool& found) {
    for (const auto& row : table) {
        if (row.raw == raw) {
            found = true;
            return row.value;
        }
    }
    found = false;
    return Case::Unknown;
}

template <class Case, size_t N> const Row<Case>* find(const std::array<Row<Case>, N>& table, Case value) {
    for (const auto& row : table) {
        if (row.value == value) {
            return &row;
        }
    }
    return nullptr;
}

using P = ASCPlatform::Case;
constexpr std::array<Row<P>, 4> platformTable{{
    {P::Ios, u"IOS", u""},
    {P::MacOS, u"MAC_OS", u""},
    {P::TvOS, u"TV_OS", u""},
    {P::VisionOS, u"VISION_OS", u""},
}};

using S = ASCProcessingState::Case;
constexpr std::array<Row<S>, 4> processingTable{{
    {S::Processing, u"PROCESSING", u""},
    {S::Failed, u"FAILED", u""},
    {S::Invalid, u"INVALID", u""},
    {S::Valid, u"VALID", u""},
}};

using V = ASCAppStoreVersionState::Case;
constexpr std::array<Row<V>, 20> versionTable{{
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
    bool found = false;
    p.m_case = lookup(platformTable, raw, found);
    if (!found) {
        p.m_unknown = raw;
    }
    return p;
}

QString ASCPlatform::raw() const {
    const auto* row = find(platformTable, m_case);
    return row ? row->raw.toString() : m_unknown;
}

ASCProcessingState ASCProcessingState::fromRaw(const QString& raw) {
    ASCProcessingState s;
    bool found = false;
    s.m_case = lookup(processingTable, raw, found);
    if (!found) {
        s.m_unknown = raw;
    }
    return s;
}

QString ASCProcessingState::raw() const {
    const auto* row = find(processingTable, m_case);
    return row ? row->raw.toString() : m_unknown;
}

ASCAppStoreVersionState ASCAppStoreVersionState::fromRaw(const QString& raw) {
    ASCAppStoreVersionState s;
    bool found = false;
    s.m_case = lookup(versionTable, raw, found);
    if (!found) {
        s.m_unknown = raw;
    }
    return s;
}

QString ASCAppStoreVersionState::raw() const {
    const auto* row = find(versionTable, m_case);
    return row ? row->raw.toString() : m_unknown;
}

QString ASCAppStoreVersionState::displayName() const {
    const auto* row = find(versionTable, m_case);
    return row ? row->display.toString() : m_unknown;
}
