#include "workspace/AppWindowViewModel.h"

#include "metadata/MetadataViewModel.h"
#include "release/VersionsListViewModel.h"
#include "workspace/AppPreferencesStore.h"
#include "workspace/AppState.h"
#include "workspace/WorkspaceViewModel.h"

using namespace Qt::StringLiterals;

namespace {
const ManagedApp* findApp(const AppState& state, const QString& id) {
    for (const auto& app : state.apps()) {
        if (app.id == id) {
            return &app;
        }
    }
    return nullptr;
}
} // namespace

AppWindowViewModel::AppWindowViewModel(AppState& state, QString appID, SidebarSection section,
                                       QObject* parent)
    : QObject(parent), m_state(state), m_appID(std::move(appID)), m_section(section) {
    connect(&state, &AppState::appsChanged, this, &AppWindowViewModel::changed);
    state.preferences().setSceneText(u"velmora.window.appID"_s, m_appID);
    state.preferences().setSceneText(u"velmora.window.section"_s, SidebarSections::rawValue(m_section));
    if (const auto* app = findApp(state, m_appID)) {
        m_metadata = new MetadataViewModel(state, *app, this);
        m_versions = new VersionsListViewModel(state, *app, this);
    }
    loadOpenSection();
}

QObject* AppWindowViewModel::metadata() const {
    return m_metadata;
}

QObject* AppWindowViewModel::versionsList() const {
    return m_versions;
}

void AppWindowViewModel::loadOpenSection() {
    if (m_section == SidebarSection::AppStoreOptimization && m_metadata && !m_metadataLoaded) {
        m_metadataLoaded = true;
        m_metadata->startLoad(false);
    }
    if (m_section == SidebarSection::Releases && m_versions && !m_versionsLoaded) {
        m_versionsLoaded = true;
        m_versions->startLoad(false);
    }
}

bool AppWindowViewModel::hasApp() const {
    return findApp(m_state, m_appID) != nullptr;
}

QString AppWindowViewModel::appName() const {
    const auto* app = findApp(m_state, m_appID);
    return app ? app->name : u"App nicht gefunden"_s;
}

QString AppWindowViewModel::windowTitle() const {
    return appName() + u" – Varnis"_s;
}

QVariantList AppWindowViewModel::overviewRows() const {
    const auto* app = findApp(m_state, m_appID);
    return app ? WorkspaceViewModel::overviewRowsFor(*app, m_state) : QVariantList();
}

QVariantList AppWindowViewModel::sections() const {
    return WorkspaceViewModel::sectionList(true);
}

void AppWindowViewModel::selectSection(const QString& raw) {
    const auto section = SidebarSections::fromRaw(raw);
    if (!section || *section == m_section) {
        return;
    }
    m_section = *section;
    m_state.preferences().setSceneText(u"velmora.window.section"_s, raw);
    loadOpenSection();
    Q_EMIT changed();
}

bool AppWindowViewModel::isSectionBuilt() const {
    return WorkspaceViewModel::isBuilt(m_section);
}

QString AppWindowViewModel::emptySectionText() const {
    return WorkspaceViewModel::emptyTextFor(m_section);
}
