#include "release/VersionsService.h"

#include "api/AppStoreConnectClient.h"
#include "platform/Clock.h"
#include "release/ReleaseEndpoints.h"

using namespace Qt::StringLiterals;

VersionsService::VersionsService(std::shared_ptr<DiskCache> disk, std::shared_ptr<Clock> clock)
    : m_disk(std::move(disk)), m_cache(clock, cacheTTL), m_assignedBuildCache(clock, cacheTTL) {}

QString VersionsService::diskKey(const QString& appID) {
    return u"versions-"_s + appID;
}

std::optional<DiskCache::CachedList<VelmoraVersion>>
VersionsService::storedVersions(const QString& appID) const {
    return m_disk->loadList<VelmoraVersion>(diskKey(appID));
}

QCoro::Task<QList<VelmoraVersion>>
VersionsService::versions(QString appID, std::shared_ptr<AppStoreConnectClient> client, bool forceRefresh) {
    if (!forceRefresh) {
        if (auto cached = m_cache.fresh(appID)) {
            co_return *cached;
        }
    }
    PagedResult<JSONAPIResource<ASCAppStoreVersionAttributes>> result;
    try {
        result = co_await client->call(ReleaseEndpoints::versionsOfApp(appID, pageLimit, maxPages));
    } catch (const VelmoraAPIError&) {
        // The stale list is better than nothing; it stays out of the memory cache so that
        // the next call asks the network again.
        if (auto stored = storedVersions(appID)) {
            co_return stored->value;
        }
        throw;
    }
    QList<VelmoraVersion> list;
    list.reserve(result.items.size());
    for (const auto& resource : result.items) {
        list.append(VelmoraVersion::fromResource(resource.id, resource.attributes));
    }
    VelmoraVersion::sortNewestFirst(list);
    m_cache.insert(appID, list);
    m_disk->storeList(diskKey(appID), list);
    co_return list;
}

QCoro::Task<VelmoraVersion> VersionsService::createVersion(AppStoreVersionCreateRequestBody body,
                                                           std::shared_ptr<AppStoreConnectClient> client) {
    const auto resource = co_await client->call(ReleaseEndpoints::createVersion(body));
    m_cache.remove(body.appID);
    co_return VelmoraVersion::fromResource(resource.id, resource.attributes);
}

QCoro::Task<VelmoraVersion> VersionsService::updateVersion(QString appID,
                                                           AppStoreVersionUpdateRequestBody body,
                                                           std::shared_ptr<AppStoreConnectClient> client) {
    const auto resource = co_await client->call(ReleaseEndpoints::updateVersion(body));
    m_cache.remove(appID);
    co_return VelmoraVersion::fromResource(resource.id, resource.attributes);
}

QCoro::Task<> VersionsService::deleteVersion(QString versionID, QString appID,
                                             std::shared_ptr<AppStoreConnectClient> client) {
    co_await client->call(ReleaseEndpoints::deleteVersion(versionID));
    m_cache.remove(appID);
    m_assignedBuildCache.remove(versionID);
}

QCoro::Task<std::optional<ManagedBuild>>
VersionsService::assignedBuild(QString versionID, std::shared_ptr<AppStoreConnectClient> client,
                               bool forceRefresh) {
    if (!forceRefresh) {
        if (auto cached = m_assignedBuildCache.fresh(versionID)) {
            co_return *cached;
        }
    }
    const auto resource = co_await client->call(ReleaseEndpoints::buildOfVersion(versionID));
    std::optional<ManagedBuild> build;
    if (resource) {
        build = ManagedBuild::fromResource(resource->id, resource->attributes);
    }
    m_assignedBuildCache.insert(versionID, build);
    co_return build;
}

QCoro::Task<> VersionsService::setAssignedBuild(std::optional<QString> buildID, QString versionID,
                                                std::shared_ptr<AppStoreConnectClient> client) {
    const AppStoreVersionBuildLinkageRequestBody body{buildID};
    co_await client->call(ReleaseEndpoints::setBuildOfVersion(versionID, body));
    m_assignedBuildCache.remove(versionID);
}

QCoro::Task<> VersionsService::releaseVersion(QString versionID, QString appID,
                                              std::shared_ptr<AppStoreConnectClient> client) {
    const AppStoreVersionReleaseRequestBody body{versionID};
    co_await client->call(ReleaseEndpoints::releaseVersion(body));
    m_cache.remove(appID);
}

QCoro::Task<std::optional<ManagedPhasedRelease>>
VersionsService::phasedRelease(QString versionID, std::shared_ptr<AppStoreConnectClient> client) {
    const auto resource = co_await client->call(ReleaseEndpoints::phasedReleaseOfVersion(versionID));
    if (!resource) {
        co_return std::nullopt;
    }
    co_return ManagedPhasedRelease::fromResource(resource->id, resource->attributes);
}

QCoro::Task<ManagedPhasedRelease>
VersionsService::startPhasedRelease(QString versionID, std::shared_ptr<AppStoreConnectClient> client) {
    const PhasedReleaseCreateRequestBody body{versionID,
                                              ASCPhasedReleaseState(ASCPhasedReleaseState::Case::Active)};
    const auto resource = co_await client->call(ReleaseEndpoints::createPhasedRelease(body));
    co_return ManagedPhasedRelease::fromResource(resource.id, resource.attributes);
}

QCoro::Task<ManagedPhasedRelease>
VersionsService::setPhasedReleaseState(QString phasedReleaseID, ASCPhasedReleaseState state,
                                       std::shared_ptr<AppStoreConnectClient> client) {
    const PhasedReleaseUpdateRequestBody body{phasedReleaseID, state};
    const auto resource = co_await client->call(ReleaseEndpoints::updatePhasedRelease(body));
    co_return ManagedPhasedRelease::fromResource(resource.id, resource.attributes);
}

QCoro::Task<> VersionsService::cancelPhasedRelease(QString phasedReleaseID,
                                                   std::shared_ptr<AppStoreConnectClient> client) {
    co_await client->call(ReleaseEndpoints::deletePhasedRelease(phasedReleaseID));
}
