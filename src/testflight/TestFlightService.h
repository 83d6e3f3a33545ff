#pragma once

#include "api/TimedCache.h"
#include "testflight/ManagedBetaAppLocalization.h"
#include "testflight/ManagedBetaBuildLocalization.h"
#include "testflight/ManagedBetaFeedback.h"
#include "testflight/ManagedBetaGroup.h"
#include "testflight/ManagedBetaReviewSubmission.h"
#include "testflight/ManagedBetaTester.h"
#include "testflight/ManagedBetaUsage.h"
#include "testflight/ManagedBuildBetaDetail.h"
#include "testflight/TestFlightRequestBodies.h"
#include "wire/APIRequest.h"

#include <QCoro/QCoroTask>
#include <QHash>
#include <QSet>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>

class AppStoreConnectClient;
class Clock;

// What became of one tester sent to a group.
enum class BetaTesterHandover {
    Added,
    // Apple already had the address in the group (it answers 409); nothing changed, and the
    // tester counts as handed over all the same.
    AlreadyThere,
};

// The beta details of many builds: what came, and for each build that failed, the error's text.
struct BuildBetaDetails {
    QHash<QString, ManagedBuildBetaDetail> details;
    QHash<QString, QString> errors;
};

// Everything of TestFlight that the API offers: groups, testers, builds in groups and their beta
// state, test notes, the app's beta texts, beta review, usage and feedback. Every call takes the
// client of the account it acts for. Groups per app and testers per group are kept a minute in
// memory; nothing else is kept. Errors of the client go up unchanged, except where a 404 means
// "there is none".
class TestFlightService {
public:
    static constexpr int cacheTTL = 60;
    static constexpr int pageLimit = 200;
    static constexpr int maxPages = 20;
    static constexpr int localizationLimit = 50;
    static constexpr int usageLimit = 50;
    // How many testers the import flow hands to importTesters at a time.
    static constexpr int importChunkSize = 1000;
    // Beta details of many builds: requests under way at once.
    static constexpr int maxDetailsInFlight = 3;

    explicit TestFlightService(std::shared_ptr<Clock> clock);

    // By name, in plain text order.
    QCoro::Task<QList<ManagedBetaGroup>> groups(QString appID, std::shared_ptr<AppStoreConnectClient> client,
                                                bool forceRefresh);
    // By display name, in plain text order.
    QCoro::Task<QList<ManagedBetaTester>>
    testers(QString groupID, std::shared_ptr<AppStoreConnectClient> client, bool forceRefresh);
    QCoro::Task<> removeTester(QString testerID, QString groupID,
                               std::shared_ptr<AppStoreConnectClient> client);
    QCoro::Task<> deleteGroup(QString groupID, QString appID, std::shared_ptr<AppStoreConnectClient> client);
    // Both return what Apple saved and drop the app's groups, so that a screen opened next shows
    // the new state rather than the minute-old list.
    QCoro::Task<ManagedBetaGroup> createGroup(BetaGroupCreateRequestBody body,
                                              std::shared_ptr<AppStoreConnectClient> client);
    QCoro::Task<ManagedBetaGroup> updateGroup(BetaGroupUpdateRequestBody body, QString appID,
                                              std::shared_ptr<AppStoreConnectClient> client);

    // One tester into one group. Leaves the cached testers alone: the caller reloads.
    QCoro::Task<BetaTesterHandover> addTester(NewBetaTester tester, QString groupID,
                                              std::shared_ptr<AppStoreConnectClient> client,
                                              RequestPriority priority = RequestPriority::Interactive);
    // A chunk of an import: one tester after the other, each awaited, in the background so that
    // the governor keeps budget for the user. Before each tester `isCancelled` is asked; after
    // each `progress` gets the number handed over so far. Returns that number; an empty chunk
    // sends nothing. A failure raises the client's error at once, the rest is not sent and the
    // cached testers stay (those before remain with Apple; `progress` has told how many).
    QCoro::Task<int> importTesters(QList<NewBetaTester> testers, QString groupID,
                                   std::shared_ptr<AppStoreConnectClient> client,
                                   std::function<bool()> isCancelled = {},
                                   std::function<void(int handedOver)> progress = {});
    QCoro::Task<> resendInvitation(QString testerID, QString appID,
                                   std::shared_ptr<AppStoreConnectClient> client);

    // Sorted by locale.
    QCoro::Task<QList<ManagedBetaBuildLocalization>>
    buildLocalizations(QString buildID, std::shared_ptr<AppStoreConnectClient> client);
    // A PATCH when the language has an id, else a POST; returns what Apple saved.
    QCoro::Task<ManagedBetaBuildLocalization>
    saveBuildLocalization(ManagedBetaBuildLocalization localization, QString buildID,
                          std::shared_ptr<AppStoreConnectClient> client);
    QCoro::Task<QList<ManagedBetaAppLocalization>>
    appLocalizations(QString appID, std::shared_ptr<AppStoreConnectClient> client);
    QCoro::Task<ManagedBetaAppLocalization>
    saveAppLocalization(ManagedBetaAppLocalization localization, QString appID,
                        std::shared_ptr<AppStoreConnectClient> client);

    // Absent when the build was never submitted.
    QCoro::Task<std::optional<ManagedBetaReviewSubmission>>
    betaReviewSubmission(QString buildID, std::shared_ptr<AppStoreConnectClient> client);
    QCoro::Task<ManagedBetaReviewSubmission>
    submitForBetaReview(QString buildID, std::shared_ptr<AppStoreConnectClient> client);

    // Screenshots and crashes, both asked for at once with the same limit, merged newest first.
    QCoro::Task<QList<ManagedBetaFeedback>> feedback(QString appID, int limit,
                                                     std::shared_ptr<AppStoreConnectClient> client);
    // Absent when Apple holds no log for the crash.
    QCoro::Task<std::optional<ManagedBetaCrashLog>> crashLog(QString feedbackID,
                                                             std::shared_ptr<AppStoreConnectClient> client);

    // Apple measures usage per build.
    QCoro::Task<ManagedBetaUsage> usage(QString buildID, std::shared_ptr<AppStoreConnectClient> client);

    QCoro::Task<ManagedBuildBetaDetail> buildBetaDetail(QString buildID,
                                                        std::shared_ptr<AppStoreConnectClient> client);
    // The details of many builds, at most maxDetailsInFlight requests at once. `onDetail` gets each
    // detail as it comes, so that a list can fill while the rest are under way; it must check
    // that its receiver still lives. A build whose request failed is left out with its error.
    QCoro::Task<BuildBetaDetails> buildBetaDetails(
        QStringList buildIDs, std::shared_ptr<AppStoreConnectClient> client,
        std::function<void(const QString& buildID, const ManagedBuildBetaDetail&)> onDetail = {});

    QCoro::Task<QSet<QString>> buildIDs(QString groupID, std::shared_ptr<AppStoreConnectClient> client);
    QCoro::Task<> assignBuild(QString buildID, QString groupID,
                              std::shared_ptr<AppStoreConnectClient> client);
    QCoro::Task<> unassignBuild(QString buildID, QString groupID,
                                std::shared_ptr<AppStoreConnectClient> client);

private:
    TimedCache<QList<ManagedBetaGroup>> m_groupsCache;
    TimedCache<QList<ManagedBetaTester>> m_testersCache;
};
