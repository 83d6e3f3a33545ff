#include "workspace/SectionHost.h"

#include "api/RowListModel.h"
#include "workspace/SectionRegistry.h"

using namespace Qt::StringLiterals;

SectionHost::SectionHost(AppState& state, const SectionRegistry& registry,
                         WriteConfirmationViewModel& presenter, QObject* parent)
    : QObject(parent), m_state(state), m_registry(registry), m_presenter(presenter),
      m_sidebar(
          new RowListModel({"raw", "title", "controlTitle", "symbol", "groupTitle", "startsGroup", "shortcut",
                            "position", "isSelected", "isBuilt", "note", "badge", "accessibleName"},
                           this)) {
    refreshSidebar();
}

SectionHost::~SectionHost() = default;

bool SectionHost::isBuilt() const {
    return m_registry.isBuilt(m_section);
}

QString SectionHost::emptyText() const {
    return emptyTextFor(m_section);
}

QString SectionHost::emptyTextFor(SidebarSection section) {
    return u"„%1“ kommt mit einer der nächsten Versionen. Bis dahin lädt dieser Bereich nichts und ändert "
           "nichts."_s.arg(SidebarSections::title(section));
}

QString SectionHost::noAppText() const {
    return u"Wähle links eine App."_s;
}

QString SectionHost::shortcutText(int position) {
    // Ctrl is the platform's command key in Qt's shortcut texts.
    return position < 9 ? u"Ctrl+%1"_s.arg(position + 1) : QString();
}

QObject* SectionHost::sectionModel() const {
    return m_app ? m_models.value(m_section).data() : nullptr;
}

QUrl SectionHost::page() const {
    const auto* entry = m_registry.find(m_section);
    return entry && sectionModel() ? entry->page : QUrl();
}

void SectionHost::setApp(std::optional<ManagedApp> app) {
    const bool sameApp = app && m_app && app->id == m_app->id;
    if (sameApp) {
        m_app = std::move(app);
        return;
    }
    if (!app) {
        // Without an app the screens are hidden; the models stay until the next app replaces
        // them, so that no page sees its model vanish under it.
        if (m_app) {
            m_app.reset();
            Q_EMIT hasAppChanged();
            emitPageChanged();
        }
        return;
    }
    const auto old = m_models;
    m_models.clear();
    const bool hadApp = m_app.has_value();
    m_app = std::move(app);
    openSelected();
    if (!hadApp) {
        Q_EMIT hasAppChanged();
    }
    emitPageChanged();
    // The old pages are gone by now (pageChanged replaced them); their models may follow.
    for (const auto& model : old) {
        if (model) {
            model->deleteLater();
        }
    }
}

void SectionHost::selectSection(SidebarSection section) {
    if (section == m_section) {
        return;
    }
    m_section = section;
    openSelected();
    refreshSidebar();
    Q_EMIT selectedSectionChanged();
    Q_EMIT titleChanged();
    Q_EMIT isBuiltChanged();
    Q_EMIT emptyTextChanged();
    emitPageChanged();
}

void SectionHost::emitPageChanged() {
    Q_EMIT sectionModelChanged();
    Q_EMIT hasPageChanged();
    Q_EMIT pageChanged();
}

void SectionHost::openSelected() {
    if (!m_app || m_models.value(m_section)) {
        return;
    }
    const auto* entry = m_registry.find(m_section);
    if (!entry) {
        return;
    }
    QObject* model = entry->makeModel(SectionContext{m_state, *m_app, m_presenter, this});
    m_models.insert(m_section, model);
    if (entry->open) {
        entry->open(model);
    }
}

void SectionHost::refreshSidebar() {
    QList<RowListModel::Row> rows;
    const auto all = SidebarSections::all();
    std::optional<SidebarGroup> previous;
    for (int position = 0; position < all.size(); ++position) {
        const SidebarSection section = all[position];
        const SidebarGroup group = SidebarSections::group(section);
        QString controlTitle = SidebarSections::title(section);
        // A lone "&" would turn into a keyboard mnemonic on buttons and menu entries.
        controlTitle.replace(u"&"_s, u"&&"_s);
        const bool built = m_registry.isBuilt(section);
        const QString note = built ? QString() : u"noch nicht verfügbar"_s;
        rows.append(
            {SidebarSections::rawValue(section), SidebarSections::title(section), controlTitle,
             SidebarSections::symbol(section), SidebarSections::groupTitle(group),
             !previous || *previous != group, shortcutText(position), position, section == m_section, built,
             note, built ? QString() : u"bald"_s,
             built ? SidebarSections::title(section) : SidebarSections::title(section) + u", "_s + note});
        previous = group;
    }
    m_sidebar->setRows(rows);
}
