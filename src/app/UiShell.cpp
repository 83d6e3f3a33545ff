#include "app/UiShell.h"

#include "api/AccountSettingsViewModel.h"
#include "api/AccountStore.h"
#include "api/AddAccountViewModel.h"
#include "api/ChangeLogViewModel.h"
#include "api/RateLimitStatusViewModel.h"
#include "api/TaskListModel.h"
#include "api/WriteConfirmationViewModel.h"
#include "app/SectionCatalog.h"
#include "testflight/BulkActionsViewModel.h"
#include "workspace/AppPreferencesStore.h"
#include "workspace/AppState.h"
#include "workspace/AppWindowViewModel.h"
#include "workspace/BackgroundSettingsViewModel.h"
#include "workspace/WorkspaceViewModel.h"

#include <QFontDatabase>
#include <QGuiApplication>
#include <QIcon>
#include <QKeySequence>
#include <QQmlApplicationEngine>
#include <QQmlComponent>
#include <QQmlContext>
#include <QQuickWindow>
#include <QThreadPool>
#include <QTimer>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace {
// One shell per engine: the application has one, and tests make one after another.
QHash<QQmlEngine*, UiShell*>& shells() {
    static QHash<QQmlEngine*, UiShell*> byEngine;
    return byEngine;
}
} // namespace

UiShell::UiShell(AppState& state, QQmlApplicationEngine& engine, QObject* parent)
    : QObject(parent), m_state(state), m_engine(engine), m_sections(makeSectionRegistry()),
      m_writeConfirmation(new WriteConfirmationViewModel(this)),
      m_workspace(new WorkspaceViewModel(state, m_sections, *m_writeConfirmation, this)),
      m_accountSettings(new AccountSettingsViewModel(state, this)),
      m_addAccount(new AddAccountViewModel(state.accountStore(), state.platform(), this)),
      m_rateLimit(new RateLimitStatusViewModel(*state.accountStore().rateLimitGovernor(),
                                               state.platform().clock, this)),
      m_changeLog(new ChangeLogViewModel(state.accountStore().auditLog(), this)),
      m_taskList(new TaskListModel(state.taskCenter(), this)),
      m_background(new BackgroundSettingsViewModel(state.preferences(), this)) {
    connect(m_workspace, &WorkspaceViewModel::appWindowRequested, this, &UiShell::openAppWindow);
    shells().insert(&engine, this);
    // A new account shows its apps at once.
    connect(m_addAccount, &AddAccountViewModel::saved, m_workspace, &WorkspaceViewModel::refreshApps);
    connect(m_accountSettings, &AccountSettingsViewModel::keyReimportRequested, m_addAccount,
            &AddAccountViewModel::prefill);
}

UiShell* UiShell::create(QQmlEngine* engine, QJSEngine*) {
    UiShell* shell = shells().value(engine);
    Q_ASSERT_X(shell, "UiShell::create", "the shell is made before its screens are loaded");
    QJSEngine::setObjectOwnership(shell, QJSEngine::CppOwnership);
    return shell;
}

UiShell::~UiShell() {
    shells().remove(&m_engine);
    // The windows go before the models they bind to, so that no binding reads a model that is
    // already gone.
    for (const auto& window : std::as_const(m_appWindows)) {
        delete window.data();
    }
    const auto roots = m_engine.rootObjects();
    qDeleteAll(roots);
}

bool UiShell::load() {
    // The screens are modules compiled into the program, under the import path of Qt's own.
    m_engine.addImportPath(u"qrc:/qt/qml"_s);
    // Reading the system's fonts takes as long as loading the screens, and the first text waits
    // for it; on a second core both are done at once. The font database is thread-safe.
    QThreadPool::globalInstance()->start([] { QFontDatabase::families(); });
    m_engine.load(QUrl(u"qrc:/qt/qml/Varnis/Workspace/Main.qml"_s));
    return mainWindow() != nullptr;
}

