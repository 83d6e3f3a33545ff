#include "workspace/AppWindowViewModel.h"

#include "api/WriteConfirmationViewModel.h"
#include "workspace/AppPreferencesStore.h"
#include "workspace/AppState.h"
#include "workspace/SectionHost.h"

using namespace Qt::StringLiterals;

namespace {
std::optional<ManagedApp> findApp(const AppState& state, const QString& id) {
    for (const auto& app : state.apps()) {
        if (app.id == id) {
            return app;
        }
    }
    return std::nullopt;
}
} // namespace

AppWindowViewModel::AppWindowViewModel(AppState& state, const SectionRegistry& registry, QString appID,
                                       SidebarSection section, QObject* parent)
    : QObject(parent), m_state(state), m_appID(std::move(appID)),
      m_presenter(new WriteConfirmationViewModel(this)),
      m_sections(new SectionHost(state, registry, *m_presenter, this)) {
    state.preferences().setSceneText(u"velmora.window.appID"_s, m_appID);
    state.preferences().setSceneText(u"velmora.window.section"_s, SidebarSections::rawValue(section));
    connect(m_sections, &SectionHost::chosen, this, &AppWindowViewModel::goToSection);
    m_sections->selectSection(section);
    followApps();
    connect(&state, &AppState::appsChanged, this, &AppWindowViewModel::followApps);
}

void AppWindowViewModel::followApps() {
    const bool had = m_sections->hasApp();
    m_sections->setApp(findApp(m_state, m_appID));
    if (had != m_sections->hasApp()) {
        Q_EMIT hasAppChanged();
    }
    Q_EMIT windowTitleChanged();
}

bool AppWindowViewModel::hasApp() const {
    return m_sections->hasApp();
}

QString AppWindowViewModel::windowTitle() const {
    const auto& app = m_sections->app();
    return (app ? app->name : u"App nicht gefunden"_s) + u" – Varnis"_s;
}

void AppWindowViewModel::selectSection(const QString& raw) {
    const auto section = SidebarSections::fromRaw(raw);
    if (!section) {
        return;
    }
    m_state.preferences().setSceneText(u"velmora.window.section"_s, raw);
    m_sections->selectSection(*section);
}

void AppWindowViewModel::goToSection(int position) {
    const auto all = SidebarSections::all();
    if (position >= 0 && position < all.size()) {
        selectSection(SidebarSections::rawValue(all[position]));
    }
}
