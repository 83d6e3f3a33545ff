#pragma once

#include "api/PendingWrite.h"
#include "testflight/BetaTesterImportParsing.h"
#include "testflight/BetaTesterImportPreview.h"
#include "testflight/ManagedBetaGroup.h"
#include "testflight/ManagedBetaTester.h"
#include "testflight/ManagedBuild.h"
#include "testflight/ManagedBuildBetaDetail.h"
#include "workspace/ManagedApp.h"

#include <QCoro/QCoroTask>
#include <QHash>
#include <QObject>
#include <QSet>
#include <QStringList>
#include <QUrl>

#include <optional>

class AppState;
class BetaAppInfoViewModel;
class BetaBuildDetailViewModel;
class BetaFeedbackViewModel;
class ModelOperation;
class RowListModel;

// One figure of the row above the builds.
struct StatItem {
    QString label;
    QString value;
    friend bool operator==(const StatItem&, const StatItem&) = default;
};

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
    // Apple makes and removes internal groups itself; only an issued link can be copied.
    Q_PROPERTY(bool canDeleteSelectedGroup READ canDeleteSelectedGroup NOTIFY canDeleteSelectedGroupChanged)
    Q_PROPERTY(bool canCopySelectedLink READ canCopySelectedLink NOTIFY canCopySelectedLinkChanged)
    Q_PROPERTY(RowListModel* testers READ testerRows CONSTANT)
    Q_PROPERTY(bool isLoadingTesters READ isLoadingTesters NOTIFY isLoadingTestersChanged)
    Q_PROPERTY(QString testersError READ testersError NOTIFY testersErrorChanged)
    Q_PROPERTY(QString statusMessage READ statusMessage NOTIFY statusMessageChanged)
    Q_PROPERTY(RowListModel* builds READ buildRows CONSTANT)
    Q_PROPERTY(bool isLoadingBuilds READ isLoadingBuilds NOTIFY isLoadingBuildsChanged)
    Q_PROPERTY(QString buildsError READ buildsError NOTIFY buildsErrorChanged)
    Q_PROPERTY(RowListModel* stats READ statRows CONSTANT)
    Q_PROPERTY(QString selectedBuildID READ selectedBuildID NOTIFY selectedBuildIDChanged)
    // The assignment of one build to groups: open while `assignmentBuildID` is not empty.
    Q_PROPERTY(QString assignmentBuildID READ assignmentBuildID NOTIFY assignmentBuildIDChanged)
    Q_PROPERTY(QString assignmentTitle READ assignmentTitle NOTIFY assignmentTitleChanged)
    Q_PROPERTY(RowListModel* assignmentGroups READ assignmentRows CONSTANT)
    Q_PROPERTY(bool isLoadingAssignment READ isLoadingAssignment NOTIFY isLoadingAssignmentChanged)
    Q_PROPERTY(QString assignmentError READ assignmentError NOTIFY assignmentErrorChanged)
    Q_PROPERTY(QString pendingGroupID READ pendingGroupIDText NOTIFY pendingGroupIDChanged)
    // The import sheet: open while `isImportingTesters`; the preview once a file was read.
    Q_PROPERTY(bool isImportingTesters READ isImportingTesters WRITE setImportingTesters NOTIFY
                   isImportingTestersChanged)
    Q_PROPERTY(bool isReadingImportFile READ isReadingImportFile NOTIFY isReadingImportFileChanged)
    Q_PROPERTY(bool isImporting READ isImporting NOTIFY isImportingChanged)
    Q_PROPERTY(bool hasImportPreview READ hasImportPreview NOTIFY hasImportPreviewChanged)
    Q_PROPERTY(bool canImport READ canImport NOTIFY canImportChanged)
    Q_PROPERTY(QString importTargetCaption READ importTargetCaption NOTIFY importTargetCaptionChanged)
    Q_PROPERTY(QString importRecognizedTitle READ importRecognizedTitle NOTIFY importRecognizedTitleChanged)
    Q_PROPERTY(RowListModel* importNames READ importNameRows CONSTANT)
    Q_PROPERTY(QString importMoreNames READ importMoreNames NOTIFY importMoreNamesChanged)
    Q_PROPERTY(
        QString importDuplicateSentence READ importDuplicateSentence NOTIFY importDuplicateSentenceChanged)
    Q_PROPERTY(QString importRejectedTitle READ importRejectedTitle NOTIFY importRejectedTitleChanged)
    Q_PROPERTY(RowListModel* importRejectedLines READ importRejectedRows CONSTANT)
    Q_PROPERTY(QString importFooter READ importFooter NOTIFY importFooterChanged)
    Q_PROPERTY(QString importCostSentence READ importCostSentence NOTIFY importCostSentenceChanged)
    Q_PROPERTY(QStringList importTexts READ importTexts CONSTANT)
    Q_PROPERTY(QString groupActionError READ groupActionError NOTIFY groupActionErrorChanged)
    Q_PROPERTY(bool isAddingTester READ isAddingTester WRITE setAddingTester NOTIFY isAddingTesterChanged)
    Q_PROPERTY(
        QString newTesterEmail READ newTesterEmail WRITE setNewTesterEmail NOTIFY newTesterEmailChanged)
    Q_PROPERTY(QString newTesterFirstName READ newTesterFirstName WRITE setNewTesterFirstName NOTIFY
                   newTesterFirstNameChanged)
    Q_PROPERTY(QString newTesterLastName READ newTesterLastName WRITE setNewTesterLastName NOTIFY
                   newTesterLastNameChanged)
    Q_PROPERTY(bool isSavingTester READ isSavingTester NOTIFY isSavingTesterChanged)
    Q_PROPERTY(QString addTesterError READ addTesterError NOTIFY addTesterErrorChanged)
    Q_PROPERTY(bool isCreatingGroup READ isCreatingGroup WRITE setCreatingGroup NOTIFY isCreatingGroupChanged)
    Q_PROPERTY(QString newGroupName READ newGroupName WRITE setNewGroupName NOTIFY newGroupNameChanged)
    Q_PROPERTY(QString newGroupNote READ newGroupNote CONSTANT)
    Q_PROPERTY(bool isSavingGroup READ isSavingGroup NOTIFY isSavingGroupChanged)
    // The settings sheet of one group: open while `settingsGroupID` is not empty.
    Q_PROPERTY(QString settingsGroupID READ settingsGroupID NOTIFY settingsGroupIDChanged)
    Q_PROPERTY(QString settingsTitle READ settingsTitle NOTIFY settingsTitleChanged)
    Q_PROPERTY(bool settingsIsInternal READ settingsIsInternal NOTIFY settingsIsInternalChanged)
    Q_PROPERTY(QString settingsNote READ settingsNote NOTIFY settingsNoteChanged)
    Q_PROPERTY(QString settingsName READ settingsName WRITE setSettingsName NOTIFY settingsNameChanged)
    Q_PROPERTY(bool settingsPublicLinkEnabled READ settingsPublicLinkEnabled WRITE
                   setSettingsPublicLinkEnabled NOTIFY settingsPublicLinkEnabledChanged)
    Q_PROPERTY(bool settingsLimitEnabled READ settingsLimitEnabled WRITE setSettingsLimitEnabled NOTIFY
                   settingsLimitEnabledChanged)
    Q_PROPERTY(int settingsLimit READ settingsLimit WRITE setSettingsLimit NOTIFY settingsLimitChanged)
    Q_PROPERTY(bool settingsFeedbackEnabled READ settingsFeedbackEnabled WRITE setSettingsFeedbackEnabled
                   NOTIFY settingsFeedbackEnabledChanged)
    // Apple decides this when the group is made; the sheet shows it without a way to change it.
    Q_PROPERTY(QString settingsAllBuildsText READ settingsAllBuildsText NOTIFY settingsAllBuildsTextChanged)
    Q_PROPERTY(bool settingsSiliconMacBuilds READ settingsSiliconMacBuilds WRITE setSettingsSiliconMacBuilds
                   NOTIFY settingsSiliconMacBuildsChanged)
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
    // The roles of `builds`, in this order.
    enum BuildColumn {
        BuildId,
        BuildNumber,
        BuildUploaded,
        BuildExpiry,
        BuildInternalState,
        BuildExternalState,
        BuildIsSelected,
        BuildAccessibleName
    };
    // The roles of `importNames`, in this order.
    enum ImportNameColumn { ImportName };
    // The roles of `importRejectedLines`, in this order.
    enum ImportRejectedColumn { ImportRejectedLabel, ImportRejectedText };
    // The roles of `stats`, in this order.
    enum StatColumn { StatLabel, StatValue };
    // The roles of `assignmentGroups`, in this order.
    enum AssignmentColumn {
        AssignmentGroupId,
        AssignmentName,
        AssignmentIsAssigned,
        AssignmentIsPending,
        AssignmentAccessibleName
    };
    // A build expiring within this many seconds counts as expiring soon.
    static constexpr qint64 expiringSoonSeconds = 14 * 24 * 60 * 60;

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
    bool canDeleteSelectedGroup() const { return m_selectedGroup && !m_selectedGroup->isInternal; }
    bool canCopySelectedLink() const { return m_selectedGroup && m_selectedGroup->publicLink.has_value(); }
    const QList<ManagedBetaTester>& testers() const { return m_testers; }
    bool isLoadingTesters() const;
    QString testersError() const;
    const QString& statusMessage() const { return m_statusMessage; }
    const QList<ManagedBuild>& builds() const { return m_builds; }
    bool isLoadingBuilds() const;
    QString buildsError() const;
    const QHash<QString, ManagedBuildBetaDetail>& betaDetailsByBuildID() const { return m_betaDetails; }
    std::optional<ManagedBuildBetaDetail> betaDetail(const QString& buildID) const;
    // The row of figures over the builds, in its order.
    QList<StatItem> stats() const;
    const QString& selectedBuildID() const { return m_selectedBuildID; }
    const std::optional<ManagedBuild>& buildForAssignment() const { return m_buildForAssignment; }
    QString assignmentBuildID() const;
    QString assignmentTitle() const;
    const QSet<QString>& assignedGroupIDs() const { return m_assignedGroupIDs; }
    bool isLoadingAssignment() const;
    QString assignmentError() const;
    const std::optional<QString>& pendingGroupID() const { return m_pendingGroupID; }
    QString pendingGroupIDText() const { return m_pendingGroupID.value_or(QString()); }
    QString groupActionError() const;
    bool isAddingTester() const { return m_isAddingTester; }
    void setAddingTester(bool on);
    const QString& newTesterEmail() const { return m_newTesterEmail; }
    void setNewTesterEmail(const QString& text);
    const QString& newTesterFirstName() const { return m_newTesterFirstName; }
    void setNewTesterFirstName(const QString& text);
    const QString& newTesterLastName() const { return m_newTesterLastName; }
    void setNewTesterLastName(const QString& text);
    bool isSavingTester() const;
    QString addTesterError() const;
    bool isCreatingGroup() const { return m_isCreatingGroup; }
    void setCreatingGroup(bool on);
    const QString& newGroupName() const { return m_newGroupName; }
    void setNewGroupName(const QString& name);
    static QString newGroupNote();
    bool isSavingGroup() const;
    const std::optional<ManagedBetaGroup>& groupForSettings() const { return m_groupForSettings; }
    QString settingsGroupID() const;
    QString settingsTitle() const;
    bool settingsIsInternal() const;
    QString settingsNote() const;
    const QString& settingsName() const { return m_settings.name; }
    void setSettingsName(const QString& name);
    bool settingsPublicLinkEnabled() const { return m_settings.publicLinkEnabled; }
    void setSettingsPublicLinkEnabled(bool on);
    bool settingsLimitEnabled() const { return m_settings.publicLinkLimitEnabled; }
    void setSettingsLimitEnabled(bool on);
    int settingsLimit() const { return m_settings.publicLinkLimit.value_or(0); }
    void setSettingsLimit(int limit);
    bool settingsFeedbackEnabled() const { return m_settings.feedbackEnabled; }
    void setSettingsFeedbackEnabled(bool on);
    QString settingsAllBuildsText() const;
    bool settingsSiliconMacBuilds() const { return m_settings.iosBuildsAvailableForAppleSiliconMac; }
    void setSettingsSiliconMacBuilds(bool on);
    const std::optional<PendingWrite>& pendingWrite() const { return m_pendingWrite; }

    RowListModel* groupRows() const { return m_groupRows; }
    RowListModel* testerRows() const { return m_testerRows; }
    RowListModel* buildRows() const { return m_buildRows; }
    RowListModel* importNameRows() const { return m_importNameRows; }
    RowListModel* importRejectedRows() const { return m_importRejectedRows; }

    bool isImportingTesters() const { return m_isImportingTesters; }
    void setImportingTesters(bool on);
    bool isReadingImportFile() const;
    bool isImporting() const;
    const std::optional<BetaTesterImportParsing::Result>& importPreview() const { return m_importPreview; }
    bool hasImportPreview() const { return m_importPreview.has_value(); }
    bool canImport() const;
    QString importTargetCaption() const;
    QString importRecognizedTitle() const { return m_importTexts.recognizedTitle; }
    QString importMoreNames() const { return m_importTexts.moreNames.value_or(QString()); }
    QString importDuplicateSentence() const { return m_importTexts.duplicateSentence.value_or(QString()); }
    QString importRejectedTitle() const { return m_importTexts.rejectedTitle.value_or(QString()); }
    QString importFooter() const { return m_importTexts.footer; }
    QString importCostSentence() const { return m_importTexts.costSentence.value_or(QString()); }
    // The fixed texts of the import sheet: title and hint before a file is chosen, the action
    // to choose one, "Dubletten", "Andere Datei", "Abbrechen", "Importieren".
    static QStringList importTexts();
    RowListModel* statRows() const { return m_statRows; }
    RowListModel* assignmentRows() const { return m_assignmentRows; }
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
    // The builds, and with `includeBetaDetails` each build's beta state after the list has come,
    // filled in as the answers arrive.
    QCoro::Task<> loadBuilds(bool forceRefresh, bool includeBetaDetails);
    Q_INVOKABLE void startLoadBuilds(bool forceRefresh);
    Q_INVOKABLE void selectBuild(const QString& buildID);
    QCoro::Task<> beginAssigningGroups(QString buildID);
    // Assigns the build to the group or takes it out; a failure leaves the assignment as it was.
    QCoro::Task<> toggleGroupAssignment(QString groupID);
    Q_INVOKABLE void startAssigningGroups(const QString& buildID);
    Q_INVOKABLE void startToggleGroupAssignment(const QString& groupID);
    Q_INVOKABLE void endAssigningGroups();

    // Reads the file off the UI thread and shows what was understood; the sheet opens for a
    // dropped file too. An unreadable file leaves the preview as it was.
    QCoro::Task<> previewImport(QUrl url);
    // The confirmation of the import, on the sheet of the window.
    void requestImportTesters();
    // Sends the testers in chunks, with progress and a cancel button in the task bar.
    QCoro::Task<> importTestersConfirmed(QString groupID, QList<ImportedBetaTester> testers);
    Q_INVOKABLE void beginImportingTesters() { setImportingTesters(true); }
    Q_INVOKABLE void startPreviewImport(const QUrl& url);
    Q_INVOKABLE void startRequestImportTesters() { requestImportTesters(); }
    Q_INVOKABLE void cancelPendingWrite();
    Q_INVOKABLE void confirmPendingWrite();

    // Writes. Each asks the gate first (read-only account, demo, no account); the immediate ones
    // stop in demo mode with its message, those with a sheet show the sheet and send nothing when
    // it is confirmed in demo mode.
    QCoro::Task<> confirmAddTester();
    QCoro::Task<> removeTester(QString testerID);
    QCoro::Task<> resendInvitation(QString testerID);
    QCoro::Task<> createGroup();
    QCoro::Task<> saveGroupSettings();
    Q_INVOKABLE void beginAddingTester() { setAddingTester(true); }
    Q_INVOKABLE void startAddTester();
    Q_INVOKABLE void startRemoveTester(const QString& testerID);
    Q_INVOKABLE void startResendInvitation(const QString& testerID);
    Q_INVOKABLE void beginCreatingGroup() { setCreatingGroup(true); }
    Q_INVOKABLE void startCreateGroup();
    Q_INVOKABLE void requestDeleteGroup(const QString& groupID);
    Q_INVOKABLE void copyPublicLink(const QString& groupID);
    Q_INVOKABLE void openGroupSettings(const QString& groupID);
    Q_INVOKABLE void closeGroupSettings();
    Q_INVOKABLE void startSaveGroupSettings();

    // The confirmed deletion; the group is gone from the list and the selection afterwards.
    QCoro::Task<> deleteGroupConfirmed(QString groupID);
    // What confirming a write does in demo mode: nothing leaves the program, the message names
    // the write. True when it stopped the write.
    bool stopsInDemo(const QString& title);

