#pragma once

#include "reports/ManagedDiagnosticSignature.h"
#include "reports/ManagedPerformanceMetric.h"
#include "testflight/ManagedBuild.h"
#include "workspace/ManagedApp.h"

#include <QCoro/QCoroTask>
#include <QObject>
#include <QStringList>
#include <QUrl>

#include <memory>
#include <optional>

class AppState;
class AppStoreConnectClient;
class ModelOperation;
class RowListModel;

// The performance screen of an app: Apple's metrics per device type, and per build the
// diagnostic signatures of one kind with a chosen signature's logs, which can be saved. An empty
// answer is said as what it means, never shown as a clean bill of health.
class PerformanceViewModel : public QObject {
    Q_OBJECT
    Q_MOC_INCLUDE("api/RowListModel.h")
    Q_PROPERTY(RowListModel* metrics READ metrics CONSTANT)
    Q_PROPERTY(QString metricsEmptyText READ metricsEmptyText NOTIFY metricsEmptyTextChanged)
    Q_PROPERTY(QStringList deviceTypeLabels READ deviceTypeLabels CONSTANT)
    Q_PROPERTY(
        int deviceTypeIndex READ deviceTypeIndex WRITE setDeviceTypeIndex NOTIFY deviceTypeIndexChanged)
    Q_PROPERTY(RowListModel* builds READ builds CONSTANT)
    Q_PROPERTY(QString selectedBuildID READ selectedBuildID NOTIFY selectedBuildIDChanged)
    Q_PROPERTY(int selectedBuildIndex READ selectedBuildIndex NOTIFY selectedBuildIndexChanged)
    Q_PROPERTY(QStringList diagnosticTypeLabels READ diagnosticTypeLabels CONSTANT)
    Q_PROPERTY(QString diagnosticType READ diagnosticType NOTIFY diagnosticTypeChanged)
    Q_PROPERTY(int diagnosticTypeIndex READ diagnosticTypeIndex WRITE setDiagnosticTypeIndex NOTIFY
                   diagnosticTypeIndexChanged)
    Q_PROPERTY(RowListModel* signatures READ signatures CONSTANT)
    Q_PROPERTY(QString signaturesEmptyText READ signaturesEmptyText NOTIFY signaturesEmptyTextChanged)
    Q_PROPERTY(QString signaturesNote READ signaturesNote CONSTANT)
    Q_PROPERTY(QString selectedSignature READ selectedSignature NOTIFY selectedSignatureChanged)
    Q_PROPERTY(QString logText READ logText NOTIFY logTextChanged)
    Q_PROPERTY(bool hasLog READ hasLog NOTIFY hasLogChanged)
    Q_PROPERTY(QString proposedLogFileName READ proposedLogFileName NOTIFY proposedLogFileNameChanged)
    Q_PROPERTY(bool isLoading READ isLoading NOTIFY isLoadingChanged)
    Q_PROPERTY(QString errorMessage READ errorMessage NOTIFY errorMessageChanged)
    Q_PROPERTY(QString statusMessage READ statusMessage NOTIFY statusMessageChanged)

public:
    // Device types Apple's filter takes, in the order of `deviceTypeLabels`; blank is every device.
    static const QStringList& deviceTypeValues();
    // "Alle Geräte" for none; a device type not offered reads as it is.
    static QString deviceTypeLabel(const std::optional<QString>& deviceType);
    static QString emptyMetricsText();
    static QString emptySignaturesText();

    PerformanceViewModel(AppState& state, ManagedApp app, QObject* parent = nullptr);
    ~PerformanceViewModel() override;

