#include "workspace/WorkspaceViewModel.h"

#include "api/AccountStore.h"
#include "metadata/MetadataViewModel.h"
#include "release/VersionsListViewModel.h"
#include "workspace/AppListModel.h"
#include "workspace/AppPreferencesStore.h"
#include "workspace/AppState.h"

#include <QPointer>

using namespace Qt::StringLiterals;

WorkspaceViewModel::WorkspaceViewModel(AppState& state, QObject* parent)
    : QObject(parent), m_state(state),
      m_favorites(new AppListModel(state, AppListModel::Kind::Favorites, this)),
      m_recents(new AppListModel(state, AppListModel::Kind::Recent, this)),
      m_all(new AppListModel(state, AppListModel::Kind::All, this)) {
    connect(&state, &AppState::appsChanged, this, &WorkspaceViewModel::stateChanged);
    connect(&state, &AppState::loadingChanged, this, &WorkspaceViewModel::stateChanged);
    connect(&state, &AppState::demoModeChanged, this, &WorkspaceViewModel::stateChanged);
    connect(&state.accountStore(), &AccountStore::accountsChanged, this, &WorkspaceViewModel::stateChanged);
    connect(&state.preferences(), &AppPreferencesStore::changed, this, &WorkspaceViewModel::stateChanged);
    connect(&state, &AppState::selectedAppChanged, this, &WorkspaceViewModel::selectionChanged);
    connect(&state, &AppState::selectedAppChanged, this, &WorkspaceViewModel::rebuildSectionModels);
    connect(&state, &AppState::selectedSectionChanged, this, &WorkspaceViewModel::loadOpenSection);
    connect(&state, &AppState::selectedSectionChanged, this, &WorkspaceViewModel::selectionChanged);
    // The main window opens where it was left: the app and section are written back as they change.
    connect(this, &WorkspaceViewModel::selectionChanged, this, [this] {
        m_state.preferences().setSceneText(u"velmora.main.appID"_s, selectedAppID());
        m_state.preferences().setSceneText(u"velmora.main.section"_s, selectedSection());
    });
}

WorkspaceViewModel::~WorkspaceViewModel() = default;

bool WorkspaceViewModel::isDemoActive() const {
    return m_state.isDemoActive();
}

bool WorkspaceViewModel::isDemoModeEnabled() const {
    return m_state.isDemoModeEnabled();
}

void WorkspaceViewModel::setDemoModeEnabled(bool on) {
    if (m_state.isDemoModeEnabled() == on) {
        return;
    }
    m_state.setDemoModeEnabled(on);
    startLoad(false);
}

QString WorkspaceViewModel::demoBannerText() const {
    return u"Demo-Modus: Beispieldaten, es wird nichts an App Store Connect geschickt."_s;
}

QString WorkspaceViewModel::demoExplanation() const {
    return u"Ohne Account zeigt der Demo-Modus alle Bereiche mit Beispieldaten. Es wird nichts an App Store "
           "Connect geschickt. Sobald ein Account verbunden ist, gilt immer der Account."_s;
}

bool WorkspaceViewModel::hasAccount() const {
    return m_state.hasAccount();
}

bool WorkspaceViewModel::showsEmptyState() const {
    return !m_state.hasAccount() && !m_state.isDemoModeEnabled();
}

QString WorkspaceViewModel::emptyStateTitle() const {
    return u"Noch kein Account verbunden"_s;
}

QString WorkspaceViewModel::emptyStateText() const {
    return u"Lege in den Einstellungen einen API-Schlüssel von App Store Connect an – oder sieh dir alles "
           u"erst "
           "im Demo-Modus mit Beispieldaten an."_s;
}

bool WorkspaceViewModel::isLoadingApps() const {
    return m_state.isLoadingApps();
}

QString WorkspaceViewModel::appsError() const {
    return m_state.appsError().value_or(QString());
}

QString WorkspaceViewModel::cacheAgeText() const {
    const auto& age = m_state.appsFromCacheAge();
    return age ? u"Gespeicherte Liste von "_s + *age + u" – wird gerade aktualisiert."_s : QString();
}

bool WorkspaceViewModel::showsAppsOfAllAccounts() const {
    return m_state.preferences().showsAppsOfAllAccounts();
}

void WorkspaceViewModel::setShowsAppsOfAllAccounts(bool on) {
    if (showsAppsOfAllAccounts() == on) {
        return;
    }
    m_state.preferences().setShowsAppsOfAllAccounts(on);
    startLoad(true);
}