void UiShell::start() {
    const QString appID = m_state.preferences().sceneText(u"velmora.main.appID"_s, QString());
    const QString section = m_state.preferences().sceneText(u"velmora.main.section"_s, u"overview"_s);
    // The stored list is on screen in the first frame; Apple is asked once that frame is out, so
    // that setting up the network never holds the window back.
    m_state.showStoredApps();
    if (!appID.isEmpty()) {
        QCoro::connect(m_state.restoreLastState(appID, section), this, [] {});
    }
    QQuickWindow* window = mainWindow();
    if (!window) {
        QCoro::connect(m_state.loadApps(false), this, [] {});
        return;
    }
    auto connection = std::make_shared<QMetaObject::Connection>();
    *connection = connect(window, &QQuickWindow::frameSwapped, this, [this, connection] {
        disconnect(*connection);
        // On the next turn of the event loop: the frame is out, and nothing here holds it up.
        QTimer::singleShot(0, Qt::PreciseTimer, this, &UiShell::afterFirstFrame);
    });
}

void UiShell::afterFirstFrame() {
    // The icon of every window, and of the task bar entry where the desktop does not find the
    // installed one; drawn from its SVG after the first frame rather than before it.
    if (QGuiApplication::windowIcon().isNull()) {
        QGuiApplication::setWindowIcon(QIcon(u":/icons/varnis.svg"_s));
    }
    // Restoring the last app may be loading the list already.
    if (!m_state.isLoadingApps()) {
        QCoro::connect(m_state.loadApps(false), this, [] {});
    }
}

QQuickWindow* UiShell::mainWindow() const {
    const auto roots = m_engine.rootObjects();
    return roots.isEmpty() ? nullptr : qobject_cast<QQuickWindow*>(roots.first());
}

QQuickWindow* UiShell::window(const QString& objectName) const {
    QQuickWindow* main = mainWindow();
    if (!main) {
        return nullptr;
    }
    if (main->objectName() == objectName) {
        return main;
    }
    return main->findChild<QQuickWindow*>(objectName);
}

void UiShell::openBulkActions() {
    if (m_bulkActions) {
        return;
    }
    m_bulkActions = new BulkActionsViewModel(m_state, this);
    BulkActionsViewModel* model = m_bulkActions;
    // Its confirmation shows on the window's one sheet; whatever the sheet decides, the model's
    // request is done with.
    connect(model, &BulkActionsViewModel::pendingWriteChanged, model, [this, model] {
        if (model->pendingWrite()) {
            m_writeConfirmation->present(*model->pendingWrite());
        }
    });
    connect(m_writeConfirmation, &WriteConfirmationViewModel::cancelled, model,
            &BulkActionsViewModel::cancelPendingWrite);
    connect(m_writeConfirmation, &WriteConfirmationViewModel::confirmed, model,
            &BulkActionsViewModel::cancelPendingWrite);
    Q_EMIT bulkActionsChanged();
}

void UiShell::closeBulkActions() {
    if (!m_bulkActions) {
        return;
    }
    // The sheet lets go of the model first; the model goes once the event loop is back.
    auto* model = m_bulkActions;
    m_bulkActions = nullptr;
    Q_EMIT bulkActionsChanged();
    model->deleteLater();
}

QString UiShell::shortcutText(const QString& sequence) const {
    return QKeySequence(sequence).toString(QKeySequence::NativeText);
}

void UiShell::openAppWindow(const QString& appID) {
    const auto section =
        SidebarSections::fromRaw(m_state.preferences().sceneText(u"velmora.window.section"_s, u"overview"_s));
    auto* model =
        new AppWindowViewModel(m_state, m_sections, appID, section.value_or(SidebarSection::Overview));
    QQmlComponent component(&m_engine, QUrl(u"qrc:/qt/qml/Varnis/Workspace/AppWindow.qml"_s));
    QObject* window = component.createWithInitialProperties({{u"model"_s, QVariant::fromValue(model)}});
    if (!window) {
        qWarning("%s", qPrintable(component.errorString()));
        delete model;
        return;
    }
    model->setParent(window);
    // The window goes when it is closed, and its model with it.
    if (auto* quickWindow = qobject_cast<QQuickWindow*>(window)) {
        connect(quickWindow, &QWindow::visibleChanged, window, [window](bool visible) {
            if (!visible) {
                window->deleteLater();
            }
        });
    }
    m_appWindows.append(window);
}

void UiShell::handleMessages(const QStringList& messages) {
    for (const QString& message : messages) {
        const QUrl url(message);
        if (url.scheme().compare(u"velmora"_s, Qt::CaseInsensitive) == 0) {
            m_state.open(url);
        }
    }
    if (QQuickWindow* main = mainWindow()) {
        main->show();
        main->raise();
        main->requestActivate();
    }
}
