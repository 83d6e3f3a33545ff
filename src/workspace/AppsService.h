#pragma once

#include "api/Account.h"
#include "api/DiskCache.h"
#include "api/TimedCache.h"
#include "workspace/ManagedApp.h"

#include <QCoro/QCoroTask>
#include <QHash>

#include <memory>

class AppStoreConnectClient;
class Clock;

// Lists the apps of an account, with a short in-memory cache and a copy on disk.
class AppsService {
public:
    static constexpr int cacheTTL = 120;
    static constexpr int pageLimit = 200;
    static constexpr int maxPages = 20;

    AppsService(std::shared_ptr<DiskCache> disk, std::shared_ptr<Clock> clock);

    QCoro::Task<QList<ManagedApp>> apps(Account account, std::shared_ptr<AppStoreConnectClient> client,
                                        bool forceRefresh);

    static QString diskKey(const QUuid& accountID);
    const DiskCache& disk() const { return *m_disk; }

private:
    std::shared_ptr<DiskCache> m_disk;
    TimedCache<QList<ManagedApp>> m_cache;
    // Expires with the service, so that a request still running can tell it is gone.
    std::shared_ptr<int> m_alive = std::make_shared<int>(0);
};