bool WorkspaceViewModel::hasSelectedApp() const {
    return m_state.selectedApp().has_value();
}

QString WorkspaceViewModel::selectedAppID() const {
    return m_state.selectedApp() ? m_state.selectedApp()->id : QString();
}

QString WorkspaceViewModel::selectedAppName() const {
    return m_state.selectedApp() ? m_state.selectedApp()->name : QString();
}

QString WorkspaceViewModel::windowTitle() const {
    return m_state.selectedApp() ? m_state.selectedApp()->name + u" – Varnis"_s : u"Varnis"_s;
}

QVariantList WorkspaceViewModel::overviewRows() const {
    return m_state.selectedApp() ? overviewRowsFor(*m_state.selectedApp(), m_state) : QVariantList();
}

QVariantList WorkspaceViewModel::overviewRowsFor(const ManagedApp& app, const AppState& state) {
    auto row = [](const QString& label, const QString& value) {
        return QVariantMap{{u"label"_s, label}, {u"value"_s, value}};
    };
    QString account = app.accountName.value_or(QString());
    if (account.isEmpty() && app.accountID) {
        if (auto owner = state.accountStore().account(*app.accountID)) {
            account = owner->name;
        }
    }
    if (account.isEmpty()) {
        account = state.isDemoActive() ? u"Demo-Modus"_s : u"–"_s;
    }
    return {
        row(u"Name"_s, app.name),
        row(u"Bundle-ID"_s, app.bundleID),
        row(u"SKU"_s, app.sku.value_or(u"–"_s)),
        row(u"Primärsprache"_s, app.primaryLocale.value_or(u"–"_s)),
        row(u"Account"_s, account),
        row(u"App-ID"_s, app.id),
    };
}

QVariantList WorkspaceViewModel::sectionList(bool grouped) {
    QList<SidebarSection> order = SidebarSections::all();
    if (grouped) {
        // The sidebar gathers sections under their headings; the numbering of "Gehe zu" keeps the
        // fixed order.
        std::stable_sort(order.begin(), order.end(), [](SidebarSection a, SidebarSection b) {
            return SidebarSections::group(a) < SidebarSections::group(b);
        });
    }
    QVariantList list;
    std::optional<SidebarGroup> previous;
    for (const auto section : order) {
        const SidebarGroup group = SidebarSections::group(section);
        const int position = int(SidebarSections::all().indexOf(section));
        QString controlTitle = SidebarSections::title(section);
        // A lone "&" would turn into a keyboard mnemonic on buttons and menu entries.
        controlTitle.replace(u"&"_s, u"&&"_s);
        list.append(QVariantMap{
            {u"raw"_s, SidebarSections::rawValue(section)},
            {u"title"_s, SidebarSections::title(section)},
            {u"controlTitle"_s, controlTitle},
            {u"symbol"_s, SidebarSections::symbol(section)},
            {u"groupTitle"_s, SidebarSections::groupTitle(group)},
            {u"startsGroup"_s, !previous || *previous != group},
            // Ctrl is the platform's command key in Qt's shortcut texts.
            {u"shortcut"_s, position < 9 ? u"Ctrl+%1"_s.arg(position + 1) : QString()},
            {u"position"_s, position},
        });
        previous = group;
    }
    return list;
}

QString WorkspaceViewModel::selectedSection() const {
    return SidebarSections::rawValue(m_state.selectedSection().value_or(SidebarSection::Overview));
}

QString WorkspaceViewModel::selectedSectionTitle() const {
    return SidebarSections::title(m_state.selectedSection().value_or(SidebarSection::Overview));
}

bool WorkspaceViewModel::isBuilt(SidebarSection section) {
    return section == SidebarSection::Overview || section == SidebarSection::AppStoreOptimization ||
           section == SidebarSection::Releases;
}

MetadataViewModel* WorkspaceViewModel::metadataModel() const {
    return m_metadata;
}

QObject* WorkspaceViewModel::metadata() const {
    return m_metadata;
}

QObject* WorkspaceViewModel::versionsList() const {
    return m_versions;
}

