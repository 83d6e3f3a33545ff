#pragma once

#include "api/PendingWrite.h"
#include "testflight/ManagedBetaGroup.h"
#include "testflight/ManagedBetaTester.h"
#include "workspace/ManagedApp.h"

#include <QCoro/QCoroTask>
#include <QObject>
#include <QStringList>

#include <optional>

class AppState;
class BetaAppInfoViewModel;
class BetaBuildDetailViewModel;
class BetaFeedbackViewModel;
class ModelOperation;
class RowListModel;

// The TestFlight screen of one app: its groups and the testers of the chosen group, the builds
// with their beta state, the import of testers from a file and the assignment of builds to
// groups. It decides when something may be written, describes each confirmed write, and turns
// results into German messages; the talking to Apple is the TestFlight service's.
class TestFlightViewModel : public QObject {
    Q_OBJECT
    Q_MOC_INCLUDE("api/RowListModel.h")
    Q_MOC_INCLUDE("testflight/BetaAppInfoViewModel.h")
    Q_MOC_INCLUDE("testflight/BetaBuildDetailViewModel.h")
    Q_MOC_INCLUDE("testflight/BetaFeedbackViewModel.h")
    Q_PROPERTY(int selectedTab READ selectedTab WRITE selectTab NOTIFY selectedTabChanged)
    Q_PROPERTY(QStringList tabTitles READ tabTitles CONSTANT)
    Q_PROPERTY(RowListModel* groups READ groupRows CONSTANT)
    Q_PROPERTY(bool isLoadingGroups READ isLoadingGroups NOTIFY isLoadingGroupsChanged)
    Q_PROPERTY(QString groupsError READ groupsError NOTIFY groupsErrorChanged)
    Q_PROPERTY(QString externalGroupsHint READ externalGroupsHint CONSTANT)
    Q_PROPERTY(QString selectedGroupID READ selectedGroupID NOTIFY selectedGroupIDChanged)
    Q_PROPERTY(QString selectedGroupName READ selectedGroupName NOTIFY selectedGroupNameChanged)
    Q_PROPERTY(RowListModel* testers READ testerRows CONSTANT)
    Q_PROPERTY(bool isLoadingTesters READ isLoadingTesters NOTIFY isLoadingTestersChanged)
    Q_PROPERTY(QString testersError READ testersError NOTIFY testersErrorChanged)
    Q_PROPERTY(QString statusMessage READ statusMessage NOTIFY statusMessageChanged)
    // The app's beta texts, the feedback and the chosen build: models of their own, loaded when
    // their tab is first shown (the build's when a build is chosen).
    Q_PROPERTY(BetaAppInfoViewModel* appInfo READ appInfo CONSTANT)
    Q_PROPERTY(BetaFeedbackViewModel* feedback READ feedback CONSTANT)
    Q_PROPERTY(BetaBuildDetailViewModel* buildDetail READ buildDetail CONSTANT)

public:
    enum Tab { GroupsTab, BuildsTab, AppInfoTab, FeedbackTab };
    // The roles of `groups`, in this order.
    enum GroupColumn {
        GroupId,
        GroupName,
        GroupKind,
        GroupDetail,
        GroupIsInternal,
        GroupIsSelected,
        GroupHasPublicLink,
        GroupAccessibleName
    };
    // The roles of `testers`, in this order.
    enum TesterColumn { TesterId, TesterName, TesterEmail, TesterState, TesterAccessibleName };

    TestFlightViewModel(AppState& state, ManagedApp app, QObject* parent = nullptr);
    ~TestFlightViewModel() override;

    const ManagedApp& app() const { return m_app; }

    // Published state.
    int selectedTab() const { return m_selectedTab; }
    void selectTab(int tab);
    static QStringList tabTitles();
    const QList<ManagedBetaGroup>& groups() const { return m_groups; }
    bool isLoadingGroups() const;
    QString groupsError() const;
    static QString externalGroupsHint();
    const std::optional<ManagedBetaGroup>& selectedGroup() const { return m_selectedGroup; }
    QString selectedGroupID() const;
    QString selectedGroupName() const;
    const QList<ManagedBetaTester>& testers() const { return m_testers; }
    bool isLoadingTesters() const;
    QString testersError() const;
    const QString& statusMessage() const { return m_statusMessage; }
    const std::optional<PendingWrite>& pendingWrite() const { return m_pendingWrite; }

    RowListModel* groupRows() const { return m_groupRows; }
    RowListModel* testerRows() const { return m_testerRows; }
    BetaAppInfoViewModel* appInfo() const { return m_appInfo; }
    BetaFeedbackViewModel* feedback() const { return m_feedback; }
    BetaBuildDetailViewModel* buildDetail() const { return m_buildDetail; }

    // Operations; each never raises, its result lands in the published state.
    QCoro::Task<> loadGroups(bool forceRefresh);
    QCoro::Task<> loadTesters(bool forceRefresh);
    // The first load of the screen: groups, then the testers of the first group.
    QCoro::Task<> load(bool forceRefresh);
    Q_INVOKABLE void startLoad(bool forceRefresh);
    Q_INVOKABLE void selectGroup(const QString& groupID);
    Q_INVOKABLE void cancelPendingWrite();
    Q_INVOKABLE void confirmPendingWrite();

Q_SIGNALS:
    void selectedTabChanged();
    void isLoadingGroupsChanged();
    void groupsErrorChanged();
    void selectedGroupIDChanged();
    void selectedGroupNameChanged();
    void isLoadingTestersChanged();
    void testersErrorChanged();
    void statusMessageChanged();
    void pendingWriteChanged();

private:
    bool isDemo() const;
    QDateTime now() const;
    void setStatusMessage(const QString& message);
    void setSelectedGroup(std::optional<ManagedBetaGroup> group);
    void publishGroups();
    void publishTesters();

    AppState& m_state;
    ManagedApp m_app;
    ModelOperation* m_loadingGroups;
    ModelOperation* m_loadingTesters;
    RowListModel* m_groupRows;
    RowListModel* m_testerRows;
    int m_selectedTab = GroupsTab;
    QList<ManagedBetaGroup> m_groups;
    std::optional<ManagedBetaGroup> m_selectedGroup;
    QList<ManagedBetaTester> m_testers;
    QString m_statusMessage;
    std::optional<PendingWrite> m_pendingWrite;
    BetaAppInfoViewModel* m_appInfo;
    BetaFeedbackViewModel* m_feedback;
    BetaBuildDetailViewModel* m_buildDetail;
};
