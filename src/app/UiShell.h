#pragma once

#include "workspace/SectionRegistry.h"

#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QtQml/qqmlregistration.h>

class AccountSettingsViewModel;
class AddAccountViewModel;
class AppState;
class BackgroundSettingsViewModel;
class BulkActionsViewModel;
class ChangeLogViewModel;
class QJSEngine;
class QQmlApplicationEngine;
class QQmlEngine;
class QQuickWindow;
class RateLimitStatusViewModel;
class TaskListModel;
class WorkspaceViewModel;
class WriteConfirmationViewModel;

// Puts the screens on the presentation models: makes the models, hands them to QML, loads the
// main window and opens the extra windows. Holds no decisions of its own.
//
// QML reaches it as the singleton `Shell`, the one root object of every screen: `Shell.workspace`,
// `Shell.changeLog`, … — no context properties.
class UiShell : public QObject {
    Q_OBJECT
    QML_NAMED_ELEMENT(Shell)
    QML_SINGLETON
    Q_MOC_INCLUDE("api/AccountSettingsViewModel.h")
    Q_MOC_INCLUDE("api/AddAccountViewModel.h")
    Q_MOC_INCLUDE("api/ChangeLogViewModel.h")
    Q_MOC_INCLUDE("api/RateLimitStatusViewModel.h")
    Q_MOC_INCLUDE("api/TaskListModel.h")
    Q_MOC_INCLUDE("api/WriteConfirmationViewModel.h")
    Q_MOC_INCLUDE("testflight/BulkActionsViewModel.h")
    Q_MOC_INCLUDE("workspace/BackgroundSettingsViewModel.h")
    Q_MOC_INCLUDE("workspace/WorkspaceViewModel.h")
    Q_PROPERTY(WorkspaceViewModel* workspace READ workspace CONSTANT)
    Q_PROPERTY(AccountSettingsViewModel* accountSettings READ accountSettings CONSTANT)
    Q_PROPERTY(AddAccountViewModel* addAccount READ addAccount CONSTANT)
    Q_PROPERTY(RateLimitStatusViewModel* rateLimit READ rateLimit CONSTANT)
    Q_PROPERTY(ChangeLogViewModel* changeLog READ changeLog CONSTANT)
    Q_PROPERTY(TaskListModel* taskList READ taskList CONSTANT)
    Q_PROPERTY(WriteConfirmationViewModel* writeConfirmation READ writeConfirmation CONSTANT)
    Q_PROPERTY(BackgroundSettingsViewModel* backgroundSettings READ backgroundSettings CONSTANT)
    // The model of the bulk-actions sheet while it is open, else null.
    Q_PROPERTY(BulkActionsViewModel* bulkActions READ bulkActions NOTIFY bulkActionsChanged)
public:
    // The shell of the engine that asks; QML never makes one.
    static UiShell* create(QQmlEngine* engine, QJSEngine* scriptEngine);

    UiShell(AppState& state, QQmlApplicationEngine& engine, QObject* parent = nullptr);
    ~UiShell() override;

    // Loads the main window; false if QML could not be loaded.
    bool load();
    // Start-up: lists the apps and restores the last app and section.
    void start();

    QQuickWindow* mainWindow() const;
    QQuickWindow* window(const QString& objectName) const;

    WorkspaceViewModel* workspace() const { return m_workspace; }
    AccountSettingsViewModel* accountSettings() const { return m_accountSettings; }
    AddAccountViewModel* addAccount() const { return m_addAccount; }
    ChangeLogViewModel* changeLog() const { return m_changeLog; }
    WriteConfirmationViewModel* writeConfirmation() const { return m_writeConfirmation; }
    RateLimitStatusViewModel* rateLimit() const { return m_rateLimit; }
    TaskListModel* taskList() const { return m_taskList; }
    BackgroundSettingsViewModel* backgroundSettings() const { return m_background; }
    BulkActionsViewModel* bulkActions() const { return m_bulkActions; }

    // Asks the main window to show its settings (from screens that are not the menu).
    Q_INVOKABLE void requestSettings() { Q_EMIT settingsRequested(); }
    Q_INVOKABLE void requestChangeLog() { Q_EMIT changeLogRequested(); }
    // The bulk-actions sheet owns a model of its own for as long as it is open.
    Q_INVOKABLE void openBulkActions();
    Q_INVOKABLE void closeBulkActions();
    // A key combination as the platform writes it in menus ("Strg+," in German).
    Q_INVOKABLE QString shortcutText(const QString& sequence) const;
    // A window for one app, with a section of its own.
    Q_INVOKABLE void openAppWindow(const QString& appID);
    // Deep links and other messages from a second start.
    void handleMessages(const QStringList& messages);

Q_SIGNALS:
    void settingsRequested();
    void changeLogRequested();
    void bulkActionsChanged();

private:
    void afterFirstFrame();

    AppState& m_state;
    QQmlApplicationEngine& m_engine;
    SectionRegistry m_sections;
    WriteConfirmationViewModel* m_writeConfirmation;
    WorkspaceViewModel* m_workspace;
    AccountSettingsViewModel* m_accountSettings;
    AddAccountViewModel* m_addAccount;
    RateLimitStatusViewModel* m_rateLimit;
    ChangeLogViewModel* m_changeLog;
    TaskListModel* m_taskList;
    BackgroundSettingsViewModel* m_background;
    BulkActionsViewModel* m_bulkActions = nullptr;
    QList<QPointer<QObject>> m_appWindows;
};
