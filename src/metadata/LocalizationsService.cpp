#include "metadata/LocalizationsService.h"

#include "api/AppStoreConnectClient.h"
#include "metadata/MetadataEndpoints.h"
#include "platform/Clock.h"

using namespace Qt::StringLiterals;

namespace {

QString describe(const std::exception_ptr& error) {
    try {
        std::rethrow_exception(error);
    } catch (const std::exception& e) {
        return describeError(e);
    } catch (...) {
    }
    return u"Unerwarteter Fehler."_s;
}

// Free of the service, so that a fetch still running when its sibling failed touches nothing
// but its own frame.
QCoro::Task<QList<AppInfoLocalizationResource>>
fetchAppInfoSide(std::optional<QString> appInfoID, std::shared_ptr<AppStoreConnectClient> client) {
    if (!appInfoID) {
        co_return {};
    }
    auto result = co_await client->call(MetadataEndpoints::appInfoLocalizations(
        *appInfoID, LocalizationsService::pageLimit, LocalizationsService::maxPages));
    co_return std::move(result.items);
}

QCoro::Task<QList<VersionLocalizationResource>>
fetchVersionSide(std::optional<QString> versionID, std::shared_ptr<AppStoreConnectClient> client) {
    if (!versionID) {
        co_return {};
    }
    auto result = co_await client->call(MetadataEndpoints::versionLocalizations(
        *versionID, LocalizationsService::pageLimit, LocalizationsService::maxPages));
    co_return std::move(result.items);
}

} // namespace

LocalizationWriteError::LocalizationWriteError(LocalizationSide failedSide, LocalizationSides completed,
                                               std::exception_ptr cause)
    : m_failedSide(failedSide), m_completed(completed), m_cause(std::move(cause)),
      m_description(describe(m_cause)) {}

LocalizationsService::LocalizationsService(std::shared_ptr<Clock> clock)
    : m_cache(std::move(clock), cacheTTL) {}

QString LocalizationsService::cacheKey(const std::optional<QString>& appInfoID,
                                       const std::optional<QString>& versionID) {
    return appInfoID.value_or(QString()) + u'/' + versionID.value_or(QString());
}

QCoro::Task<std::optional<QString>>
LocalizationsService::appInfoID(QString appID, std::shared_ptr<AppStoreConnectClient> client) {
    const auto page = co_await client->call(MetadataEndpoints::firstAppInfo(appID));
    if (page.data.isEmpty()) {
        co_return std::nullopt;
    }
    co_return page.data.first().id;
}

QCoro::Task<QList<ManagedLocalization>>
LocalizationsService::localizations(QString appID, std::optional<QString> appInfoID,
                                    std::optional<QString> versionID,
                                    std::shared_ptr<AppStoreConnectClient> client, bool forceRefresh) {
    Q_UNUSED(appID);
    const QString key = cacheKey(appInfoID, versionID);
    if (!forceRefresh) {
        if (auto cached = m_cache.fresh(key)) {
            co_return *cached;
        }
    }
    // Both requests are under way before either is awaited.
    auto appInfoTask = fetchAppInfoSide(appInfoID, client);
    auto versionTask = fetchVersionSide(versionID, client);
    std::exception_ptr failure;
    QList<AppInfoLocalizationResource> appInfoSide;
    QList<VersionLocalizationResource> versionSide;
    try {
        appInfoSide = co_await appInfoTask;
    } catch (...) {
        failure = std::current_exception();
    }
    try {
        versionSide = co_await versionTask;
    } catch (...) {
        if (!failure) {
            failure = std::current_exception();
        }
    }
    if (failure) {
        std::rethrow_exception(failure);
    }
    QList<ManagedLocalization> merged = mergeLocalizations(appInfoSide, versionSide);
    m_cache.insert(key, merged);
    co_return merged;
}

QCoro::Task<> LocalizationsService::updateAppInfoLocalization(AppInfoLocalizationUpdateRequestBody body,
                                                              std::shared_ptr<AppStoreConnectClient> client) {
    co_await client->call(MetadataEndpoints::updateAppInfoLocalization(body));
    // Whatever was cached may now be older than Apple's state.
    m_cache.clear();
}

