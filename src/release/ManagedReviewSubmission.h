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

// Where a review submission stands at Apple. A text Apple adds later is kept in Unknown and
// shown as it is.
class ASCReviewSubmissionState {
public:
    enum class Case {
        Unknown,
        ReadyForReview,
        WaitingForReview,
        InReview,
        UnresolvedIssues,
        Canceling,
        Complete
    };
    ASCReviewSubmissionState() = default;
    explicit ASCReviewSubmissionState(Case c) : m_case(c) {}
    static ASCReviewSubmissionState fromRaw(const QString& raw);
    Case value() const { return m_case; }
    QString raw() const;
    QString displayName() const;
    friend bool operator==(const ASCReviewSubmissionState&, const ASCReviewSubmissionState&) = default;

private:
    Case m_case = Case::Unknown;
    QString m_unknown;
};

class ASCReviewSubmissionItemState {
public:
    enum class Case { Unknown, ReadyForReview, Accepted, Approved, Rejected, Removed };
    ASCReviewSubmissionItemState() = default;
    explicit ASCReviewSubmissionItemState(Case c) : m_case(c) {}
    static ASCReviewSubmissionItemState fromRaw(const QString& raw);
    Case value() const { return m_case; }
    QString raw() const;
    friend bool operator==(const ASCReviewSubmissionItemState&,
                           const ASCReviewSubmissionItemState&) = default;

private:
    Case m_case = Case::Unknown;
    QString m_unknown;
};

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
