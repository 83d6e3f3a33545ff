#include "testflight/TestFlightService.h"

#include "api/AppStoreConnectClient.h"
#include "platform/Clock.h"
#include "testflight/TestFlightEndpoints.h"

#include <exception>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

bool hasStatus(const VelmoraAPIError& error, int status) {
    return error.kind() == VelmoraAPIError::Kind::Http && error.status() == status;
}

// Free of the service, so that a read still running when its sibling failed touches nothing but
// its own frame.
QCoro::Task<QList<ManagedBetaFeedback>> fetchFeedback(ManagedBetaFeedback::Kind kind, QString appID,
                                                      int limit,
                                                      std::shared_ptr<AppStoreConnectClient> client) {
    auto endpoint = kind == ManagedBetaFeedback::Kind::Crash
                        ? TestFlightEndpoints::crashFeedbackOfApp(appID, limit)
                        : TestFlightEndpoints::screenshotFeedbackOfApp(appID, limit);
    const auto page = co_await client->call(std::move(endpoint));
    QList<ManagedBetaFeedback> items;
    items.reserve(page.data.size());
    for (const auto& resource : page.data) {
        items.append(ManagedBetaFeedback::fromResource(kind, resource.id, resource.attributes));
    }
    co_return items;
}

// The shared state of the workers that read beta details: the queue and what came back.
struct DetailRun {
    QStringList buildIDs;
    qsizetype next = 0;
    std::shared_ptr<AppStoreConnectClient> client;
    std::function<void(const QString&, const ManagedBuildBetaDetail&)> onDetail;
    BuildBetaDetails result;
};

// Takes the next build from the queue until none is left: as many requests are under way as
// there are workers.
QCoro::Task<> detailWorker(std::shared_ptr<DetailRun> run) {
    while (run->next < run->buildIDs.size()) {
        const QString buildID = run->buildIDs.at(run->next++);
        std::optional<ManagedBuildBetaDetail> detail;
        try {
            auto endpoint = TestFlightEndpoints::betaDetailOfBuild(buildID);
            const auto resource = co_await run->client->call(std::move(endpoint));
            detail = ManagedBuildBetaDetail::fromResource(resource.attributes);
        } catch (const VelmoraAPIError& error) {
            run->result.errors.insert(buildID, error.errorDescription());
        }
        if (detail) {
            run->result.details.insert(buildID, *detail);
            if (run->onDetail) {
                run->onDetail(buildID, *detail);
            }
        }
    }
}

// A page of beta texts as values, by language.
template <class Managed, class Page> QList<Managed> byLocale(const Page& page) {
    QList<Managed> list;
    for (const auto& resource : page.data) {
        list.append(Managed::fromResource(resource.id, resource.attributes));
    }
    Managed::sortByLocale(list);
    return list;
}

// The saved beta text as Apple returned it. Apple echoes the language; should an answer lack
// it, it is still the one that was saved.
template <class Managed, class Resource> Managed savedText(const Resource& saved, const QString& locale) {
    Managed result = Managed::fromResource(saved.id, saved.attributes);
    if (result.locale.isEmpty()) {
        result.locale = locale;
    }
    return result;
}

} // namespace

TestFlightService::TestFlightService(std::shared_ptr<Clock> clock)
    : m_groupsCache(clock, cacheTTL), m_testersCache(clock, cacheTTL) {}

QCoro::Task<QList<ManagedBetaGroup>>
TestFlightService::groups(QString appID, std::shared_ptr<AppStoreConnectClient> client, bool forceRefresh) {
    if (!forceRefresh) {
        if (auto cached = m_groupsCache.fresh(appID)) {
            co_return *cached;
        }
    }
    auto endpoint = TestFlightEndpoints::groupsOfApp(appID, pageLimit, maxPages);
    const auto result = co_await client->call(std::move(endpoint));
    QList<ManagedBetaGroup> list;
    list.reserve(result.items.size());
    for (const auto& resource : result.items) {
        list.append(ManagedBetaGroup::fromResource(resource.id, resource.attributes));
    }
    ManagedBetaGroup::sortByName(list);
    m_groupsCache.insert(appID, list);
    co_return list;
}