QCoro::Task<>
LocalizationsService::updateVersionLocalization(AppStoreVersionLocalizationUpdateRequestBody body,
                                                std::shared_ptr<AppStoreConnectClient> client) {
    co_await client->call(MetadataEndpoints::updateVersionLocalization(body));
    m_cache.clear();
}

QCoro::Task<LocalizationSides> LocalizationsService::save(ManagedLocalization edited,
                                                          std::optional<ManagedLocalization> previous,
                                                          std::shared_ptr<AppStoreConnectClient> client) {
    LocalizationSides sent;
    if (edited.appInfoLocalizationID) {
        AppInfoLocalizationUpdateRequestBody body(*edited.appInfoLocalizationID, edited, previous);
        if (body.hasChanges()) {
            try {
                co_await updateAppInfoLocalization(std::move(body), client);
            } catch (...) {
                throw LocalizationWriteError(LocalizationSide::AppInfo, sent, std::current_exception());
            }
            sent.appInfo = true;
        }
    }
    if (edited.versionLocalizationID) {
        AppStoreVersionLocalizationUpdateRequestBody body(*edited.versionLocalizationID, edited, previous);
        if (body.hasChanges()) {
            try {
                co_await updateVersionLocalization(std::move(body), client);
            } catch (...) {
                throw LocalizationWriteError(LocalizationSide::Version, sent, std::current_exception());
            }
            sent.version = true;
        }
    }
    co_return sent;
}

QCoro::Task<ManagedLocalization> LocalizationsService::createLocalization(
    QString locale, std::optional<QString> appInfoID, std::optional<QString> versionID,
    std::optional<ManagedLocalization> seed, std::shared_ptr<AppStoreConnectClient> client) {
    LocalizationSides created;
    std::optional<AppInfoLocalizationResource> appInfoSide;
    std::optional<VersionLocalizationResource> versionSide;
    if (appInfoID) {
        const auto body = AppInfoLocalizationCreateRequestBody::make(*appInfoID, locale, seed);
        try {
            appInfoSide = co_await client->call(MetadataEndpoints::createAppInfoLocalization(body));
        } catch (...) {
            throw LocalizationWriteError(LocalizationSide::AppInfo, created, std::current_exception());
        }
        created.appInfo = true;
        m_cache.clear();
    }
    if (versionID) {
        const auto body = AppStoreVersionLocalizationCreateRequestBody::make(*versionID, locale, seed);
        try {
            versionSide = co_await client->call(MetadataEndpoints::createVersionLocalization(body));
        } catch (...) {
            throw LocalizationWriteError(LocalizationSide::Version, created, std::current_exception());
        }
        m_cache.clear();
    }
    ManagedLocalization result = ManagedLocalization::fromResources(appInfoSide, versionSide);
    // Apple echoes the locale; should an answer lack it, the language is still the one asked for.
    if (result.locale.isEmpty()) {
        result.locale = locale;
    }
    co_return result;
}

QCoro::Task<> LocalizationsService::deleteLocalization(ManagedLocalization localization,
                                                       std::shared_ptr<AppStoreConnectClient> client) {
    LocalizationSides deleted;
    if (localization.versionLocalizationID) {
        try {
            co_await client->call(
                MetadataEndpoints::deleteVersionLocalization(*localization.versionLocalizationID));
        } catch (...) {
            throw LocalizationWriteError(LocalizationSide::Version, deleted, std::current_exception());
        }
        deleted.version = true;
        m_cache.clear();
    }
    if (localization.appInfoLocalizationID) {
        try {
            co_await client->call(
                MetadataEndpoints::deleteAppInfoLocalization(*localization.appInfoLocalizationID));
        } catch (...) {
            throw LocalizationWriteError(LocalizationSide::AppInfo, deleted, std::current_exception());
        }
        m_cache.clear();
    }
}
