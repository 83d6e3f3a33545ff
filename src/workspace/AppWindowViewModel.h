#pragma once

#include "workspace/SidebarSection.h"

#include <QObject>

class AppState;
class SectionHost;
class SectionRegistry;
class WriteConfirmationViewModel;

// A window that shows one app with a section of its own, independent of the main window. It has
// its own write-confirmation sheet, so that a write asked for here is confirmed here.
class AppWindowViewModel : public QObject {
    Q_OBJECT
    Q_MOC_INCLUDE("workspace/SectionHost.h")
    Q_MOC_INCLUDE("api/WriteConfirmationViewModel.h")
    Q_PROPERTY(QString appID READ appID CONSTANT)
    Q_PROPERTY(bool hasApp READ hasApp NOTIFY hasAppChanged)
    Q_PROPERTY(QString windowTitle READ windowTitle NOTIFY windowTitleChanged)
    Q_PROPERTY(SectionHost* sections READ sections CONSTANT)
    Q_PROPERTY(WriteConfirmationViewModel* writeConfirmation READ writeConfirmation CONSTANT)
public:
    AppWindowViewModel(AppState& state, const SectionRegistry& registry, QString appID,
                       SidebarSection section, QObject* parent = nullptr);

    QString appID() const { return m_appID; }
    bool hasApp() const;
    QString windowTitle() const;
    SectionHost* sections() const { return m_sections; }
    WriteConfirmationViewModel* writeConfirmation() const { return m_presenter; }

    Q_INVOKABLE void selectSection(const QString& raw);
    // "Gehe zu" in this window: the section at this position of the sidebar's order.
    Q_INVOKABLE void goToSection(int position);

Q_SIGNALS:
    void hasAppChanged();
    void windowTitleChanged();

private:
    void followApps();

    AppState& m_state;
    QString m_appID;
    WriteConfirmationViewModel* m_presenter;
    SectionHost* m_sections;
};