    RowListModel* metrics() const { return m_metricRows; }
    QString metricsEmptyText() const { return m_metricsEmptyText; }
    QStringList deviceTypeLabels() const;
    int deviceTypeIndex() const { return m_deviceTypeIndex; }
    // Chooses the device type and loads its metrics.
    void setDeviceTypeIndex(int index);
    std::optional<QString> deviceType() const;
    RowListModel* builds() const { return m_buildRows; }
    QString selectedBuildID() const { return m_selectedBuildID; }
    int selectedBuildIndex() const;
    QStringList diagnosticTypeLabels() const;
    QString diagnosticType() const { return DiagnosticTypes::rawValue(m_diagnosticType); }
    int diagnosticTypeIndex() const;
    // Chooses the kind of diagnostics and loads the build's signatures of it.
    void setDiagnosticTypeIndex(int index);
    RowListModel* signatures() const { return m_signatureRows; }
    QString signaturesEmptyText() const { return m_signaturesEmptyText; }
    QString signaturesNote() const;
    QString selectedSignature() const { return m_selectedSignature; }
    QString logText() const { return m_logText.value_or(QString()); }
    bool hasLog() const { return m_logText.has_value(); }
    QString proposedLogFileName() const;
    bool isLoading() const;
    QString errorMessage() const;
    QString statusMessage() const { return m_statusMessage; }

    const QList<ManagedPerformanceMetric>& metricValues() const { return m_metrics; }
    const QList<ManagedDiagnosticSignature>& signatureValues() const { return m_signatures; }

    QCoro::Task<> loadMetrics(bool forceRefresh);
    QCoro::Task<> loadBuilds(bool forceRefresh);
    QCoro::Task<> loadSignatures();
    QCoro::Task<> loadLogs(QString signatureID);
    // Writes the log shown into the file (a path or a "file://" address), whole or not at all.
    bool exportLog(const QString& pathOrFileUrl);

    // Metrics, builds, and the first build's signatures.
    Q_INVOKABLE void startLoad(bool forceRefresh);
    // The screen shows or hides the tab; the first showing loads it.
    Q_INVOKABLE void noteShown(bool shown);
    Q_INVOKABLE void chooseBuild(int index);
    Q_INVOKABLE void chooseSignature(const QString& signatureID);
    Q_INVOKABLE bool exportLogTo(const QUrl& file) { return exportLog(file.toString()); }

    // The line of a metric as the list and the command line show it: "1,25 s ± 0,05".
    static QString valueText(const ManagedPerformanceMetric& metric);
    // "iPhone 15 · Median · Version 2.1"
    static QString detailText(const ManagedPerformanceMetric& metric);

Q_SIGNALS:
    void metricsEmptyTextChanged();
    void deviceTypeIndexChanged();
    void selectedBuildIDChanged();
    void selectedBuildIndexChanged();
    void diagnosticTypeChanged();
    void diagnosticTypeIndexChanged();
    void signaturesEmptyTextChanged();
    void selectedSignatureChanged();
    void logTextChanged();
    void hasLogChanged();
    void proposedLogFileNameChanged();
    void isLoadingChanged();
    void errorMessageChanged();
    void statusMessageChanged();

private:
    QCoro::Task<std::shared_ptr<AppStoreConnectClient>> client();
    QCoro::Task<> loadBuildsAndSignatures(bool forceRefresh);
    void setMetrics(QList<ManagedPerformanceMetric> metrics, QString emptyText);
    void setBuilds(const QList<ManagedBuild>& builds);
    void selectBuild(const QString& buildID);
    void setSignatures(QList<ManagedDiagnosticSignature> signatures, QString emptyText);
    void setSelectedSignature(const QString& signatureID);
    void setLogText(std::optional<QString> text);
    void setStatusMessage(const QString& message);
    void publishSignatureRows();

    AppState& m_state;
    ManagedApp m_app;
    ModelOperation* m_metricsOp;
    ModelOperation* m_buildsOp;
    ModelOperation* m_signaturesOp;
    ModelOperation* m_logsOp;
    ModelOperation* m_exportOp;
    RowListModel* m_metricRows;
    RowListModel* m_buildRows;
    RowListModel* m_signatureRows;
    QList<ManagedPerformanceMetric> m_metrics;
    QList<ManagedBuild> m_builds;
    QList<ManagedDiagnosticSignature> m_signatures;
    QString m_metricsEmptyText;
    QString m_signaturesEmptyText;
    int m_deviceTypeIndex = 0;
    QString m_selectedBuildID;
    ASCDiagnosticType m_diagnosticType = ASCDiagnosticType::Hangs;
    QString m_selectedSignature;
    std::optional<QString> m_logText;
    QString m_statusMessage;
    bool m_hasStarted = false;
};
