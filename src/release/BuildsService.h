#pragma once

#include "api/DiskCache.h"
#include "api/TimedCache.h"
#include "testflight/ManagedBuild.h"

#include <QCoro/QCoroTask>
#include <QDateTime>
#include <QHash>

#include <memory>

class AppStoreConnectClient;
class Clock;

// The builds of an app, newest upload first, with a short in-memory cache and the last good
// answer on disk.
class BuildsService {
public:
    static constexpr int cacheTTL = 60;
    static constexpr int pageLimit = 200;
    static constexpr int maxPages = 20;

    BuildsService(std::shared_ptr<DiskCache> disk, std::shared_ptr<Clock> clock);

    // When the network fails and a copy on disk exists, that copy answers instead of the error.
    QCoro::Task<QList<ManagedBuild>> builds(QString appID, std::shared_ptr<AppStoreConnectClient> client,
                                            bool forceRefresh);
    std::optional<DiskCache::CachedList<ManagedBuild>> storedBuilds(const QString& appID) const;

    static QString diskKey(const QString& appID);

private:
    std::shared_ptr<DiskCache> m_disk;
    TimedCache<QList<ManagedBuild>> m_cache;
};
