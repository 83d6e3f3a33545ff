#include "testflight/BulkActionsViewModel.h"

#include "api/Account.h"
#include "api/AccountStore.h"
#include "api/ModelOperation.h"
#include "api/RowListModel.h"
#include "api/TaskCenter.h"
#include "metadata/AppStoreLocales.h"
#include "metadata/LocalizationRequestBodies.h"
#include "metadata/LocalizationsService.h"
#include "platform/Clock.h"
#include "platform/VarnisError.h"
#include "release/VersionsService.h"
#include "testflight/TestFlightService.h"
#include "workspace/AppState.h"

#include <QCoreApplication>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

// What a run works with, taken when it starts: edits in the sheet while it runs change nothing.
struct Inputs {
    BulkActionsViewModel::Action action;
    QString locale;
    QString whatsNewText;
    NewBetaTester tester;
};

std::optional<QString> blankToAbsent(const QString& text) {
    return text.trimmed().isEmpty() ? std::nullopt : std::optional<QString>(text);
}

// The per-app steps take the application state rather than the model: the model may close with
// its sheet while a step waits for Apple, the state outlives every step.
QCoro::Task<std::optional<QString>> applyWhatsNew(AppState* state, ManagedApp app, QString locale,
                                                  QString text,
                                                  std::shared_ptr<AppStoreConnectClient> client) {
    const auto versions = co_await state->versionsService().versions(app.id, client, true);
    const auto target = std::find_if(versions.cbegin(), versions.cend(), [](const VelmoraVersion& v) {
        return VelmoraVersion::isFullyEditable(v.state);
    });
    if (target == versions.cend()) {
        co_return u"Keine bearbeitbare Version."_s;
    }
    const QString versionID = target->id;
    const auto appInfoID = co_await state->localizationsService().appInfoID(app.id, client);
    if (!appInfoID) {
        co_return u"Keine App-Informationen gefunden."_s;
    }
    const auto merged =
        co_await state->localizationsService().localizations(app.id, appInfoID, versionID, client, true);
    const auto previous = std::find_if(merged.cbegin(), merged.cend(),
                                       [&](const ManagedLocalization& l) { return l.locale == locale; });
    if (previous == merged.cend() || !previous->versionLocalizationID) {
        co_return u"Sprache "_s + locale + u" ist in dieser App nicht angelegt."_s;
    }
    ManagedLocalization edited = *previous;
    edited.whatsNew = text;
    const AppStoreVersionLocalizationUpdateRequestBody body(*previous->versionLocalizationID, edited,
                                                            *previous);
    // The same text as Apple's is done without a call.
    if (body.hasChanges()) {
        co_await state->localizationsService().updateVersionLocalization(body, client);
    }
    co_return std::nullopt;
}

QCoro::Task<std::optional<QString>> addTester(AppState* state, ManagedApp app, NewBetaTester tester,
                                              std::shared_ptr<AppStoreConnectClient> client) {
    const auto groups = co_await state->testFlightService().groups(app.id, client, false);
    const auto external =
        std::find_if(groups.cbegin(), groups.cend(), [](const ManagedBetaGroup& g) { return !g.isInternal; });
    if (external == groups.cend()) {
        co_return u"Keine TestFlight-Gruppe vorhanden."_s;
    }
    const QString groupID = external->id;
    // An address that is in the group already counts as done.
    co_await state->testFlightService().addTester(tester, groupID, client);
    co_return std::nullopt;
}

QCoro::Task<std::optional<QString>> applyTo(AppState* state, Inputs inputs, ManagedApp app, Account account) {
    if (app.accountID && *app.accountID != account.id) {
        co_return u"Übersprungen: Die App gehört zum Account „%1“, die Aktion läuft für „%2“."_s.arg(
            app.accountName.value_or(u"?"_s), account.name);
    }
    auto client = co_await state->accountStore().makeClient(account);
    if (inputs.action == BulkActionsViewModel::Action::WhatsNew) {
        co_return co_await applyWhatsNew(state, app, inputs.locale, inputs.whatsNewText, client);
    }
    co_return co_await addTester(state, app, inputs.tester, client);
}

} // namespace

BulkActionsViewModel::BulkActionsViewModel(AppState& state, QObject* parent)
    : QObject(parent), m_state(state), m_running(new ModelOperation(this)),
      m_apps(new RowListModel({"appID", "name", "title", "isSelected"}, this)),
      m_resultRows(new RowListModel({"appID", "appName", "succeeded", "message", "line"}, this)) {
    connect(m_running, &ModelOperation::busyChanged, this, &BulkActionsViewModel::isRunningChanged);
    connect(m_running, &ModelOperation::busyChanged, this, &BulkActionsViewModel::publishCanRun);
    connect(m_running, &ModelOperation::errorChanged, this, &BulkActionsViewModel::errorMessageChanged);
    connect(&state, &AppState::appsChanged, this, &BulkActionsViewModel::publishApps);
    publishApps();
}

