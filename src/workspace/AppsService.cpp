#include "workspace/AppsService.h"

#include "api/AppStoreConnectClient.h"
#include "platform/Clock.h"

using namespace Qt::StringLiterals;

AppsService::AppsService(std::shared_ptr<DiskCache> disk, std::shared_ptr<Clock> clock)
    : m_disk(std::move(disk)), m_clock(std::move(clock)) {}

QString AppsService::diskKey(const QUuid& accountID) {
    return u"apps-"_s + Account::idText(accountID);
}

QCoro::Task<QList<ManagedApp>>
AppsService::apps(Account account, std::shared_ptr<AppStoreConnectClient> client, bool forceRefresh) {
    if (!forceRefresh) {
        if (auto it = m_cache.constFind(account.id); it != m_cache.cend()) {
            const double age = double(it->fetchedAt.msecsTo(m_clock->now())) / 1000.0;
            if (age < cacheTTL) {
                co_return it->apps;
            }
        }
    }
    APIRequest request = APIRequest::get(u"/v1/apps"_s);
    request.queryItems = {{u"limit"_s, QString::number(pageLimit)}, {u"sort"_s, u"name"_s}};
    // A list cut off at the page limit is used as far as it goes.
    const std::weak_ptr<int> alive = m_alive;
    const auto result = co_await client->sendPagedResult<ASCAppAttributes>(std::move(request), maxPages);
    QList<ManagedApp> apps;
    apps.reserve(result.items.size());
    if (alive.expired()) {
        // The service went while the request ran; the answer has nowhere to go.
        co_return apps;
    }
    for (const auto& resource : result.items) {
        apps.append(ManagedApp::fromResource(resource.id, resource.attributes));
    }
    m_cache.insert(account.id, Entry{apps, m_clock->now()});
    m_disk->storeList(diskKey(account.id), apps);
    co_return apps;
}
