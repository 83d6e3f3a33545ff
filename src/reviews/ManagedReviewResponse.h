#pragma once

#include "wire/OpenEnum.h"

#include <QDateTime>
#include <QString>

#include <optional>

// Whether a reply is visible in the store yet.
struct ReviewResponseStateTraits {
    enum class Case { Unknown, Published, PendingPublish };
    static constexpr std::array<RawValueRow<Case>, 2> rows{{
        {Case::Published, u"PUBLISHED"},
        {Case::PendingPublish, u"PENDING_PUBLISH"},
    }};
};
using ASCReviewResponseState = OpenEnum<ReviewResponseStateTraits>;

// The developer's reply to a review.
struct ManagedReviewResponse {
    QString id;
    QString responseBody;
    std::optional<QDateTime> lastModifiedDate;
    ASCReviewResponseState state;
    friend bool operator==(const ManagedReviewResponse&, const ManagedReviewResponse&) = default;
};