BulkActionsViewModel::~BulkActionsViewModel() {
    // A run cut short by the sheet closing leaves no entry behind in the task bar.
    finishTask();
}

QString BulkActionsViewModel::rawValue(Action action) {
    switch (action) {
    case Action::WhatsNew:
        return u"„Neu in dieser Version“ setzen"_s;
    case Action::AddTester:
        return u"Tester zu einer Gruppe hinzufügen"_s;
    }
    return {};
}

QString BulkActionsViewModel::explanation(Action action) {
    switch (action) {
    case Action::WhatsNew:
        return u"Schreibt denselben Text in die gewählte Sprache der jeweils bearbeitbaren Version."_s;
    case Action::AddTester:
        return u"Fügt dieselbe Adresse der ersten externen TestFlight-Gruppe jeder App hinzu."_s;
    }
    return {};
}

void BulkActionsViewModel::setAction(Action action) {
    if (m_action == action) {
        return;
    }
    // The other action's inputs stay: switching back finds them as they were.
    m_action = action;
    Q_EMIT actionChanged();
    Q_EMIT explanationChanged();
    Q_EMIT showsWhatsNewInputsChanged();
    publishCanRun();
}

void BulkActionsViewModel::setActionIndex(int index) {
    const auto actions = allActions();
    if (index >= 0 && index < actions.size()) {
        setAction(actions[index]);
    }
}

QStringList BulkActionsViewModel::actionLabels() const {
    QStringList labels;
    for (Action action : allActions()) {
        labels.append(rawValue(action));
    }
    return labels;
}

void BulkActionsViewModel::setLocale(const QString& locale) {
    if (m_locale == locale) {
        return;
    }
    m_locale = locale;
    Q_EMIT localeChanged();
    Q_EMIT localeIndexChanged();
}

QStringList BulkActionsViewModel::localeChoices() const {
    QStringList choices;
    for (const QString& code : AppStoreLocales::codes()) {
        choices.append(code + u" · "_s + AppStoreLocales::displayName(code));
    }
    return choices;
}

int BulkActionsViewModel::localeIndex() const {
    return int(AppStoreLocales::codes().indexOf(m_locale));
}

void BulkActionsViewModel::setLocaleIndex(int index) {
    const QStringList& codes = AppStoreLocales::codes();
    if (index >= 0 && index < codes.size()) {
        setLocale(codes[index]);
    }
}

void BulkActionsViewModel::setWhatsNewText(const QString& text) {
    if (m_whatsNewText == text) {
        return;
    }
    m_whatsNewText = text;
    Q_EMIT whatsNewTextChanged();
    publishCanRun();
}

void BulkActionsViewModel::setTesterEmail(const QString& text) {
    if (m_testerEmail == text) {
        return;
    }
    m_testerEmail = text;
    Q_EMIT testerEmailChanged();
    publishCanRun();
}

void BulkActionsViewModel::setTesterFirstName(const QString& text) {
    if (m_testerFirstName != text) {
        m_testerFirstName = text;
        Q_EMIT testerFirstNameChanged();
    }
}

void BulkActionsViewModel::setTesterLastName(const QString& text) {
    if (m_testerLastName != text) {
        m_testerLastName = text;
        Q_EMIT testerLastNameChanged();
    }
}

bool BulkActionsViewModel::isRunning() const {
    return m_running->isBusy();
}

std::optional<QString> BulkActionsViewModel::errorMessage() const {
    return m_running->error();
}

QString BulkActionsViewModel::errorMessageText() const {
    return m_running->errorText();
}

bool BulkActionsViewModel::canRun() const {
    // QString::trimmed takes blanks and line breaks alike.
    const QString& input = m_action == Action::WhatsNew ? m_whatsNewText : m_testerEmail;
    return !m_selectedAppIDs.isEmpty() && !input.trimmed().isEmpty();
}

QList<ManagedApp> BulkActionsViewModel::chosenApps() const {
    QList<ManagedApp> chosen;
    for (const ManagedApp& app : m_state.apps()) {
        if (m_selectedAppIDs.contains(app.id)) {
            chosen.append(app);
        }
    }
    return chosen;
}

QString BulkActionsViewModel::appsTitle() const {
    return u"Apps ("_s + QString::number(chosenApps().size()) + u')';
}

void BulkActionsViewModel::toggle(const QString& appID) {
    if (!m_selectedAppIDs.remove(appID)) {
        m_selectedAppIDs.insert(appID);
    }
    publishApps();
    publishCanRun();
}

