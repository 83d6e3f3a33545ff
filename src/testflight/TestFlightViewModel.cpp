#include "testflight/TestFlightViewModel.h"

#include "api/AccountStore.h"
#include "api/AppStoreConnectClient.h"
#include "api/ModelOperation.h"
#include "api/RateLimitGovernor.h"
#include "api/RowListModel.h"
#include "api/TaskCenter.h"
#include "platform/Clock.h"
#include "platform/VarnisError.h"
#include "release/BuildsService.h"
#include "testflight/BetaAppInfoViewModel.h"
#include "testflight/BetaBuildDetailViewModel.h"
#include "testflight/BetaFeedbackViewModel.h"
#include "testflight/BetaTesterImportFile.h"
#include "testflight/BetaTesterImportParsing.h"
#include "testflight/TestFlightService.h"
#include "workspace/AppState.h"
#include "workspace/MockData.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QLocale>
#include <QPointer>

using namespace Qt::StringLiterals;

namespace {

QString testerStateText(const ASCBetaTesterState& state) {
    using S = ASCBetaTesterState::Case;
    switch (state.value()) {
    case S::NotInvited:
        return u"Nicht eingeladen"_s;
    case S::Invited:
        return u"Eingeladen"_s;
    case S::Accepted:
        return u"Angenommen"_s;
    case S::Installed:
        return u"Installiert"_s;
    case S::Revoked:
        return u"Zurückgezogen"_s;
    case S::Unknown:
        break;
    }
    return state.raw().isEmpty() ? u"–"_s : state.raw();
}

QString groupDetail(const ManagedBetaGroup& group) {
    QStringList parts;
    if (group.publicLinkEnabled) {
        parts.append(group.publicLink ? u"Öffentlicher Link aktiv"_s : u"Öffentlicher Link angefordert"_s);
    }
    if (group.publicLinkLimitEnabled && group.publicLinkLimit) {
        parts.append(u"höchstens %1 Tester"_s.arg(*group.publicLinkLimit));
    }
    if (group.hasAccessToAllBuilds) {
        parts.append(u"alle Builds"_s);
    }
    return parts.join(u" · "_s);
}

std::optional<QString> nonBlank(const QString& text) {
    const QString trimmed = text.trimmed();
    return trimmed.isEmpty() ? std::nullopt : std::optional<QString>(trimmed);
}

// Runs a confirmed deletion once the user confirmed it; the model may be gone by then.
QCoro::Task<> deleteConfirmed(QPointer<TestFlightViewModel> model, QString title, QString groupID) {
    if (model && !model->stopsInDemo(title)) {
        co_await model->deleteGroupConfirmed(groupID);
    }
}

// Runs a confirmed import once the user confirmed it; the model may be gone by then.
QCoro::Task<> importConfirmed(QPointer<TestFlightViewModel> model, QString title, QString groupID,
                              QList<ImportedBetaTester> testers) {
    if (model && !model->stopsInDemo(title)) {
        co_await model->importTestersConfirmed(groupID, testers);
    }
}

NewBetaTester toNewTester(const ImportedBetaTester& imported) {
    return NewBetaTester{imported.email, imported.firstName, imported.lastName};
}

// "15. Jan. 2026": the date alone, abbreviated.
QString shortDate(const QDateTime& date) {
    return QLocale(QLocale::German).toString(date.toLocalTime().date(), u"d. MMM yyyy"_s);
}

} // namespace

TestFlightViewModel::TestFlightViewModel(AppState& state, ManagedApp app, QObject* parent)
    : QObject(parent), m_state(state), m_app(std::move(app)), m_loadingGroups(new ModelOperation(this)),
      m_loadingTesters(new ModelOperation(this)), m_groupAction(new ModelOperation(this)),
      m_savingTester(new ModelOperation(this)), m_savingGroup(new ModelOperation(this)),
      m_loadingBuilds(new ModelOperation(this)), m_readingImportFile(new ModelOperation(this)),
      m_importing(new ModelOperation(this)), m_assignment(new ModelOperation(this)),
      m_groupRows(new RowListModel({"groupId", "name", "kindText", "detailText", "isInternal", "isSelected",
                                    "hasPublicLink", "accessibleName"},
                                   this)),
      m_testerRows(
          new RowListModel({"testerId", "displayName", "email", "stateText", "accessibleName"}, this)),
      m_buildRows(new RowListModel({"buildId", "buildNumber", "uploadedText", "expiryText", "internalState",
                                    "externalState", "isSelected", "accessibleName"},
                                   this)),
      m_importNameRows(new RowListModel({"name"}, this)),
      m_importRejectedRows(new RowListModel({"lineLabel", "lineText"}, this)),
      m_statRows(new RowListModel({"label", "value"}, this)),
      m_assignmentRows(
          new RowListModel({"groupId", "name", "isAssigned", "isPending", "accessibleName"}, this)) {
    connect(m_loadingBuilds, &ModelOperation::busyChanged, this,
            &TestFlightViewModel::isLoadingBuildsChanged);
    connect(m_loadingBuilds, &ModelOperation::errorChanged, this, &TestFlightViewModel::buildsErrorChanged);
    connect(m_readingImportFile, &ModelOperation::busyChanged, this,
            &TestFlightViewModel::isReadingImportFileChanged);
    connect(m_importing, &ModelOperation::busyChanged, this, &TestFlightViewModel::isImportingChanged);
    connect(m_importing, &ModelOperation::busyChanged, this, &TestFlightViewModel::canImportChanged);
    connect(this, &TestFlightViewModel::selectedGroupNameChanged, this,
            &TestFlightViewModel::importTargetCaptionChanged);
    connect(m_assignment, &ModelOperation::busyChanged, this,
            &TestFlightViewModel::isLoadingAssignmentChanged);
    connect(m_assignment, &ModelOperation::errorChanged, this, &TestFlightViewModel::assignmentErrorChanged);
    connect(m_loadingGroups, &ModelOperation::busyChanged, this,
            &TestFlightViewModel::isLoadingGroupsChanged);
    connect(m_loadingGroups, &ModelOperation::errorChanged, this, &TestFlightViewModel::groupsErrorChanged);
    connect(m_loadingTesters, &ModelOperation::busyChanged, this,
            &TestFlightViewModel::isLoadingTestersChanged);
    connect(m_loadingTesters, &ModelOperation::errorChanged, this, &TestFlightViewModel::testersErrorChanged);
    connect(m_groupAction, &ModelOperation::errorChanged, this,
            &TestFlightViewModel::groupActionErrorChanged);
    connect(m_savingGroup, &ModelOperation::errorChanged, this,
            &TestFlightViewModel::groupActionErrorChanged);
    connect(m_savingGroup, &ModelOperation::busyChanged, this, &TestFlightViewModel::isSavingGroupChanged);
    connect(m_savingTester, &ModelOperation::busyChanged, this, &TestFlightViewModel::isSavingTesterChanged);
    connect(m_savingTester, &ModelOperation::errorChanged, this, &TestFlightViewModel::addTesterErrorChanged);
    m_appInfo = new BetaAppInfoViewModel(state, m_app, this);
    m_feedback = new BetaFeedbackViewModel(state, m_app, this);
    m_buildDetail = new BetaBuildDetailViewModel(state, this);
    // A tab's data is asked for when the tab is first shown, not with the groups.
    connect(this, &TestFlightViewModel::selectedTabChanged, this, [this] {
        if (m_selectedTab == AppInfoTab) {
            m_appInfo->startLoad(false);
        } else if (m_selectedTab == FeedbackTab) {
            m_feedback->startLoad(false);
        }
    });
    // The chosen build's notes, review and usage follow the choice in the list.
    connect(this, &TestFlightViewModel::selectedBuildIDChanged, this, [this] {
        for (const ManagedBuild& build : std::as_const(m_builds)) {
            if (build.id == m_selectedBuildID) {
                m_buildDetail->showBuild(build.id, build.buildNumber);
            }
        }
    });
}

