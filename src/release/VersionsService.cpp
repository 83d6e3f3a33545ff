#include "release/VersionsService.h"

#include "api/AppStoreConnectClient.h"
#include "platform/Clock.h"

using namespace Qt::StringLiterals;

using Method = APIRequest::Method;

VersionsService::VersionsService(std::shared_ptr<DiskCache> disk, std::shared_ptr<Clock> clock)
    : m_disk(std::move(disk)), m_clock(std::move(clock)) {}

QString VersionsService::diskKey(const QString& appID) {
    return u"versions-"_s + appID;
}

bool VersionsService::isFresh(const QDateTime& fetchedAt) const {
    return double(fetchedAt.msecsTo(m_clock->now())) / 1000.0 < cacheTTL;
}

std::optional<DiskCache::CachedList<VelmoraVersion>>
VersionsService::storedVersions(const QString& appID) const {
    return m_disk->loadList<VelmoraVersion>(diskKey(appID));
}

QCoro::Task<QList<VelmoraVersion>>
VersionsService::versions(QString appID, std::shared_ptr<AppStoreConnectClient> client, bool forceRefresh) {
    if (!forceRefresh) {
        if (auto it = m_cache.constFind(appID); it != m_cache.cend() && isFresh(it->fetchedAt)) {
            co_return it->versions;
        }
    }
    APIRequest request = APIRequest::get(u"/v1/apps/"_s + appID + u"/appStoreVersions"_s);
    request.queryItems = {{u"limit"_s, QString::number(pageLimit)}};
    PagedResult<JSONAPIResource<ASCAppStoreVersionAttributes>> result;
    try {
        result = co_await client->sendPagedResult<ASCAppStoreVersionAttributes>(std::move(request), maxPages);
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
    m_cache.insert(appID, VersionsEntry{list, m_clock->now()});
    m_disk->storeList(diskKey(appID), list);
    co_return list;
}

QCoro::Task<VelmoraVersion> VersionsService::createVersion(AppStoreVersionCreateRequestBody body,
                                                           std::shared_ptr<AppStoreConnectClient> client) {
    APIRequest request = APIRequest::withBody(Method::Post, u"/v1/appStoreVersions"_s, body.encoded());
    const auto resource = co_await client->sendSingle<ASCAppStoreVersionAttributes>(std::move(request));
    m_cache.remove(body.appID);
    co_return VelmoraVersion::fromResource(resource.id, resource.attributes);
}

QCoro::Task<VelmoraVersion> VersionsService::updateVersion(QString appID,
                                                           AppStoreVersionUpdateRequestBody body,
                                                           std::shared_ptr<AppStoreConnectClient> client) {
    APIRequest request =
        APIRequest::withBody(Method::Patch, u"/v1/appStoreVersions/"_s + body.id, body.encoded());
    const auto resource = co_await client->sendSingle<ASCAppStoreVersionAttributes>(std::move(request));
    m_cache.remove(appID);
    co_return VelmoraVersion::fromResource(resource.id, resource.attributes);
}

QCoro::Task<> VersionsService::deleteVersion(QString versionID, QString appID,
                                             std::shared_ptr<AppStoreConnectClient> client) {
    APIRequest request;
    request.method = Method::Delete;
    request.path = u"/v1/appStoreVersions/"_s + versionID;
    co_await client->sendVoid(std::move(request));
    m_cache.remove(appID);
    m_assignedBuildCache.remove(versionID);
}

QCoro::Task<std::optional<ManagedBuild>>
VersionsService::assignedBuild(QString versionID, std::shared_ptr<AppStoreConnectClient> client,
                               bool forceRefresh) {
    if (!forceRefresh) {
        if (auto it = m_assignedBuildCache.constFind(versionID);
            it != m_assignedBuildCache.cend() && isFresh(it->fetchedAt)) {
            co_return it->build;
        }
    }
    APIRequest request = APIRequest::get(u"/v1/appStoreVersions/"_s + versionID + u"/build"_s);
    const auto resource = co_await client->sendSingleOptional<ASCBuildAttributes>(std::move(request));
    std::optional<ManagedBuild> build;
    if (resource) {
        build = ManagedBuild::fromResource(resource->id, resource->attributes);
    }
    m_assignedBuildCache.insert(versionID, BuildEntry{build, m_clock->now()});
    co_return build;
}

QCoro::Task<> VersionsService::setAssignedBuild(std::optional<QString> buildID, QString versionID,
                                                std::shared_ptr<AppStoreConnectClient> client) {
    const AppStoreVersionBuildLinkageRequestBody body{buildID};
    APIRequest request = APIRequest::withBody(
        Method::Patch, u"/v1/appStoreVersions/"_s + versionID + u"/relationships/build"_s, body.encoded());
    co_await client->sendVoid(std::move(request));
    m_assignedBuildCache.remove(versionID);
}

QCoro::Task<> VersionsService::releaseVersion(QString versionID, QString appID,
                                              std::shared_ptr<AppStoreConnectClient> client) {
    const AppStoreVersionReleaseRequestBody body{versionID};
    APIRequest request =
        APIRequest::withBody(Method::Post, u"/v1/appStoreVersionReleaseRequests"_s, body.encoded());
    co_await client->sendVoid(std::move(request));
    m_cache.remove(appID);
}

QCoro::Task<std::optional<ManagedPhasedRelease>>
VersionsService::phasedRelease(QString versionID, std::shared_ptr<AppStoreConnectClient> client) {
    APIRequest request =
        APIRequest::get(u"/v1/appStoreVersions/"_s + versionID + u"/appStoreVersionPhasedRelease"_s);
    const auto resource = co_await client->sendSingleOptional<ASCPhasedReleaseAttributes>(std::move(request));
    if (!resource) {
        co_return std::nullopt;
    }
    co_return ManagedPhasedRelease::fromResource(resource->id, resource->attributes);
}

QCoro::Task<ManagedPhasedRelease>
VersionsService::startPhasedRelease(QString versionID, std::shared_ptr<AppStoreConnectClient> client) {
    const PhasedReleaseCreateRequestBody body{versionID,
                                              ASCPhasedReleaseState(ASCPhasedReleaseState::Case::Active)};
    APIRequest request =
        APIRequest::withBody(Method::Post, u"/v1/appStoreVersionPhasedReleases"_s, body.encoded());
    const auto resource = co_await client->sendSingle<ASCPhasedReleaseAttributes>(std::move(request));
    co_return ManagedPhasedRelease::fromResource(resource.id, resource.attributes);
}

QCoro::Task<ManagedPhasedRelease>
VersionsService::setPhasedReleaseState(QString phasedReleaseID, ASCPhasedReleaseState state,
                                       std::shared_ptr<AppStoreConnectClient> client) {
    const PhasedReleaseUpdateRequestBody body{phasedReleaseID, state};
    APIRequest request = APIRequest::withBody(
        Method::Patch, u"/v1/appStoreVersionPhasedReleases/"_s + phasedReleaseID, body.encoded());
    const auto resource = co_await client->sendSingle<ASCPhasedReleaseAttributes>(std::move(request));
    co_return ManagedPhasedRelease::fromResource(resource.id, resource.attributes);
}

QCoro::Task<> VersionsService::cancelPhasedRelease(QString phasedReleaseID,
                                                   std::shared_ptr<AppStoreConnectClient> client) {
    APIRequest request;
    request.method = Method::Delete;
    request.path = u"/v1/appStoreVersionPhasedReleases/"_s + phasedReleaseID;
    co_await client->sendVoid(std::move(request));
}
