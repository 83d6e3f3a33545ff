#pragma once

#include "reports/ReportArchiveStore.h"
#include "reports/ReportExport.h"
#include "reports/SalesReportsService.h"
#include "reports/SalesSummary.h"

#include <QCoro/QCoroTask>
#include <QDateTime>
#include <QObject>
#include <QUrl>
#include <QVariantList>

#include <memory>

class AppState;
class ModelOperation;
class QTemporaryDir;
class RowListModel;

// The sales and finance screen without its screen: what to load (type, period, date, region),
// the loaded report's first rows, its summary from Apple's own columns, and the comparison with
// the period before; the reports kept on disk ("Verlauf") and the export of the loaded one. Every
// text the screen shows is composed here.
//
// In demo mode the reports are samples and the kept ones go to a folder of their own that lives
// as long as this model: a sample never lands in the user's archive.
class SalesViewModel : public QObject {
    Q_OBJECT
    Q_MOC_INCLUDE("api/RowListModel.h")
    Q_PROPERTY(QString reportType READ reportType WRITE setReportType NOTIFY reportTypeChanged)
    Q_PROPERTY(QString frequency READ frequency WRITE setFrequency NOTIFY frequencyChanged)
    Q_PROPERTY(QDateTime date READ date WRITE setDate NOTIFY dateChanged)
    Q_PROPERTY(QString financeRegion READ financeRegion WRITE setFinanceRegion NOTIFY financeRegionChanged)
    Q_PROPERTY(QVariantList typeOptions READ typeOptions CONSTANT)
    Q_PROPERTY(QVariantList frequencyOptions READ frequencyOptions NOTIFY frequencyOptionsChanged)
    Q_PROPERTY(QString dateUnitLabel READ dateUnitLabel NOTIFY dateUnitLabelChanged)
    Q_PROPERTY(bool hasReport READ hasReport NOTIFY hasReportChanged)
    Q_PROPERTY(QString reportCaption READ reportCaption NOTIFY reportCaptionChanged)
    Q_PROPERTY(QStringList columns READ columns NOTIFY columnsChanged)
    Q_PROPERTY(RowListModel* rows READ rows CONSTANT)
    Q_PROPERTY(QString rowsNote READ rowsNote NOTIFY rowsNoteChanged)
    Q_PROPERTY(QString unitsText READ unitsText NOTIFY unitsTextChanged)
    Q_PROPERTY(QString proceedsText READ proceedsText NOTIFY proceedsTextChanged)
    Q_PROPERTY(int rowCount READ rowCount NOTIFY rowCountChanged)
    Q_PROPERTY(QString comparisonText READ comparisonText NOTIFY comparisonTextChanged)
    Q_PROPERTY(QString footnote READ footnote CONSTANT)
    Q_PROPERTY(bool isLoading READ isLoading NOTIFY isLoadingChanged)
    Q_PROPERTY(QString errorMessage READ errorMessage NOTIFY errorMessageChanged)
    Q_PROPERTY(QString statusMessage READ statusMessage NOTIFY statusMessageChanged)
    Q_PROPERTY(QString sampleNote READ sampleNote NOTIFY sampleNoteChanged)
    Q_PROPERTY(QString vendorNumberHint READ vendorNumberHint NOTIFY vendorNumberHintChanged)
    // The period as Apple's filter text, and the periods the chooser offers for the frequency:
    // none in the future, in the form the frequency takes; a week by the Sunday that ends it.
    Q_PROPERTY(QString reportDate READ reportDateText WRITE setReportDateText NOTIFY reportDateChanged)
    Q_PROPERTY(QVariantList periodOptions READ periodOptions NOTIFY periodOptionsChanged)
    Q_PROPERTY(QString financeMonth READ financeMonth WRITE setFinanceMonth NOTIFY financeMonthChanged)
    Q_PROPERTY(QVariantList financeMonthOptions READ financeMonthOptions CONSTANT)
    // Where the current choice stands in each list of options, for the choosers.
    Q_PROPERTY(int typeIndex READ typeIndex NOTIFY typeIndexChanged)
    Q_PROPERTY(int frequencyIndex READ frequencyIndex NOTIFY frequencyIndexChanged)
    Q_PROPERTY(int periodIndex READ periodIndex NOTIFY periodIndexChanged)
    Q_PROPERTY(int financeMonthIndex READ financeMonthIndex NOTIFY financeMonthIndexChanged)
    Q_PROPERTY(QStringList tabTitles READ tabTitles CONSTANT)
    Q_PROPERTY(int selectedTab READ selectedTab WRITE selectTab NOTIFY selectedTabChanged)
    Q_PROPERTY(RowListModel* archive READ archiveRows CONSTANT)
    Q_PROPERTY(bool hasArchive READ hasArchive NOTIFY hasArchiveChanged)
    Q_PROPERTY(QString archiveEmptyText READ archiveEmptyText CONSTANT)
    Q_PROPERTY(QString archiveActionTitle READ archiveActionTitle CONSTANT)
    Q_PROPERTY(bool canArchive READ canArchive NOTIFY canArchiveChanged)
    Q_PROPERTY(bool isArchiving READ isArchiving NOTIFY isArchivingChanged)
    // The question before a kept report is removed: open while `isConfirmingRemoval`.
    Q_PROPERTY(bool isConfirmingRemoval READ isConfirmingRemoval NOTIFY isConfirmingRemovalChanged)
    Q_PROPERTY(QString removalQuestion READ removalQuestion NOTIFY removalQuestionChanged)
    Q_PROPERTY(bool canExport READ canExport NOTIFY canExportChanged)
    Q_PROPERTY(bool isExporting READ isExporting NOTIFY isExportingChanged)
    // What the save dialog proposes for the export chosen last: folder and name, and its filter.
    Q_PROPERTY(QUrl exportFolder READ exportFolder CONSTANT)
    Q_PROPERTY(QUrl exportProposal READ exportProposal NOTIFY exportProposalChanged)
    Q_PROPERTY(QStringList exportNameFilters READ exportNameFilters NOTIFY exportNameFiltersChanged)
public:
    // Rows of `archive`, in this order.
    enum ArchiveColumn { ArchiveFileName, ArchiveTitle, ArchiveDetail, ArchiveAccessibleName };