TestFlightViewModel::~TestFlightViewModel() = default;

bool TestFlightViewModel::isDemo() const {
    return m_state.isDemoActive();
}

QDateTime TestFlightViewModel::now() const {
    return m_state.platform().clock->now();
}

void TestFlightViewModel::selectTab(int tab) {
    if (tab < GroupsTab || tab > FeedbackTab || tab == m_selectedTab) {
        return;
    }
    m_selectedTab = tab;
    Q_EMIT selectedTabChanged();
    // The builds are asked for when their tab is first shown.
    if (tab == BuildsTab && !m_haveLoadedBuilds && !m_loadingBuilds->isBusy()) {
        startLoadBuilds(false);
    }
}

QStringList TestFlightViewModel::tabTitles() {
    return {u"Gruppen"_s, u"Builds"_s, u"App-Infos"_s, u"Feedback"_s};
}

bool TestFlightViewModel::isLoadingGroups() const {
    return m_loadingGroups->isBusy();
}

QString TestFlightViewModel::groupsError() const {
    return m_loadingGroups->errorText();
}

QString TestFlightViewModel::externalGroupsHint() {
    return u"Externe Tester brauchen eine Gruppe. Interne Gruppen legt Apple selbst an."_s;
}

QString TestFlightViewModel::selectedGroupID() const {
    return m_selectedGroup ? m_selectedGroup->id : QString();
}

QString TestFlightViewModel::selectedGroupName() const {
    return m_selectedGroup ? m_selectedGroup->name : QString();
}

bool TestFlightViewModel::isLoadingTesters() const {
    return m_loadingTesters->isBusy();
}

QString TestFlightViewModel::testersError() const {
    return m_loadingTesters->errorText();
}

void TestFlightViewModel::setStatusMessage(const QString& message) {
    if (m_statusMessage != message) {
        m_statusMessage = message;
        Q_EMIT statusMessageChanged();
    }
}

void TestFlightViewModel::setSelectedGroup(std::optional<ManagedBetaGroup> group) {
    const QString oldID = selectedGroupID();
    const QString oldName = selectedGroupName();
    m_selectedGroup = std::move(group);
    if (oldID != selectedGroupID()) {
        // The testers shown belong to the group that was selected; a load still under way for
        // it must not land under the new one.
        m_loadingTesters->abandon();
        m_testers.clear();
        publishTesters();
        Q_EMIT selectedGroupIDChanged();
    }
    if (oldName != selectedGroupName()) {
        Q_EMIT selectedGroupNameChanged();
    }
    Q_EMIT canDeleteSelectedGroupChanged();
    Q_EMIT canCopySelectedLinkChanged();
    publishGroups();
}

void TestFlightViewModel::publishGroups() {
    QList<RowListModel::Row> rows;
    rows.reserve(m_groups.size());
    for (const auto& group : m_groups) {
        const QString kind = group.isInternal ? u"Intern"_s : u"Extern"_s;
        const QString detail = groupDetail(group);
        rows.append({group.id, group.name, kind, detail, group.isInternal,
                     m_selectedGroup && m_selectedGroup->id == group.id, group.publicLink.has_value(),
                     group.name + u", "_s + kind + (detail.isEmpty() ? QString() : u", "_s + detail)});
    }
    m_groupRows->setRows(rows);
    if (m_haveLoadedBuilds) {
        publishBuilds();
    }
}

void TestFlightViewModel::publishTesters() {
    QList<RowListModel::Row> rows;
    rows.reserve(m_testers.size());
    for (const auto& tester : m_testers) {
        const QString state = testerStateText(tester.state);
        rows.append({tester.id, tester.displayName(), tester.email, state,
                     tester.displayName() + u", "_s + tester.email + u", "_s + state});
    }
    m_testerRows->setRows(rows);
}

QCoro::Task<> TestFlightViewModel::load(bool forceRefresh) {
    co_await loadGroups(forceRefresh);
    if (m_selectedGroup) {
        co_await loadTesters(forceRefresh);
    }
}

void TestFlightViewModel::startLoad(bool forceRefresh) {
    QCoro::connect(load(forceRefresh), this, [] {});
}

QCoro::Task<> TestFlightViewModel::loadGroups(bool forceRefresh) {
    auto run = m_loadingGroups->start();
    QList<ManagedBetaGroup> groups;
    if (isDemo()) {
        groups = MockData::betaGroups(m_app.id, now());
    } else {
        const auto account = m_state.accountStore().selectedAccount();
        if (!account) {
            run.fail(VelmoraAPIError::notConfigured().errorDescription());
            co_return;
        }
        try {
            auto client = co_await m_state.accountStore().makeClient(*account);
            if (!run) {
                co_return;
            }
            groups = co_await m_state.testFlightService().groups(m_app.id, client, forceRefresh);
            if (!run) {
                co_return;
            }
        } catch (const std::exception& error) {
            run.fail(u"Gruppen konnten nicht geladen werden"_s, error);
            co_return;
        }
    }
    m_groups = groups;
    std::optional<ManagedBetaGroup> selected;
    for (const auto& group : m_groups) {
        if (m_selectedGroup && group.id == m_selectedGroup->id) {
            selected = group;
        }
    }
    if (!selected && !m_groups.isEmpty()) {
        selected = m_groups.first();
    }
    setSelectedGroup(selected);
    publishGroups();
    run.succeed();
}

