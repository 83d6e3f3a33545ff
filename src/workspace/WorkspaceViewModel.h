#pragma once

#include "workspace/SidebarSection.h"

#include <QCoro/QCoroTask>
#include <QObject>
#include <QPointer>
#include <QStringList>

class AppListModel;
class AppState;
class SalesViewModel;
class SectionHost;
class SectionRegistry;
class WriteConfirmationViewModel;

// What the main window shows: the app lists, the selected app and section, the demo and empty
// states, and which commands can run. Screens bind to it; every text is composed here.
class WorkspaceViewModel : public QObject {
    Q_OBJECT
    Q_MOC_INCLUDE("workspace/SectionHost.h")
    Q_MOC_INCLUDE("reports/SalesViewModel.h")
    Q_PROPERTY(bool isDemoActive READ isDemoActive NOTIFY isDemoActiveChanged)
    Q_PROPERTY(bool isDemoModeEnabled READ isDemoModeEnabled WRITE setDemoModeEnabled NOTIFY
                   isDemoModeEnabledChanged)
    Q_PROPERTY(QString demoBannerText READ demoBannerText CONSTANT)
    Q_PROPERTY(bool hasAccount READ hasAccount NOTIFY hasAccountChanged)
    Q_PROPERTY(bool showsEmptyState READ showsEmptyState NOTIFY showsEmptyStateChanged)
    Q_PROPERTY(QString emptyStateTitle READ emptyStateTitle CONSTANT)
    Q_PROPERTY(QString emptyStateText READ emptyStateText CONSTANT)
    Q_PROPERTY(bool isLoadingApps READ isLoadingApps NOTIFY isLoadingAppsChanged)
    Q_PROPERTY(QString allAppsTitle READ allAppsTitle NOTIFY allAppsTitleChanged)
    Q_PROPERTY(QString appsError READ appsError NOTIFY appsErrorChanged)
    Q_PROPERTY(QString cacheAgeText READ cacheAgeText NOTIFY cacheAgeTextChanged)
    Q_PROPERTY(QString appFilter READ appFilter WRITE setAppFilter NOTIFY appFilterChanged)
    Q_PROPERTY(QString noMatchText READ noMatchText NOTIFY noMatchTextChanged)
    Q_PROPERTY(AppListModel* favoriteApps READ favoriteApps CONSTANT)
    Q_PROPERTY(AppListModel* recentApps READ recentApps CONSTANT)
    Q_PROPERTY(AppListModel* allApps READ allApps CONSTANT)
    Q_PROPERTY(bool showsAppsOfAllAccounts READ showsAppsOfAllAccounts WRITE setShowsAppsOfAllAccounts NOTIFY
                   showsAppsOfAllAccountsChanged)
    Q_PROPERTY(bool hasSelectedApp READ hasSelectedApp NOTIFY hasSelectedAppChanged)
    Q_PROPERTY(QString selectedAppID READ selectedAppID NOTIFY selectedAppIDChanged)
    Q_PROPERTY(QString windowTitle READ windowTitle NOTIFY windowTitleChanged)
    Q_PROPERTY(SectionHost* sections READ sections CONSTANT)
    Q_PROPERTY(bool isOnboardingPresented READ isOnboardingPresented WRITE setOnboardingPresented NOTIFY
                   isOnboardingPresentedChanged)
    Q_PROPERTY(QString onboardingTitle READ onboardingTitle CONSTANT)
    Q_PROPERTY(QStringList onboardingSteps READ onboardingSteps CONSTANT)
    Q_PROPERTY(bool isCommandPaletteAvailable READ isCommandPaletteAvailable CONSTANT)
    Q_PROPERTY(bool isSearchAvailable READ isSearchAvailable CONSTANT)
    Q_PROPERTY(bool isCheckChangesAvailable READ isCheckChangesAvailable CONSTANT)
    // The account's reports (sales, finance, the kept ones) in place of an app's section.
    Q_PROPERTY(bool showsReports READ showsReports NOTIFY showsReportsChanged)
    Q_PROPERTY(SalesViewModel* reports READ reports CONSTANT)
    Q_PROPERTY(QString reportsTitle READ reportsTitle CONSTANT)

public:
    WorkspaceViewModel(AppState& state, const SectionRegistry& registry,
                       WriteConfirmationViewModel& presenter, QObject* parent = nullptr);
    ~WorkspaceViewModel() override;

