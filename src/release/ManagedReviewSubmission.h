#pragma once

#include "release/VelmoraVersion.h"
#include "wire/ASCEnums.h"
#include "wire/JsonReader.h"

#include <QDateTime>
#include <QHash>
#include <QJsonObject>
#include <QList>
#include <QString>

#include <optional>

// Where a review submission stands at Apple.
struct ReviewSubmissionStateTraits {
    enum class Case {
        Unknown,
        ReadyForReview,
        WaitingForReview,
        InReview,
        UnresolvedIssues,
        Canceling,
        Complete
    };
    static constexpr std::array<RawValueRow<Case>, 6> rows{{
        {Case::ReadyForReview, u"READY_FOR_REVIEW", u"Bereit zur Einreichung"},
        {Case::WaitingForReview, u"WAITING_FOR_REVIEW", u"Warten auf Prüfung"},
        {Case::InReview, u"IN_REVIEW", u"In Prüfung"},
        {Case::UnresolvedIssues, u"UNRESOLVED_ISSUES", u"Offene Beanstandungen"},
        {Case::Canceling, u"CANCELING", u"Wird zurückgezogen"},
        {Case::Complete, u"COMPLETE", u"Abgeschlossen"},
    }};
};
using ASCReviewSubmissionState = OpenEnum<ReviewSubmissionStateTraits>;

struct ReviewSubmissionItemStateTraits {
    enum class Case { Unknown, ReadyForReview, Accepted, Approved, Rejected, Removed };
    static constexpr std::array<RawValueRow<Case>, 5> rows{{
        {Case::ReadyForReview, u"READY_FOR_REVIEW"},
        {Case::Accepted, u"ACCEPTED"},
        {Case::Approved, u"APPROVED"},
        {Case::Rejected, u"REJECTED"},
        {Case::Removed, u"REMOVED"},
    }};
};
using ASCReviewSubmissionItemState = OpenEnum<ReviewSubmissionItemStateTraits>;

struct ASCReviewSubmissionAttributes {
    std::optional<QString> platform;
    std::optional<QString> state;
    std::optional<QDateTime> submittedDate;
    static ASCReviewSubmissionAttributes fromJson(const JsonReader& r);
};

struct ASCReviewSubmissionItemAttributes {
    std::optional<QString> state;
    // Older answers carry these flags; newer ones only the state.
    std::optional<bool> resolved;
    std::optional<bool> removed;
    static ASCReviewSubmissionItemAttributes fromJson(const JsonReader& r);
};

struct ManagedReviewSubmissionItem {
    QString id;
    ASCReviewSubmissionItemState state;
    bool isResolved = false;
    bool isRemoved = false;
    // The version the item puts up for review, when it is one.
    std::optional<QString> appStoreVersionID;
    // "Version 1.2" when the item's version is among the known ones.
    std::optional<QString> subjectDescription;

    // `relationships` is the resource's raw relationships object.
    static ManagedReviewSubmissionItem fromResource(const QString& id,
                                                    const std::optional<ASCReviewSubmissionItemAttributes>& a,
                                                    const QJsonObject& relationships,
                                                    const QHash<QString, VelmoraVersion>& versionsByID);
    friend bool operator==(const ManagedReviewSubmissionItem&, const ManagedReviewSubmissionItem&) = default;
};

struct ManagedReviewSubmission {
    QString id;
    std::optional<ASCPlatform> platform;
    ASCReviewSubmissionState state;
    std::optional<QDateTime> submittedDate;
    QList<ManagedReviewSubmissionItem> items;

    static ManagedReviewSubmission fromResource(const QString& id,
                                                const std::optional<ASCReviewSubmissionAttributes>& a);
    friend bool operator==(const ManagedReviewSubmission&, const ManagedReviewSubmission&) = default;
};