QCoro::Task<> TestFlightViewModel::loadTesters(bool forceRefresh) {
    auto run = m_loadingTesters->start();
    if (!m_selectedGroup) {
        run.succeed();
        co_return;
    }
    const QString groupID = m_selectedGroup->id;
    QList<ManagedBetaTester> testers;
    if (isDemo()) {
        testers = MockData::betaTesters(groupID);
    } else {
        const auto account = m_state.accountStore().selectedAccount();
        if (!account) {
            run.fail(VelmoraAPIError::notConfigured().errorDescription());
            co_return;
        }
        try {
            auto client = co_await m_state.accountStore().makeClient(*account);
            if (!run) {
                co_return;
            }
            testers = co_await m_state.testFlightService().testers(groupID, client, forceRefresh);
            if (!run) {
                co_return;
            }
        } catch (const std::exception& error) {
            run.fail(u"Tester konnten nicht geladen werden"_s, error);
            co_return;
        }
    }
    m_testers = testers;
    publishTesters();
    run.succeed();
}

void TestFlightViewModel::selectGroup(const QString& groupID) {
    if (groupID == selectedGroupID()) {
        return;
    }
    for (const auto& group : m_groups) {
        if (group.id == groupID) {
            setSelectedGroup(group);
            QCoro::connect(loadTesters(false), this, [] {});
            return;
        }
    }
}

void TestFlightViewModel::cancelPendingWrite() {
    if (m_pendingWrite) {
        m_pendingWrite.reset();
        Q_EMIT pendingWriteChanged();
    }
}

void TestFlightViewModel::confirmPendingWrite() {
    if (!m_pendingWrite) {
        return;
    }
    PendingWrite write = std::move(*m_pendingWrite);
    m_pendingWrite.reset();
    Q_EMIT pendingWriteChanged();
    if (write.perform) {
        QCoro::connect(write.perform(), this, [] {});
    }
}

// --- Writes on groups and testers -----------------------------------------------------------

std::optional<QString> TestFlightViewModel::ensureWritable() const {
    if (auto reason = m_state.writeBlockedReason()) {
        return reason;
    }
    if (isDemo()) {
        return WriteGate::demoMessage();
    }
    return std::nullopt;
}

bool TestFlightViewModel::stopsInDemo(const QString& title) {
    if (!isDemo()) {
        return false;
    }
    setStatusMessage(u"Demo-Modus: „"_s + title + u"“ wurde nur angezeigt – an Apple ging nichts."_s);
    return true;
}

void TestFlightViewModel::setPendingWrite(PendingWrite write) {
    m_pendingWrite = std::move(write);
    Q_EMIT pendingWriteChanged();
}

std::optional<ManagedBetaGroup> TestFlightViewModel::findGroup(const QString& groupID) const {
    for (const auto& group : m_groups) {
        if (group.id == groupID) {
            return group;
        }
    }
    return std::nullopt;
}

std::optional<ManagedBetaTester> TestFlightViewModel::findTester(const QString& testerID) const {
    for (const auto& tester : m_testers) {
        if (tester.id == testerID) {
            return tester;
        }
    }
    return std::nullopt;
}

QString TestFlightViewModel::groupActionError() const {
    return m_savingGroup->hasError() ? m_savingGroup->errorText() : m_groupAction->errorText();
}

bool TestFlightViewModel::isSavingTester() const {
    return m_savingTester->isBusy();
}

QString TestFlightViewModel::addTesterError() const {
    return m_savingTester->errorText();
}

bool TestFlightViewModel::isSavingGroup() const {
    return m_savingGroup->isBusy();
}

void TestFlightViewModel::setAddingTester(bool on) {
    if (m_isAddingTester == on) {
        return;
    }
    m_isAddingTester = on;
    m_savingTester->clearError();
    Q_EMIT isAddingTesterChanged();
}

void TestFlightViewModel::setNewTesterEmail(const QString& text) {
    if (m_newTesterEmail != text) {
        m_newTesterEmail = text;
        Q_EMIT newTesterEmailChanged();
    }
}

void TestFlightViewModel::setNewTesterFirstName(const QString& text) {
    if (m_newTesterFirstName != text) {
        m_newTesterFirstName = text;
        Q_EMIT newTesterFirstNameChanged();
    }
}

void TestFlightViewModel::setNewTesterLastName(const QString& text) {
    if (m_newTesterLastName != text) {
        m_newTesterLastName = text;
        Q_EMIT newTesterLastNameChanged();
    }
}

void TestFlightViewModel::setCreatingGroup(bool on) {
    if (m_isCreatingGroup != on) {
        m_isCreatingGroup = on;
        m_savingGroup->clearError();
        Q_EMIT isCreatingGroupChanged();
    }
}

void TestFlightViewModel::setNewGroupName(const QString& name) {
    if (m_newGroupName != name) {
        m_newGroupName = name;
        Q_EMIT newGroupNameChanged();
    }
}

QString TestFlightViewModel::newGroupNote() {
    return u"Neue Gruppen sind extern: ihre Tester brauchen einen Build, der die Beta-Prüfung bestanden hat."_s;
}

QCoro::Task<> TestFlightViewModel::confirmAddTester() {
    QPointer<TestFlightViewModel> self(this);
    if (auto reason = ensureWritable()) {
        m_savingTester->setError(*reason);
        co_return;
    }
    if (!m_selectedGroup) {
        m_savingTester->setError(u"Es ist keine Gruppe gewählt."_s);
        co_return;
    }
    const QString email = m_newTesterEmail.trimmed();
    if (!BetaTesterImportParsing::isValidAddress(email)) {
        m_savingTester->setError(u"„"_s + email + u"“ ist keine gültige E-Mail-Adresse."_s);
        co_return;
    }
    const NewBetaTester tester{email, nonBlank(m_newTesterFirstName), nonBlank(m_newTesterLastName)};
    const QString groupID = m_selectedGroup->id;
    const auto account = m_state.accountStore().selectedAccount();
    auto run = m_savingTester->start();
    try {
        auto client = co_await m_state.accountStore().makeClient(*account);
        if (!self) {
            co_return;
        }
        co_await m_state.testFlightService().addTester(tester, groupID, client);
        if (!self) {
            co_return;
        }
    } catch (const std::exception& error) {
        run.fail(error);
        co_return;
    }
    run.succeed();
    setNewTesterEmail(QString());
    setNewTesterFirstName(QString());
    setNewTesterLastName(QString());
    setAddingTester(false);
    if (selectedGroupID() == groupID) {
        co_await loadTesters(true);
    }
}

