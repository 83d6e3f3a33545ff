#pragma once

#include "release/ManagedReviewSubmission.h"
#include "release/VelmoraVersion.h"
#include "wire/ASCEnums.h"

#include <QCoro/QCoroTask>
#include <QHash>

#include <memory>
#include <optional>

class AppStoreConnectClient;

// Review submissions of an app: reading them, and handing a version to Apple for review. No
// cache: a submission changes state at Apple without our doing, so every read asks.
class ReviewSubmissionsService {
public:
    static constexpr int defaultLimit = 50;
    static constexpr int itemsLimit = 50;

    using VersionsByID = QHash<QString, VelmoraVersion>;

    // One page, in Apple's order, without items.
    QCoro::Task<QList<ManagedReviewSubmission>>
    submissions(QString appID, std::shared_ptr<AppStoreConnectClient> client, int limit = defaultLimit);
    // The first submission that is not complete yet, without items.
    QCoro::Task<std::optional<ManagedReviewSubmission>>
    openSubmission(QString appID, std::shared_ptr<AppStoreConnectClient> client);
    // The open one, or else the most recent at all, with its items.
    QCoro::Task<std::optional<ManagedReviewSubmission>>
    currentSubmission(QString appID, std::shared_ptr<AppStoreConnectClient> client,
                      VersionsByID versionsByID);
    // `versionsByID` names the items ("Version 1.2").
    QCoro::Task<QList<ManagedReviewSubmissionItem>>
    items(QString submissionID, std::shared_ptr<AppStoreConnectClient> client, VersionsByID versionsByID);

    // Reuses an open submission that is still being put together, refuses while one lies at
    // Apple (VelmoraAPIError::workflowConflict), adds the version unless it is in already, and
    // submits. Returns the submission as Apple has it afterwards.
    QCoro::Task<ManagedReviewSubmission> submit(QString versionID, QString appID, ASCPlatform platform,
                                                std::shared_ptr<AppStoreConnectClient> client);
    // Withdraws the submission; returns it in its new state.
    QCoro::Task<ManagedReviewSubmission> cancel(QString submissionID,
                                                std::shared_ptr<AppStoreConnectClient> client);
    QCoro::Task<> removeItem(QString itemID, std::shared_ptr<AppStoreConnectClient> client);
};
