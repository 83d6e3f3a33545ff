#include "release/ReleaseEndpoints.h"

using namespace Qt::StringLiterals;

namespace ReleaseEndpoints {

namespace {
QList<QueryItem> limited(int limit) {
    return {{u"limit"_s, QString::number(limit)}};
}
} // namespace

Endpoint<Returns::AllPages<ASCAppStoreVersionAttributes>> versionsOfApp(const QString& appID, int pageLimit,
                                                                        int maxPages) {
    return Endpoint<Returns::AllPages<ASCAppStoreVersionAttributes>>::get(
        apiPath({u"v1", u"apps", appID, u"appStoreVersions"}), limited(pageLimit), maxPages);
}

Endpoint<Version> createVersion(const AppStoreVersionCreateRequestBody& body) {
    return Endpoint<Version>::post(u"/v1/appStoreVersions"_s, body.encoded());
}

Endpoint<Version> updateVersion(const AppStoreVersionUpdateRequestBody& body) {
    return Endpoint<Version>::patch(apiPath({u"v1", u"appStoreVersions", body.id}), body.encoded());
}

Endpoint<Returns::Nothing> deleteVersion(const QString& versionID) {
    return Endpoint<Returns::Nothing>::remove(apiPath({u"v1", u"appStoreVersions", versionID}));
}

Endpoint<Returns::MaybeOne<ASCBuildAttributes>> buildOfVersion(const QString& versionID) {
    return Endpoint<Returns::MaybeOne<ASCBuildAttributes>>::get(
        apiPath({u"v1", u"appStoreVersions", versionID, u"build"}));
}

Endpoint<Returns::Nothing> setBuildOfVersion(const QString& versionID,
                                             const AppStoreVersionBuildLinkageRequestBody& body) {
    return Endpoint<Returns::Nothing>::patch(
        apiPath({u"v1", u"appStoreVersions", versionID, u"relationships", u"build"}), body.encoded());
}

Endpoint<Returns::Nothing> releaseVersion(const AppStoreVersionReleaseRequestBody& body) {
    return Endpoint<Returns::Nothing>::post(u"/v1/appStoreVersionReleaseRequests"_s, body.encoded());
}

Endpoint<Returns::MaybeOne<ASCPhasedReleaseAttributes>> phasedReleaseOfVersion(const QString& versionID) {
    return Endpoint<Returns::MaybeOne<ASCPhasedReleaseAttributes>>::get(
        apiPath({u"v1", u"appStoreVersions", versionID, u"appStoreVersionPhasedRelease"}));
}

Endpoint<PhasedRelease> createPhasedRelease(const PhasedReleaseCreateRequestBody& body) {
    return Endpoint<PhasedRelease>::post(u"/v1/appStoreVersionPhasedReleases"_s, body.encoded());
}

Endpoint<PhasedRelease> updatePhasedRelease(const PhasedReleaseUpdateRequestBody& body) {
    return Endpoint<PhasedRelease>::patch(apiPath({u"v1", u"appStoreVersionPhasedReleases", body.id}),
                                          body.encoded());
}

Endpoint<Returns::Nothing> deletePhasedRelease(const QString& phasedReleaseID) {
    return Endpoint<Returns::Nothing>::remove(
        apiPath({u"v1", u"appStoreVersionPhasedReleases", phasedReleaseID}));
}

Endpoint<Returns::AllPages<ASCBuildAttributes>> buildsOfApp(const QString& appID, int pageLimit,
                                                            int maxPages) {
    return Endpoint<Returns::AllPages<ASCBuildAttributes>>::get(apiPath({u"v1", u"apps", appID, u"builds"}),
                                                                limited(pageLimit), maxPages);
}

Endpoint<Returns::MaybeOne<ASCAppStoreReviewDetailAttributes>>
reviewDetailOfVersion(const QString& versionID) {
    return Endpoint<Returns::MaybeOne<ASCAppStoreReviewDetailAttributes>>::get(
        apiPath({u"v1", u"appStoreVersions", versionID, u"appStoreReviewDetail"}));
}

Endpoint<ReviewDetail> createReviewDetail(const AppStoreReviewDetailCreateRequestBody& body) {
    return Endpoint<ReviewDetail>::post(u"/v1/appStoreReviewDetails"_s, body.encoded());
}

Endpoint<ReviewDetail> updateReviewDetail(const AppStoreReviewDetailUpdateRequestBody& body) {
    return Endpoint<ReviewDetail>::patch(apiPath({u"v1", u"appStoreReviewDetails", body.id}), body.encoded());
}

Endpoint<Returns::Page<ASCAppStoreReviewAttachmentAttributes>>
attachmentsOfReviewDetail(const QString& reviewDetailID, int limit) {
    return Endpoint<Returns::Page<ASCAppStoreReviewAttachmentAttributes>>::get(
        apiPath({u"v1", u"appStoreReviewDetails", reviewDetailID, u"appStoreReviewAttachments"}),
        limited(limit));
}

Endpoint<Returns::Nothing> deleteAttachment(const QString& attachmentID) {
    return Endpoint<Returns::Nothing>::remove(apiPath({u"v1", u"appStoreReviewAttachments", attachmentID}));
}

Endpoint<Returns::Page<ASCReviewSubmissionAttributes>> submissionsOfApp(const QString& appID, int limit) {
    return Endpoint<Returns::Page<ASCReviewSubmissionAttributes>>::get(
        apiPath({u"v1", u"apps", appID, u"reviewSubmissions"}), limited(limit));
}

Endpoint<Returns::Page<ASCReviewSubmissionItemAttributes>> itemsOfSubmission(const QString& submissionID,
                                                                             int limit) {
    QList<QueryItem> query = limited(limit);
    query.append({u"include"_s, u"appStoreVersion"_s});
    return Endpoint<Returns::Page<ASCReviewSubmissionItemAttributes>>::get(
        apiPath({u"v1", u"reviewSubmissions", submissionID, u"items"}), std::move(query));
}

Endpoint<Submission> createSubmission(const ReviewSubmissionCreateRequestBody& body) {
    return Endpoint<Submission>::post(u"/v1/reviewSubmissions"_s, body.encoded());
}

Endpoint<Returns::Nothing> addSubmissionItem(const ReviewSubmissionItemCreateRequestBody& body) {
    return Endpoint<Returns::Nothing>::post(u"/v1/reviewSubmissionItems"_s, body.encoded());
}

Endpoint<Submission> updateSubmission(const ReviewSubmissionUpdateRequestBody& body) {
    return Endpoint<Submission>::patch(apiPath({u"v1", u"reviewSubmissions", body.id}), body.encoded());
}

Endpoint<Returns::Nothing> removeSubmissionItem(const QString& itemID) {
    return Endpoint<Returns::Nothing>::remove(apiPath({u"v1", u"reviewSubmissionItems", itemID}));
}

} // namespace ReleaseEndpoints
