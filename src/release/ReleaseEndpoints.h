#pragma once

#include "api/Endpoint.h"
#include "release/ManagedAppReviewDetail.h"
#include "release/ManagedPhasedRelease.h"
#include "release/ManagedReviewAttachment.h"
#include "release/ManagedReviewSubmission.h"
#include "release/ReleaseRequestBodies.h"
#include "release/VelmoraVersion.h"
#include "testflight/ManagedBuild.h"

// Every request of versions, builds, review details and review submissions.
namespace ReleaseEndpoints {

using Version = Returns::One<ASCAppStoreVersionAttributes>;
using PhasedRelease = Returns::One<ASCPhasedReleaseAttributes>;
using ReviewDetail = Returns::One<ASCAppStoreReviewDetailAttributes>;
using Submission = Returns::One<ASCReviewSubmissionAttributes>;

Endpoint<Returns::AllPages<ASCAppStoreVersionAttributes>> versionsOfApp(const QString& appID, int pageLimit,
                                                                        int maxPages);
Endpoint<Version> createVersion(const AppStoreVersionCreateRequestBody& body);
Endpoint<Version> updateVersion(const AppStoreVersionUpdateRequestBody& body);
Endpoint<Returns::Nothing> deleteVersion(const QString& versionID);
Endpoint<Returns::MaybeOne<ASCBuildAttributes>> buildOfVersion(const QString& versionID);
Endpoint<Returns::Nothing> setBuildOfVersion(const QString& versionID,
                                             const AppStoreVersionBuildLinkageRequestBody& body);
Endpoint<Returns::Nothing> releaseVersion(const AppStoreVersionReleaseRequestBody& body);

Endpoint<Returns::MaybeOne<ASCPhasedReleaseAttributes>> phasedReleaseOfVersion(const QString& versionID);
Endpoint<PhasedRelease> createPhasedRelease(const PhasedReleaseCreateRequestBody& body);
Endpoint<PhasedRelease> updatePhasedRelease(const PhasedReleaseUpdateRequestBody& body);
Endpoint<Returns::Nothing> deletePhasedRelease(const QString& phasedReleaseID);

Endpoint<Returns::AllPages<ASCBuildAttributes>> buildsOfApp(const QString& appID, int pageLimit,
                                                            int maxPages);

Endpoint<Returns::MaybeOne<ASCAppStoreReviewDetailAttributes>>
reviewDetailOfVersion(const QString& versionID);
Endpoint<ReviewDetail> createReviewDetail(const AppStoreReviewDetailCreateRequestBody& body);
Endpoint<ReviewDetail> updateReviewDetail(const AppStoreReviewDetailUpdateRequestBody& body);
Endpoint<Returns::Page<ASCAppStoreReviewAttachmentAttributes>>
attachmentsOfReviewDetail(const QString& reviewDetailID, int limit);
Endpoint<Returns::Nothing> deleteAttachment(const QString& attachmentID);

Endpoint<Returns::Page<ASCReviewSubmissionAttributes>> submissionsOfApp(const QString& appID, int limit);
// With the version each item refers to, which Apple leaves out without the include.
Endpoint<Returns::Page<ASCReviewSubmissionItemAttributes>> itemsOfSubmission(const QString& submissionID,
                                                                             int limit);
Endpoint<Submission> createSubmission(const ReviewSubmissionCreateRequestBody& body);
Endpoint<Returns::Nothing> addSubmissionItem(const ReviewSubmissionItemCreateRequestBody& body);
Endpoint<Submission> updateSubmission(const ReviewSubmissionUpdateRequestBody& body);
Endpoint<Returns::Nothing> removeSubmissionItem(const QString& itemID);

} // namespace ReleaseEndpoints
