#include "release/BuildsService.h"

#include "api/AppStoreConnectClient.h"
#include "platform/Clock.h"
#include "release/ReleaseEndpoints.h"

using namespace Qt::StringLiterals;

BuildsService::BuildsService(std::shared_ptr<DiskCache> disk, std::shared_ptr<Clock> clock)
    : m_disk(std::move(disk)), m_cache(std::move(clock), cacheTTL) {}

QString BuildsService::diskKey(const QString& appID) {
    return u"builds-"_s + appID;
}

std::optional<DiskCache::CachedList<ManagedBuild>> BuildsService::storedBuilds(const QString& appID) const {
    return m_disk->loadList<ManagedBuild>(diskKey(appID));
}

QCoro::Task<QList<ManagedBuild>>
BuildsService::builds(QString appID, std::shared_ptr<AppStoreConnectClient> client, bool forceRefresh) {
    if (!forceRefresh) {
        if (auto cached = m_cache.fresh(appID)) {
            co_return *cached;
        }
    }
    PagedResult<JSONAPIResource<ASCBuildAttributes>> result;
    try {
        result = co_await client->call(ReleaseEndpoints::buildsOfApp(appID, pageLimit, maxPages));
    } catch (const VelmoraAPIError&) {
        if (auto stored = storedBuilds(appID)) {
            co_return stored->value;
        }
        throw;
    }
    QList<ManagedBuild> list;
    list.reserve(result.items.size());
    for (const auto& resource : result.items) {
        list.append(ManagedBuild::fromResource(resource.id, resource.attributes));
    }
    ManagedBuild::sortNewestFirst(list);
    m_cache.insert(appID, list);
    m_disk->storeList(diskKey(appID), list);
    co_return list;
}
