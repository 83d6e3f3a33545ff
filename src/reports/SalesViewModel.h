#pragma once

#include "reports/SalesReportsService.h"
#include "reports/SalesSummary.h"

#include <QCoro/QCoroTask>
#include <QDateTime>
#include <QObject>
#include <QVariantList>

class AppState;
class ModelOperation;
class RowListModel;

// The sales and finance screen without its screen: what to load (type, period, date, region),
// the loaded report's first rows, its summary from Apple's own columns, and the comparison with
// the period before. Every text the screen shows is composed here.
class SalesViewModel : public QObject {
    Q_OBJECT
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
    Q_PROPERTY(QString vendorNumberHint READ vendorNumberHint NOTIFY vendorNumberHintChanged)
public:
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
    QString vendorNumberHint() const;

    const std::optional<ManagedSalesReport>& report() const { return m_report; }
    const std::optional<SalesSummary>& summary() const { return m_summary; }
    const std::optional<SalesComparison>& comparison() const { return m_comparison; }

    Q_INVOKABLE void startLoad();
    Q_INVOKABLE void startLoadFinanceReport();
    QCoro::Task<> load();
    QCoro::Task<> loadFinanceReport();

    static QString noRowsHint();

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
    void vendorNumberHintChanged();

private:
    void publish(ManagedSalesReport report, std::optional<SalesComparison> comparison);
    void setStatusMessage(const QString& text);
    void setFrequencyValue(SalesReportFrequency frequency);

    AppState& m_state;
    ModelOperation* m_loading;
    RowListModel* m_rows;
    SalesReportType m_type = SalesReportType::Sales;
    SalesReportFrequency m_frequency = SalesReportFrequency::Daily;
    QDateTime m_date;
    QString m_financeRegion = QStringLiteral("ZZ");
    std::optional<ManagedSalesReport> m_report;
    std::optional<SalesSummary> m_summary;
    std::optional<SalesComparison> m_comparison;
    QString m_statusMessage;
};
