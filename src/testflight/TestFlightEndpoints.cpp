#include "testflight/TestFlightEndpoints.h"

using namespace Qt::StringLiterals;

namespace TestFlightEndpoints {

namespace {
QList<QueryItem> limited(int limit) {
    return {{u"limit"_s, QString::number(limit)}};
}

QList<QueryItem> newestFirst(int limit) {
    return {{u"limit"_s, QString::number(limit)}, {u"sort"_s, u"-createdDate"_s}};
}

// DELETE of members of a relationship names them in its body.
Endpoint<Returns::Nothing> removeWithBody(QString path, QByteArray body) {
    return Endpoint<Returns::Nothing>::of(
        APIRequest::withBody(APIRequest::Method::Delete, std::move(path), std::move(body)));
}
} // namespace

Endpoint<Returns::AllPages<ASCBetaGroupAttributes>> groupsOfApp(const QString& appID, int pageLimit,
                                                                int maxPages) {
    return Endpoint<Returns::AllPages<ASCBetaGroupAttributes>>::get(
        apiPath({u"v1", u"apps", appID, u"betaGroups"}), limited(pageLimit), maxPages);
}

Endpoint<Group> createGroup(const BetaGroupCreateRequestBody& body) {
    return Endpoint<Group>::post(u"/v1/betaGroups"_s, body.encoded());
}

Endpoint<Group> updateGroup(const BetaGroupUpdateRequestBody& body) {
    return Endpoint<Group>::patch(apiPath({u"v1", u"betaGroups", body.id}), body.encoded());
}

Endpoint<Returns::Nothing> deleteGroup(const QString& groupID) {
    return Endpoint<Returns::Nothing>::remove(apiPath({u"v1", u"betaGroups", groupID}));
}

Endpoint<Returns::AllPages<ASCBetaTesterAttributes>> testersOfGroup(const QString& groupID, int pageLimit,
                                                                    int maxPages) {
    return Endpoint<Returns::AllPages<ASCBetaTesterAttributes>>::get(
        apiPath({u"v1", u"betaGroups", groupID, u"betaTesters"}), limited(pageLimit), maxPages);
}

Endpoint<Returns::One<ASCBetaTesterAttributes>> createTester(const BetaTesterCreateRequestBody& body) {
    return Endpoint<Returns::One<ASCBetaTesterAttributes>>::post(u"/v1/betaTesters"_s, body.encoded());
}

Endpoint<Returns::Nothing> removeTestersFromGroup(const QString& groupID,
                                                  const BetaTesterLinkagesRequestBody& body) {
    return removeWithBody(apiPath({u"v1", u"betaGroups", groupID, u"relationships", u"betaTesters"}),
                          body.encoded());
}

Endpoint<Returns::Nothing> inviteTester(const BetaTesterInvitationRequestBody& body) {
    return Endpoint<Returns::Nothing>::post(u"/v1/betaTesterInvitations"_s, body.encoded());
}

Endpoint<Returns::AllPages<IdentifierOnly>> buildsOfGroup(const QString& groupID, int pageLimit,
                                                          int maxPages) {
    return Endpoint<Returns::AllPages<IdentifierOnly>>::get(
        apiPath({u"v1", u"betaGroups", groupID, u"relationships", u"builds"}), limited(pageLimit), maxPages);
}

Endpoint<Returns::Nothing> addBuildsToGroup(const QString& groupID, const BuildLinkagesRequestBody& body) {
    return Endpoint<Returns::Nothing>::post(
        apiPath({u"v1", u"betaGroups", groupID, u"relationships", u"builds"}), body.encoded());
}

Endpoint<Returns::Nothing> removeBuildsFromGroup(const QString& groupID,
                                                 const BuildLinkagesRequestBody& body) {
    return removeWithBody(apiPath({u"v1", u"betaGroups", groupID, u"relationships", u"builds"}),
                          body.encoded());
}

Endpoint<Returns::One<ASCBuildBetaDetailAttributes>> betaDetailOfBuild(const QString& buildID) {
    return Endpoint<Returns::One<ASCBuildBetaDetailAttributes>>::get(
        apiPath({u"v1", u"builds", buildID, u"buildBetaDetail"}));
}

Endpoint<BetaUsageDocument> usageOfBuild(const QString& buildID, int limit) {
    return Endpoint<BetaUsageDocument>::get(
        apiPath({u"v1", u"builds", buildID, u"metrics", u"betaBuildUsages"}), limited(limit));
}

Endpoint<Returns::Page<ASCBetaBuildLocalizationAttributes>> localizationsOfBuild(const QString& buildID,
                                                                                 int limit) {
    return Endpoint<Returns::Page<ASCBetaBuildLocalizationAttributes>>::get(
        apiPath({u"v1", u"builds", buildID, u"betaBuildLocalizations"}), limited(limit));
}

Endpoint<BuildLocalization> createBuildLocalization(const BetaBuildLocalizationCreateRequestBody& body) {
    return Endpoint<BuildLocalization>::post(u"/v1/betaBuildLocalizations"_s, body.encoded());
}

Endpoint<BuildLocalization> updateBuildLocalization(const BetaBuildLocalizationUpdateRequestBody& body) {
    return Endpoint<BuildLocalization>::patch(apiPath({u"v1", u"betaBuildLocalizations", body.id}),
                                              body.encoded());
}

Endpoint<Returns::Page<ASCBetaAppLocalizationAttributes>> localizationsOfApp(const QString& appID,
                                                                             int limit) {
    return Endpoint<Returns::Page<ASCBetaAppLocalizationAttributes>>::get(
        apiPath({u"v1", u"apps", appID, u"betaAppLocalizations"}), limited(limit));
}

Endpoint<AppLocalization> createAppLocalization(const BetaAppLocalizationCreateRequestBody& body) {
    return Endpoint<AppLocalization>::post(u"/v1/betaAppLocalizations"_s, body.encoded());
}

Endpoint<AppLocalization> updateAppLocalization(const BetaAppLocalizationUpdateRequestBody& body) {
    return Endpoint<AppLocalization>::patch(apiPath({u"v1", u"betaAppLocalizations", body.id}),
                                            body.encoded());
}

Endpoint<Returns::MaybeOne<ASCBetaAppReviewSubmissionAttributes>>
betaReviewSubmissionOfBuild(const QString& buildID) {
    return Endpoint<Returns::MaybeOne<ASCBetaAppReviewSubmissionAttributes>>::get(
        apiPath({u"v1", u"builds", buildID, u"betaAppReviewSubmission"}));
}

Endpoint<Returns::One<ASCBetaAppReviewSubmissionAttributes>>
submitForBetaReview(const BetaAppReviewSubmissionRequestBody& body) {
    return Endpoint<Returns::One<ASCBetaAppReviewSubmissionAttributes>>::post(
        u"/v1/betaAppReviewSubmissions"_s, body.encoded());
}

Endpoint<Returns::Page<ASCBetaFeedbackAttributes>> screenshotFeedbackOfApp(const QString& appID, int limit) {
    return Endpoint<Returns::Page<ASCBetaFeedbackAttributes>>::get(
        apiPath({u"v1", u"apps", appID, u"betaFeedbackScreenshotSubmissions"}), newestFirst(limit));
}

Endpoint<Returns::Page<ASCBetaFeedbackAttributes>> crashFeedbackOfApp(const QString& appID, int limit) {
    return Endpoint<Returns::Page<ASCBetaFeedbackAttributes>>::get(
        apiPath({u"v1", u"apps", appID, u"betaFeedbackCrashSubmissions"}), newestFirst(limit));
}

Endpoint<Returns::MaybeOne<ASCCrashLogAttributes>> crashLogOfFeedback(const QString& feedbackID) {
    return Endpoint<Returns::MaybeOne<ASCCrashLogAttributes>>::get(
        apiPath({u"v1", u"betaFeedbackCrashSubmissions", feedbackID, u"crashLog"}));
}

} // namespace TestFlightEndpoints