Q_SIGNALS:
    void selectedTabChanged();
    void isLoadingGroupsChanged();
    void groupsErrorChanged();
    void selectedGroupIDChanged();
    void selectedGroupNameChanged();
    void canDeleteSelectedGroupChanged();
    void canCopySelectedLinkChanged();
    void isLoadingTestersChanged();
    void testersErrorChanged();
    void statusMessageChanged();
    void pendingWriteChanged();
    void isImportingTestersChanged();
    void isReadingImportFileChanged();
    void isImportingChanged();
    void hasImportPreviewChanged();
    void canImportChanged();
    void importTargetCaptionChanged();
    void importRecognizedTitleChanged();
    void importMoreNamesChanged();
    void importDuplicateSentenceChanged();
    void importRejectedTitleChanged();
    void importFooterChanged();
    void importCostSentenceChanged();
    void isLoadingBuildsChanged();
    void buildsErrorChanged();
    void selectedBuildIDChanged();
    void assignmentBuildIDChanged();
    void assignmentTitleChanged();
    void isLoadingAssignmentChanged();
    void assignmentErrorChanged();
    void pendingGroupIDChanged();
    void groupActionErrorChanged();
    void isAddingTesterChanged();
    void newTesterEmailChanged();
    void newTesterFirstNameChanged();
    void newTesterLastNameChanged();
    void isSavingTesterChanged();
    void addTesterErrorChanged();
    void isCreatingGroupChanged();
    void newGroupNameChanged();
    void isSavingGroupChanged();
    void settingsGroupIDChanged();
    void settingsTitleChanged();
    void settingsIsInternalChanged();
    void settingsNoteChanged();
    void settingsNameChanged();
    void settingsPublicLinkEnabledChanged();
    void settingsLimitEnabledChanged();
    void settingsLimitChanged();
    void settingsFeedbackEnabledChanged();
    void settingsAllBuildsTextChanged();
    void settingsSiliconMacBuildsChanged();