void BulkActionsViewModel::requestRun() {
    if (!canRun() || isRunning()) {
        return;
    }
    if (auto reason = m_state.writeBlockedReason()) {
        m_running->setError(*reason);
        return;
    }
    m_running->clearError();
    PendingWrite write;
    write.title = rawValue(m_action);
    write.explanation =
        explanation(m_action) + u" Die Aktion läuft nacheinander; jede App bekommt ihr eigenes Ergebnis."_s;
    for (const ManagedApp& app : chosenApps()) {
        WriteChange change;
        change.field = u"App"_s;
        change.after = app.name;
        write.changes.append(change);
    }
    write.confirmLabel = u"Ausführen"_s;
    // Shown like a deletion though it removes nothing: many apps change at once, without undo.
    write.isDestructive = true;
    write.perform = [model = QPointer<BulkActionsViewModel>(this)]() {
        return performRun(model);
    };
    m_pendingWrite = std::move(write);
    Q_EMIT pendingWriteChanged();
}

void BulkActionsViewModel::cancelPendingWrite() {
    if (m_pendingWrite) {
        m_pendingWrite.reset();
        Q_EMIT pendingWriteChanged();
    }
}

void BulkActionsViewModel::confirmPendingWrite() {
    // The application holds the run: it goes on while the sheet's model lives, whoever asked.
    QCoro::connect(confirmPendingWriteAsync(), QCoreApplication::instance(), [] {});
}

QCoro::Task<> BulkActionsViewModel::confirmPendingWriteAsync() {
    if (!m_pendingWrite) {
        co_return;
    }
    PendingWrite write = std::move(*m_pendingWrite);
    m_pendingWrite.reset();
    Q_EMIT pendingWriteChanged();
    co_await write.perform();
}

QCoro::Task<> BulkActionsViewModel::performRun(QPointer<BulkActionsViewModel> model) {
    if (model) {
        co_await model->run();
    }
}

QCoro::Task<> BulkActionsViewModel::run() {
    const auto account = m_state.accountStore().selectedAccount();
    if (!account) {
        // Demo mode shows the confirmation and sends nothing.
        m_running->setError(m_state.isDemoActive() ? WriteGate::demoMessage()
                                                   : WriteGate::noAccountMessage());
        co_return;
    }
    auto run = m_running->start();
    m_results.clear();
    m_resultRows->setRows({});
    const Inputs inputs{m_action, m_locale, m_whatsNewText,
                        NewBetaTester{m_testerEmail.trimmed(), blankToAbsent(m_testerFirstName),
                                      blankToAbsent(m_testerLastName)}};
    const QList<ManagedApp> apps = chosenApps();
    const qsizetype count = apps.size();
    const QString total = QString::number(count);

    BackgroundTask task;
    task.title = rawValue(inputs.action);
    task.detail = u"0 von "_s + total;
    task.startedAt = m_state.platform().clock->now();
    m_taskID = task.id;
    m_state.taskCenter().start(task);
    AppState* state = &m_state;

    for (qsizetype i = 0; i < count; ++i) {
        const ManagedApp& app = apps[i];
        state->taskCenter().update(task.id, double(i) / double(count),
                                   QString::number(i + 1) + u" von "_s + total + u": "_s + app.name);
        std::optional<QString> failure;
        try {
            failure = co_await applyTo(state, inputs, app, *account);
        } catch (const std::exception& error) {
            failure = describeError(error);
        }
        if (!run) {
            co_return;
        }
        appendResult(Result{app.id, app.name, !failure, failure.value_or(u"Erledigt"_s)});
    }
    finishTask();
    run.succeed();
}

void BulkActionsViewModel::appendResult(Result result) {
    m_results.append(result);
    QList<RowListModel::Row> rows;
    for (const Result& r : std::as_const(m_results)) {
        rows.append({r.id, r.appName, r.succeeded, r.message,
                     (r.succeeded ? u"✓ "_s : u"✗ "_s) + r.appName + u": "_s + r.message});
    }
    m_resultRows->setRows(rows);
    Q_EMIT resultAdded(result);
}

void BulkActionsViewModel::finishTask() {
    if (m_taskID) {
        m_state.taskCenter().finish(*m_taskID);
        m_taskID.reset();
    }
}

void BulkActionsViewModel::publishApps() {
    QList<RowListModel::Row> rows;
    for (const ManagedApp& app : m_state.apps()) {
        rows.append({app.id, app.name, app.name + u"  ·  "_s + app.accountName.value_or(app.bundleID),
                     m_selectedAppIDs.contains(app.id)});
    }
    m_apps->setRows(rows);
    Q_EMIT appsTitleChanged();
}

void BulkActionsViewModel::publishCanRun() {
    if (const bool now = canRun(); now != m_publishedCanRun) {
        m_publishedCanRun = now;
        Q_EMIT canRunChanged();
    }
    if (const bool now = isRunEnabled(); now != m_publishedRunEnabled) {
        m_publishedRunEnabled = now;
        Q_EMIT isRunEnabledChanged();
    }
}
