#pragma once

#include "api/DiskCache.h"
#include "api/TimedCache.h"
#include "release/ManagedPhasedRelease.h"
#include "release/ReleaseRequestBodies.h"
#include "release/VelmoraVersion.h"
#include "testflight/ManagedBuild.h"

#include <QCoro/QCoroTask>
#include <QDateTime>
#include <QHash>

#include <memory>
#include <optional>

class AppStoreConnectClient;
class Clock;

// App Store versions of an app, the build each one carries, its release and its staged
// rollout. Every call takes the client of the account it acts for. The version list is kept a
// short while in memory and its last good answer on disk; errors of the client go up unchanged.
class VersionsService {
public:
    static constexpr int cacheTTL = 60;
    static constexpr int pageLimit = 200;
    static constexpr int maxPages = 20;

    VersionsService(std::shared_ptr<DiskCache> disk, std::shared_ptr<Clock> clock);

    // Newest first by creation date. When the network fails and a copy on disk exists, that
    // copy answers instead of the error.
    QCoro::Task<QList<VelmoraVersion>> versions(QString appID, std::shared_ptr<AppStoreConnectClient> client,
                                                bool forceRefresh);
    // The last list stored on disk, with its time, for showing something before the network answers.
    std::optional<DiskCache::CachedList<VelmoraVersion>> storedVersions(const QString& appID) const;

    QCoro::Task<VelmoraVersion> createVersion(AppStoreVersionCreateRequestBody body,
                                              std::shared_ptr<AppStoreConnectClient> client);
    // Returns the version as Apple has it afterwards.
    QCoro::Task<VelmoraVersion> updateVersion(QString appID, AppStoreVersionUpdateRequestBody body,
                                              std::shared_ptr<AppStoreConnectClient> client);
    QCoro::Task<> deleteVersion(QString versionID, QString appID,
                                std::shared_ptr<AppStoreConnectClient> client);

    QCoro::Task<std::optional<ManagedBuild>>
    assignedBuild(QString versionID, std::shared_ptr<AppStoreConnectClient> client, bool forceRefresh);
    // An absent build removes the assignment.
    QCoro::Task<> setAssignedBuild(std::optional<QString> buildID, QString versionID,
                                   std::shared_ptr<AppStoreConnectClient> client);

    QCoro::Task<> releaseVersion(QString versionID, QString appID,
                                 std::shared_ptr<AppStoreConnectClient> client);

    QCoro::Task<std::optional<ManagedPhasedRelease>>
    phasedRelease(QString versionID, std::shared_ptr<AppStoreConnectClient> client);
    QCoro::Task<ManagedPhasedRelease> startPhasedRelease(QString versionID,
                                                         std::shared_ptr<AppStoreConnectClient> client);
    QCoro::Task<ManagedPhasedRelease> setPhasedReleaseState(QString phasedReleaseID,
                                                            ASCPhasedReleaseState state,
                                                            std::shared_ptr<AppStoreConnectClient> client);
    QCoro::Task<> cancelPhasedRelease(QString phasedReleaseID, std::shared_ptr<AppStoreConnectClient> client);

    static QString diskKey(const QString& appID);

private:
    std::shared_ptr<DiskCache> m_disk;
    TimedCache<QList<VelmoraVersion>> m_cache;
    TimedCache<std::optional<ManagedBuild>> m_assignedBuildCache;
};
