#pragma once

#include "platform/Platform.h"
#include "workspace/ManagedApp.h"
#include "workspace/SidebarSection.h"

#include <QCoro/QCoroTask>
#include <QObject>
#include <QUrl>

#include <memory>
#include <optional>

class AccountStore;
class ModelOperation;
class AppPreferencesStore;
class AppsService;
class QSettings;
class TaskCenter;
class VersionsService;
class BuildsService;
class TestFlightService;
class AnalyticsService;
class LocalizationsService;
class MetadataDraftStore;
class ReportArchiveStore;
class SalesReportsService;
class PerformanceService;
struct Account;

// The one object that holds the running application together: it owns the stores and
// services, the list of apps, the selection and the flags that screens bind to.
class AppState : public QObject {
    Q_OBJECT
public:
    struct Options {
        // Settings for the preferences; none means the user's own.
        std::shared_ptr<QSettings> settings;
    };

    explicit AppState(Platform platform, Options options = {}, QObject* parent = nullptr);
    ~AppState() override;

    const Platform& platform() const { return m_platform; }
    AccountStore& accountStore() const { return *m_accountStore; }
    AppPreferencesStore& preferences() const { return *m_preferences; }
    AppsService& appsService() const { return *m_appsService; }
    TaskCenter& taskCenter() const { return *m_taskCenter; }
    VersionsService& versionsService() const { return *m_versionsService; }
    LocalizationsService& localizationsService() const { return *m_localizationsService; }
    BuildsService& buildsService() const { return *m_buildsService; }
    TestFlightService& testFlightService() const { return *m_testFlightService; }
    AnalyticsService& analyticsService() const { return *m_analyticsService; }
    MetadataDraftStore& metadataDrafts() const { return *m_metadataDrafts; }
    ReportArchiveStore& reportArchive() const { return *m_reportArchive; }
    SalesReportsService& salesReportsService() const { return *m_salesReportsService; }
    PerformanceService& performanceService() const { return *m_performanceService; }

    // Published state.
    const QList<ManagedApp>& apps() const { return m_apps; }
    bool isLoadingApps() const;
    const std::optional<QString>& appsError() const { return m_appsError; }
    const std::optional<QString>& appsFromCacheAge() const { return m_appsFromCacheAge; }
    const std::optional<ManagedApp>& selectedApp() const { return m_selectedApp; }
    std::optional<SidebarSection> selectedSection() const { return m_selectedSection; }
    void setSelectedSection(std::optional<SidebarSection> section);
    bool isDemoModeEnabled() const { return m_isDemoModeEnabled; }
    void setDemoModeEnabled(bool on);

    bool hasAccount() const;
    // Sample data instead of the network: the demo switch is on and no account exists.
    bool isDemoActive() const { return m_isDemoModeEnabled && !hasAccount(); }
    // Why writing is not allowed now, or nothing.
    std::optional<QString> writeBlockedReason() const;

    // Never raises; results land in the published state.
    QCoro::Task<> loadApps(bool forceRefresh);
    // The stored list of the selected account (or the sample apps), at once and without the
    // network, so that the first frame of the window shows apps; loadApps asks Apple afterwards.
    void showStoredApps();
    // Lets one run (the command line) list every account without changing the stored preference.
    void setShowsAppsOfAllAccountsOverride(std::optional<bool> value) { m_allAccountsOverride = value; }
    void selectAccount(const Account& account);
    // Starts over with the account that is selected now (its list replaces whatever is shown),
    // as selecting it would; for when the selection changed underneath, such as a removal.
    void reloadForSelectedAccount();
    void selectApp(const ManagedApp& app);
    void clearSelectedApp();

    // Opens a velmora:// link: selects its app and, if the link names one, its section. An app that
    // is not in the list yet is looked for again after a load. A link that is malformed or names an
    // unknown app changes nothing and reports nothing: it may come from anywhere.
    Q_INVOKABLE void open(const QUrl& url);
    QCoro::Task<> openAsync(QUrl url);

    // Brings back the app and section a window showed last time (its stored texts), unless an app
    // has been selected already. The section is only restored together with its app.
    QCoro::Task<> restoreLastState(QString appID, QString sectionRaw);
    // The same without waiting; the task belongs to this object.
    Q_INVOKABLE void startRestoringLastState(const QString& appID, const QString& sectionRaw);

    // What the next section to open should show first. Whoever sets it sets it before the section,
    // because the section's screen takes it when it opens; taking it clears it.
    const std::optional<QString>& pendingLocale() const { return m_pendingLocale; }
    void setPendingLocale(std::optional<QString> locale);
    std::optional<QString> consumePendingLocale();
    const std::optional<QString>& pendingVersionID() const { return m_pendingVersionID; }
    void setPendingVersionID(std::optional<QString> versionID);
    std::optional<QString> consumePendingVersionID();

Q_SIGNALS:
    void appsChanged();
    void loadingChanged();
    void selectedAppChanged();
    void selectedSectionChanged();
    void demoModeChanged();
    void pendingLocaleChanged();
    void pendingVersionIDChanged();

private:
    void setApps(QList<ManagedApp> apps);
    void dropSamplesUnlessDemo();
    std::optional<ManagedApp> findApp(const QString& id) const;

    Platform m_platform;
    std::unique_ptr<AppPreferencesStore> m_preferences;
    std::unique_ptr<AppsService> m_appsService;
    std::unique_ptr<TaskCenter> m_taskCenter;
    std::unique_ptr<VersionsService> m_versionsService;
    std::unique_ptr<LocalizationsService> m_localizationsService;
    std::unique_ptr<BuildsService> m_buildsService;
    std::unique_ptr<TestFlightService> m_testFlightService;
    std::unique_ptr<AnalyticsService> m_analyticsService;
    std::unique_ptr<MetadataDraftStore> m_metadataDrafts;
    std::unique_ptr<ReportArchiveStore> m_reportArchive;
    std::unique_ptr<SalesReportsService> m_salesReportsService;
    std::unique_ptr<PerformanceService> m_performanceService;
    std::unique_ptr<AccountStore> m_accountStore;

    QList<ManagedApp> m_apps;
    // A load for an account that is no longer selected drops its answer.
    ModelOperation* m_appsLoad;
    std::optional<QString> m_appsError;
    std::optional<QString> m_appsFromCacheAge;
    std::optional<ManagedApp> m_selectedApp;
    std::optional<SidebarSection> m_selectedSection = SidebarSection::Overview;
    bool m_isDemoModeEnabled = false;
    std::optional<QString> m_pendingLocale;
    std::optional<QString> m_pendingVersionID;
    bool m_appsAreSamples = false;
    std::optional<bool> m_allAccountsOverride;
};
