#pragma once

#include "api/TimedCache.h"
#include "metadata/LocalizationRequestBodies.h"
#include "metadata/ManagedLocalization.h"
#include "platform/VarnisError.h"

#include <QCoro/QCoroTask>
#include <QDateTime>
#include <QHash>

#include <exception>
#include <memory>
#include <optional>

class AppStoreConnectClient;
class Clock;

// Which sides a write of one language reached at Apple.
struct LocalizationSides {
    bool appInfo = false;
    bool version = false;
    bool any() const { return appInfo || version; }
    friend bool operator==(const LocalizationSides&, const LocalizationSides&) = default;
};

// A write that touches both sides of a language stopped at `failedSide`. What `completed` names
// was written at Apple and is not undone, so the caller can tell the user which part went
// through. The text is that of the underlying error.
class LocalizationWriteError : public VarnisError {
public:
    LocalizationWriteError(LocalizationSide failedSide, LocalizationSides completed,
                           std::exception_ptr cause);

    LocalizationSide failedSide() const { return m_failedSide; }
    const LocalizationSides& completed() const { return m_completed; }
    // The error the client raised, usually a VelmoraAPIError.
    std::exception_ptr cause() const { return m_cause; }
    QString errorDescription() const override { return m_description; }

private:
    LocalizationSide m_failedSide;
    LocalizationSides m_completed;
    std::exception_ptr m_cause;
    QString m_description;
};

// Reads and writes the store texts of an app per language: the app-info localizations and the
// version localizations, merged by locale, with a short in-memory cache per pair of ids.
class LocalizationsService {
public:
    static constexpr int cacheTTL = 60;
    static constexpr int pageLimit = 50;
    static constexpr int maxPages = 10;

    explicit LocalizationsService(std::shared_ptr<Clock> clock);

    // The id of the app's first app info, if it has one.
    QCoro::Task<std::optional<QString>> appInfoID(QString appID,
                                                  std::shared_ptr<AppStoreConnectClient> client);

    // Both lists, fetched side by side and merged. A side without an id is empty and not asked
    // for. `appID` only names the request; the cache is keyed by the two ids.
    QCoro::Task<QList<ManagedLocalization>> localizations(QString appID, std::optional<QString> appInfoID,
                                                          std::optional<QString> versionID,
                                                          std::shared_ptr<AppStoreConnectClient> client,
                                                          bool forceRefresh);

    // One PATCH each; raise what the client raises.
    QCoro::Task<> updateAppInfoLocalization(AppInfoLocalizationUpdateRequestBody body,
                                            std::shared_ptr<AppStoreConnectClient> client);
    QCoro::Task<> updateVersionLocalization(AppStoreVersionLocalizationUpdateRequestBody body,
                                            std::shared_ptr<AppStoreConnectClient> client);

    // Saves an edited language against what Apple has (`previous`): for each side that exists,
    // a PATCH with only the changed fields, app info first; a side without changes is not sent.
    // Returns the sides that were sent, none when there was nothing to save. A failure raises
    // LocalizationWriteError; a first PATCH that succeeded stays.
    QCoro::Task<LocalizationSides> save(ManagedLocalization edited,
                                        std::optional<ManagedLocalization> previous,
                                        std::shared_ptr<AppStoreConnectClient> client);

    // Adds a language: the app-info side when `appInfoID` is given, then the version side when
    // `versionID` is given, each seeded with the texts of `seed` if one is chosen. Returns the
    // new language as Apple answered. A failure raises LocalizationWriteError.
    QCoro::Task<ManagedLocalization> createLocalization(QString locale, std::optional<QString> appInfoID,
                                                        std::optional<QString> versionID,
                                                        std::optional<ManagedLocalization> seed,
                                                        std::shared_ptr<AppStoreConnectClient> client);

    // Removes a language: the version side first, then the app-info side, each only if it
    // exists. A failure raises LocalizationWriteError.
    QCoro::Task<> deleteLocalization(ManagedLocalization localization,
                                     std::shared_ptr<AppStoreConnectClient> client);

    static QString cacheKey(const std::optional<QString>& appInfoID, const std::optional<QString>& versionID);

private:
    TimedCache<QList<ManagedLocalization>> m_cache;
};