QCoro::Task<QList<ManagedBetaTester>>
TestFlightService::testers(QString groupID, std::shared_ptr<AppStoreConnectClient> client,
                           bool forceRefresh) {
    if (!forceRefresh) {
        if (auto cached = m_testersCache.fresh(groupID)) {
            co_return *cached;
        }
    }
    auto endpoint = TestFlightEndpoints::testersOfGroup(groupID, pageLimit, maxPages);
    const auto result = co_await client->call(std::move(endpoint));
    QList<ManagedBetaTester> list;
    list.reserve(result.items.size());
    for (const auto& resource : result.items) {
        list.append(ManagedBetaTester::fromResource(resource.id, resource.attributes));
    }
    ManagedBetaTester::sortByDisplayName(list);
    m_testersCache.insert(groupID, list);
    co_return list;
}

QCoro::Task<> TestFlightService::removeTester(QString testerID, QString groupID,
                                              std::shared_ptr<AppStoreConnectClient> client) {
    const BetaTesterLinkagesRequestBody body{{testerID}};
    auto endpoint = TestFlightEndpoints::removeTestersFromGroup(groupID, body);
    co_await client->call(std::move(endpoint));
    m_testersCache.remove(groupID);
}

QCoro::Task<> TestFlightService::deleteGroup(QString groupID, QString appID,
                                             std::shared_ptr<AppStoreConnectClient> client) {
    auto endpoint = TestFlightEndpoints::deleteGroup(groupID);
    co_await client->call(std::move(endpoint));
    m_groupsCache.remove(appID);
    m_testersCache.remove(groupID);
}

QCoro::Task<ManagedBetaGroup> TestFlightService::createGroup(BetaGroupCreateRequestBody body,
                                                             std::shared_ptr<AppStoreConnectClient> client) {
    auto endpoint = TestFlightEndpoints::createGroup(body);
    const auto resource = co_await client->call(std::move(endpoint));
    m_groupsCache.remove(body.appID);
    co_return ManagedBetaGroup::fromResource(resource.id, resource.attributes);
}

QCoro::Task<ManagedBetaGroup> TestFlightService::updateGroup(BetaGroupUpdateRequestBody body, QString appID,
                                                             std::shared_ptr<AppStoreConnectClient> client) {
    auto endpoint = TestFlightEndpoints::updateGroup(body);
    const auto resource = co_await client->call(std::move(endpoint));
    m_groupsCache.remove(appID);
    co_return ManagedBetaGroup::fromResource(resource.id, resource.attributes);
}

QCoro::Task<BetaTesterHandover> TestFlightService::addTester(NewBetaTester tester, QString groupID,
                                                             std::shared_ptr<AppStoreConnectClient> client,
                                                             RequestPriority priority) {
    const BetaTesterCreateRequestBody body{tester, {groupID}};
    auto endpoint = TestFlightEndpoints::createTester(body).withPriority(priority);
    bool alreadyThere = false;
    try {
        co_await client->call(std::move(endpoint));
    } catch (const VelmoraAPIError& error) {
        if (!hasStatus(error, 409)) {
            throw;
        }
        alreadyThere = true;
    }
    co_return alreadyThere ? BetaTesterHandover::AlreadyThere : BetaTesterHandover::Added;
}

QCoro::Task<int> TestFlightService::importTesters(QList<NewBetaTester> testers, QString groupID,
                                                  std::shared_ptr<AppStoreConnectClient> client,
                                                  std::function<bool()> isCancelled,
                                                  std::function<void(int)> progress) {
    if (testers.isEmpty()) {
        co_return 0;
    }
    int handedOver = 0;
    for (const NewBetaTester& tester : testers) {
        if (isCancelled && isCancelled()) {
            break;
        }
        auto handOver = addTester(tester, groupID, client, RequestPriority::Background);
        co_await handOver;
        ++handedOver;
        if (progress) {
            progress(handedOver);
        }
    }
    m_testersCache.remove(groupID);
    co_return handedOver;
}

QCoro::Task<> TestFlightService::resendInvitation(QString testerID, QString appID,
                                                  std::shared_ptr<AppStoreConnectClient> client) {
    const BetaTesterInvitationRequestBody body{appID, testerID};
    auto endpoint = TestFlightEndpoints::inviteTester(body);
    co_await client->call(std::move(endpoint));
}

