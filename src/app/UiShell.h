#pragma once

#include "workspace/SectionRegistry.h"

#include <QObject>
#include <QPointer>
#include <QStringList>

class AccountSettingsViewModel;
class AddAccountViewModel;
class AppState;
class BackgroundSettingsViewModel;
class ChangeLogViewModel;
class QQmlApplicationEngine;
class QQuickWindow;
class RateLimitStatusViewModel;
class TaskListModel;
class WorkspaceViewModel;
class WriteConfirmationViewModel;

// Puts the screens on the presentation models: makes the models, hands them to QML, loads the
// main window and opens the extra windows. Holds no decisions of its own.
class UiShell : public QObject {
    Q_OBJECT
public:
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

    // A key combination as the platform writes it in menus ("Strg+," in German).
    Q_INVOKABLE QString shortcutText(const QVariant& sequence) const;
    // A window for one app, with a section of its own.
    Q_INVOKABLE void openAppWindow(const QString& appID);
    // Deep links and other messages from a second start.
    void handleMessages(const QStringList& messages);

private:
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
    QList<QPointer<QObject>> m_appWindows;
};
