#pragma once

#include "reports/AnalyticsSummary.h"
#include "reports/AnalyticsTable.h"
#include "reports/ManagedAnalyticsReport.h"
#include "workspace/ManagedApp.h"

#include <QCoro/QCoroTask>
#include <QObject>
#include <QStringList>
#include <QVariantList>

#include <memory>

class AppState;
class AppStoreConnectClient;
class ModelOperation;
class PerformanceViewModel;
class RowListModel;

// The analytics screen of an app: walk from a report request to one of its reports, an instance
// and a segment, load the segment as a table and sum any numeric column per day over a period
// against the period before. Choosing a link of the chain empties everything below it; a late
// answer for a link the user has left is dropped.
class AnalyticsViewModel : public QObject {
    Q_OBJECT
    Q_MOC_INCLUDE("api/RowListModel.h")
    Q_MOC_INCLUDE("reports/PerformanceViewModel.h")
    // Apple's performance figures of the same app, the section's second tab.
    Q_PROPERTY(PerformanceViewModel* performance READ performance CONSTANT)
    Q_PROPERTY(RowListModel* requests READ requests CONSTANT)
    Q_PROPERTY(bool isLoadingRequests READ isLoadingRequests NOTIFY isLoadingRequestsChanged)
    Q_PROPERTY(QString requestsError READ requestsError NOTIFY requestsErrorChanged)
    Q_PROPERTY(bool isCreatingRequest READ isCreatingRequest NOTIFY isCreatingRequestChanged)
    Q_PROPERTY(QString selectedRequest READ selectedRequest NOTIFY selectedRequestChanged)
    Q_PROPERTY(RowListModel* reports READ reports CONSTANT)
    Q_PROPERTY(bool isLoadingReports READ isLoadingReports NOTIFY isLoadingReportsChanged)
    Q_PROPERTY(QString reportsError READ reportsError NOTIFY reportsErrorChanged)
    Q_PROPERTY(QString selectedReport READ selectedReport NOTIFY selectedReportChanged)
    Q_PROPERTY(RowListModel* instances READ instances CONSTANT)
    Q_PROPERTY(bool isLoadingInstances READ isLoadingInstances NOTIFY isLoadingInstancesChanged)
    Q_PROPERTY(QString instancesError READ instancesError NOTIFY instancesErrorChanged)
    Q_PROPERTY(QString selectedInstance READ selectedInstance NOTIFY selectedInstanceChanged)
    Q_PROPERTY(RowListModel* segments READ segments CONSTANT)
    Q_PROPERTY(bool isLoadingSegments READ isLoadingSegments NOTIFY isLoadingSegmentsChanged)
    Q_PROPERTY(QString segmentsError READ segmentsError NOTIFY segmentsErrorChanged)
    Q_PROPERTY(bool isLoadingTable READ isLoadingTable NOTIFY isLoadingTableChanged)
    Q_PROPERTY(QString tableError READ tableError NOTIFY tableErrorChanged)
    Q_PROPERTY(QString loadedSegmentID READ loadedSegmentID NOTIFY loadedSegmentIDChanged)
    Q_PROPERTY(QStringList tableColumns READ tableColumns NOTIFY tableColumnsChanged)
    Q_PROPERTY(RowListModel* tableRows READ tableRows CONSTANT)
    Q_PROPERTY(QString tableCaption READ tableCaption NOTIFY tableCaptionChanged)
    Q_PROPERTY(QString tableNote READ tableNote NOTIFY tableNoteChanged)
    Q_PROPERTY(RowListModel* numericColumns READ numericColumns CONSTANT)
    Q_PROPERTY(int period READ period WRITE setPeriod NOTIFY periodChanged)
    Q_PROPERTY(QStringList periodLabels READ periodLabels CONSTANT)
    Q_PROPERTY(int selectedColumnIndex READ selectedColumnIndex WRITE setSelectedColumnIndex NOTIFY
                   selectedColumnIndexChanged)
    Q_PROPERTY(
        QString summaryUnavailableReason READ summaryUnavailableReason NOTIFY summaryUnavailableReasonChanged)
    Q_PROPERTY(QString summaryHeadline READ summaryHeadline NOTIFY summaryHeadlineChanged)
    Q_PROPERTY(QString totalText READ totalText NOTIFY totalTextChanged)
    Q_PROPERTY(QString daysWithDataText READ daysWithDataText NOTIFY daysWithDataTextChanged)
    Q_PROPERTY(QString previousTotalText READ previousTotalText NOTIFY previousTotalTextChanged)
    Q_PROPERTY(QString changeText READ changeText NOTIFY changeTextChanged)
    Q_PROPERTY(QString changeNote READ changeNote NOTIFY changeNoteChanged)
    Q_PROPERTY(QVariantList chartPoints READ chartPoints NOTIFY chartPointsChanged)
    Q_PROPERTY(QString requestsHint READ requestsHint NOTIFY requestsHintChanged)
    Q_PROPERTY(QString sampleNote READ sampleNote NOTIFY sampleNoteChanged)

public:
    // The periods offered, in days, in the order of `periodLabels`.
    static constexpr int periodDays[] = {7, 30, 90, 365};
    static constexpr int maxTableRows = 100;

    AnalyticsViewModel(AppState& state, ManagedApp app, QObject* parent = nullptr);
    ~AnalyticsViewModel() override;

