#pragma once

#include "api/Endpoint.h"
#include "testflight/ManagedBetaAppLocalization.h"
#include "testflight/ManagedBetaBuildLocalization.h"
#include "testflight/ManagedBetaFeedback.h"
#include "testflight/ManagedBetaGroup.h"
#include "testflight/ManagedBetaReviewSubmission.h"
#include "testflight/ManagedBetaTester.h"
#include "testflight/ManagedBetaUsage.h"
#include "testflight/ManagedBuildBetaDetail.h"
#include "testflight/TestFlightRequestBodies.h"

// The usage figures of a build: Apple's metrics document, summed.
struct BetaUsageDocument {
    using Value = ManagedBetaUsage;
};

namespace EndpointReturns {
template <> struct Decoder<BetaUsageDocument> {
    static ManagedBetaUsage decode(const QByteArray& body) {
        return ManagedBetaUsage::fromMetrics(ASCMetricsResponse::decode(body));
    }
};
} // namespace EndpointReturns

// Every request of groups, testers, builds in TestFlight, test notes, beta review, usage and
// feedback.
namespace TestFlightEndpoints {

// A linkage, the members of a relationship: type and id, nothing else.
struct IdentifierOnly {
    static IdentifierOnly fromJson(const JsonReader&) { return {}; }
};

using Group = Returns::One<ASCBetaGroupAttributes>;
using BuildLocalization = Returns::One<ASCBetaBuildLocalizationAttributes>;
using AppLocalization = Returns::One<ASCBetaAppLocalizationAttributes>;

Endpoint<Returns::AllPages<ASCBetaGroupAttributes>> groupsOfApp(const QString& appID, int pageLimit,
                                                                int maxPages);
Endpoint<Group> createGroup(const BetaGroupCreateRequestBody& body);
Endpoint<Group> updateGroup(const BetaGroupUpdateRequestBody& body);
Endpoint<Returns::Nothing> deleteGroup(const QString& groupID);

Endpoint<Returns::AllPages<ASCBetaTesterAttributes>> testersOfGroup(const QString& groupID, int pageLimit,
                                                                    int maxPages);
// A tester with the groups named in the body; Apple answers 409 when the address is already there.
Endpoint<Returns::One<ASCBetaTesterAttributes>> createTester(const BetaTesterCreateRequestBody& body);
Endpoint<Returns::Nothing> removeTestersFromGroup(const QString& groupID,
                                                  const BetaTesterLinkagesRequestBody& body);
Endpoint<Returns::Nothing> inviteTester(const BetaTesterInvitationRequestBody& body);

Endpoint<Returns::AllPages<IdentifierOnly>> buildsOfGroup(const QString& groupID, int pageLimit,
                                                          int maxPages);
Endpoint<Returns::Nothing> addBuildsToGroup(const QString& groupID, const BuildLinkagesRequestBody& body);
Endpoint<Returns::Nothing> removeBuildsFromGroup(const QString& groupID,
                                                 const BuildLinkagesRequestBody& body);

Endpoint<Returns::One<ASCBuildBetaDetailAttributes>> betaDetailOfBuild(const QString& buildID);
Endpoint<BetaUsageDocument> usageOfBuild(const QString& buildID, int limit);

Endpoint<Returns::Page<ASCBetaBuildLocalizationAttributes>> localizationsOfBuild(const QString& buildID,
                                                                                 int limit);
Endpoint<BuildLocalization> createBuildLocalization(const BetaBuildLocalizationCreateRequestBody& body);
Endpoint<BuildLocalization> updateBuildLocalization(const BetaBuildLocalizationUpdateRequestBody& body);

Endpoint<Returns::Page<ASCBetaAppLocalizationAttributes>> localizationsOfApp(const QString& appID, int limit);
Endpoint<AppLocalization> createAppLocalization(const BetaAppLocalizationCreateRequestBody& body);
Endpoint<AppLocalization> updateAppLocalization(const BetaAppLocalizationUpdateRequestBody& body);

// Apple answers 404 for a build that was never submitted.
Endpoint<Returns::MaybeOne<ASCBetaAppReviewSubmissionAttributes>>
betaReviewSubmissionOfBuild(const QString& buildID);
Endpoint<Returns::One<ASCBetaAppReviewSubmissionAttributes>>
submitForBetaReview(const BetaAppReviewSubmissionRequestBody& body);

// Newest first.
Endpoint<Returns::Page<ASCBetaFeedbackAttributes>> screenshotFeedbackOfApp(const QString& appID, int limit);
Endpoint<Returns::Page<ASCBetaFeedbackAttributes>> crashFeedbackOfApp(const QString& appID, int limit);
// Apple answers 404 when it holds no log for the crash.
Endpoint<Returns::MaybeOne<ASCCrashLogAttributes>> crashLogOfFeedback(const QString& feedbackID);

} // namespace TestFlightEndpoints