QCoro::Task<QList<ManagedBetaBuildLocalization>>
TestFlightService::buildLocalizations(QString buildID, std::shared_ptr<AppStoreConnectClient> client) {
    auto endpoint = TestFlightEndpoints::localizationsOfBuild(buildID, localizationLimit);
    const auto page = co_await client->call(std::move(endpoint));
    co_return byLocale<ManagedBetaBuildLocalization>(page);
}

QCoro::Task<ManagedBetaBuildLocalization>
TestFlightService::saveBuildLocalization(ManagedBetaBuildLocalization localization, QString buildID,
                                         std::shared_ptr<AppStoreConnectClient> client) {
    JSONAPIResource<ASCBetaBuildLocalizationAttributes> saved;
    if (localization.localizationID) {
        const BetaBuildLocalizationUpdateRequestBody body{*localization.localizationID,
                                                          localization.whatsNew};
        auto endpoint = TestFlightEndpoints::updateBuildLocalization(body);
        saved = co_await client->call(std::move(endpoint));
    } else {
        const BetaBuildLocalizationCreateRequestBody body{buildID, localization.locale,
                                                          localization.whatsNew};
        auto endpoint = TestFlightEndpoints::createBuildLocalization(body);
        saved = co_await client->call(std::move(endpoint));
    }
    co_return savedText<ManagedBetaBuildLocalization>(saved, localization.locale);
}

QCoro::Task<QList<ManagedBetaAppLocalization>>
TestFlightService::appLocalizations(QString appID, std::shared_ptr<AppStoreConnectClient> client) {
    auto endpoint = TestFlightEndpoints::localizationsOfApp(appID, localizationLimit);
    const auto page = co_await client->call(std::move(endpoint));
    co_return byLocale<ManagedBetaAppLocalization>(page);
}

QCoro::Task<ManagedBetaAppLocalization>
TestFlightService::saveAppLocalization(ManagedBetaAppLocalization localization, QString appID,
                                       std::shared_ptr<AppStoreConnectClient> client) {
    JSONAPIResource<ASCBetaAppLocalizationAttributes> saved;
    if (localization.localizationID) {
        const BetaAppLocalizationUpdateRequestBody body{*localization.localizationID, localization};
        auto endpoint = TestFlightEndpoints::updateAppLocalization(body);
        saved = co_await client->call(std::move(endpoint));
    } else {
        const BetaAppLocalizationCreateRequestBody body{appID, localization};
        auto endpoint = TestFlightEndpoints::createAppLocalization(body);
        saved = co_await client->call(std::move(endpoint));
    }
    co_return savedText<ManagedBetaAppLocalization>(saved, localization.locale);
}

QCoro::Task<std::optional<ManagedBetaReviewSubmission>>
TestFlightService::betaReviewSubmission(QString buildID, std::shared_ptr<AppStoreConnectClient> client) {
    auto endpoint = TestFlightEndpoints::betaReviewSubmissionOfBuild(buildID);
    std::optional<JSONAPIResource<ASCBetaAppReviewSubmissionAttributes>> resource;
    try {
        resource = co_await client->call(std::move(endpoint));
    } catch (const VelmoraAPIError& error) {
        if (!hasStatus(error, 404)) {
            throw;
        }
    }
    if (!resource) {
        co_return std::nullopt;
    }
    co_return ManagedBetaReviewSubmission::fromResource(resource->id, resource->attributes);
}

QCoro::Task<ManagedBetaReviewSubmission>
TestFlightService::submitForBetaReview(QString buildID, std::shared_ptr<AppStoreConnectClient> client) {
    const BetaAppReviewSubmissionRequestBody body{buildID};
    auto endpoint = TestFlightEndpoints::submitForBetaReview(body);
    const auto resource = co_await client->call(std::move(endpoint));
    co_return ManagedBetaReviewSubmission::fromResource(resource.id, resource.attributes);
}