    static constexpr int previewRows = 100;

    explicit SalesViewModel(AppState& state, QObject* parent = nullptr);
    ~SalesViewModel() override;

    QString reportType() const { return SalesReportKinds::rawValue(m_type); }
    // An unknown value changes nothing; a type that Apple serves per day only moves the period to
    // a day.
    void setReportType(const QString& raw);
    QString frequency() const { return SalesReportKinds::rawValue(m_frequency); }
    // A period Apple does not serve for the chosen type changes nothing.
    void setFrequency(const QString& raw);
    QDateTime date() const { return m_date; }
    void setDate(const QDateTime& date);
    QString financeRegion() const { return m_financeRegion; }
    void setFinanceRegion(const QString& region);

    QVariantList typeOptions() const;
    QVariantList frequencyOptions() const;
    QString dateUnitLabel() const;

    bool hasReport() const { return m_report.has_value(); }
    QString reportCaption() const;
    QStringList columns() const;
    RowListModel* rows() const { return m_rows; }
    QString rowsNote() const;
    QString unitsText() const;
    QString proceedsText() const;
    int rowCount() const { return m_summary ? int(m_summary->rowCount) : 0; }
    QString comparisonText() const;
    QString footnote() const { return SalesSummary::footnote(); }
    bool isLoading() const;
    QString errorMessage() const;
    QString statusMessage() const { return m_statusMessage; }
    // In demo mode Apple has no report to give; what the screen shows is a sample, and says so.
    QString sampleNote() const;
    QString vendorNumberHint() const;

    QString reportDateText() const { return SalesReportKinds::reportDate(m_frequency, m_date); }
    // Text in the frequency's form ("2026-03-29", "2026-03", "2026"); anything else changes nothing.
    void setReportDateText(const QString& text);
    QVariantList periodOptions() const;
    QString financeMonth() const { return m_financeMonth; }
    void setFinanceMonth(const QString& month);
    QVariantList financeMonthOptions() const;
    int typeIndex() const;
    int frequencyIndex() const;
    int periodIndex() const;
    int financeMonthIndex() const;
    QStringList tabTitles() const;
    int selectedTab() const { return m_selectedTab; }
    void selectTab(int tab);

    RowListModel* archiveRows() const { return m_archiveRows; }
    bool hasArchive() const;
    QString archiveEmptyText() const { return ReportArchiveStore::emptyText(); }
    QString archiveActionTitle() const { return ReportArchiveStore::archiveActionTitle(); }
    bool canArchive() const;
    bool isArchiving() const;
    bool isConfirmingRemoval() const { return !m_removalCandidate.isEmpty(); }
    QString removalQuestion() const;
    bool canExport() const;
    bool isExporting() const;
    QUrl exportFolder() const;
    QUrl exportProposal() const;
    QStringList exportNameFilters() const;

    const std::optional<ManagedSalesReport>& report() const { return m_report; }
    const std::optional<SalesSummary>& summary() const { return m_summary; }
    const std::optional<SalesComparison>& comparison() const { return m_comparison; }

