#include "workspace/AppsService.h"

#include "api/AppStoreConnectClient.h"
#include "platform/Clock.h"
#include "workspace/AppsEndpoints.h"

using namespace Qt::StringLiterals;

AppsService::AppsService(std::shared_ptr<DiskCache> disk, std::shared_ptr<Clock> clock)
    : m_disk(std::move(disk)), m_cache(std::move(clock), cacheTTL) {}

QString AppsService::diskKey(const QUuid& accountID) {
    return u"apps-"_s + Account::idText(accountID);
}

QCoro::Task<QList<ManagedApp>>
AppsService::apps(Account account, std::shared_ptr<AppStoreConnectClient> client, bool forceRefresh) {
    if (!forceRefresh) {
        if (auto cached = m_cache.fresh(Account::idText(account.id))) {
            co_return *cached;
        }
    }
    // A list cut off at the page limit is used as far as it goes.
    const std::weak_ptr<int> alive = m_alive;
    const auto result = co_await client->call(AppsEndpoints::apps(pageLimit, maxPages));
    QList<ManagedApp> apps;
    apps.reserve(result.items.size());
    if (alive.expired()) {
        // The service went while the request ran; the answer has nowhere to go.
        co_return apps;
    }
    for (const auto& resource : result.items) {
        apps.append(ManagedApp::fromResource(resource.id, resource.attributes));
    }
    m_cache.insert(Account::idText(account.id), apps);
    m_disk->storeList(diskKey(account.id), apps);
    co_return apps;
}