void WorkspaceViewModel::rebuildSectionModels() {
    // Without a selected app the old models stay until the next app replaces them: the screens
    // are hidden then, and a page never sees its model vanish under it.
    const QString appID = selectedAppID();
    if (appID.isEmpty() || appID == m_sectionModelsAppID) {
        return;
    }
    m_sectionModelsAppID = appID;
    QPointer<MetadataViewModel> oldMetadata = m_metadata;
    QPointer<VersionsListViewModel> oldVersions = m_versions;
    m_metadataLoaded = false;
    m_versionsLoaded = false;
    m_metadata = new MetadataViewModel(m_state, *m_state.selectedApp(), this);
    m_versions = new VersionsListViewModel(m_state, *m_state.selectedApp(), this);
    Q_EMIT sectionModelsChanged();
    if (oldMetadata) {
        oldMetadata->deleteLater();
    }
    if (oldVersions) {
        oldVersions->deleteLater();
    }
    loadOpenSection();
}

void WorkspaceViewModel::loadOpenSection() {
    const auto section = m_state.selectedSection().value_or(SidebarSection::Overview);
    if (section == SidebarSection::AppStoreOptimization && m_metadata && !m_metadataLoaded) {
        m_metadataLoaded = true;
        m_metadata->startLoad(false);
    }
    if (section == SidebarSection::Releases && m_versions && !m_versionsLoaded) {
        m_versionsLoaded = true;
        m_versions->startLoad(false);
    }
}

QString WorkspaceViewModel::emptyTextFor(SidebarSection section) {
    return u"„%1“ kommt mit einer der nächsten Versionen. Bis dahin lädt dieser Bereich nichts und ändert "
           "nichts."_s.arg(SidebarSections::title(section));
}

bool WorkspaceViewModel::isSectionBuilt() const {
    return isBuilt(m_state.selectedSection().value_or(SidebarSection::Overview));
}

QString WorkspaceViewModel::emptySectionText() const {
    return emptyTextFor(m_state.selectedSection().value_or(SidebarSection::Overview));
}

void WorkspaceViewModel::setOnboardingPresented(bool on) {
    if (m_onboarding == on) {
        return;
    }
    m_onboarding = on;
    Q_EMIT onboardingChanged();
}

QString WorkspaceViewModel::onboardingTitle() const {
    return u"Erste Schritte mit Varnis"_s;
}

QStringList WorkspaceViewModel::onboardingSteps() const {
    return {
        u"Lege in App Store Connect unter „Benutzer und Zugriff → Integrationen“ einen API-Schlüssel an und "
        u"lade "
        "die .p8-Datei herunter."_s,
        u"Öffne die Einstellungen, wähle „Account hinzufügen“ und trage Issuer-ID, Key-ID und die Datei ein. "
        u"Der "
        "Schlüssel landet nur im Schlüsselbund."_s,
        u"Mit „Verbindung testen“ prüfst du den Schlüssel; „Zugriffe messen“ zeigt, was er darf."_s,
        u"Vor jedem Schreiben zeigt Varnis Feld für Feld, was sich ändert; das Änderungsprotokoll hält "
        u"Apples "
        "Request-ID fest."_s,
    };
}

void WorkspaceViewModel::selectApp(const QString& appID) {
    for (const auto& app : m_state.apps()) {
        if (app.id == appID) {
            m_state.selectApp(app);
            return;
        }
    }
}

void WorkspaceViewModel::toggleFavorite(const QString& appID) {
    m_state.preferences().toggleFavorite(appID);
}

bool WorkspaceViewModel::isFavorite(const QString& appID) const {
    return m_state.preferences().favoriteAppIDs().contains(appID);
}

void WorkspaceViewModel::showAllApps() {
    m_state.clearSelectedApp();
}

void WorkspaceViewModel::refreshApps() {
    startLoad(true);
}

void WorkspaceViewModel::selectSection(const QString& raw) {
    if (auto section = SidebarSections::fromRaw(raw)) {
        m_state.setSelectedSection(section);
    }
}

void WorkspaceViewModel::goToSection(int position) {
    const auto all = SidebarSections::all();
    if (!m_state.selectedApp() || position < 0 || position >= all.size()) {
        return;
    }
    m_state.setSelectedSection(all[position]);
}

void WorkspaceViewModel::openInNewWindow() {
    if (m_state.selectedApp()) {
        Q_EMIT appWindowRequested(m_state.selectedApp()->id);
    }
}

QCoro::Task<> WorkspaceViewModel::loadAsync(bool forceRefresh) {
    co_await m_state.loadApps(forceRefresh);
}

void WorkspaceViewModel::startLoad(bool forceRefresh) {
    QCoro::connect(m_state.loadApps(forceRefresh), this, [] {});
}
