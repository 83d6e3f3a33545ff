#include "api/AssetUploader.h"

#include "wire/ASCUploadOperation.h"

#include <QCoro/QCoroFuture>
#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QUrl>
#include <QtConcurrent/QtConcurrentRun>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

AssetUploadKind declare(QString resourceType, QString parentRelationship, QString parentType,
                        QStringList requiredAttributes = {},
                        std::optional<QString> checksumAttribute = u"sourceFileChecksum"_s) {
    AssetUploadKind k;
    k.reservationPath = u"/v1/"_s + resourceType;
    k.resourceType = std::move(resourceType);
    k.parentRelationship = std::move(parentRelationship);
    k.parentType = std::move(parentType);
    k.requiredAttributes = std::move(requiredAttributes);
    k.checksumAttribute = std::move(checksumAttribute);
    return k;
}

// Of the reservation only its parts matter here; the caller decodes the committed resource.
struct ReservationAttributes {
    std::optional<QList<ASCUploadOperation>> uploadOperations;
    static ReservationAttributes fromJson(const JsonReader& r) {
        return ReservationAttributes{ASCUploadOperation::listFromAttributes(r)};
    }
};

QString changedText() {
    return u"Die Datei hat sich während des Hochladens verändert; bitte erneut versuchen."_s;
}

struct FileDigest {
    QString hex;
    // Set when the file could not be read to the end.
    std::optional<QString> error;
};

// Runs on a worker thread: a pure function of the path, with its own handle on the file. Hashes
// the `size` bytes that were reserved and sent; a file of another size by now has changed.
FileDigest md5OfFile(const QString& path, qint64 size) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return FileDigest{{}, file.errorString()};
    }
    QCryptographicHash hash(QCryptographicHash::Md5);
    QByteArray chunk(qsizetype(1) << 20, Qt::Uninitialized);
    for (qint64 left = size; left > 0;) {
        const qint64 read = file.read(chunk.data(), std::min<qint64>(left, chunk.size()));
        if (read <= 0) {
            return FileDigest{{}, file.error() == QFileDevice::NoError ? changedText() : file.errorString()};
        }
        hash.addData(QByteArrayView(chunk.constData(), read));
        left -= read;
    }
    if (file.size() != size) {
        return FileDigest{{}, changedText()};
    }
    return FileDigest{QString::fromLatin1(hash.result().toHex()), std::nullopt};
}

QString quoted(const QString& fileName) {
    return u"„"_s + fileName + u"“"_s;
}

VelmoraAPIError unreadable(const QString& fileName, const QString& reason) {
    return VelmoraAPIError::uploadFailed(quoted(fileName) + u" lässt sich nicht lesen: "_s + reason);
}

// RFC 9110 token characters.
bool isMethodToken(const QString& method) {
    if (method.isEmpty()) {
        return false;
    }
    return std::all_of(method.cbegin(), method.cend(), [](QChar c) {
        return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9') ||
               u"!#$%&'*+-.^_`|~"_s.contains(c);
    });
}

bool isStorageUrl(const std::optional<QString>& text) {
    if (!text) {
        return false;
    }
    const QUrl url(*text, QUrl::StrictMode);
    const QString scheme = url.scheme().toLower();
    return url.isValid() && (scheme == u"https"_s || scheme == u"http"_s) && !url.host().isEmpty();
}