QCoro::Task<> TestFlightViewModel::removeTester(QString testerID) {
    QPointer<TestFlightViewModel> self(this);
    if (auto reason = ensureWritable()) {
        m_groupAction->setError(*reason);
        co_return;
    }
    if (!m_selectedGroup || !findTester(testerID)) {
        co_return;
    }
    const QString groupID = m_selectedGroup->id;
    const auto account = m_state.accountStore().selectedAccount();
    auto run = m_groupAction->start();
    try {
        auto client = co_await m_state.accountStore().makeClient(*account);
        if (!self) {
            co_return;
        }
        co_await m_state.testFlightService().removeTester(testerID, groupID, client);
        if (!self) {
            co_return;
        }
    } catch (const std::exception& error) {
        run.fail(error);
        co_return;
    }
    if (selectedGroupID() == groupID) {
        m_testers.removeIf([&](const ManagedBetaTester& t) { return t.id == testerID; });
        publishTesters();
    }
    run.succeed();
}

QCoro::Task<> TestFlightViewModel::resendInvitation(QString testerID) {
    QPointer<TestFlightViewModel> self(this);
    if (auto reason = ensureWritable()) {
        m_groupAction->setError(*reason);
        co_return;
    }
    const auto tester = findTester(testerID);
    if (!tester) {
        co_return;
    }
    const QString appID = m_app.id;
    const auto account = m_state.accountStore().selectedAccount();
    auto run = m_groupAction->start();
    try {
        auto client = co_await m_state.accountStore().makeClient(*account);
        if (!self) {
            co_return;
        }
        co_await m_state.testFlightService().resendInvitation(testerID, appID, client);
        if (!self) {
            co_return;
        }
    } catch (const std::exception& error) {
        run.fail(error);
        co_return;
    }
    run.succeed();
    setStatusMessage(u"Einladung an "_s + tester->displayName() + u" erneut verschickt."_s);
}

QCoro::Task<> TestFlightViewModel::createGroup() {
    QPointer<TestFlightViewModel> self(this);
    if (auto reason = ensureWritable()) {
        m_savingGroup->setError(*reason);
        co_return;
    }
    const QString name = m_newGroupName.trimmed();
    if (name.isEmpty()) {
        m_savingGroup->setError(u"Die Gruppe braucht einen Namen."_s);
        co_return;
    }
    BetaGroupCreateRequestBody body;
    body.appID = m_app.id;
    body.name = name;
    const auto account = m_state.accountStore().selectedAccount();
    auto run = m_savingGroup->start();
    m_groupAction->clearError();
    ManagedBetaGroup created;
    try {
        auto client = co_await m_state.accountStore().makeClient(*account);
        if (!self) {
            co_return;
        }
        created = co_await m_state.testFlightService().createGroup(body, client);
        if (!self) {
            co_return;
        }
    } catch (const std::exception& error) {
        run.fail(error);
        co_return;
    }
    run.succeed();
    setNewGroupName(QString());
    setCreatingGroup(false);
    setStatusMessage(u"Gruppe „"_s + created.name + u"“ angelegt."_s);
    // The new group is the one the user wants to fill next.
    setSelectedGroup(created);
    co_await load(true);
}

void TestFlightViewModel::requestDeleteGroup(const QString& groupID) {
    // Demo mode shows the sheet; its confirmation sends nothing.
    if (auto reason = m_state.writeBlockedReason()) {
        m_groupAction->setError(*reason);
        return;
    }
    const auto group = findGroup(groupID);
    // Apple makes and removes internal groups itself.
    if (!group || group->isInternal) {
        return;
    }
    m_groupAction->clearError();
    m_savingGroup->clearError();
    PendingWrite write;
    write.title = u"Gruppe löschen"_s;
    write.explanation =
        u"„"_s + group->name +
        u"“ wird gelöscht. Die Tester bleiben im Account, verlieren aber den Zugang über diese "
        u"Gruppe – ein öffentlicher Link der Gruppe wird ungültig."_s;
    WriteChange change;
    change.field = u"Gruppe"_s;
    change.before = group->name;
    change.after = u"gelöscht"_s;
    write.changes = {change};
    write.confirmLabel = u"Löschen"_s;
    write.isDestructive = true;
    write.perform = [model = QPointer<TestFlightViewModel>(this), title = write.title, groupID]() {
        return deleteConfirmed(model, title, groupID);
    };
    setPendingWrite(std::move(write));
}

QCoro::Task<> TestFlightViewModel::deleteGroupConfirmed(QString groupID) {
    QPointer<TestFlightViewModel> self(this);
    const auto group = findGroup(groupID);
    const auto account = m_state.accountStore().selectedAccount();
    if (!group || !account) {
        co_return;
    }
    const QString appID = m_app.id;
    auto run = m_groupAction->start();
    try {
        auto client = co_await m_state.accountStore().makeClient(*account);
        if (!self) {
            co_return;
        }
        co_await m_state.testFlightService().deleteGroup(groupID, appID, client);
        if (!self) {
            co_return;
        }
    } catch (const std::exception& error) {
        run.fail(error);
        co_return;
    }
    m_groups.removeIf([&](const ManagedBetaGroup& g) { return g.id == groupID; });
    if (selectedGroupID() == groupID) {
        setSelectedGroup(std::nullopt);
    }
    if (settingsGroupID() == groupID) {
        setSettingsGroup(std::nullopt);
    }
    publishGroups();
    run.succeed();
    setStatusMessage(u"Gruppe „"_s + group->name + u"“ gelöscht."_s);
}

void TestFlightViewModel::copyPublicLink(const QString& groupID) {
    const auto group = findGroup(groupID);
    if (!group || !group->publicLink) {
        return;
    }
    // A headless run (the tests, the command line) has no clipboard.
    if (auto* app = qobject_cast<QGuiApplication*>(QCoreApplication::instance())) {
        app->clipboard()->setText(*group->publicLink);
    }
    setStatusMessage(u"Öffentlicher Link kopiert."_s);
}

void TestFlightViewModel::startAddTester() {
    QCoro::connect(confirmAddTester(), this, [] {});
}

void TestFlightViewModel::startRemoveTester(const QString& testerID) {
    QCoro::connect(removeTester(testerID), this, [] {});
}

void TestFlightViewModel::startResendInvitation(const QString& testerID) {
    QCoro::connect(resendInvitation(testerID), this, [] {});
}

void TestFlightViewModel::startCreateGroup() {
    QCoro::connect(createGroup(), this, [] {});
}

