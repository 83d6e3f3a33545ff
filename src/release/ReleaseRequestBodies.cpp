#include "release/ReleaseRequestBodies.h"

#include "wire/JSONAPI.h"

#include <QJsonDocument>

using namespace Qt::StringLiterals;

namespace {

QJsonObject toOne(const QString& type, const QString& id) {
    return QJsonObject{{u"data"_s, JSONAPILinkage{type, id}.toJson()}};
}

QJsonObject document(const QJsonObject& data) {
    return QJsonObject{{u"data"_s, data}};
}

QByteArray bytes(const QJsonObject& object) {
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

QJsonObject reviewDetailAttributes(const ManagedAppReviewDetail& d, bool blankAsNull) {
    QJsonObject attributes;
    const auto put = [&](const QString& key, const QString& text) {
        if (!text.trimmed().isEmpty()) {
            attributes.insert(key, text);
        } else if (blankAsNull) {
            attributes.insert(key, QJsonValue(QJsonValue::Null));
        }
    };
    put(u"contactFirstName"_s, d.contactFirstName);
    put(u"contactLastName"_s, d.contactLastName);
    put(u"contactPhone"_s, d.contactPhone);
    put(u"contactEmail"_s, d.contactEmail);
    put(u"demoAccountName"_s, d.demoAccountName);
    put(u"demoAccountPassword"_s, d.demoAccountPassword);
    attributes.insert(u"demoAccountRequired"_s, d.demoAccountRequired);
    put(u"notes"_s, d.notes);
    return attributes;
}

} // namespace

QJsonObject AppStoreVersionCreateRequestBody::toJson() const {
    QJsonObject attributes{{u"versionString"_s, versionString}, {u"platform"_s, platform.raw()}};
    if (auto text = nilIfBlank(copyright)) {
        attributes.insert(u"copyright"_s, *text);
    }
    return document(QJsonObject{{u"type"_s, u"appStoreVersions"_s},
                                {u"attributes"_s, attributes},
                                {u"relationships"_s, QJsonObject{{u"app"_s, toOne(u"apps"_s, appID)}}}});
}

QJsonObject AppStoreVersionUpdateRequestBody::toJson() const {
    QJsonObject attributes;
    if (versionString) {
        attributes.insert(u"versionString"_s, *versionString);
    }
    copyright.writeTo(attributes, u"copyright"_s);
    if (releaseType) {
        attributes.insert(u"releaseType"_s, ASCReleaseTypes::rawValue(*releaseType));
    }
    if (earliestReleaseDate) {
        attributes.insert(u"earliestReleaseDate"_s, ASCDateFormatting::encodePlain(*earliestReleaseDate));
    }
    return document(
        QJsonObject{{u"type"_s, u"appStoreVersions"_s}, {u"id"_s, id}, {u"attributes"_s, attributes}});
}

QJsonObject AppStoreVersionBuildLinkageRequestBody::toJson() const {
    if (!buildID) {
        return QJsonObject{{u"data"_s, QJsonValue(QJsonValue::Null)}};
    }
    return toOne(u"builds"_s, *buildID);
}

QJsonObject AppStoreVersionReleaseRequestBody::toJson() const {
    return document(QJsonObject{
        {u"type"_s, u"appStoreVersionReleaseRequests"_s},
        {u"relationships"_s, QJsonObject{{u"appStoreVersion"_s, toOne(u"appStoreVersions"_s, versionID)}}}});
}

QJsonObject PhasedReleaseCreateRequestBody::toJson() const {
    QJsonObject data{
        {u"type"_s, u"appStoreVersionPhasedReleases"_s},
        {u"relationships"_s, QJsonObject{{u"appStoreVersion"_s, toOne(u"appStoreVersions"_s, versionID)}}}};
    if (phasedReleaseState) {
        data.insert(u"attributes"_s, QJsonObject{{u"phasedReleaseState"_s, phasedReleaseState->raw()}});
    }
    return document(data);
}

QJsonObject PhasedReleaseUpdateRequestBody::toJson() const {
    return document(
        QJsonObject{{u"type"_s, u"appStoreVersionPhasedReleases"_s},
                    {u"id"_s, id},
                    {u"attributes"_s, QJsonObject{{u"phasedReleaseState"_s, phasedReleaseState.raw()}}}});
}

QJsonObject ReviewSubmissionCreateRequestBody::toJson() const {
    return document(QJsonObject{{u"type"_s, u"reviewSubmissions"_s},
                                {u"attributes"_s, QJsonObject{{u"platform"_s, platform.raw()}}},
                                {u"relationships"_s, QJsonObject{{u"app"_s, toOne(u"apps"_s, appID)}}}});
}

QJsonObject ReviewSubmissionItemCreateRequestBody::toJson() const {
    return document(QJsonObject{
        {u"type"_s, u"reviewSubmissionItems"_s},
        {u"relationships"_s, QJsonObject{{u"reviewSubmission"_s, toOne(u"reviewSubmissions"_s, submissionID)},
                                         {u"appStoreVersion"_s, toOne(u"appStoreVersions"_s, versionID)}}}});
}

QJsonObject ReviewSubmissionUpdateRequestBody::toJson() const {
    QJsonObject attributes;
    if (submitted) {
        attributes.insert(u"submitted"_s, *submitted);
    }
    if (canceled) {
        attributes.insert(u"canceled"_s, *canceled);
    }
    return document(
        QJsonObject{{u"type"_s, u"reviewSubmissions"_s}, {u"id"_s, id}, {u"attributes"_s, attributes}});
}

QJsonObject AppStoreReviewDetailCreateRequestBody::toJson() const {
    return document(QJsonObject{
        {u"type"_s, u"appStoreReviewDetails"_s},
        {u"attributes"_s, reviewDetailAttributes(detail, false)},
        {u"relationships"_s, QJsonObject{{u"appStoreVersion"_s, toOne(u"appStoreVersions"_s, versionID)}}}});
}

QJsonObject AppStoreReviewDetailUpdateRequestBody::toJson() const {
    return document(QJsonObject{{u"type"_s, u"appStoreReviewDetails"_s},
                                {u"id"_s, id},
                                {u"attributes"_s, reviewDetailAttributes(detail, true)}});
}

#define VARNIS_ENCODED(Type)                                                                                 \
    QByteArray Type::encoded() const {                                                                       \
        return bytes(toJson());                                                                              \
    }
VARNIS_ENCODED(AppStoreVersionCreateRequestBody)
VARNIS_ENCODED(AppStoreVersionUpdateRequestBody)
VARNIS_ENCODED(AppStoreVersionBuildLinkageRequestBody)
VARNIS_ENCODED(AppStoreVersionReleaseRequestBody)
VARNIS_ENCODED(PhasedReleaseCreateRequestBody)
VARNIS_ENCODED(PhasedReleaseUpdateRequestBody)
VARNIS_ENCODED(ReviewSubmissionCreateRequestBody)
VARNIS_ENCODED(ReviewSubmissionItemCreateRequestBody)
VARNIS_ENCODED(ReviewSubmissionUpdateRequestBody)
VARNIS_ENCODED(AppStoreReviewDetailCreateRequestBody)
VARNIS_ENCODED(AppStoreReviewDetailUpdateRequestBody)
#undef VARNIS_ENCODED
