#include "testflight/TestFlightViewModel.h"

#include "api/AccountStore.h"
#include "api/AppStoreConnectClient.h"
#include "api/ModelOperation.h"
#include "api/RowListModel.h"
#include "platform/Clock.h"
#include "platform/VarnisError.h"
#include "testflight/BetaAppInfoViewModel.h"
#include "testflight/BetaBuildDetailViewModel.h"
#include "testflight/BetaFeedbackViewModel.h"
#include "testflight/TestFlightService.h"
#include "workspace/AppState.h"
#include "workspace/MockData.h"

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

} // namespace

TestFlightViewModel::TestFlightViewModel(AppState& state, ManagedApp app, QObject* parent)
    : QObject(parent), m_state(state), m_app(std::move(app)), m_loadingGroups(new ModelOperation(this)),
      m_loadingTesters(new ModelOperation(this)),
      m_groupRows(new RowListModel({"groupId", "name", "kindText", "detailText", "isInternal", "isSelected",
                                    "hasPublicLink", "accessibleName"},
                                   this)),
      m_testerRows(
          new RowListModel({"testerId", "displayName", "email", "stateText", "accessibleName"}, this)) {
    connect(m_loadingGroups, &ModelOperation::busyChanged, this,
            &TestFlightViewModel::isLoadingGroupsChanged);
    connect(m_loadingGroups, &ModelOperation::errorChanged, this, &TestFlightViewModel::groupsErrorChanged);
    connect(m_loadingTesters, &ModelOperation::busyChanged, this,
            &TestFlightViewModel::isLoadingTestersChanged);
    connect(m_loadingTesters, &ModelOperation::errorChanged, this, &TestFlightViewModel::testersErrorChanged);
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