// --- Settings of a group --------------------------------------------------------------------

QString TestFlightViewModel::settingsGroupID() const {
    return m_groupForSettings ? m_groupForSettings->id : QString();
}

QString TestFlightViewModel::settingsTitle() const {
    return m_groupForSettings ? u"Einstellungen von „"_s + m_groupForSettings->name + u"“"_s : QString();
}

bool TestFlightViewModel::settingsIsInternal() const {
    return m_groupForSettings && m_groupForSettings->isInternal;
}

QString TestFlightViewModel::settingsNote() const {
    if (!m_groupForSettings) {
        return {};
    }
    if (m_groupForSettings->isInternal) {
        return u"Interne Gruppen verwaltet Apple selbst – Name, öffentlicher Link und Löschen sind dort "
               u"nicht "
               u"vorgesehen."_s;
    }
    if (m_settings.publicLinkEnabled && !m_groupForSettings->publicLink) {
        return u"Apple erzeugt den Link, sobald die Änderung gespeichert ist."_s;
    }
    return {};
}

QString TestFlightViewModel::settingsAllBuildsText() const {
    if (!m_groupForSettings) {
        return {};
    }
    return m_settings.hasAccessToAllBuilds ? u"Sieht alle Builds (legt Apple beim Anlegen fest)"_s
                                           : u"Sieht nur zugewiesene Builds (legt Apple beim Anlegen fest)"_s;
}

void TestFlightViewModel::emitSettingsChanged() {
    Q_EMIT settingsTitleChanged();
    Q_EMIT settingsIsInternalChanged();
    Q_EMIT settingsNoteChanged();
    Q_EMIT settingsNameChanged();
    Q_EMIT settingsPublicLinkEnabledChanged();
    Q_EMIT settingsLimitEnabledChanged();
    Q_EMIT settingsLimitChanged();
    Q_EMIT settingsFeedbackEnabledChanged();
    Q_EMIT settingsAllBuildsTextChanged();
    Q_EMIT settingsSiliconMacBuildsChanged();
}

void TestFlightViewModel::setSettingsGroup(std::optional<ManagedBetaGroup> group) {
    const QString oldID = settingsGroupID();
    m_groupForSettings = std::move(group);
    m_settings = m_groupForSettings.value_or(ManagedBetaGroup{});
    if (oldID != settingsGroupID()) {
        Q_EMIT settingsGroupIDChanged();
    }
    emitSettingsChanged();
}

void TestFlightViewModel::openGroupSettings(const QString& groupID) {
    m_savingGroup->clearError();
    setSettingsGroup(findGroup(groupID));
}

void TestFlightViewModel::closeGroupSettings() {
    setSettingsGroup(std::nullopt);
}

void TestFlightViewModel::setSettingsName(const QString& name) {
    if (m_settings.name != name) {
        m_settings.name = name;
        Q_EMIT settingsNameChanged();
    }
}

void TestFlightViewModel::setSettingsPublicLinkEnabled(bool on) {
    if (m_settings.publicLinkEnabled != on) {
        m_settings.publicLinkEnabled = on;
        Q_EMIT settingsPublicLinkEnabledChanged();
        Q_EMIT settingsNoteChanged();
    }
}

void TestFlightViewModel::setSettingsLimitEnabled(bool on) {
    if (m_settings.publicLinkLimitEnabled != on) {
        m_settings.publicLinkLimitEnabled = on;
        Q_EMIT settingsLimitEnabledChanged();
    }
}

void TestFlightViewModel::setSettingsLimit(int limit) {
    if (m_settings.publicLinkLimit != limit) {
        m_settings.publicLinkLimit = limit;
        Q_EMIT settingsLimitChanged();
    }
}

void TestFlightViewModel::setSettingsFeedbackEnabled(bool on) {
    if (m_settings.feedbackEnabled != on) {
        m_settings.feedbackEnabled = on;
        Q_EMIT settingsFeedbackEnabledChanged();
    }
}

void TestFlightViewModel::setSettingsSiliconMacBuilds(bool on) {
    if (m_settings.iosBuildsAvailableForAppleSiliconMac != on) {
        m_settings.iosBuildsAvailableForAppleSiliconMac = on;
        Q_EMIT settingsSiliconMacBuildsChanged();
    }
}

void TestFlightViewModel::replace(const ManagedBetaGroup& group) {
    for (auto& existing : m_groups) {
        if (existing.id == group.id) {
            existing = group;
        }
    }
    if (m_selectedGroup && m_selectedGroup->id == group.id) {
        setSelectedGroup(group);
    }
    if (m_groupForSettings && m_groupForSettings->id == group.id) {
        setSettingsGroup(group);
    }
    publishGroups();
}

QCoro::Task<> TestFlightViewModel::saveGroupSettings() {
    QPointer<TestFlightViewModel> self(this);
    if (!m_groupForSettings) {
        co_return;
    }
    if (auto reason = ensureWritable()) {
        m_savingGroup->setError(*reason);
        co_return;
    }
    // Apple takes no name, link or limit for an internal group; whether a group sees every
    // build it takes only when the group is made.
    BetaGroupUpdateRequestBody body;
    body.id = m_groupForSettings->id;
    if (!m_groupForSettings->isInternal) {
        body.name = m_settings.name.trimmed();
        body.publicLinkEnabled = m_settings.publicLinkEnabled;
        body.publicLinkLimitEnabled = m_settings.publicLinkLimitEnabled;
        if (m_settings.publicLinkLimitEnabled) {
            body.publicLinkLimit = m_settings.publicLinkLimit;
        }
    }
    body.feedbackEnabled = m_settings.feedbackEnabled;
    body.iosBuildsAvailableForAppleSiliconMac = m_settings.iosBuildsAvailableForAppleSiliconMac;
    const auto account = m_state.accountStore().selectedAccount();
    auto run = m_savingGroup->start();
    m_groupAction->clearError();
    ManagedBetaGroup saved;
    try {
        auto client = co_await m_state.accountStore().makeClient(*account);
        if (!self) {
            co_return;
        }
        saved = co_await m_state.testFlightService().updateGroup(body, m_app.id, client);
        if (!self) {
            co_return;
        }
    } catch (const std::exception& error) {
        run.fail(error);
        co_return;
    }
    run.succeed();
    replace(saved);
    setStatusMessage(u"Gruppe „"_s + saved.name + u"“ aktualisiert."_s);
    setSettingsGroup(std::nullopt);
}

void TestFlightViewModel::startSaveGroupSettings() {
    QCoro::connect(saveGroupSettings(), this, [] {});
}