private:
    bool isDemo() const;
    QDateTime now() const;
    void setStatusMessage(const QString& message);
    void setSelectedGroup(std::optional<ManagedBetaGroup> group);
    void publishGroups();
    void publishTesters();
    void publishBuilds();
    void publishAssignment();
    void setImportPreview(std::optional<BetaTesterImportParsing::Result> preview);
    void publishImport();
    void setPendingGroupID(std::optional<QString> groupID);
    // The gate of a write in its order; the text that stops it, or none.
    std::optional<QString> ensureWritable() const;
    // Shows the write on the sheet (the window's presenter listens).
    void setPendingWrite(PendingWrite write);
    // Puts a group Apple returned in place of the one with its id: in the list, the selection
    // and the settings sheet.
    void replace(const ManagedBetaGroup& group);
    void setSettingsGroup(std::optional<ManagedBetaGroup> group);
    void emitSettingsChanged();
    std::optional<ManagedBetaGroup> findGroup(const QString& groupID) const;
    std::optional<ManagedBetaTester> findTester(const QString& testerID) const;

    AppState& m_state;
    ManagedApp m_app;
    ModelOperation* m_loadingGroups;
    ModelOperation* m_loadingTesters;
    // Its error text is `groupActionError`.
    ModelOperation* m_groupAction;
    // Its error text is `addTesterError`.
    ModelOperation* m_savingTester;
    ModelOperation* m_savingGroup;
    ModelOperation* m_loadingBuilds;
    ModelOperation* m_readingImportFile;
    ModelOperation* m_importing;
    // Its error text is `assignmentError`.
    ModelOperation* m_assignment;
    RowListModel* m_groupRows;
    RowListModel* m_testerRows;
    RowListModel* m_buildRows;
    RowListModel* m_importNameRows;
    RowListModel* m_importRejectedRows;
    RowListModel* m_statRows;
    RowListModel* m_assignmentRows;
    int m_selectedTab = GroupsTab;
    QList<ManagedBetaGroup> m_groups;
    std::optional<ManagedBetaGroup> m_selectedGroup;
    QList<ManagedBetaTester> m_testers;
    QString m_statusMessage;
    bool m_isAddingTester = false;
    QString m_newTesterEmail;
    QString m_newTesterFirstName;
    QString m_newTesterLastName;
    bool m_isCreatingGroup = false;
    QString m_newGroupName;
    std::optional<ManagedBetaGroup> m_groupForSettings;
    // The sheet's edits of `m_groupForSettings`.
    ManagedBetaGroup m_settings;
    std::optional<PendingWrite> m_pendingWrite;
    bool m_isImportingTesters = false;
    std::optional<BetaTesterImportParsing::Result> m_importPreview;
    BetaTesterImportPreview m_importTexts;
    QList<ManagedBuild> m_builds;
    bool m_haveLoadedBuilds = false;
    bool m_areDetailsLoading = false;
    QHash<QString, ManagedBuildBetaDetail> m_betaDetails;
    QString m_selectedBuildID;
    std::optional<ManagedBuild> m_buildForAssignment;
    QSet<QString> m_assignedGroupIDs;
    std::optional<QString> m_pendingGroupID;
    BetaAppInfoViewModel* m_appInfo;
    BetaFeedbackViewModel* m_feedback;
    BetaBuildDetailViewModel* m_buildDetail;
};