QCoro::Task<QList<ManagedBetaFeedback>>
TestFlightService::feedback(QString appID, int limit, std::shared_ptr<AppStoreConnectClient> client) {
    // Both reads are under way before either is awaited.
    auto screenshots = fetchFeedback(ManagedBetaFeedback::Kind::Screenshot, appID, limit, client);
    auto crashes = fetchFeedback(ManagedBetaFeedback::Kind::Crash, appID, limit, client);
    std::exception_ptr failure;
    QList<ManagedBetaFeedback> items;
    try {
        items = co_await screenshots;
    } catch (...) {
        failure = std::current_exception();
    }
    QList<ManagedBetaFeedback> crashItems;
    try {
        crashItems = co_await crashes;
    } catch (...) {
        if (!failure) {
            failure = std::current_exception();
        }
    }
    if (failure) {
        std::rethrow_exception(failure);
    }
    items.append(crashItems);
    ManagedBetaFeedback::sortNewestFirst(items);
    co_return items;
}

QCoro::Task<std::optional<ManagedBetaCrashLog>>
TestFlightService::crashLog(QString feedbackID, std::shared_ptr<AppStoreConnectClient> client) {
    auto endpoint = TestFlightEndpoints::crashLogOfFeedback(feedbackID);
    std::optional<JSONAPIResource<ASCCrashLogAttributes>> resource;
    try {
        resource = co_await client->call(std::move(endpoint));
    } catch (const VelmoraAPIError& error) {
        if (!hasStatus(error, 404)) {
            throw;
        }
    }
    if (!resource) {
        co_return std::nullopt;
    }
    ManagedBetaCrashLog log = ManagedBetaCrashLog::fromAttributes(resource->attributes);
    if (!log.logText && !log.url) {
        co_return std::nullopt;
    }
    co_return log;
}

QCoro::Task<ManagedBetaUsage> TestFlightService::usage(QString buildID,
                                                       std::shared_ptr<AppStoreConnectClient> client) {
    auto endpoint = TestFlightEndpoints::usageOfBuild(buildID, usageLimit);
    co_return co_await client->call(std::move(endpoint));
}

QCoro::Task<ManagedBuildBetaDetail>
TestFlightService::buildBetaDetail(QString buildID, std::shared_ptr<AppStoreConnectClient> client) {
    auto endpoint = TestFlightEndpoints::betaDetailOfBuild(buildID);
    const auto resource = co_await client->call(std::move(endpoint));
    co_return ManagedBuildBetaDetail::fromResource(resource.attributes);
}

QCoro::Task<BuildBetaDetails> TestFlightService::buildBetaDetails(
    QStringList buildIDs, std::shared_ptr<AppStoreConnectClient> client,
    std::function<void(const QString&, const ManagedBuildBetaDetail&)> onDetail) {
    auto run = std::make_shared<DetailRun>();
    buildIDs.removeDuplicates();
    run->buildIDs = std::move(buildIDs);
    run->client = std::move(client);
    run->onDetail = std::move(onDetail);
    const qsizetype workerCount = std::min<qsizetype>(maxDetailsInFlight, run->buildIDs.size());
    std::vector<QCoro::Task<>> workers;
    workers.reserve(std::size_t(workerCount));
    for (qsizetype i = 0; i < workerCount; ++i) {
        workers.push_back(detailWorker(run));
    }
    for (auto& worker : workers) {
        co_await worker;
    }
    co_return std::move(run->result);
}

QCoro::Task<QSet<QString>> TestFlightService::buildIDs(QString groupID,
                                                       std::shared_ptr<AppStoreConnectClient> client) {
    auto endpoint = TestFlightEndpoints::buildsOfGroup(groupID, pageLimit, maxPages);
    const auto result = co_await client->call(std::move(endpoint));
    QSet<QString> ids;
    for (const auto& linkage : result.items) {
        ids.insert(linkage.id);
    }
    co_return ids;
}

QCoro::Task<> TestFlightService::assignBuild(QString buildID, QString groupID,
                                             std::shared_ptr<AppStoreConnectClient> client) {
    const BuildLinkagesRequestBody body{{buildID}};
    auto endpoint = TestFlightEndpoints::addBuildsToGroup(groupID, body);
    co_await client->call(std::move(endpoint));
}

QCoro::Task<> TestFlightService::unassignBuild(QString buildID, QString groupID,
                                               std::shared_ptr<AppStoreConnectClient> client) {
    const BuildLinkagesRequestBody body{{buildID}};
    auto endpoint = TestFlightEndpoints::removeBuildsFromGroup(groupID, body);
    co_await client->call(std::move(endpoint));
}
