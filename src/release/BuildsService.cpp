#include "release/BuildsService.h"

#include "api/AppStoreConnectClient.h"
#include "platform/Clock.h"

using namespace Qt::StringLiterals;

BuildsService::BuildsService(std::shared_ptr<DiskCache> disk, std::shared_ptr<Clock> clock)
    : m_disk(std::move(disk)), m_clock(std::move(clock)) {}

QString BuildsService::diskKey(const QString& appID) {
    return u"builds-"_s + appID;
}

std::optional<DiskCache::CachedList<ManagedBuild>> BuildsService::storedBuilds(const QString& appID) const {
    return m_disk->loadList<ManagedBuild>(diskKey(appID));
}

QCoro::Task<QList<ManagedBuild>>
BuildsService::builds(QString appID, std::shared_ptr<AppStoreConnectClient> client, bool forceRefresh) {
    if (!forceRefresh) {
        if (auto it = m_cache.constFind(appID); it != m_cache.cend()) {
            if (double(it->fetchedAt.msecsTo(m_clock->now())) / 1000.0 < cacheTTL) {
                co_return it->builds;
            }
        }
    }
    APIRequest request = APIRequest::get(u"/v1/apps/"_s + appID + u"/builds"_s);
    request.queryItems = {{u"limit"_s, QString::number(pageLimit)}};
    PagedResult<JSONAPIResource<ASCBuildAttributes>> result;
    try {
        result = co_await client->sendPagedResult<ASCBuildAttributes>(std::move(request), maxPages);
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
    m_cache.insert(appID, Entry{list, m_clock->now()});
    m_disk->storeList(diskKey(appID), list);
    co_return list;
}
