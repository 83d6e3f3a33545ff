#include "workspace/AppState.h"

#include "api/AccountStore.h"
#include "api/AppStoreConnectClient.h"
#include "api/DiskCache.h"
#include "api/ModelOperation.h"
#include "api/PendingWrite.h"
#include "api/TaskCenter.h"
#include "api/TaskCenterWaitAnnouncer.h"
#include "metadata/LocalizationsService.h"
#include "metadata/MetadataDraftStore.h"
#include "platform/Clock.h"
#include "release/BuildsService.h"
#include "release/VersionsService.h"
#include "reports/AnalyticsService.h"
#include "reports/PerformanceService.h"
#include "reports/ReportArchiveStore.h"
#include "reports/SalesReportsService.h"
#include "testflight/TestFlightService.h"
#include "workspace/AppPreferencesStore.h"
#include "workspace/AppsService.h"
#include "workspace/MockData.h"
#include "workspace/VelmoraURL.h"

#include <QCollator>
#include <QCoreApplication>
#include <QDir>
#include <QTimer>

#include <QPointer>
#include <QSettings>
#include <coroutine>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

struct NextTurn {
    bool await_ready() const noexcept { return false; }
    void await_suspend(std::coroutine_handle<> handle) {
        QTimer::singleShot(0, QCoreApplication::instance(), [handle] { handle.resume(); });
    }
    void await_resume() const noexcept {}
};

NextTurn nextEventLoopTurn() {
    return {};
}

} // namespace

AppState::AppState(Platform platform, Options options, QObject* parent)
    : QObject(parent), m_platform(std::move(platform)), m_appsLoad(new ModelOperation(this)) {
    connect(m_appsLoad, &ModelOperation::busyChanged, this, &AppState::loadingChanged);
    m_preferences = std::make_unique<AppPreferencesStore>(options.settings);
    m_appsService = std::make_unique<AppsService>(
        std::make_shared<DiskCache>(m_platform.paths.cacheDirectory(), m_platform.clock), m_platform.clock);
    m_taskCenter = std::make_unique<TaskCenter>();
    m_versionsService = std::make_unique<VersionsService>(
        std::make_shared<DiskCache>(m_platform.paths.cacheDirectory(), m_platform.clock), m_platform.clock);
    m_localizationsService = std::make_unique<LocalizationsService>(m_platform.clock);
    m_buildsService = std::make_unique<BuildsService>(
        std::make_shared<DiskCache>(m_platform.paths.cacheDirectory(), m_platform.clock), m_platform.clock);
    m_testFlightService = std::make_unique<TestFlightService>(m_platform.clock);
    m_analyticsService = std::make_unique<AnalyticsService>(
        m_platform.clock, QDir(m_platform.paths.cacheDirectory()).filePath(u"analytics"_s));
    m_metadataDrafts = std::make_unique<MetadataDraftStore>(m_platform.clock);
    m_reportArchive = std::make_unique<ReportArchiveStore>(
        ReportArchiveStore::standardDirectory(m_platform.paths), m_platform.clock);
    m_salesReportsService = std::make_unique<SalesReportsService>(m_platform.clock);
    m_performanceService = std::make_unique<PerformanceService>(m_platform.clock);
    m_accountStore = std::make_unique<AccountStore>(m_platform);
    m_accountStore->setWaitAnnouncer(
        std::make_shared<TaskCenterWaitAnnouncer>(m_taskCenter.get(), m_platform.clock));
    connect(m_accountStore.get(), &AccountStore::selectedAccountChanged, this, [this] {
        dropSamplesUnlessDemo();
        if (!hasAccount() && !m_appsAreSamples) {
            // The last account went: none of its apps may stay on screen.
            clearSelectedApp();
            if (isDemoActive()) {
                setApps(MockData::apps());
                m_appsAreSamples = true;
            } else {
                setApps({});
            }
        }
        Q_EMIT demoModeChanged();
    });
}

AppState::~AppState() = default;

bool AppState::hasAccount() const {
    return m_accountStore->selectedAccount().has_value();
}