    Q_INVOKABLE void startLoad();
    Q_INVOKABLE void startLoadFinanceReport();
    QCoro::Task<> load();
    QCoro::Task<> loadFinanceReport();

    static QString noRowsHint();

    // The kept reports, read again (newest first). Also on a change between demo and account.
    Q_INVOKABLE void loadArchive();
    Q_INVOKABLE void startArchiveCurrentReport();
    Q_INVOKABLE void startLoadFromArchive(const QString& fileName);
    // Asks first; only `confirmRemoval` removes.
    Q_INVOKABLE void requestRemoval(const QString& fileName);
    Q_INVOKABLE void confirmRemoval();
    // The same for the line at that position of `archive` (the keyboard's choice).
    Q_INVOKABLE void startLoadFromArchiveAt(int row);
    Q_INVOKABLE void requestRemovalAt(int row);
    Q_INVOKABLE void cancelRemoval();
    // "csv" or "json": what the save dialog opened next proposes.
    Q_INVOKABLE void prepareExport(const QString& format);
    // The file the save dialog gave (an address or a path), in the format prepared last.
    Q_INVOKABLE void startExport(const QUrl& file);

    QCoro::Task<> archiveCurrentReport();
    QCoro::Task<> loadFromArchive(QString fileName);
    QCoro::Task<> removeFromArchive(QString fileName);
    QCoro::Task<> exportReport(ReportExport::Format format, QString path);

    // Where kept reports go now: the user's archive, or the demo's own.
    ReportArchiveStore& archiveStore();

Q_SIGNALS:
    void reportTypeChanged();
    void frequencyChanged();
    void dateChanged();
    void financeRegionChanged();
    void frequencyOptionsChanged();
    void dateUnitLabelChanged();
    void hasReportChanged();
    void reportCaptionChanged();
    void columnsChanged();
    void rowsNoteChanged();
    void unitsTextChanged();
    void proceedsTextChanged();
    void rowCountChanged();
    void comparisonTextChanged();
    void isLoadingChanged();
    void errorMessageChanged();
    void statusMessageChanged();
    void sampleNoteChanged();
    void vendorNumberHintChanged();
    void reportDateChanged();
    void periodOptionsChanged();
    void financeMonthChanged();
    void selectedTabChanged();
    void typeIndexChanged();
    void frequencyIndexChanged();
    void periodIndexChanged();
    void financeMonthIndexChanged();
    void hasArchiveChanged();
    void canArchiveChanged();
    void isArchivingChanged();
    void isConfirmingRemovalChanged();
    void removalQuestionChanged();
    void canExportChanged();
    void isExportingChanged();
    void exportProposalChanged();
    void exportNameFiltersChanged();

private:
    QCoro::Task<> loadDemo(bool finance);
    void demoOrAccountChanged();
    void forgetReport();
    void setRemovalCandidate(const QString& fileName);
    // A new piece of work clears what the others said last.
    void clearErrorsBut(ModelOperation* operation);
    void publish(ManagedSalesReport report, std::optional<SalesComparison> comparison, QString vendorNumber);
    void setStatusMessage(const QString& text);
    void setFrequencyValue(SalesReportFrequency frequency);

    AppState& m_state;
    ModelOperation* m_loading;
    ModelOperation* m_archiving;
    ModelOperation* m_exporting;
    RowListModel* m_rows;
    RowListModel* m_archiveRows;
    SalesReportType m_type = SalesReportType::Sales;
    SalesReportFrequency m_frequency = SalesReportFrequency::Daily;
    QDateTime m_date;
    // The newest period Apple can have: the chooser offers nothing after it.
    QDateTime m_latest;
    QString m_financeRegion = QStringLiteral("ZZ");
    QString m_financeMonth;
    int m_selectedTab = 0;
    // Whose report is loaded: a kept report carries its own vendor number.
    QString m_reportVendor;
    bool m_reportIsSample = false;
    void setReportIsSample(bool sample);
    void emitReportChanged();
    QString m_removalCandidate;
    ReportExport::Format m_exportFormat = ReportExport::Format::Csv;
    // Shared with the keeping, reopening or removal under way in it: the folder goes when the
    // demo ends and the last of those has finished, so that no worker writes into a folder that
    // is gone (and so makes it anew, left behind).
    std::shared_ptr<QTemporaryDir> m_demoFolder;
    std::unique_ptr<ReportArchiveStore> m_demoArchive;
    std::optional<ManagedSalesReport> m_report;
    std::optional<SalesSummary> m_summary;
    std::optional<SalesComparison> m_comparison;
    QString m_statusMessage;
};
