#include "release/AppReviewDetailsService.h"

#include "api/AppStoreConnectClient.h"
#include "api/AssetUploader.h"
#include "release/ReleaseEndpoints.h"

using namespace Qt::StringLiterals;

QCoro::Task<ManagedAppReviewDetail>
AppReviewDetailsService::reviewDetail(QString versionID, std::shared_ptr<AppStoreConnectClient> client) {
    const auto resource = co_await client->call(ReleaseEndpoints::reviewDetailOfVersion(versionID));
    if (!resource) {
        co_return ManagedAppReviewDetail{};
    }
    co_return ManagedAppReviewDetail::fromResource(resource->id, resource->attributes);
}

QCoro::Task<ManagedAppReviewDetail>
AppReviewDetailsService::save(ManagedAppReviewDetail detail, QString versionID,
                              std::shared_ptr<AppStoreConnectClient> client) {
    const auto endpoint =
        detail.id
            ? ReleaseEndpoints::updateReviewDetail(AppStoreReviewDetailUpdateRequestBody{*detail.id, detail})
            : ReleaseEndpoints::createReviewDetail(AppStoreReviewDetailCreateRequestBody{versionID, detail});
    const auto resource = co_await client->call(endpoint);
    co_return ManagedAppReviewDetail::fromResource(resource.id, resource.attributes);
}

QCoro::Task<QList<ManagedReviewAttachment>>
AppReviewDetailsService::attachments(QString reviewDetailID, std::shared_ptr<AppStoreConnectClient> client) {
    const auto page =
        co_await client->call(ReleaseEndpoints::attachmentsOfReviewDetail(reviewDetailID, attachmentsLimit));
    QList<ManagedReviewAttachment> list;
    list.reserve(page.data.size());
    for (const auto& resource : page.data) {
        list.append(ManagedReviewAttachment::fromResource(resource.id, resource.attributes));
    }
    co_return list;
}

QCoro::Task<ManagedReviewAttachment>
AppReviewDetailsService::uploadAttachment(QString filePath, QString reviewDetailID,
                                          std::shared_ptr<AppStoreConnectClient> client,
                                          std::function<void(double)> progress) {
    AssetUpload upload;
    upload.kind = AssetUploadKind::reviewAttachment();
    upload.filePath = filePath;
    upload.parentID = reviewDetailID;
    upload.progress = progress;
    auto uploading = AssetUploader::upload<ASCAppStoreReviewAttachmentAttributes>(client, std::move(upload));
    const auto committed = co_await uploading;
    co_return ManagedReviewAttachment::fromResource(committed.id, committed.attributes);
}

QCoro::Task<> AppReviewDetailsService::deleteAttachment(QString attachmentID,
                                                        std::shared_ptr<AppStoreConnectClient> client) {
    co_await client->call(ReleaseEndpoints::deleteAttachment(attachmentID));
}
