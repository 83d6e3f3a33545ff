#pragma once

#include "wire/JsonReader.h"

#include <QString>

#include <optional>

struct ASCBetaAppReviewSubmissionAttributes {
    std::optional<QString> betaReviewState;
    static ASCBetaAppReviewSubmissionAttributes fromJson(const JsonReader& r) {
        return ASCBetaAppReviewSubmissionAttributes{r.optString(QStringLiteral("betaReviewState"))};
    }
};

// A build's submission for the beta review that external testers need.
struct ManagedBetaReviewSubmission {
    QString id;
    std::optional<QString> rawState;
    friend bool operator==(const ManagedBetaReviewSubmission&, const ManagedBetaReviewSubmission&) = default;

    static ManagedBetaReviewSubmission
    fromResource(const QString& id, const std::optional<ASCBetaAppReviewSubmissionAttributes>& a) {
        return ManagedBetaReviewSubmission{id, a ? a->betaReviewState : std::nullopt};
    }
};
