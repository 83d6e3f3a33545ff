#pragma once

#include "api/AppStoreConnectClient.h"
#include "api/Endpoint.h"
#include "wire/JSONAPI.h"

#include <QCoro/QCoroTask>
#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>

// What sets one kind of asset apart in Apple's upload protocol: the resource that is reserved
// and committed, and the parent it hangs on. Everything else (reading, the parts, the MD5) is
// the same for all of them.
struct AssetUploadKind {
    // The JSON:API type of the reservation, "appScreenshots".
    QString resourceType;
    // POST here reserves; PATCH here + "/" + id commits.
    QString reservationPath;
    // The relationship key to the parent and the parent's type.
    QString parentRelationship;
    QString parentType;
    // Create attributes beyond fileName and fileSize that Apple refuses to do without.
    QStringList requiredAttributes;
    // The commit attribute that carries the file's MD5. Absent where Apple's commit takes only
    // `uploaded` (the in-app event assets).
    std::optional<QString> checksumAttribute;

    // A file for Apple's reviewers beside the review details of a version.
    static AssetUploadKind reviewAttachment();
    // A store screenshot in a screenshot set.
    static AssetUploadKind appScreenshot();
    // A preview video in a preview set; `mimeType` and `previewFrameTimeCode` may go along.
    static AssetUploadKind appPreview();
    // The screenshot that shows the reviewer an in-app purchase.
    static AssetUploadKind inAppPurchaseReviewScreenshot();
    // The same for a subscription.
    static AssetUploadKind subscriptionReviewScreenshot();
    // The image and the video of an in-app event's localization; `appEventAssetType` is needed.
    static AssetUploadKind appEventScreenshot();
    static AssetUploadKind appEventVideoClip();
};

// One file to send.
struct AssetUpload {
    AssetUploadKind kind;
    QString filePath;
    // The id of the parent named by the kind's relationship.
    QString parentID;
    // Create attributes of the kind beyond fileName and fileSize.
    QJsonObject attributes;
    // After part i of n: i / n. Never 0; the last call is 1.
    std::function<void(double)> progress;
};

// Apple's upload protocol for every kind of asset: reserve the resource, send the file's parts
// to the storage addresses in the reservation (no token, no budget, no audit entry), then
// commit. Each part is read from the file when it goes out, one part in memory at a time; its MD5 is
// computed on a worker thread while the parts go out. Every part is checked against the file
// before the first one is sent, so a reservation with unusable parts never puts half a file at
// Apple. The reservation stays at Apple when anything fails; a new try reserves anew.
class AssetUploader {
public:
    // `Attributes` is the caller's decoding of the committed resource.
    template <class Attributes>
    static QCoro::Task<JSONAPIResource<Attributes>> upload(std::shared_ptr<AppStoreConnectClient> client,
                                                           AssetUpload upload) {
        // Named locals rather than temporaries as a coroutine's arguments (see the client).
        auto transferring = transfer(client, std::move(upload));
        const PendingCommit commit = co_await transferring;
        auto endpoint = Endpoint<Returns::One<Attributes>>::patch(commit.path, commit.body);
        co_return co_await client->call(std::move(endpoint));
    }

    // What is left once the parts are at Apple.
    struct PendingCommit {
        QString path;
        QByteArray body;
    };
    // Reads, reserves and sends the parts.
    static QCoro::Task<PendingCommit> transfer(std::shared_ptr<AppStoreConnectClient> client,
                                               AssetUpload upload);
};
