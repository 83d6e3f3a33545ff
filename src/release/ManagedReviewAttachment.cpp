#include "release/ManagedReviewAttachment.h"

using namespace Qt::StringLiterals;

ASCAppStoreReviewAttachmentAttributes ASCAppStoreReviewAttachmentAttributes::fromJson(const JsonReader& r) {
    ASCAppStoreReviewAttachmentAttributes a;
    a.fileSize = r.optInt(u"fileSize"_s);
    a.fileName = r.optString(u"fileName"_s);
    a.sourceFileChecksum = r.optString(u"sourceFileChecksum"_s);
    if (auto state = r.optObject(u"assetDeliveryState"_s)) {
        a.assetDeliveryState = state->optString(u"state"_s);
    }
    a.uploadOperations = ASCUploadOperation::listFromAttributes(r);
    return a;
}

ManagedReviewAttachment
ManagedReviewAttachment::fromResource(const QString& id,
                                      const std::optional<ASCAppStoreReviewAttachmentAttributes>& a) {
    ManagedReviewAttachment attachment;
    attachment.id = id;
    attachment.deliveryState = ASCAssetDeliveryState::fromRaw(u"UNKNOWN"_s);
    if (!a) {
        return attachment;
    }
    attachment.fileName = a->fileName.value_or(QString());
    attachment.fileSize = a->fileSize.value_or(0);
    if (a->assetDeliveryState) {
        attachment.deliveryState = ASCAssetDeliveryState::fromRaw(*a->assetDeliveryState);
    }
    return attachment;
}