// Why the operations cannot carry a file of `size` bytes, or nothing when they can. The ranges
// follow the client's reading of an operation: offset 0 and the rest of the file when absent,
// a length beyond the end cut at the end. Together they must cover the file exactly once, or
// Apple would assemble a different file than the one whose checksum goes with the commit.
std::optional<QString> whyUnusable(const QList<ASCUploadOperation>& operations, qint64 size) {
    struct Range {
        qsizetype number;
        qint64 offset;
        qint64 end;
    };
    const auto part = [n = operations.size()](qsizetype number) {
        return u"Teil %1 von %2"_s.arg(number).arg(n);
    };
    QList<Range> ranges;
    for (qsizetype i = 0; i < operations.size(); ++i) {
        const ASCUploadOperation& operation = operations.at(i);
        if (!isStorageUrl(operation.url)) {
            return part(i + 1) + u" hat keine gültige Adresse"_s;
        }
        if (operation.method && !isMethodToken(*operation.method)) {
            return part(i + 1) + u" nennt keine gültige HTTP-Methode"_s;
        }
        const qint64 offset = operation.offset.value_or(0);
        if (offset < 0) {
            return part(i + 1) + u" beginnt vor dem Anfang der Datei"_s;
        }
        if (operation.length && *operation.length <= 0) {
            return part(i + 1) + u" hat keine Länge"_s;
        }
        if (offset >= size) {
            return part(i + 1) +
                   u" beginnt bei Byte %1, die Datei hat aber nur %2 Bytes"_s.arg(offset).arg(size);
        }
        const qint64 length = operation.length.value_or(size - offset);
        ranges.append({i + 1, offset, offset + std::min(length, size - offset)});
    }
    std::stable_sort(ranges.begin(), ranges.end(),
                     [](const Range& a, const Range& b) { return a.offset < b.offset; });
    const auto gap = [](qint64 from, qint64 to) {
        return u"%1 Bytes ab Byte %2 gehören zu keinem Teil"_s.arg(to - from).arg(from);
    };
    // Sorted by offset, each range must start where the ones before it end.
    qint64 covered = 0;
    for (qsizetype i = 0; i < ranges.size(); ++i) {
        const Range& range = ranges.at(i);
        if (range.offset < covered) {
            const qsizetype a = std::min(range.number, ranges.at(i - 1).number);
            const qsizetype b = std::max(range.number, ranges.at(i - 1).number);
            return u"Teil %1 und Teil %2 überschneiden sich"_s.arg(a).arg(b);
        }
        if (range.offset > covered) {
            return gap(covered, range.offset);
        }
        covered = range.end;
    }
    if (covered < size) {
        return gap(covered, size);
    }
    return std::nullopt;
}

QByteArray reservationBody(const AssetUpload& upload, const QString& fileName, qint64 fileSize) {
    QJsonObject attributes = upload.attributes;
    attributes.insert(u"fileSize"_s, fileSize);
    attributes.insert(u"fileName"_s, fileName);
    const QJsonObject linkage{{u"type"_s, upload.kind.parentType}, {u"id"_s, upload.parentID}};
    const QJsonObject data{{u"type"_s, upload.kind.resourceType},
                           {u"attributes"_s, attributes},
                           {u"relationships"_s, QJsonObject{{upload.kind.parentRelationship,
                                                             QJsonObject{{u"data"_s, linkage}}}}}};
    return QJsonDocument(QJsonObject{{u"data"_s, data}}).toJson(QJsonDocument::Compact);
}

QByteArray commitBody(const AssetUploadKind& kind, const QString& id,
                      const std::optional<QString>& checksum) {
    QJsonObject attributes{{u"uploaded"_s, true}};
    if (kind.checksumAttribute && checksum) {
        attributes.insert(*kind.checksumAttribute, *checksum);
    }
    const QJsonObject data{{u"type"_s, kind.resourceType}, {u"id"_s, id}, {u"attributes"_s, attributes}};
    return QJsonDocument(QJsonObject{{u"data"_s, data}}).toJson(QJsonDocument::Compact);
}

} // namespace

AssetUploadKind AssetUploadKind::reviewAttachment() {
    return declare(u"appStoreReviewAttachments"_s, u"appStoreReviewDetail"_s, u"appStoreReviewDetails"_s);
}

AssetUploadKind AssetUploadKind::appScreenshot() {
    return declare(u"appScreenshots"_s, u"appScreenshotSet"_s, u"appScreenshotSets"_s);
}

AssetUploadKind AssetUploadKind::appPreview() {
    return declare(u"appPreviews"_s, u"appPreviewSet"_s, u"appPreviewSets"_s);
}

AssetUploadKind AssetUploadKind::inAppPurchaseReviewScreenshot() {
    return declare(u"inAppPurchaseAppStoreReviewScreenshots"_s, u"inAppPurchaseV2"_s, u"inAppPurchases"_s);
}