// --- Builds ---------------------------------------------------------------------------------

bool TestFlightViewModel::isLoadingBuilds() const {
    return m_loadingBuilds->isBusy();
}

QString TestFlightViewModel::buildsError() const {
    return m_loadingBuilds->errorText();
}

std::optional<ManagedBuildBetaDetail> TestFlightViewModel::betaDetail(const QString& buildID) const {
    const auto it = m_betaDetails.constFind(buildID);
    return it == m_betaDetails.cend() ? std::nullopt : std::optional<ManagedBuildBetaDetail>(*it);
}

QList<StatItem> TestFlightViewModel::stats() const {
    const QString none = u"–"_s;
    std::optional<QDateTime> first;
    std::optional<QDateTime> last;
    int expiringSoon = 0;
    int expired = 0;
    const QDateTime current = now();
    for (const auto& build : m_builds) {
        if (build.uploadedDate) {
            if (!first || *build.uploadedDate < *first) {
                first = build.uploadedDate;
            }
            if (!last || *build.uploadedDate > *last) {
                last = build.uploadedDate;
            }
        }
        if (build.isExpired) {
            ++expired;
        } else if (build.expirationDate && current.secsTo(*build.expirationDate) < expiringSoonSeconds) {
            ++expiringSoon;
        }
    }
    const auto external = std::count_if(m_groups.cbegin(), m_groups.cend(),
                                        [](const ManagedBetaGroup& g) { return !g.isInternal; });
    return {
        {u"Builds"_s, QString::number(m_builds.size())},
        {u"Gruppen"_s, QString::number(m_groups.size())},
        {u"Erster Build"_s, first ? shortDate(*first) : none},
        {u"Letzter Build"_s, last ? shortDate(*last) : none},
        {u"Laufen bald ab"_s, QString::number(expiringSoon)},
        {u"Abgelaufen"_s, QString::number(expired)},
        {u"Externe Gruppen"_s, QString::number(external)},
    };
}

void TestFlightViewModel::publishBuilds() {
    QList<RowListModel::Row> rows;
    rows.reserve(m_builds.size());
    for (const auto& build : m_builds) {
        const auto detail = betaDetail(build.id);
        // While the details are under way a build shows that its state is coming; one Apple
        // left without an answer shows the dash.
        const QString pending = m_areDetailsLoading ? u"…"_s : u"–"_s;
        const QString internal = detail ? detail->internalState() : pending;
        const QString external = detail ? detail->externalState() : pending;
        const QString uploaded =
            build.uploadedDate ? u"hochgeladen am "_s + shortDate(*build.uploadedDate) : QString();
        QString expiry;
        if (build.isExpired) {
            expiry = u"abgelaufen"_s;
        } else if (build.expirationDate) {
            expiry = u"läuft ab am "_s + shortDate(*build.expirationDate);
        }
        rows.append({build.id, u"Build "_s + build.buildNumber, uploaded, expiry, u"Intern: "_s + internal,
                     u"Extern: "_s + external, build.id == m_selectedBuildID,
                     u"Build "_s + build.buildNumber + u", intern "_s + internal + u", extern "_s + external +
                         (expiry.isEmpty() ? QString() : u", "_s + expiry)});
    }
    m_buildRows->setRows(rows);
    QList<RowListModel::Row> statRows;
    for (const auto& item : stats()) {
        statRows.append({item.label, item.value});
    }
    m_statRows->setRows(statRows);
}

QCoro::Task<> TestFlightViewModel::loadBuilds(bool forceRefresh, bool includeBetaDetails) {
    QPointer<TestFlightViewModel> self(this);
    auto run = m_loadingBuilds->start();
    m_haveLoadedBuilds = true;
    const QString appID = m_app.id;
    if (isDemo()) {
        m_builds = MockData::builds(appID, now());
        m_betaDetails.clear();
        if (includeBetaDetails) {
            for (const auto& build : m_builds) {
                m_betaDetails.insert(build.id, MockData::buildBetaDetail(build.id));
            }
        }
        publishBuilds();
        run.succeed();
        co_return;
    }
    const auto account = m_state.accountStore().selectedAccount();
    if (!account) {
        run.fail(VelmoraAPIError::notConfigured().errorDescription());
        co_return;
    }
    std::shared_ptr<AppStoreConnectClient> client;
    try {
        client = co_await m_state.accountStore().makeClient(*account);
        if (!run) {
            co_return;
        }
        auto builds = co_await m_state.buildsService().builds(appID, client, forceRefresh);
        if (!run) {
            co_return;
        }
        m_builds = builds;
    } catch (const std::exception& error) {
        run.fail(u"Builds konnten nicht geladen werden"_s, error);
        co_return;
    }
    m_betaDetails.clear();
    m_areDetailsLoading = includeBetaDetails && !m_builds.isEmpty();
    publishBuilds();
    if (!m_areDetailsLoading) {
        run.succeed();
        co_return;
    }
    QStringList ids;
    for (const auto& build : m_builds) {
        ids.append(build.id);
    }
    // Each answer fills its row at once; a newer load makes the rest of this one land nowhere.
    const quint64 generation = m_loadingBuilds->generation();
    auto onDetail = [self, generation](const QString& buildID, const ManagedBuildBetaDetail& detail) {
        if (!self || self->m_loadingBuilds->generation() != generation) {
            return;
        }
        self->m_betaDetails.insert(buildID, detail);
        self->publishBuilds();
    };
    try {
        co_await m_state.testFlightService().buildBetaDetails(ids, client, onDetail);
    } catch (const std::exception& error) {
        if (self && run) {
            m_areDetailsLoading = false;
            publishBuilds();
        }
        run.fail(u"Beta-Status konnte nicht geladen werden"_s, error);
        co_return;
    }
    if (!run) {
        co_return;
    }
    m_areDetailsLoading = false;
    publishBuilds();
    run.succeed();
}

void TestFlightViewModel::startLoadBuilds(bool forceRefresh) {
    QCoro::connect(loadBuilds(forceRefresh, true), this, [] {});
}

void TestFlightViewModel::selectBuild(const QString& buildID) {
    if (m_selectedBuildID == buildID) {
        return;
    }
    m_selectedBuildID = buildID;
    Q_EMIT selectedBuildIDChanged();
    publishBuilds();
}

// --- Assignment of a build to groups --------------------------------------------------------

QString TestFlightViewModel::assignmentBuildID() const {
    return m_buildForAssignment ? m_buildForAssignment->id : QString();
}

QString TestFlightViewModel::assignmentTitle() const {
    return m_buildForAssignment ? u"Build "_s + m_buildForAssignment->buildNumber + u" in Gruppen"_s
                                : QString();
}

