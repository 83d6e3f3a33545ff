#pragma once

#include <QDateTime>
#include <QString>

#include <optional>

// A customer review from the App Store. `existingResponseID` is set when the document links a
// reply, so that the list can tell answered from unanswered without a request per review.
struct ManagedReview {
    QString id;
    int rating = 0;
    std::optional<QString> title;
    std::optional<QString> body;
    std::optional<QString> reviewerNickname;
    std::optional<QDateTime> createdDate;
    std::optional<QString> territory;
    std::optional<QString> existingResponseID;
    friend bool operator==(const ManagedReview&, const ManagedReview&) = default;
};
