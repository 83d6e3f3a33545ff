#pragma once

#include <QDateTime>
#include <QList>
#include <QString>

#include <optional>

// A screenshot a tester attached to feedback; the URL is presigned and expires.
struct ASCFeedbackImage {
    std::optional<QString> url;
    std::optional<QString> fileName;
    std::optional<QDateTime> expirationDate;
    friend bool operator==(const ASCFeedbackImage&, const ASCFeedbackImage&) = default;
};

// What a tester sent from inside TestFlight: a screenshot with a comment, or a crash.
struct ManagedBetaFeedback {
    enum class Kind { Screenshot, Crash };

    QString id;
    Kind kind = Kind::Screenshot;
    std::optional<QDateTime> createdDate;
    std::optional<QString> comment;
    std::optional<QString> email;
    std::optional<QString> deviceModel;
    std::optional<QString> osVersion;
    std::optional<QString> locale;
    std::optional<QString> appVersion;
    std::optional<int> batteryPercentage;
    QList<ASCFeedbackImage> screenshots;
    friend bool operator==(const ManagedBetaFeedback&, const ManagedBetaFeedback&) = default;
};
