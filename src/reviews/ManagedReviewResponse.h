#pragma once

#include <QDateTime>
#include <QString>

#include <optional>

// Whether a reply is visible in the store yet. A text Apple adds later is kept in Unknown.
class ASCReviewResponseState {
public:
    enum class Case { Unknown, Published, PendingPublish };
    ASCReviewResponseState() = default;
    explicit ASCReviewResponseState(Case c) : m_case(c) {}
    static ASCReviewResponseState fromRaw(const QString& raw);
    Case value() const { return m_case; }
    QString raw() const;
    friend bool operator==(const ASCReviewResponseState&, const ASCReviewResponseState&) = default;

private:
    Case m_case = Case::Unknown;
    QString m_unknown;
};

// The developer's reply to a review.
struct ManagedReviewResponse {
    QString id;
    QString responseBody;
    std::optional<QDateTime> lastModifiedDate;
    ASCReviewResponseState state;
    friend bool operator==(const ManagedReviewResponse&, const ManagedReviewResponse&) = default;
};
