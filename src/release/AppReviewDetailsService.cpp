#include "release/AppReviewDetailsService.h"

#include "api/AppStoreConnectClient.h"
#include "release/ReleaseEndpoints.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>

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
    const QString fileName = QFileInfo(filePath).fileName();
    QFile file(filePath);
    if (!file.open(QIODevice::ReadOnly)) {
        throw VelmoraAPIError::uploadFailed(u"„"_s + fileName + u"“ lässt sich nicht lesen: "_s +
                                            file.errorString());
    }
    const QByteArray data = file.readAll();
    file.close();

    const AppStoreReviewAttachmentCreateRequestBody reserveBody{reviewDetailID, fileName,
                                                                qint64(data.size())};
    const auto reservation = co_await client->call(ReleaseEndpoints::reserveAttachment(reserveBody));

    const QList<ASCUploadOperation> operations =
        reservation.attributes
            ? reservation.attributes->uploadOperations.value_or(QList<ASCUploadOperation>{})
            : QList<ASCUploadOperation>{};
    if (operations.isEmpty()) {
        // The reservation stays at Apple; a retry starts with a new one.
        throw VelmoraAPIError::uploadFailed(u"Apple hat für „"_s + fileName +
                                            u"“ keine Upload-Adresse zurückgegeben."_s);
    }
    for (qsizetype i = 0; i < operations.size(); ++i) {
        const ASCUploadOperation operation = operations.at(i);
        co_await client->performUploadOperation(operation, data);
        if (progress) {
            progress(double(i + 1) / double(operations.size()));
        }
    }

    const AppStoreReviewAttachmentCommitRequestBody commitBody{
        reservation.id, QString::fromLatin1(QCryptographicHash::hash(data, QCryptographicHash::Md5).toHex())};
    const auto committed = co_await client->call(ReleaseEndpoints::commitAttachment(commitBody));
    co_return ManagedReviewAttachment::fromResource(committed.id, committed.attributes);
}

QCoro::Task<> AppReviewDetailsService::deleteAttachment(QString attachmentID,
                                                        std::shared_ptr<AppStoreConnectClient> client) {
    co_await client->call(ReleaseEndpoints::deleteAttachment(attachmentID));
}
