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
    if (auto operations = r.optArray(u"uploadOperations"_s)) {
        QList<ASCUploadOperation> list;
        for (const auto& value : *operations) {
            const JsonReader op = JsonReader::of(value, u"uploadOperations[]"_s);
            ASCUploadOperation operation;
            operation.method = op.optString(u"method"_s);
            operation.url = op.optString(u"url"_s);
            operation.length = op.optInt(u"length"_s);
            operation.offset = op.optInt(u"offset"_s);
            if (auto headers = op.optArray(u"requestHeaders"_s)) {
                QList<ASCUploadOperation::Header> parsed;
                for (const auto& h : *headers) {
                    const JsonReader header = JsonReader::of(h, u"requestHeaders[]"_s);
                    parsed.append({header.optString(u"name"_s), header.optString(u"value"_s)});
                }
                operation.requestHeaders = parsed;
            }
            list.append(operation);
        }
        a.uploadOperations = list;
    }
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
