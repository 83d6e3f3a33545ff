#pragma once

#include <QDateTime>
#include <QString>

#include <optional>

// One run of a workflow. The labels are German; the raw values stay for the status tone and for
// telling a finished run from a running one.
struct ManagedCiBuildRun {
    QString id;
    int number = 0;
    std::optional<QDateTime> createdDate;
    std::optional<QDateTime> startedDate;
    std::optional<QDateTime> finishedDate;
    std::optional<QString> commitMessage;
    QString executionProgress;
    std::optional<QString> completionStatus;
    std::optional<QString> rawExecutionProgress;
    std::optional<QString> rawCompletionStatus;
    friend bool operator==(const ManagedCiBuildRun&, const ManagedCiBuildRun&) = default;
};