AssetUploadKind AssetUploadKind::subscriptionReviewScreenshot() {
    return declare(u"subscriptionAppStoreReviewScreenshots"_s, u"subscription"_s, u"subscriptions"_s);
}

AssetUploadKind AssetUploadKind::appEventScreenshot() {
    return declare(u"appEventScreenshots"_s, u"appEventLocalization"_s, u"appEventLocalizations"_s,
                   {u"appEventAssetType"_s}, std::nullopt);
}

AssetUploadKind AssetUploadKind::appEventVideoClip() {
    return declare(u"appEventVideoClips"_s, u"appEventLocalization"_s, u"appEventLocalizations"_s,
                   {u"appEventAssetType"_s}, std::nullopt);
}

QCoro::Task<AssetUploader::PendingCommit>
AssetUploader::transfer(std::shared_ptr<AppStoreConnectClient> client, AssetUpload upload) {
    const AssetUploadKind& kind = upload.kind;
    const QString fileName = QFileInfo(upload.filePath).fileName();
    for (const QString& attribute : kind.requiredAttributes) {
        if (!upload.attributes.contains(attribute)) {
            throw VelmoraAPIError::uploadFailed(u"Für "_s + quoted(fileName) + u" fehlt die Angabe "_s +
                                                attribute + u"; es wurde nichts gesendet."_s);
        }
    }

    // The file stays open in this frame until the last part is sent; each part is read when it
    // goes out, so that one part at a time is in memory and a file that shrinks meanwhile is an
    // error rather than a crash (a mapping would fault on the missing pages).
    QFile file(upload.filePath);
    if (!file.open(QIODevice::ReadOnly)) {
        throw unreadable(fileName, file.errorString());
    }
    const qint64 size = file.size();
    if (size <= 0) {
        throw VelmoraAPIError::uploadFailed(quoted(fileName) +
                                            u" ist leer; Apple nimmt keine leeren Dateien an."_s);
    }
    std::optional<QFuture<FileDigest>> digest;
    if (kind.checksumAttribute) {
        digest = QtConcurrent::run(md5OfFile, upload.filePath, size);
    }

    const QByteArray body = reservationBody(upload, fileName, size);
    auto reserve = Endpoint<Returns::One<ReservationAttributes>>::post(kind.reservationPath, body);
    const auto reservation = co_await client->call(std::move(reserve));
    const QList<ASCUploadOperation> operations =
        reservation.attributes
            ? reservation.attributes->uploadOperations.value_or(QList<ASCUploadOperation>{})
            : QList<ASCUploadOperation>{};
    if (operations.isEmpty()) {
        throw VelmoraAPIError::uploadFailed(u"Apple hat für "_s + quoted(fileName) +
                                            u" keine Upload-Adresse zurückgegeben."_s);
    }
    if (const auto reason = whyUnusable(operations, size)) {
        throw VelmoraAPIError::uploadFailed(u"Apple hat für "_s + quoted(fileName) +
                                            u" unbrauchbare Upload-Anweisungen zurückgegeben: "_s + *reason +
                                            u". Es wurde nichts hochgeladen."_s);
    }

    for (qsizetype i = 0; i < operations.size(); ++i) {
        ASCUploadOperation operation = operations.at(i);
        const qint64 offset = operation.offset.value_or(0);
        const qint64 length = std::min(operation.length.value_or(size - offset), size - offset);
        QByteArray part(length, Qt::Uninitialized);
        if (!file.seek(offset) || file.read(part.data(), length) != length) {
            throw unreadable(fileName, changedText());
        }
        operation.offset = 0;
        operation.length = length;
        co_await client->performUploadOperation(operation, part);
        if (upload.progress) {
            upload.progress(double(i + 1) / double(operations.size()));
        }
    }

    std::optional<QString> checksum;
    if (digest) {
        const FileDigest result = co_await *digest;
        if (result.error) {
            throw unreadable(fileName, *result.error);
        }
        checksum = result.hex;
    }
    // The hash may have finished before the file grew; what Apple holds must be the whole file.
    if (file.size() != size) {
        throw unreadable(fileName, changedText());
    }
    co_return PendingCommit{kind.reservationPath + apiPath({reservation.id}),
                            commitBody(kind, reservation.id, checksum)};
}
