#include "release/ReviewSubmissionsService.h"

#include "api/AppStoreConnectClient.h"
#include "release/ReleaseEndpoints.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {
bool isComplete(const ManagedReviewSubmission& s) {
    return s.state.value() == ASCReviewSubmissionState::Case::Complete;
}
} // namespace

QCoro::Task<QList<ManagedReviewSubmission>>
ReviewSubmissionsService::submissions(QString appID, std::shared_ptr<AppStoreConnectClient> client,
                                      int limit) {
    const auto page = co_await client->call(ReleaseEndpoints::submissionsOfApp(appID, limit));
    QList<ManagedReviewSubmission> list;
    list.reserve(page.data.size());
    for (const auto& resource : page.data) {
        list.append(ManagedReviewSubmission::fromResource(resource.id, resource.attributes));
    }
    co_return list;
}

QCoro::Task<std::optional<ManagedReviewSubmission>>
ReviewSubmissionsService::openSubmission(QString appID, std::shared_ptr<AppStoreConnectClient> client) {
    const auto list = co_await submissions(appID, client, defaultLimit);
    const auto it = std::find_if(list.cbegin(), list.cend(), [](const auto& s) { return !isComplete(s); });
    if (it == list.cend()) {
        co_return std::nullopt;
    }
    co_return *it;
}

QCoro::Task<std::optional<ManagedReviewSubmission>>
ReviewSubmissionsService::currentSubmission(QString appID, std::shared_ptr<AppStoreConnectClient> client,
                                            VersionsByID versionsByID) {
    const auto list = co_await submissions(appID, client, defaultLimit);
    if (list.isEmpty()) {
        co_return std::nullopt;
    }
    const auto open = std::find_if(list.cbegin(), list.cend(), [](const auto& s) { return !isComplete(s); });
    ManagedReviewSubmission current = open != list.cend() ? *open : list.first();
    current.items = co_await items(current.id, client, versionsByID);
    co_return current;
}

QCoro::Task<QList<ManagedReviewSubmissionItem>>
ReviewSubmissionsService::items(QString submissionID, std::shared_ptr<AppStoreConnectClient> client,
                                VersionsByID versionsByID) {
    const auto page = co_await client->call(ReleaseEndpoints::itemsOfSubmission(submissionID, itemsLimit));
    QList<ManagedReviewSubmissionItem> list;
    list.reserve(page.data.size());
    for (const auto& resource : page.data) {
        list.append(ManagedReviewSubmissionItem::fromResource(resource.id, resource.attributes,
                                                              resource.relationships, versionsByID));
    }
    co_return list;
}

QCoro::Task<ManagedReviewSubmission>
ReviewSubmissionsService::submit(QString versionID, QString appID, ASCPlatform platform,
                                 std::shared_ptr<AppStoreConnectClient> client) {
    const auto open = co_await openSubmission(appID, client);
    QString submissionID;
    bool needsItem = true;
    if (!open) {
        const ReviewSubmissionCreateRequestBody body{appID, platform};
        const auto created = co_await client->call(ReleaseEndpoints::createSubmission(body));
        submissionID = created.id;
    } else if (open->state.value() != ASCReviewSubmissionState::Case::ReadyForReview) {
        throw VelmoraAPIError::workflowConflict(u"Es liegt bereits eine Einreichung bei Apple ("_s +
                                                open->state.displayName() +
                                                u"). Ziehe sie zurück, bevor du erneut einreichst."_s);
    } else {
        submissionID = open->id;
        const VersionsByID noVersions;
        const auto existing = co_await items(submissionID, client, noVersions);
        needsItem =
            std::none_of(existing.cbegin(), existing.cend(), [&](const ManagedReviewSubmissionItem& item) {
                return item.appStoreVersionID == versionID && !item.isRemoved;
            });
    }
    if (needsItem) {
        const ReviewSubmissionItemCreateRequestBody body{submissionID, versionID};
        co_await client->call(ReleaseEndpoints::addSubmissionItem(body));
    }
    const ReviewSubmissionUpdateRequestBody body{submissionID, true, std::nullopt};
    const auto updated = co_await client->call(ReleaseEndpoints::updateSubmission(body));
    co_return ManagedReviewSubmission::fromResource(updated.id, updated.attributes);
}

QCoro::Task<ManagedReviewSubmission>
ReviewSubmissionsService::cancel(QString submissionID, std::shared_ptr<AppStoreConnectClient> client) {
    const ReviewSubmissionUpdateRequestBody body{submissionID, std::nullopt, true};
    const auto updated = co_await client->call(ReleaseEndpoints::updateSubmission(body));
    co_return ManagedReviewSubmission::fromResource(updated.id, updated.attributes);
}

QCoro::Task<> ReviewSubmissionsService::removeItem(QString itemID,
                                                   std::shared_ptr<AppStoreConnectClient> client) {
    co_await client->call(ReleaseEndpoints::removeSubmissionItem(itemID));
}