std::optional<QString> AppState::writeBlockedReason() const {
    const auto account = m_accountStore->selectedAccount();
    if (account && account->isReadOnly) {
        return WriteGate::readOnlyMessage();
    }
    if (m_isDemoModeEnabled && !account) {
        return std::nullopt;
    }
    if (!account) {
        return WriteGate::noAccountMessage();
    }
    return std::nullopt;
}

void AppState::setSelectedSection(std::optional<SidebarSection> section) {
    if (m_selectedSection == section) {
        return;
    }
    m_selectedSection = section;
    Q_EMIT selectedSectionChanged();
}

void AppState::setDemoModeEnabled(bool on) {
    if (m_isDemoModeEnabled == on) {
        return;
    }
    m_isDemoModeEnabled = on;
    dropSamplesUnlessDemo();
    Q_EMIT demoModeChanged();
}

void AppState::dropSamplesUnlessDemo() {
    // Sample data must leave no trace once the demo ends, whether the switch went off or an
    // account arrived.
    if (m_appsAreSamples && !isDemoActive()) {
        m_appsAreSamples = false;
        clearSelectedApp();
        setApps({});
    }
}

void AppState::setApps(QList<ManagedApp> apps) {
    m_apps = std::move(apps);
    Q_EMIT appsChanged();
}

bool AppState::isLoadingApps() const {
    return m_appsLoad->isBusy();
}

void AppState::showStoredApps() {
    if (!m_apps.isEmpty()) {
        return;
    }
    if (isDemoActive()) {
        setApps(MockData::apps());
        m_appsAreSamples = true;
        return;
    }
    const auto selected = m_accountStore->selectedAccount();
    if (!selected) {
        return;
    }
    if (auto cached = m_appsService->disk().loadList<ManagedApp>(AppsService::diskKey(selected->id))) {
        m_appsFromCacheAge = m_appsService->disk().ageDescription(cached->storedAt);
        setApps(std::move(cached->value));
    }
}

QCoro::Task<> AppState::loadApps(bool forceRefresh) {
    // Every load supersedes the one before: whatever that one still brings back belongs to a
    // selection that is gone.
    const auto selected = m_accountStore->selectedAccount();
    if (isDemoActive() || !selected) {
        m_appsLoad->abandon();
        if (isDemoActive()) {
            setApps(MockData::apps());
            m_appsAreSamples = true;
        }
        co_return;
    }
    auto run = m_appsLoad->start();
    if (m_apps.isEmpty()) {
        if (auto cached = m_appsService->disk().loadList<ManagedApp>(AppsService::diskKey(selected->id))) {
            m_appsFromCacheAge = m_appsService->disk().ageDescription(cached->storedAt);
            setApps(std::move(cached->value));
            // Let the stored list reach the screen before the network is asked.
            co_await nextEventLoopTurn();
            if (!run) {
                co_return;
            }
        }
    }
    m_appsError.reset();
    Q_EMIT appsChanged();

    const bool allAccounts = m_allAccountsOverride.value_or(m_preferences->showsAppsOfAllAccounts());
    const QList<Account> accounts = allAccounts ? m_accountStore->accounts() : QList<Account>{*selected};
    const bool stampNames = accounts.size() >= 2;
    QList<ManagedApp> collected;
    QStringList failures;
    for (const Account& account : accounts) {
        try {
            auto client = co_await m_accountStore->makeClient(account);
            if (!run) {
                co_return;
            }
            auto apps = co_await m_appsService->apps(account, client, forceRefresh);
            if (!run) {
                co_return;
            }
            for (auto& app : apps) {
                app.accountID = account.id;
                if (stampNames) {
                    app.accountName = account.name;
                }
            }
            collected.append(std::move(apps));
        } catch (const std::exception& error) {
            if (!run) {
                co_return;
            }
            failures.append(account.name + u": "_s + describeError(error));
        }
    }

    if (!collected.isEmpty()) {
        QCollator collator(QLocale(QLocale::German, QLocale::Germany));
        std::stable_sort(collected.begin(), collected.end(),
                         [&collator](const ManagedApp& a, const ManagedApp& b) {
                             return collator.compare(a.name, b.name) < 0;
                         });
        m_appsFromCacheAge.reset();
        m_appsError = failures.isEmpty() ? std::nullopt : std::optional<QString>(failures.join(u" · "_s));
        setApps(std::move(collected));
    } else {
        // An account without apps, or a failure, never clears a list that is already shown.
        m_appsError = failures.isEmpty() ? std::nullopt : std::optional<QString>(failures.first());
        Q_EMIT appsChanged();
    }
    run.succeed();
}

