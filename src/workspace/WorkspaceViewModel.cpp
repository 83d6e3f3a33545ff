#include "workspace/WorkspaceViewModel.h"

#include "api/AccountStore.h"
#include "reports/SalesViewModel.h"
#include "workspace/AppListModel.h"
#include "workspace/AppPreferencesStore.h"
#include "workspace/AppState.h"
#include "workspace/SectionHost.h"

using namespace Qt::StringLiterals;

WorkspaceViewModel::WorkspaceViewModel(AppState& state, const SectionRegistry& registry,
                                       WriteConfirmationViewModel& presenter, QObject* parent)
    : QObject(parent), m_state(state),
      m_favorites(new AppListModel(state, AppListModel::Kind::Favorites, this)),
      m_recents(new AppListModel(state, AppListModel::Kind::Recent, this)),
      m_all(new AppListModel(state, AppListModel::Kind::All, this)),
      m_sections(new SectionHost(state, registry, presenter, this)),
      m_reports(new SalesViewModel(state, this)) {
    connect(m_all, &AppListModel::countChanged, this, &WorkspaceViewModel::noMatchTextChanged);
    m_recents->setListsAbove({m_favorites});
    m_all->setListsAbove({m_favorites, m_recents});
    const auto demoOrAccount = [this] {
        Q_EMIT isDemoActiveChanged();
        Q_EMIT isDemoModeEnabledChanged();
        Q_EMIT hasAccountChanged();
        Q_EMIT showsEmptyStateChanged();
    };
    connect(&state, &AppState::demoModeChanged, this, demoOrAccount);
    connect(&state.accountStore(), &AccountStore::accountsChanged, this, demoOrAccount);
    connect(&state, &AppState::loadingChanged, this, [this] {
        Q_EMIT isLoadingAppsChanged();
        Q_EMIT allAppsTitleChanged();
    });
    connect(&state, &AppState::appsChanged, this, [this] {
        Q_EMIT appsErrorChanged();
        Q_EMIT cacheAgeTextChanged();
    });
    connect(&state.preferences(), &AppPreferencesStore::changed, this,
            &WorkspaceViewModel::showsAppsOfAllAccountsChanged);
    connect(&state, &AppState::selectedAppChanged, this, [this] {
        leaveReports();
        m_sections->setApp(m_state.selectedApp());
        Q_EMIT hasSelectedAppChanged();
        Q_EMIT selectedAppIDChanged();
        Q_EMIT windowTitleChanged();
    });
    connect(&state, &AppState::selectedSectionChanged, this, [this] {
        leaveReports();
        m_sections->selectSection(m_state.selectedSection().value_or(SidebarSection::Overview));
    });
    connect(m_sections, &SectionHost::chosen, this, &WorkspaceViewModel::goToSection);
    m_sections->setApp(state.selectedApp());
    m_sections->selectSection(state.selectedSection().value_or(SidebarSection::Overview));
    // The main window opens where it was left: the app and section are written back as they change.
    const auto remember = [this] {
        m_state.preferences().setSceneText(u"velmora.main.appID"_s, selectedAppID());
        m_state.preferences().setSceneText(u"velmora.main.section"_s, selectedSection());
    };
    connect(&state, &AppState::selectedAppChanged, this, remember);
    connect(&state, &AppState::selectedSectionChanged, this, remember);
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

QString WorkspaceViewModel::allAppsTitle() const {
    return isLoadingApps() ? u"Alle Apps – wird geladen …"_s : u"Alle Apps"_s;
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
    Q_EMIT showsAppsOfAllAccountsChanged();
    startLoad(true);
}

bool WorkspaceViewModel::hasSelectedApp() const {
    return m_state.selectedApp().has_value();
}

QString WorkspaceViewModel::selectedAppID() const {
    return m_state.selectedApp() ? m_state.selectedApp()->id : QString();
}

QString WorkspaceViewModel::windowTitle() const {
    if (m_showsReports) {
        return reportsTitle() + u" – Varnis"_s;
    }
    return m_state.selectedApp() ? m_state.selectedApp()->name + u" – Varnis"_s : u"Varnis"_s;
}

QString WorkspaceViewModel::selectedSection() const {
    return SidebarSections::rawValue(m_state.selectedSection().value_or(SidebarSection::Overview));
}

void WorkspaceViewModel::setOnboardingPresented(bool on) {
    if (m_onboarding == on) {
        return;
    }
    m_onboarding = on;
    Q_EMIT isOnboardingPresentedChanged();
}

QString WorkspaceViewModel::onboardingTitle() const {
    return u"Erste Schritte mit Varnis"_s;
}

QStringList WorkspaceViewModel::onboardingSteps() const {
    const QStringList steps{
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
    // Numbered as the sheet shows them.
    QStringList numbered;
    for (qsizetype i = 0; i < steps.size(); ++i) {
        numbered.append(QString::number(i + 1) + u". "_s + steps[i]);
    }
    return numbered;
}

QString WorkspaceViewModel::reportsTitle() const {
    return u"Berichte"_s;
}

void WorkspaceViewModel::showReports() {
    if (!m_showsReports) {
        m_showsReports = true;
        Q_EMIT showsReportsChanged();
        Q_EMIT windowTitleChanged();
    }
    // What was kept may have changed on disk or by the command line since.
    m_reports->loadArchive();
}

void WorkspaceViewModel::leaveReports() {
    if (m_showsReports) {
        m_showsReports = false;
        Q_EMIT showsReportsChanged();
        Q_EMIT windowTitleChanged();
    }
}

void WorkspaceViewModel::selectApp(const QString& appID) {
    for (const auto& app : m_state.apps()) {
        if (app.id == appID) {
            // The app that is selected already gets no change signal: back to its section anyway.
            leaveReports();
            m_state.selectApp(app);
            return;
        }
    }
}

void WorkspaceViewModel::setAppFilter(const QString& text) {
    if (m_filter == text) {
        return;
    }
    m_filter = text;
    for (AppListModel* list : {m_favorites, m_recents, m_all}) {
        list->setFilter(text);
    }
    Q_EMIT appFilterChanged();
    Q_EMIT noMatchTextChanged();
}

QString WorkspaceViewModel::noMatchText() const {
    if (m_filter.trimmed().isEmpty() || m_all->count() > 0) {
        return QString();
    }
    return u"Keine App passt zu „%1“."_s.arg(m_filter.trimmed());
}

void WorkspaceViewModel::setPointerOverAppLists(bool over) {
    m_favorites->setFrozen(over);
    m_recents->setFrozen(over);
}

void WorkspaceViewModel::selectAppAt(int row) {
    const QString id = m_all->value(row, AppListModel::AppIdRole - AppListModel::FirstRole).toString();
    if (!id.isEmpty()) {
        selectApp(id);
    }
}

void WorkspaceViewModel::toggleFavorite(const QString& appID) {
    m_state.preferences().toggleFavorite(appID);
}

bool WorkspaceViewModel::isFavorite(const QString& appID) const {
    return m_state.preferences().favoriteAppIDs().contains(appID);
}

void WorkspaceViewModel::showAllApps() {
    leaveReports();
    m_state.clearSelectedApp();
}

void WorkspaceViewModel::refreshApps() {
    startLoad(true);
}

void WorkspaceViewModel::selectSection(const QString& raw) {
    if (auto section = SidebarSections::fromRaw(raw)) {
        leaveReports();
        m_state.setSelectedSection(section);
    }
}

void WorkspaceViewModel::goToSection(int position) {
    const auto all = SidebarSections::all();
    if (!m_state.selectedApp() || position < 0 || position >= all.size()) {
        return;
    }
    leaveReports();
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
