#include "release/AppReviewDetailsService.h"

#include "api/AppStoreConnectClient.h"
#include "release/ReleaseRequestBodies.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>

using namespace Qt::StringLiterals;

using Method = APIRequest::Method;

QCoro::Task<ManagedAppReviewDetail>
AppReviewDetailsService::reviewDetail(QString versionID, std::shared_ptr<AppStoreConnectClient> client) {
    APIRequest request = APIRequest::get(u"/v1/appStoreVersions/"_s + versionID + u"/appStoreReviewDetail"_s);
    const auto resource =
        co_await client->sendSingleOptional<ASCAppStoreReviewDetailAttributes>(std::move(request));
    if (!resource) {
        co_return ManagedAppReviewDetail{};
    }
    co_return ManagedAppReviewDetail::fromResource(resource->id, resource->attributes);
}

QCoro::Task<ManagedAppReviewDetail>
AppReviewDetailsService::save(ManagedAppReviewDetail detail, QString versionID,
                              std::shared_ptr<AppStoreConnectClient> client) {
    APIRequest request;
    if (detail.id) {
        const AppStoreReviewDetailUpdateRequestBody body{*detail.id, detail};
        request =
            APIRequest::withBody(Method::Patch, u"/v1/appStoreReviewDetails/"_s + *detail.id, body.encoded());
    } else {
        const AppStoreReviewDetailCreateRequestBody body{versionID, detail};
        request = APIRequest::withBody(Method::Post, u"/v1/appStoreReviewDetails"_s, body.encoded());
    }
    const auto resource = co_await client->sendSingle<ASCAppStoreReviewDetailAttributes>(std::move(request));
    co_return ManagedAppReviewDetail::fromResource(resource.id, resource.attributes);
}

QCoro::Task<QList<ManagedReviewAttachment>>
AppReviewDetailsService::attachments(QString reviewDetailID, std::shared_ptr<AppStoreConnectClient> client) {
    APIRequest request =
        APIRequest::get(u"/v1/appStoreReviewDetails/"_s + reviewDetailID + u"/appStoreReviewAttachments"_s);
    request.queryItems = {{u"limit"_s, QString::number(attachmentsLimit)}};
    const auto page = co_await client->send<ASCAppStoreReviewAttachmentAttributes>(std::move(request));
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
    APIRequest reserve =
        APIRequest::withBody(Method::Post, u"/v1/appStoreReviewAttachments"_s, reserveBody.encoded());
    const auto reservation =
        co_await client->sendSingle<ASCAppStoreReviewAttachmentAttributes>(std::move(reserve));

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
    APIRequest commit = APIRequest::withBody(
        Method::Patch, u"/v1/appStoreReviewAttachments/"_s + reservation.id, commitBody.encoded());
    const auto committed =
        co_await client->sendSingle<ASCAppStoreReviewAttachmentAttributes>(std::move(commit));
    co_return ManagedReviewAttachment::fromResource(committed.id, committed.attributes);
}

QCoro::Task<> AppReviewDetailsService::deleteAttachment(QString attachmentID,
                                                        std::shared_ptr<AppStoreConnectClient> client) {
    APIRequest request;
    request.method = Method::Delete;
    request.path = u"/v1/appStoreReviewAttachments/"_s + attachmentID;
    co_await client->sendVoid(std::move(request));
}