void AppState::selectAccount(const Account& account) {
    if (m_accountStore->selectedAccountID() == account.id) {
        return;
    }
    m_accountStore->setSelectedAccountID(account.id);
    reloadForSelectedAccount();
}

void AppState::reloadForSelectedAccount() {
    clearSelectedApp();
    setApps({});
    QCoro::connect(loadApps(true), this, [] {});
}

void AppState::selectApp(const ManagedApp& app) {
    if (app.accountID && app.accountID != m_accountStore->selectedAccountID() &&
        m_accountStore->account(*app.accountID)) {
        m_accountStore->setSelectedAccountID(app.accountID);
    }
    const bool differs = m_selectedApp != app;
    m_selectedApp = app;
    m_preferences->markUsed(app.id);
    if (differs) {
        Q_EMIT selectedAppChanged();
    }
}

void AppState::clearSelectedApp() {
    if (!m_selectedApp) {
        return;
    }
    m_selectedApp.reset();
    Q_EMIT selectedAppChanged();
}

std::optional<ManagedApp> AppState::findApp(const QString& id) const {
    const auto it =
        std::find_if(m_apps.cbegin(), m_apps.cend(), [&id](const ManagedApp& app) { return app.id == id; });
    if (it == m_apps.cend()) {
        return std::nullopt;
    }
    return *it;
}

void AppState::open(const QUrl& url) {
    QCoro::connect(openAsync(url), this, [] {});
}

QCoro::Task<> AppState::openAsync(QUrl url) {
    QPointer<AppState> self(this);
    try {
        const auto destination = VelmoraURL::destination(url);
        if (!destination) {
            co_return;
        }
        auto app = findApp(destination->appID);
        if (!app) {
            co_await loadApps(false);
            if (!self) {
                co_return;
            }
            app = findApp(destination->appID);
            if (!app) {
                co_return;
            }
        }
        selectApp(*app);
        if (destination->section) {
            setSelectedSection(destination->section);
        }
    } catch (...) {
        // A link comes from outside and is opened without anyone waiting for it: whatever goes
        // wrong, it leaves the state as it was and shows nothing.
    }
}

void AppState::startRestoringLastState(const QString& appID, const QString& sectionRaw) {
    QCoro::connect(restoreLastState(appID, sectionRaw), this, [] {});
}

QCoro::Task<> AppState::restoreLastState(QString appID, QString sectionRaw) {
    if (m_selectedApp || appID.isEmpty()) {
        co_return;
    }
    QPointer<AppState> self(this);
    try {
        if (m_apps.isEmpty()) {
            co_await loadApps(false);
            if (!self) {
                co_return;
            }
            // The user picked an app while the list was loading; that choice wins over last time's.
            if (m_selectedApp) {
                co_return;
            }
        }
        const auto app = findApp(appID);
        if (!app) {
            co_return;
        }
        selectApp(*app);
        if (const auto section = SidebarSections::fromRaw(sectionRaw)) {
            setSelectedSection(section);
        }
    } catch (...) {
        // Restoring is a convenience at start-up; failing it leaves the app list as it is.
    }
}

void AppState::setPendingLocale(std::optional<QString> locale) {
    if (m_pendingLocale == locale) {
        return;
    }
    m_pendingLocale = std::move(locale);
    Q_EMIT pendingLocaleChanged();
}

std::optional<QString> AppState::consumePendingLocale() {
    auto value = std::exchange(m_pendingLocale, std::nullopt);
    if (value) {
        Q_EMIT pendingLocaleChanged();
    }
    return value;
}

void AppState::setPendingVersionID(std::optional<QString> versionID) {
    if (m_pendingVersionID == versionID) {
        return;
    }
    m_pendingVersionID = std::move(versionID);
    Q_EMIT pendingVersionIDChanged();
}

std::optional<QString> AppState::consumePendingVersionID() {
    auto value = std::exchange(m_pendingVersionID, std::nullopt);
    if (value) {
        Q_EMIT pendingVersionIDChanged();
    }
    return value;
}