bool TestFlightViewModel::isLoadingAssignment() const {
    return m_assignment->isBusy();
}

QString TestFlightViewModel::assignmentError() const {
    return m_assignment->errorText();
}

void TestFlightViewModel::setPendingGroupID(std::optional<QString> groupID) {
    if (m_pendingGroupID != groupID) {
        m_pendingGroupID = std::move(groupID);
        Q_EMIT pendingGroupIDChanged();
        publishAssignment();
    }
}

void TestFlightViewModel::publishAssignment() {
    QList<RowListModel::Row> rows;
    if (m_buildForAssignment && !m_assignment->isBusy()) {
        for (const auto& group : m_groups) {
            const bool assigned = m_assignedGroupIDs.contains(group.id);
            rows.append({group.id, group.name, assigned, m_pendingGroupID == group.id,
                         group.name + (assigned ? u", zugewiesen"_s : u", nicht zugewiesen"_s)});
        }
    }
    m_assignmentRows->setRows(rows);
}

QCoro::Task<> TestFlightViewModel::beginAssigningGroups(QString buildID) {
    QPointer<TestFlightViewModel> self(this);
    std::optional<ManagedBuild> build;
    for (const auto& candidate : m_builds) {
        if (candidate.id == buildID) {
            build = candidate;
        }
    }
    if (!build) {
        co_return;
    }
    m_buildForAssignment = build;
    m_assignedGroupIDs.clear();
    setPendingGroupID(std::nullopt);
    Q_EMIT assignmentBuildIDChanged();
    Q_EMIT assignmentTitleChanged();
    auto run = m_assignment->start();
    publishAssignment();
    // The groups on screen are current (a saved setting replaced its group in place, which the
    // service's cache does not know); only a screen without groups asks for them.
    if (m_groups.isEmpty()) {
        co_await loadGroups(false);
    }
    if (!self || !run) {
        co_return;
    }
    QSet<QString> assigned;
    if (isDemo()) {
        for (const auto& group : m_groups) {
            if (MockData::betaGroupBuildIDs(group.id).contains(buildID)) {
                assigned.insert(group.id);
            }
        }
    } else {
        const auto account = m_state.accountStore().selectedAccount();
        if (!account) {
            run.fail(VelmoraAPIError::notConfigured().errorDescription());
            co_return;
        }
        try {
            auto client = co_await m_state.accountStore().makeClient(*account);
            if (!run) {
                co_return;
            }
            const QList<ManagedBetaGroup> groups = m_groups;
            for (const auto& group : groups) {
                const QSet<QString> ids = co_await m_state.testFlightService().buildIDs(group.id, client);
                if (!run) {
                    co_return;
                }
                if (ids.contains(buildID)) {
                    assigned.insert(group.id);
                }
            }
        } catch (const std::exception& error) {
            run.fail(error);
            co_return;
        }
    }
    m_assignedGroupIDs = assigned;
    run.succeed();
    publishAssignment();
}

QCoro::Task<> TestFlightViewModel::toggleGroupAssignment(QString groupID) {
    QPointer<TestFlightViewModel> self(this);
    if (!m_buildForAssignment || m_pendingGroupID) {
        co_return;
    }
    if (auto reason = ensureWritable()) {
        m_assignment->setError(*reason);
        co_return;
    }
    const QString buildID = m_buildForAssignment->id;
    const bool wasAssigned = m_assignedGroupIDs.contains(groupID);
    const auto account = m_state.accountStore().selectedAccount();
    m_assignment->clearError();
    setPendingGroupID(groupID);
    std::optional<QString> failure;
    try {
        auto client = co_await m_state.accountStore().makeClient(*account);
        if (!self) {
            co_return;
        }
        if (wasAssigned) {
            co_await m_state.testFlightService().unassignBuild(buildID, groupID, client);
        } else {
            co_await m_state.testFlightService().assignBuild(buildID, groupID, client);
        }
    } catch (const std::exception& error) {
        failure = describeError(error);
    }
    if (!self) {
        co_return;
    }
    if (failure) {
        m_assignment->setError(*failure);
    } else if (assignmentBuildID() == buildID) {
        if (wasAssigned) {
            m_assignedGroupIDs.remove(groupID);
        } else {
            m_assignedGroupIDs.insert(groupID);
        }
    }
    setPendingGroupID(std::nullopt);
    publishAssignment();
}

void TestFlightViewModel::startAssigningGroups(const QString& buildID) {
    QCoro::connect(beginAssigningGroups(buildID), this, [] {});
}

void TestFlightViewModel::startToggleGroupAssignment(const QString& groupID) {
    QCoro::connect(toggleGroupAssignment(groupID), this, [] {});
}

void TestFlightViewModel::endAssigningGroups() {
    if (!m_buildForAssignment) {
        return;
    }
    m_assignment->abandon();
    m_assignment->clearError();
    m_buildForAssignment.reset();
    m_assignedGroupIDs.clear();
    setPendingGroupID(std::nullopt);
    Q_EMIT assignmentBuildIDChanged();
    Q_EMIT assignmentTitleChanged();
    publishAssignment();
}

// --- Tester import --------------------------------------------------------------------------

void TestFlightViewModel::setImportingTesters(bool on) {
    if (m_isImportingTesters != on) {
        m_isImportingTesters = on;
        m_savingTester->clearError();
        Q_EMIT isImportingTestersChanged();
    }
}

bool TestFlightViewModel::isReadingImportFile() const {
    return m_readingImportFile->isBusy();
}

bool TestFlightViewModel::isImporting() const {
    return m_importing->isBusy();
}

bool TestFlightViewModel::canImport() const {
    return m_importPreview && m_selectedGroup &&
           BetaTesterImportPreview::canImport(*m_importPreview, isImporting());
}

QString TestFlightViewModel::importTargetCaption() const {
    return BetaTesterImportPreview::targetCaption(
        m_selectedGroup ? std::optional<QString>(m_selectedGroup->name) : std::nullopt);
}

QStringList TestFlightViewModel::importTexts() {
    using P = BetaTesterImportPreview;
    return {P::chooseFileTitle(), P::chooseFileHint(), P::chooseFileAction(), P::duplicatesTitle(),
            P::otherFileAction(), P::cancelAction(),   P::importAction()};
}

void TestFlightViewModel::setImportPreview(std::optional<BetaTesterImportParsing::Result> preview) {
    const bool had = m_importPreview.has_value();
    m_importPreview = std::move(preview);
    if (had != m_importPreview.has_value()) {
        Q_EMIT hasImportPreviewChanged();
    }
    Q_EMIT canImportChanged();
    publishImport();
}

