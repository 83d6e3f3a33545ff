#pragma once

#include "workspace/SidebarSection.h"

#include <QCoro/QCoroTask>
#include <QObject>
#include <QPointer>
#include <QVariantList>

class AppListModel;
class MetadataViewModel;
class VersionsListViewModel;
class AppState;
struct ManagedApp;

// What the main window shows: the app lists, the selected app and section, the demo and empty
// states, and which commands can run. Screens bind to it; every text is composed here.
class WorkspaceViewModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isDemoActive READ isDemoActive NOTIFY stateChanged)
    Q_PROPERTY(bool isDemoModeEnabled READ isDemoModeEnabled WRITE setDemoModeEnabled NOTIFY stateChanged)
    Q_PROPERTY(QString demoBannerText READ demoBannerText CONSTANT)
    Q_PROPERTY(QString demoExplanation READ demoExplanation CONSTANT)
    Q_PROPERTY(bool hasAccount READ hasAccount NOTIFY stateChanged)
    Q_PROPERTY(bool showsEmptyState READ showsEmptyState NOTIFY stateChanged)
    Q_PROPERTY(QString emptyStateTitle READ emptyStateTitle CONSTANT)
    Q_PROPERTY(QString emptyStateText READ emptyStateText CONSTANT)
    Q_PROPERTY(bool isLoadingApps READ isLoadingApps NOTIFY stateChanged)
    Q_PROPERTY(QString appsError READ appsError NOTIFY stateChanged)
    Q_PROPERTY(QString cacheAgeText READ cacheAgeText NOTIFY stateChanged)
    Q_PROPERTY(AppListModel* favoriteApps READ favoriteApps CONSTANT)
    Q_PROPERTY(AppListModel* recentApps READ recentApps CONSTANT)
    Q_PROPERTY(AppListModel* allApps READ allApps CONSTANT)
    Q_PROPERTY(bool showsAppsOfAllAccounts READ showsAppsOfAllAccounts WRITE setShowsAppsOfAllAccounts NOTIFY
                   stateChanged)
    Q_PROPERTY(bool hasSelectedApp READ hasSelectedApp NOTIFY selectionChanged)
    Q_PROPERTY(QString selectedAppID READ selectedAppID NOTIFY selectionChanged)
    Q_PROPERTY(QString selectedAppName READ selectedAppName NOTIFY selectionChanged)
    Q_PROPERTY(QString windowTitle READ windowTitle NOTIFY selectionChanged)
    Q_PROPERTY(QVariantList overviewRows READ overviewRows NOTIFY selectionChanged)
    Q_PROPERTY(QVariantList sections READ sections CONSTANT)
    Q_PROPERTY(QVariantList sidebarSections READ sidebarSections CONSTANT)
    Q_PROPERTY(QString selectedSection READ selectedSection WRITE selectSection NOTIFY selectionChanged)
    Q_PROPERTY(QString selectedSectionTitle READ selectedSectionTitle NOTIFY selectionChanged)
    Q_PROPERTY(bool isSectionBuilt READ isSectionBuilt NOTIFY selectionChanged)
    Q_PROPERTY(QString emptySectionText READ emptySectionText NOTIFY selectionChanged)
    Q_PROPERTY(bool isOnboardingPresented READ isOnboardingPresented WRITE setOnboardingPresented NOTIFY
                   onboardingChanged)
    Q_PROPERTY(QString onboardingTitle READ onboardingTitle CONSTANT)
    Q_PROPERTY(QStringList onboardingSteps READ onboardingSteps CONSTANT)
    Q_PROPERTY(QObject* metadata READ metadata NOTIFY sectionModelsChanged)
    Q_PROPERTY(QObject* versionsList READ versionsList NOTIFY sectionModelsChanged)
    Q_PROPERTY(bool isCommandPaletteAvailable READ isCommandPaletteAvailable CONSTANT)
    Q_PROPERTY(bool isSearchAvailable READ isSearchAvailable CONSTANT)
    Q_PROPERTY(bool isCheckChangesAvailable READ isCheckChangesAvailable CONSTANT)

public:
    explicit WorkspaceViewModel(AppState& state, QObject* parent = nullptr);
    ~WorkspaceViewModel() override;

    bool isDemoActive() const;
    bool isDemoModeEnabled() const;
    void setDemoModeEnabled(bool on);
    QString demoBannerText() const;
    QString demoExplanation() const;
    bool hasAccount() const;
    bool showsEmptyState() const;
    QString emptyStateTitle() const;
    QString emptyStateText() const;
    bool isLoadingApps() const;
    QString appsError() const;
    QString cacheAgeText() const;
    AppListModel* favoriteApps() const { return m_favorites; }
    AppListModel* recentApps() const { return m_recents; }
    AppListModel* allApps() const { return m_all; }
    bool showsAppsOfAllAccounts() const;
    void setShowsAppsOfAllAccounts(bool on);
    bool hasSelectedApp() const;
    QString selectedAppID() const;
    QString selectedAppName() const;
    QString windowTitle() const;
    QVariantList overviewRows() const;
    // In their fixed order (the "Gehe zu" menu) and gathered under their headings (the sidebar).
    QVariantList sections() const { return sectionList(false); }
    QVariantList sidebarSections() const { return sectionList(true); }
    QString selectedSection() const;
    QString selectedSectionTitle() const;
    bool isSectionBuilt() const;
    QString emptySectionText() const;
    bool isOnboardingPresented() const { return m_onboarding; }
    void setOnboardingPresented(bool on);
    QString onboardingTitle() const;
    QStringList onboardingSteps() const;
    // Features that later versions bring; their commands stay disabled instead of pretending.
    bool isCommandPaletteAvailable() const { return false; }
    bool isSearchAvailable() const { return false; }
    bool isCheckChangesAvailable() const { return false; }

    // The models of the selected app's sections; made when an app is selected, loaded when their
    // section is first opened.
    MetadataViewModel* metadataModel() const;
    QObject* metadata() const;
    QObject* versionsList() const;

    Q_INVOKABLE void selectApp(const QString& appID);
    Q_INVOKABLE void toggleFavorite(const QString& appID);
    Q_INVOKABLE void showAllApps();
    Q_INVOKABLE void refreshApps();
    Q_INVOKABLE void selectSection(const QString& raw);
    // "Gehe zu": the section at this position (0-based) of the fixed order.
    Q_INVOKABLE void goToSection(int position);
    Q_INVOKABLE void openInNewWindow();
    Q_INVOKABLE bool isFavorite(const QString& appID) const;

    // Start-up: the list, from the disk cache first and the network behind.
    QCoro::Task<> loadAsync(bool forceRefresh);

    // Shared with the window for one app.
    static QVariantList sectionList(bool grouped);
    static QVariantList overviewRowsFor(const ManagedApp& app, const AppState& state);
    static bool isBuilt(SidebarSection section);
    static QString emptyTextFor(SidebarSection section);

Q_SIGNALS:
    void stateChanged();
    void selectionChanged();
    void onboardingChanged();
    void appWindowRequested(const QString& appID);
    void sectionModelsChanged();

private:
    void startLoad(bool forceRefresh);
    void rebuildSectionModels();
    void loadOpenSection();

    AppState& m_state;
    AppListModel* m_favorites;
    AppListModel* m_recents;
    AppListModel* m_all;
    bool m_onboarding = false;
    QPointer<MetadataViewModel> m_metadata;
    QPointer<VersionsListViewModel> m_versions;
    QString m_sectionModelsAppID;
    bool m_metadataLoaded = false;
    bool m_versionsLoaded = false;
};