    PerformanceViewModel* performance() const { return m_performance; }
    RowListModel* requests() const { return m_requestRows; }
    bool isLoadingRequests() const;
    QString requestsError() const;
    bool isCreatingRequest() const;
    QString selectedRequest() const { return m_selectedRequest; }
    RowListModel* reports() const { return m_reportRows; }
    bool isLoadingReports() const;
    QString reportsError() const;
    QString selectedReport() const { return m_selectedReport; }
    RowListModel* instances() const { return m_instanceRows; }
    bool isLoadingInstances() const;
    QString instancesError() const;
    QString selectedInstance() const { return m_selectedInstance; }
    RowListModel* segments() const { return m_segmentRows; }
    bool isLoadingSegments() const;
    QString segmentsError() const;
    bool isLoadingTable() const;
    QString tableError() const;
    QString loadedSegmentID() const { return m_loadedSegmentID; }
    QStringList tableColumns() const;
    RowListModel* tableRows() const { return m_tableRows; }
    QString tableCaption() const;
    QString tableNote() const;
    RowListModel* numericColumns() const { return m_numericRows; }
    int period() const { return m_period; }
    void setPeriod(int period);
    QStringList periodLabels() const;
    // -1: the first numeric column.
    int selectedColumnIndex() const { return m_selectedColumn; }
    void setSelectedColumnIndex(int column);

    const std::optional<AnalyticsTable>& table() const { return m_table; }
    std::optional<AnalyticsSummary> summary() const;
    QString summaryUnavailableReason() const;
    QString summaryHeadline() const;
    QString totalText() const;
    QString daysWithDataText() const;
    QString previousTotalText() const;
    QString changeText() const;
    QString changeNote() const;
    // Per day with data, oldest first: {"day": Julian day number, "value", "dateText": German
    // date}. A day number, not a date, so that no time zone between here and the chart can move
    // it.
    QVariantList chartPoints() const;
    // What to do when the app has no request yet; empty otherwise.
    QString requestsHint() const;
    // Set while the table is the demo's sample instead of a download.
    QString sampleNote() const;
    // The numeric column the summary sums: the chosen one or the first; -1 without any.
    int effectiveColumnIndex() const;

    QCoro::Task<> loadRequests(bool forceRefresh);
    QCoro::Task<> createSnapshotRequest();
    QCoro::Task<> selectRequest(QString requestID);
    QCoro::Task<> selectReport(QString reportID);
    QCoro::Task<> selectInstance(QString instanceID);
    QCoro::Task<> loadTable(QString segmentID);
    Q_INVOKABLE void startLoad(bool forceRefresh);
    Q_INVOKABLE void startCreatingSnapshotRequest();
    Q_INVOKABLE void choose(const QString& level, const QString& id);
    // The same by the row of the level's list (as the keyboard points at it); nothing outside it.
    Q_INVOKABLE void chooseRow(const QString& level, int row);
    Q_INVOKABLE void clearInstanceSelection();

Q_SIGNALS:
    void isLoadingRequestsChanged();
    void requestsErrorChanged();
    void isCreatingRequestChanged();
    void selectedRequestChanged();
    void isLoadingReportsChanged();
    void reportsErrorChanged();
    void selectedReportChanged();
    void isLoadingInstancesChanged();
    void instancesErrorChanged();
    void selectedInstanceChanged();
    void isLoadingSegmentsChanged();
    void segmentsErrorChanged();
    void isLoadingTableChanged();
    void tableErrorChanged();
    void loadedSegmentIDChanged();
    void periodChanged();
    void selectedColumnIndexChanged();
    void summaryUnavailableReasonChanged();
    void summaryHeadlineChanged();
    void totalTextChanged();
    void daysWithDataTextChanged();
    void previousTotalTextChanged();
    void changeTextChanged();
    void changeNoteChanged();
    void chartPointsChanged();
    void tableColumnsChanged();
    void tableCaptionChanged();
    void tableNoteChanged();
    void requestsHintChanged();
    void sampleNoteChanged();

private:
    // The client of the selected account, or none (demo mode, no account); after a failure the
    // run has its error.
    QCoro::Task<std::shared_ptr<AppStoreConnectClient>> client();
    void clearBelowRequest();
    void clearBelowReport();
    void clearBelowInstance();
    void setTable(std::optional<AnalyticsTable> table, QString segmentID, bool isSample);
    void emitSummaryChanged();
    void emitTableChanged();
    void markSelections();

    AppState& m_state;
    ManagedApp m_app;
    PerformanceViewModel* m_performance;
    ModelOperation* m_requestsOp;
    ModelOperation* m_creatingOp;
    ModelOperation* m_reportsOp;
    ModelOperation* m_instancesOp;
    ModelOperation* m_segmentsOp;
    ModelOperation* m_tableOp;
    RowListModel* m_requestRows;
    RowListModel* m_reportRows;
    RowListModel* m_instanceRows;
    RowListModel* m_segmentRows;
    RowListModel* m_tableRows;
    RowListModel* m_numericRows;
    QList<ManagedAnalyticsReportSegment> m_segments;
    QString m_selectedRequest;
    QString m_selectedReport;
    QString m_selectedInstance;
    QString m_loadedSegmentID;
    // The segment last asked for, loaded or still loading.
    QString m_chosenSegment;
    bool m_requestsLoaded = false;
    bool m_isSample = false;
    std::optional<AnalyticsTable> m_table;
    int m_period = 1;
    int m_selectedColumn = -1;
};
