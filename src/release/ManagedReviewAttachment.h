#pragma once

#include "wire/ASCAssetDeliveryState.h"
#include "wire/ASCUploadOperation.h"
#include "wire/JsonReader.h"

#include <QList>
#include <QString>

#include <optional>

struct ASCAppStoreReviewAttachmentAttributes {
    std::optional<qint64> fileSize;
    std::optional<QString> fileName;
    std::optional<QString> sourceFileChecksum;
    std::optional<QList<ASCUploadOperation>> uploadOperations;
    // The `state` of Apple's `assetDeliveryState` object.
    std::optional<QString> assetDeliveryState;
    static ASCAppStoreReviewAttachmentAttributes fromJson(const JsonReader& r);
};

// A file that Apple's reviewers get beside the review details (a video, a document).
struct ManagedReviewAttachment {
    QString id;
    QString fileName;
    qint64 fileSize = 0;
    ASCAssetDeliveryState deliveryState;

    static ManagedReviewAttachment
    fromResource(const QString& id, const std::optional<ASCAppStoreReviewAttachmentAttributes>& a);
    friend bool operator==(const ManagedReviewAttachment&, const ManagedReviewAttachment&) = default;
};
