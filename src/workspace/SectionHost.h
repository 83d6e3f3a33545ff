#pragma once

#include "workspace/ManagedApp.h"
#include "workspace/SidebarSection.h"

#include <QMap>
#include <QObject>
#include <QPointer>
#include <QUrl>

#include <optional>

class AppState;
class RowListModel;
class SectionRegistry;
class WriteConfirmationViewModel;

// The sections of one app in one window: which one is open, its title, the sidebar rows, and
// the presentation model of each section shown so far, made through the section registry. The
// models live until another app is shown, so that a section keeps what it loaded and what the
// user typed while the user looks elsewhere.
class SectionHost : public QObject {
    Q_OBJECT
    Q_MOC_INCLUDE("api/RowListModel.h")
    Q_PROPERTY(bool hasApp READ hasApp NOTIFY hasAppChanged)
    Q_PROPERTY(QString selectedSection READ selectedSectionRaw NOTIFY selectedSectionChanged)
    Q_PROPERTY(QString title READ title NOTIFY titleChanged)
    Q_PROPERTY(bool isBuilt READ isBuilt NOTIFY isBuiltChanged)
    Q_PROPERTY(QString emptyText READ emptyText NOTIFY emptyTextChanged)
    Q_PROPERTY(QObject* sectionModel READ sectionModel NOTIFY sectionModelChanged)
    Q_PROPERTY(QUrl page READ page NOTIFY pageChanged)
    Q_PROPERTY(bool hasPage READ hasPage NOTIFY hasPageChanged)
    Q_PROPERTY(RowListModel* sidebar READ sidebar CONSTANT)
    Q_PROPERTY(QString noAppText READ noAppText CONSTANT)
public:
    // The roles of `sidebar`, in this order.
    enum SidebarColumn {
        Raw,
        Title,
        ControlTitle,
        Symbol,
        GroupTitle,
        StartsGroup,
        Shortcut,
        Position,
        IsSelected,
        IsBuilt,
        Note,
        Badge,
        AccessibleName
    };

    SectionHost(AppState& state, const SectionRegistry& registry, WriteConfirmationViewModel& presenter,
                QObject* parent = nullptr);
    ~SectionHost() override;

    bool hasApp() const { return m_app.has_value(); }
    const std::optional<ManagedApp>& app() const { return m_app; }
    SidebarSection selectedSection() const { return m_section; }
    QString selectedSectionRaw() const { return SidebarSections::rawValue(m_section); }
    QString title() const { return SidebarSections::title(m_section); }
    bool isBuilt() const;
    QString emptyText() const;
    QObject* sectionModel() const;
    QUrl page() const;
    bool hasPage() const { return !page().isEmpty(); }
    RowListModel* sidebar() const { return m_sidebar; }
    QString noAppText() const;
    // The model of a section shown so far for this app, or null.
    QObject* modelFor(SidebarSection section) const { return m_models.value(section); }

    // Shows this app; another app drops the models of the one before.
    void setApp(std::optional<ManagedApp> app);
    void selectSection(SidebarSection section);
    // A click or key on the sidebar row at this position; the window decides what it means.
    Q_INVOKABLE void choose(int position) {
        if (position >= 0) {
            Q_EMIT chosen(position);
        }
    }

    // The fixed order of the sections, in rows for the sidebar and the "Gehe zu" menu.
    static QString shortcutText(int position);
    static QString emptyTextFor(SidebarSection section);

Q_SIGNALS:
    void chosen(int position);
    void hasAppChanged();
    void selectedSectionChanged();
    void titleChanged();
    void isBuiltChanged();
    void emptyTextChanged();
    void sectionModelChanged();
    void hasPageChanged();
    // Also when only the model behind the same page changed: the page is built anew for it.
    void pageChanged();

private:
    void openSelected();
    void refreshSidebar();
    // The page and its model were replaced; pageChanged comes last, when the other two are current.
    void emitPageChanged();

    AppState& m_state;
    const SectionRegistry& m_registry;
    WriteConfirmationViewModel& m_presenter;
    std::optional<ManagedApp> m_app;
    SidebarSection m_section = SidebarSection::Overview;
    QMap<SidebarSection, QPointer<QObject>> m_models;
    RowListModel* m_sidebar;
};