void TestFlightViewModel::publishImport() {
    const BetaTesterImportPreview old = m_importTexts;
    const auto remaining = m_state.accountStore().rateLimitGovernor()
                               ? m_state.accountStore().rateLimitGovernor()->remaining()
                               : std::nullopt;
    m_importTexts = m_importPreview ? BetaTesterImportPreview::of(*m_importPreview, remaining)
                                    : BetaTesterImportPreview{};
    const auto& now = m_importTexts;
    if (old.recognizedTitle != now.recognizedTitle) {
        Q_EMIT importRecognizedTitleChanged();
    }
    if (old.moreNames != now.moreNames) {
        Q_EMIT importMoreNamesChanged();
    }
    if (old.duplicateSentence != now.duplicateSentence) {
        Q_EMIT importDuplicateSentenceChanged();
    }
    if (old.rejectedTitle != now.rejectedTitle) {
        Q_EMIT importRejectedTitleChanged();
    }
    if (old.footer != now.footer) {
        Q_EMIT importFooterChanged();
    }
    if (old.costSentence != now.costSentence) {
        Q_EMIT importCostSentenceChanged();
    }
    QList<RowListModel::Row> names;
    names.reserve(now.listedNames.size());
    for (const QString& name : now.listedNames) {
        names.append({name});
    }
    m_importNameRows->setRows(names);
    QList<RowListModel::Row> rejected;
    rejected.reserve(now.rejectedRows.size());
    for (const auto& row : now.rejectedRows) {
        rejected.append({row.label, row.text});
    }
    m_importRejectedRows->setRows(rejected);
}

QCoro::Task<> TestFlightViewModel::previewImport(QUrl url) {
    auto run = m_readingImportFile->start();
    setImportingTesters(true);
    m_savingTester->clearError();
    const QString location = url.isLocalFile() ? url.toLocalFile() : url.toString();
    std::optional<BetaTesterImportParsing::Result> result;
    QString failure;
    try {
        // Reading and parsing run on a worker thread: a list of many thousand lines must not
        // stop the window.
        result = co_await BetaTesterImportFile::load(location);
    } catch (const std::exception& error) {
        failure = describeError(error);
    }
    if (!run) {
        co_return;
    }
    run.succeed();
    if (!result) {
        m_savingTester->setError(failure);
        co_return;
    }
    setImportPreview(std::move(result));
}

void TestFlightViewModel::startPreviewImport(const QUrl& url) {
    QCoro::connect(previewImport(url), this, [] {});
}

void TestFlightViewModel::requestImportTesters() {
    if (auto reason = m_state.writeBlockedReason()) {
        m_savingTester->setError(*reason);
        return;
    }
    if (!m_selectedGroup || !m_importPreview || m_importPreview->testers.isEmpty() || isImporting()) {
        return;
    }
    m_savingTester->clearError();
    PendingWrite write = BetaTesterImportPreview::confirmation(m_selectedGroup->name, *m_importPreview);
    // Apple takes one tester per request: the user sees what the import costs of the hour.
    WriteChange cost;
    cost.field = u"Anfragen an Apple"_s;
    cost.after = m_importTexts.costSentence.value_or(QString());
    write.changes.append(cost);
    write.perform = [model = QPointer<TestFlightViewModel>(this), title = write.title,
                     groupID = m_selectedGroup->id, testers = m_importPreview->testers]() {
        return importConfirmed(model, title, groupID, testers);
    };
    setPendingWrite(std::move(write));
}

QCoro::Task<> TestFlightViewModel::importTestersConfirmed(QString groupID,
                                                          QList<ImportedBetaTester> testers) {
    QPointer<TestFlightViewModel> self(this);
    const auto account = m_state.accountStore().selectedAccount();
    if (!account || testers.isEmpty()) {
        co_return;
    }
    auto run = m_importing->start();
    m_savingTester->clearError();
    // The task bar and the service belong to the application state, which outlives this model;
    // the import keeps reporting there even while the screen changes.
    TaskCenter& tasks = m_state.taskCenter();
    TestFlightService& service = m_state.testFlightService();
    const qsizetype total = testers.size();
    auto cancelled = std::make_shared<bool>(false);
    BackgroundTask task;
    task.title = u"Tester importieren"_s;
    task.detail = u"0 von "_s + QString::number(total) + u" übergeben"_s;
    task.progress = 0.0;
    task.isCancellable = true;
    task.startedAt = now();
    const QUuid taskID = task.id;
    tasks.start(task, [cancelled] { *cancelled = true; });

    int handedOver = 0;
    std::optional<QString> failure;
    try {
        auto client = co_await m_state.accountStore().makeClient(*account);
        for (const auto& chunk : BetaTesterImportParsing::chunks(testers)) {
            if (*cancelled || !self) {
                break;
            }
            QList<NewBetaTester> batch;
            batch.reserve(chunk.size());
            for (const auto& imported : chunk) {
                batch.append(toNewTester(imported));
            }
            const int before = handedOver;
            auto isCancelled = [cancelled, self] {
                return *cancelled || !self;
            };
            auto progress = [&tasks, taskID, before, total, &handedOver](int inChunk) {
                handedOver = before + inChunk;
                tasks.update(taskID, double(handedOver) / double(total),
                             QString::number(handedOver) + u" von "_s + QString::number(total) +
                                 u" übergeben"_s);
            };
            handedOver =
                before + co_await service.importTesters(batch, groupID, client, isCancelled, progress);
        }
    } catch (const std::exception& error) {
        failure = describeError(error);
    }
    tasks.finish(taskID);
    if (!self) {
        co_return;
    }
    if (failure) {
        // What went before stays with Apple; the rest of the list was not sent.
        run.fail(u"Nach "_s + QString::number(handedOver) + u" von "_s + QString::number(total) +
                 u" Testern abgebrochen, der Rest wurde nicht gesendet: "_s + *failure);
        m_savingTester->setError(m_importing->errorText());
        Q_EMIT canImportChanged();
        co_return;
    }
    run.succeed();
    Q_EMIT canImportChanged();
    if (*cancelled) {
        setStatusMessage(u"Import abgebrochen: "_s + QString::number(handedOver) + u" von "_s +
                         QString::number(total) + u" Testern an Apple übergeben."_s);
    } else {
        setStatusMessage(BetaTesterImportPreview::handedOverMessage(handedOver));
        setImportPreview(std::nullopt);
        setImportingTesters(false);
    }
    if (selectedGroupID() == groupID) {
        co_await loadTesters(true);
    }
}
