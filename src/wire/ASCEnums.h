#pragma once

#include "wire/OpenEnum.h"

// Enumerations of the API that more than one area uses.

struct PlatformTraits {
    enum class Case { Unknown, Ios, MacOS, TvOS, VisionOS };
    static constexpr std::array<RawValueRow<Case>, 4> rows{{
        {Case::Ios, u"IOS"},
        {Case::MacOS, u"MAC_OS"},
        {Case::TvOS, u"TV_OS"},
        {Case::VisionOS, u"VISION_OS"},
    }};
};
using ASCPlatform = OpenEnum<PlatformTraits>;

struct ProcessingStateTraits {
    enum class Case { Unknown, Processing, Failed, Invalid, Valid };
    static constexpr std::array<RawValueRow<Case>, 4> rows{{
        {Case::Processing, u"PROCESSING"},
        {Case::Failed, u"FAILED"},
        {Case::Invalid, u"INVALID"},
        {Case::Valid, u"VALID"},
    }};
};
using ASCProcessingState = OpenEnum<ProcessingStateTraits>;

struct AppStoreVersionStateTraits {
    enum class Case {
        Unknown,
        Accepted,
        DeveloperRemovedFromSale,
        DeveloperRejected,
        InReview,
        InvalidBinary,
        MetadataRejected,
        PendingAppleRelease,
        PendingContract,
        PendingDeveloperRelease,
        PrepareForSubmission,
        PreorderReadyForSale,
        ProcessingForAppStore,
        ReadyForReview,
        ReadyForSale,
        Rejected,
        RemovedFromSale,
        WaitingForExportCompliance,
        WaitingForReview,
        ReplacedWithNewVersion,
        NotApplicable,
    };
    static constexpr std::array<RawValueRow<Case>, 20> rows{{
        {Case::Accepted, u"ACCEPTED", u"Akzeptiert"},
        {Case::DeveloperRemovedFromSale, u"DEVELOPER_REMOVED_FROM_SALE", u"Vom Verkauf genommen"},
        {Case::DeveloperRejected, u"DEVELOPER_REJECTED", u"Vom Entwickler abgelehnt"},
        {Case::InReview, u"IN_REVIEW", u"In Review"},
        {Case::InvalidBinary, u"INVALID_BINARY", u"Ungültige Binärdatei"},
        {Case::MetadataRejected, u"METADATA_REJECTED", u"Metadaten abgelehnt"},
        {Case::PendingAppleRelease, u"PENDING_APPLE_RELEASE", u"Warten auf Apple-Freigabe"},
        {Case::PendingContract, u"PENDING_CONTRACT", u"Vertrag ausstehend"},
        {Case::PendingDeveloperRelease, u"PENDING_DEVELOPER_RELEASE", u"Warten auf Freigabe"},
        {Case::PrepareForSubmission, u"PREPARE_FOR_SUBMISSION", u"Zur Einreichung vorbereiten"},
        {Case::PreorderReadyForSale, u"PREORDER_READY_FOR_SALE", u"Vorbestellung bereit"},
        {Case::ProcessingForAppStore, u"PROCESSING_FOR_APP_STORE", u"Wird verarbeitet"},
        {Case::ReadyForReview, u"READY_FOR_REVIEW", u"Bereit zur Prüfung"},
        {Case::ReadyForSale, u"READY_FOR_SALE", u"Im Verkauf"},
        {Case::Rejected, u"REJECTED", u"Abgelehnt"},
        {Case::RemovedFromSale, u"REMOVED_FROM_SALE", u"Vom Verkauf entfernt"},
        {Case::WaitingForExportCompliance, u"WAITING_FOR_EXPORT_COMPLIANCE", u"Warten auf Exportkonformität"},
        {Case::WaitingForReview, u"WAITING_FOR_REVIEW", u"Warten auf Prüfung"},
        {Case::ReplacedWithNewVersion, u"REPLACED_WITH_NEW_VERSION", u"Durch neue Version ersetzt"},
        {Case::NotApplicable, u"NOT_APPLICABLE", u"Nicht zutreffend"},
    }};
};
using ASCAppStoreVersionState = OpenEnum<AppStoreVersionStateTraits>;