    bool isDemoActive() const;
    bool isDemoModeEnabled() const;
    void setDemoModeEnabled(bool on);
    QString demoBannerText() const;
    bool hasAccount() const;
    bool showsEmptyState() const;
    QString emptyStateTitle() const;
    QString emptyStateText() const;
    bool isLoadingApps() const;
    QString allAppsTitle() const;
    QString appsError() const;
    QString cacheAgeText() const;
    QString appFilter() const { return m_filter; }
    void setAppFilter(const QString& text);
    // Shown instead of the list when the filter leaves no app.
    QString noMatchText() const;
    AppListModel* favoriteApps() const { return m_favorites; }
    AppListModel* recentApps() const { return m_recents; }
    AppListModel* allApps() const { return m_all; }
    bool showsAppsOfAllAccounts() const;
    void setShowsAppsOfAllAccounts(bool on);
    bool hasSelectedApp() const;
    QString selectedAppID() const;
    QString windowTitle() const;
    SectionHost* sections() const { return m_sections; }
    QString selectedSection() const;
    bool isOnboardingPresented() const { return m_onboarding; }
    void setOnboardingPresented(bool on);
    QString onboardingTitle() const;
    QStringList onboardingSteps() const;
    // Features that later versions bring; their commands stay disabled instead of pretending.
    bool isCommandPaletteAvailable() const { return false; }
    bool isSearchAvailable() const { return false; }
    bool isCheckChangesAvailable() const { return false; }
    bool showsReports() const { return m_showsReports; }
    SalesViewModel* reports() const { return m_reports; }
    QString reportsTitle() const;

    Q_INVOKABLE void selectApp(const QString& appID);
    // The app in that row of "Alle Apps" (the keyboard's choice).
    Q_INVOKABLE void selectAppAt(int row);
    Q_INVOKABLE void toggleFavorite(const QString& appID);
    Q_INVOKABLE void showAllApps();
    Q_INVOKABLE void refreshApps();
    Q_INVOKABLE void selectSection(const QString& raw);
    // "Gehe zu": the section at this position (0-based) of the order the sidebar shows.
    Q_INVOKABLE void goToSection(int position);
    Q_INVOKABLE void openInNewWindow();
    Q_INVOKABLE bool isFavorite(const QString& appID) const;
    // While the pointer is over the app lists, the short lists above "Alle Apps" keep their size,
    // so that the row under the pointer stays the row that gets the click.
    Q_INVOKABLE void setPointerOverAppLists(bool over);
    // Sales and finance belong to the account, not to an app: they take the place of the section
    // until an app or a section is chosen.
    Q_INVOKABLE void showReports();

    // Start-up: the list, from the disk cache first and the network behind.
    QCoro::Task<> loadAsync(bool forceRefresh);

Q_SIGNALS:
    void isDemoActiveChanged();
    void isDemoModeEnabledChanged();
    void hasAccountChanged();
    void showsEmptyStateChanged();
    void isLoadingAppsChanged();
    void allAppsTitleChanged();
    void appsErrorChanged();
    void cacheAgeTextChanged();
    void showsAppsOfAllAccountsChanged();
    void hasSelectedAppChanged();
    void selectedAppIDChanged();
    void windowTitleChanged();
    void isOnboardingPresentedChanged();
    void appFilterChanged();
    void noMatchTextChanged();
    void appWindowRequested(const QString& appID);
    void showsReportsChanged();

private:
    void startLoad(bool forceRefresh);
    void leaveReports();

    AppState& m_state;
    AppListModel* m_favorites;
    AppListModel* m_recents;
    AppListModel* m_all;
    SectionHost* m_sections;
    SalesViewModel* m_reports;
    bool m_showsReports = false;
    bool m_onboarding = false;
    QString m_filter;
};
