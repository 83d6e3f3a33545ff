#pragma once

#include "wire/JsonReader.h"
#include "wire/OpenEnum.h"

#include <QString>

#include <array>
#include <optional>

// Where a build stands in TestFlight, for internal and for external testers. One table for both
// sides: internal testers see a subset of the states.
struct BetaBuildStateTraits {
    enum class Case {
        Unknown,
        Processing,
        ProcessingException,
        MissingExportCompliance,
        ReadyForBetaTesting,
        InBetaTesting,
        Expired,
        ReadyForBetaSubmission,
        InExportComplianceReview,
        WaitingForBetaReview,
        InBetaReview,
        BetaRejected,
        BetaApproved,
        NotApplicable,
    };
    static constexpr std::array<RawValueRow<Case>, 13> rows{{
        {Case::Processing, u"PROCESSING", u"Wird verarbeitet"},
        {Case::ProcessingException, u"PROCESSING_EXCEPTION", u"Fehler bei Verarbeitung"},
        {Case::MissingExportCompliance, u"MISSING_EXPORT_COMPLIANCE", u"Exportkonformität fehlt"},
        {Case::ReadyForBetaTesting, u"READY_FOR_BETA_TESTING", u"Bereit für Beta-Test"},
        {Case::InBetaTesting, u"IN_BETA_TESTING", u"Im Beta-Test"},
        {Case::Expired, u"EXPIRED", u"Abgelaufen"},
        {Case::ReadyForBetaSubmission, u"READY_FOR_BETA_SUBMISSION", u"Bereit zur Einreichung"},
        {Case::InExportComplianceReview, u"IN_EXPORT_COMPLIANCE_REVIEW", u"Exportkonformitätsprüfung"},
        {Case::WaitingForBetaReview, u"WAITING_FOR_BETA_REVIEW", u"Wartet auf Beta-Prüfung"},
        {Case::InBetaReview, u"IN_BETA_REVIEW", u"In Beta-Prüfung"},
        {Case::BetaRejected, u"BETA_REJECTED", u"Beta abgelehnt"},
        {Case::BetaApproved, u"BETA_APPROVED", u"Beta genehmigt"},
        {Case::NotApplicable, u"NOT_APPLICABLE", u"Nicht zutreffend"},
    }};
};
using ASCBetaBuildState = OpenEnum<BetaBuildStateTraits>;

struct ASCBuildBetaDetailAttributes {
    std::optional<bool> autoNotifyEnabled;
    std::optional<QString> internalBuildState;
    std::optional<QString> externalBuildState;
    static ASCBuildBetaDetailAttributes fromJson(const JsonReader& r);
};

// A build's TestFlight state on both sides. A side Apple does not answer is absent and reads "–";
// a state the table does not know reads as Apple wrote it.
struct ManagedBuildBetaDetail {
    std::optional<ASCBetaBuildState> internal;
    std::optional<ASCBetaBuildState> external;

    QString internalState() const { return label(internal); }
    QString externalState() const { return label(external); }
    std::optional<QString> internalRawState() const;
    std::optional<QString> externalRawState() const;
    // Either side waits for the export compliance answer.
    bool isMissingExportCompliance() const;

    static QString label(const std::optional<ASCBetaBuildState>& state);
    static ManagedBuildBetaDetail fromResource(const std::optional<ASCBuildBetaDetailAttributes>& a);
    friend bool operator==(const ManagedBuildBetaDetail&, const ManagedBuildBetaDetail&) = default;
};
