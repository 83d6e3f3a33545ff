#pragma once

#include "api/PendingWrite.h"
#include "workspace/ManagedApp.h"

#include <QCoro/QCoroTask>
#include <QObject>
#include <QPointer>
#include <QSet>
#include <QStringList>

#include <optional>

class AppState;
class ModelOperation;
class RowListModel;

// One small thing done to many apps of the selected account at once: "what's new" in one
// language, or one tester into the first external group. The apps are done one after the other,
// each gets a result row of its own, and one app's failure stops nothing. There is no undo, no
// concurrency and no cancellation.
//
// The account is the one selected when the run starts; an app of another account (shown with
// "Apps aller Accounts") is skipped with its reason rather than written with the wrong key.
class BulkActionsViewModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(int action READ actionIndex WRITE setActionIndex NOTIFY actionChanged)
    Q_PROPERTY(QStringList actionLabels READ actionLabels CONSTANT)
    Q_PROPERTY(QString explanation READ explanation NOTIFY explanationChanged)
    Q_PROPERTY(bool showsWhatsNewInputs READ showsWhatsNewInputs NOTIFY showsWhatsNewInputsChanged)
    Q_PROPERTY(RowListModel* apps READ apps CONSTANT)
    Q_PROPERTY(QString appsTitle READ appsTitle NOTIFY appsTitleChanged)
    Q_PROPERTY(QString locale READ locale WRITE setLocale NOTIFY localeChanged)
    Q_PROPERTY(QStringList localeChoices READ localeChoices CONSTANT)
    Q_PROPERTY(int localeIndex READ localeIndex WRITE setLocaleIndex NOTIFY localeIndexChanged)
    Q_PROPERTY(QString whatsNewText READ whatsNewText WRITE setWhatsNewText NOTIFY whatsNewTextChanged)
    Q_PROPERTY(QString testerEmail READ testerEmail WRITE setTesterEmail NOTIFY testerEmailChanged)
    Q_PROPERTY(
        QString testerFirstName READ testerFirstName WRITE setTesterFirstName NOTIFY testerFirstNameChanged)
    Q_PROPERTY(
        QString testerLastName READ testerLastName WRITE setTesterLastName NOTIFY testerLastNameChanged)
    Q_PROPERTY(bool isRunning READ isRunning NOTIFY isRunningChanged)
    Q_PROPERTY(bool canRun READ canRun NOTIFY canRunChanged)
    // What the action button follows: canRun, and no run under way.
    Q_PROPERTY(bool isRunEnabled READ isRunEnabled NOTIFY isRunEnabledChanged)
    Q_PROPERTY(RowListModel* results READ results CONSTANT)
    Q_PROPERTY(QString errorMessage READ errorMessageText NOTIFY errorMessageChanged)
    Q_MOC_INCLUDE("api/RowListModel.h")

public:
    // In the order the sheet offers them.
    enum class Action { WhatsNew, AddTester };

    struct Result {
        QString id; // the app's id
        QString appName;
        bool succeeded = false;
        QString message;
        friend bool operator==(const Result&, const Result&) = default;
    };

    // The roles of `apps`, in this order.
    enum AppColumn {
        AppId,
        AppName,
        // The name with the account (apps of all accounts) or the bundle id.
        AppTitle,
        AppIsSelected,
    };
    // The roles of `results`, in this order.
    enum ResultColumn {
        ResultId,
        ResultAppName,
        ResultSucceeded,
        ResultMessage,
        // "✓ Name: Erledigt" as the sheet shows it.
        ResultLine,
    };

    explicit BulkActionsViewModel(AppState& state, QObject* parent = nullptr);
    ~BulkActionsViewModel() override;

    // The label and task title, and the sentence that says what the action does.
    static QString rawValue(Action action);
    static QString explanation(Action action);
    static QList<Action> allActions() { return {Action::WhatsNew, Action::AddTester}; }

    // Published state.
    Action action() const { return m_action; }
    void setAction(Action action);
    const QSet<QString>& selectedAppIDs() const { return m_selectedAppIDs; }
    const QString& locale() const { return m_locale; }
    void setLocale(const QString& locale);
    const QString& whatsNewText() const { return m_whatsNewText; }
    void setWhatsNewText(const QString& text);
    const QString& testerEmail() const { return m_testerEmail; }
    void setTesterEmail(const QString& text);
    const QString& testerFirstName() const { return m_testerFirstName; }
    void setTesterFirstName(const QString& text);
    const QString& testerLastName() const { return m_testerLastName; }
    void setTesterLastName(const QString& text);
    bool isRunning() const;
    const QList<Result>& resultList() const { return m_results; }
    std::optional<QString> errorMessage() const;
    const std::optional<PendingWrite>& pendingWrite() const { return m_pendingWrite; }

    // Computed.
    bool canRun() const;
    bool isRunEnabled() const { return canRun() && !isRunning(); }
    // The apps of AppState in their order whose id is selected.
    QList<ManagedApp> chosenApps() const;

    // Operations.
    Q_INVOKABLE void toggle(const QString& appID);
    Q_INVOKABLE void requestRun();
    Q_INVOKABLE void confirmPendingWrite();
    Q_INVOKABLE void cancelPendingWrite();
    // The same as confirmPendingWrite, finishing when the run is done.
    QCoro::Task<> confirmPendingWriteAsync();

    // For QML.
    int actionIndex() const { return int(m_action); }
    void setActionIndex(int index);
    QStringList actionLabels() const;
    QString explanation() const { return explanation(m_action); }
    bool showsWhatsNewInputs() const { return m_action == Action::WhatsNew; }
    RowListModel* apps() const { return m_apps; }
    QString appsTitle() const;
    QStringList localeChoices() const;
    int localeIndex() const;
    void setLocaleIndex(int index);
    RowListModel* results() const { return m_resultRows; }
    QString errorMessageText() const;

Q_SIGNALS:
    void actionChanged();
    void explanationChanged();
    void showsWhatsNewInputsChanged();
    void appsTitleChanged();
    void localeChanged();
    void localeIndexChanged();
    void whatsNewTextChanged();
    void testerEmailChanged();
    void testerFirstNameChanged();
    void testerLastNameChanged();
    void isRunningChanged();
    void canRunChanged();
    void isRunEnabledChanged();
    void errorMessageChanged();
    void pendingWriteChanged();
    // One app is done; the CLI reports as the run goes.
    void resultAdded(const BulkActionsViewModel::Result& result);

private:
    static QCoro::Task<> performRun(QPointer<BulkActionsViewModel> model);
    // Each app in turn, through the per-app steps of the action (applyWhatsNew, addTester).
    QCoro::Task<> run();
    void appendResult(Result result);
    void publishApps();
    void publishCanRun();
    void finishTask();

    AppState& m_state;
    ModelOperation* m_running;
    RowListModel* m_apps;
    RowListModel* m_resultRows;
    Action m_action = Action::WhatsNew;
    QSet<QString> m_selectedAppIDs;
    QString m_locale = QStringLiteral("de-DE");
    QString m_whatsNewText;
    QString m_testerEmail;
    QString m_testerFirstName;
    QString m_testerLastName;
    QList<Result> m_results;
    std::optional<PendingWrite> m_pendingWrite;
    bool m_publishedCanRun = false;
    bool m_publishedRunEnabled = false;
    // The task bar's entry of the run under way, finished also when the sheet goes first.
    std::optional<QUuid> m_taskID;
};
