#include "reports/PerformanceViewModel.h"

#include "api/AccountStore.h"
#include "api/AppStoreConnectClient.h"
#include "api/ModelOperation.h"
#include "api/RowListModel.h"
#include "platform/AtomicFile.h"
#include "platform/Clock.h"
#include "platform/FileErrorText.h"
#include "platform/LocalPath.h"
#include "release/BuildsService.h"
#include "reports/PerformanceService.h"
#include "wire/VelmoraAPIError.h"
#include "workspace/AppState.h"
#include "workspace/MockData.h"

#include <QFileInfo>
#include <QLocale>
#include <QPointer>
#include <QRegularExpression>

#include <cerrno>

using namespace Qt::StringLiterals;

namespace {

const QStringList deviceLabels{u"Alle Geräte"_s, u"Alle iPhones"_s, u"Alle iPads"_s};

QString germanNumber(double value) {
    return QLocale(QLocale::German).toString(value, 'g', 6);
}

QString metricKey(const ManagedPerformanceMetric& m) {
    return QStringList{m.category, m.identifier, m.device.value_or(QString()),
                       m.percentile.value_or(QString()), m.version.value_or(QString())}
        .join(u'|');
}

} // namespace

const QStringList& PerformanceViewModel::deviceTypeValues() {
    static const QStringList values{QString(), u"all_iphones"_s, u"all_ipads"_s};
    return values;
}

QString PerformanceViewModel::deviceTypeLabel(const std::optional<QString>& deviceType) {
    const qsizetype index = deviceTypeValues().indexOf(deviceType.value_or(QString()));
    return index >= 0 ? deviceLabels[index] : *deviceType;
}

QString PerformanceViewModel::emptyMetricsText() {
    return u"Apple liefert für diese App keine Kennzahlen. Das heißt nicht „alles schnell“ – es heißt, dass "
           u"zu wenige Nutzer der Datenerhebung zugestimmt haben oder noch keine Messungen vorliegen."_s;
}

QString PerformanceViewModel::emptySignaturesText() {
    return u"Für diesen Build meldet Apple keine Signaturen dieser Art."_s;
}

QString PerformanceViewModel::valueText(const ManagedPerformanceMetric& metric) {
    QString text = germanNumber(metric.value);
    if (metric.unit) {
        text += u' ' + *metric.unit;
    }
    if (metric.errorMargin) {
        text += u" ± "_s + germanNumber(*metric.errorMargin);
    }
    return text;
}

QString PerformanceViewModel::detailText(const ManagedPerformanceMetric& metric) {
    QStringList parts;
    if (metric.device) {
        // Apple names its device classes like the filter values ("all_iphones").
        parts.append(deviceTypeLabel(metric.device));
    }
    if (metric.percentile) {
        parts.append(ManagedPerformanceMetric::percentileLabel(*metric.percentile));
    }
    if (metric.version) {
        parts.append(u"Version "_s + *metric.version);
    }
    return parts.join(u" · "_s);
}

PerformanceViewModel::PerformanceViewModel(AppState& state, ManagedApp app, QObject* parent)
    : QObject(parent), m_state(state), m_app(std::move(app)), m_metricsOp(new ModelOperation(this)),
      m_buildsOp(new ModelOperation(this)), m_signaturesOp(new ModelOperation(this)),
      m_logsOp(new ModelOperation(this)), m_exportOp(new ModelOperation(this)),
      m_metricRows(
          new RowListModel({"metricKey", "heading", "title", "valueText", "detail", "accessibleName"}, this)),
      m_buildRows(new RowListModel({"buildId", "title"}, this)),
      m_signatureRows(
          new RowListModel({"signatureId", "title", "detailText", "insightText", "isSelected"}, this)) {
    for (ModelOperation* op : {m_metricsOp, m_buildsOp, m_signaturesOp, m_logsOp, m_exportOp}) {
        connect(op, &ModelOperation::busyChanged, this, &PerformanceViewModel::isLoadingChanged);
        connect(op, &ModelOperation::errorChanged, this, &PerformanceViewModel::errorMessageChanged);
    }
}

PerformanceViewModel::~PerformanceViewModel() = default;

QStringList PerformanceViewModel::deviceTypeLabels() const {
    return deviceLabels;
}

std::optional<QString> PerformanceViewModel::deviceType() const {
    const QString value = deviceTypeValues().value(m_deviceTypeIndex);
    return value.isEmpty() ? std::nullopt : std::optional<QString>(value);
}

void PerformanceViewModel::setDeviceTypeIndex(int index) {
    if (index < 0 || index >= int(deviceTypeValues().size()) || index == m_deviceTypeIndex) {
        return;
    }
    m_deviceTypeIndex = index;
    Q_EMIT deviceTypeIndexChanged();
    QCoro::connect(loadMetrics(false), this, [] {});
}

int PerformanceViewModel::selectedBuildIndex() const {
    return m_buildRows->indexOfKey(m_selectedBuildID);
}

QStringList PerformanceViewModel::diagnosticTypeLabels() const {
    QStringList labels;
    for (const ASCDiagnosticType type : DiagnosticTypes::all()) {
        labels.append(DiagnosticTypes::label(type));
    }
    return labels;
}

int PerformanceViewModel::diagnosticTypeIndex() const {
    return int(DiagnosticTypes::all().indexOf(m_diagnosticType));
}

void PerformanceViewModel::setDiagnosticTypeIndex(int index) {
    const QList<ASCDiagnosticType> types = DiagnosticTypes::all();
    if (index < 0 || index >= int(types.size()) || types[index] == m_diagnosticType) {
        return;
    }
    m_diagnosticType = types[index];
    Q_EMIT diagnosticTypeChanged();
    Q_EMIT diagnosticTypeIndexChanged();
    QCoro::connect(loadSignatures(), this, [] {});
}

QString PerformanceViewModel::signaturesNote() const {
    return u"Apple gruppiert Abstürze und Hänger zu Signaturen. Fehlen sie, liegen für diesen Build keine "
           u"vor "
           u"– nicht zwingend, weil es keine gab."_s;
}

QString PerformanceViewModel::proposedLogFileName() const {
    if (m_selectedSignature.isEmpty()) {
        return {};
    }
    // Apple's ids are hex, but a file name must never leave the chosen folder.
    QString id = m_selectedSignature;
    id.replace(QRegularExpression(u"[^A-Za-z0-9._-]"_s), u"-"_s);
    return u"diagnose-"_s + id + u".json"_s;
}

bool PerformanceViewModel::isLoading() const {
    return m_metricsOp->isBusy() || m_buildsOp->isBusy() || m_signaturesOp->isBusy() || m_logsOp->isBusy() ||
           m_exportOp->isBusy();
}

QString PerformanceViewModel::errorMessage() const {
    QStringList errors;
    for (const ModelOperation* op : {m_metricsOp, m_buildsOp, m_signaturesOp, m_logsOp, m_exportOp}) {
        if (op->hasError() && !errors.contains(op->errorText())) {
            errors.append(op->errorText());
        }
    }
    return errors.join(u'\n');
}

void PerformanceViewModel::setStatusMessage(const QString& message) {
    if (m_statusMessage != message) {
        m_statusMessage = message;
        Q_EMIT statusMessageChanged();
    }
}

QCoro::Task<std::shared_ptr<AppStoreConnectClient>> PerformanceViewModel::client() {
    const auto account = m_state.accountStore().selectedAccount();
    if (!account) {
        throw VelmoraAPIError::notConfigured();
    }
    auto made = co_await m_state.accountStore().makeClient(*account);
    co_return made;
}

void PerformanceViewModel::setMetrics(QList<ManagedPerformanceMetric> metrics, QString emptyText) {
    ManagedPerformanceMetric::sortForDisplay(metrics);
    m_metrics = std::move(metrics);
    QList<RowListModel::Row> rows;
    rows.reserve(m_metrics.size());
    for (qsizetype i = 0; i < m_metrics.size(); ++i) {
        const ManagedPerformanceMetric& m = m_metrics[i];
        const QString category = ManagedPerformanceMetric::categoryLabel(m.category);
        // The category heads the first row of its group only.
        const QString heading = i == 0 || m.category != m_metrics[i - 1].category ? category : QString();
        const QString value = valueText(m);
        const QString detail = detailText(m);
        rows.append({metricKey(m), heading, m.identifier, value, detail,
                     QStringList{category, m.identifier, value, detail}.join(u", "_s)});
    }
    m_metricRows->setRows(rows);
    if (m_metricsEmptyText != emptyText) {
        m_metricsEmptyText = std::move(emptyText);
        Q_EMIT metricsEmptyTextChanged();
    }
}

QCoro::Task<> PerformanceViewModel::loadMetrics(bool forceRefresh) {
    auto run = m_metricsOp->start();
    if (m_state.isDemoActive()) {
        setMetrics({}, {});
        run.fail(u"Im Demo-Modus liegen keine Leistungskennzahlen vor."_s);
        co_return;
    }
    QList<ManagedPerformanceMetric> metrics;
    try {
        auto api = co_await client();
        if (!run) {
            co_return;
        }
        const QString appID = m_app.id;
        const std::optional<QString> device = deviceType();
        metrics = co_await m_state.performanceService().metrics(appID, device, api, forceRefresh);
    } catch (const std::exception& error) {
        run.fail(u"Leistungskennzahlen konnten nicht geladen werden"_s, error);
        co_return;
    }
    if (!run) {
        co_return;
    }
    const bool empty = metrics.isEmpty();
    setMetrics(std::move(metrics), empty ? emptyMetricsText() : QString());
    run.succeed();
}

void PerformanceViewModel::setBuilds(const QList<ManagedBuild>& builds) {
    m_builds = builds;
    QList<RowListModel::Row> rows;
    for (const ManagedBuild& build : builds) {
        QString title = u"Build "_s + build.buildNumber;
        if (build.uploadedDate) {
            title +=
                u" · "_s + QLocale(QLocale::German).toString(build.uploadedDate->date(), u"dd.MM.yyyy"_s);
        }
        rows.append({build.id, title});
    }
    m_buildRows->setRows(rows);
    Q_EMIT selectedBuildIndexChanged();
}

void PerformanceViewModel::selectBuild(const QString& buildID) {
    if (buildID == m_selectedBuildID) {
        return;
    }
    m_selectedBuildID = buildID;
    Q_EMIT selectedBuildIDChanged();
    Q_EMIT selectedBuildIndexChanged();
}

QCoro::Task<> PerformanceViewModel::loadBuilds(bool forceRefresh) {
    auto run = m_buildsOp->start();
    QList<ManagedBuild> builds;
    const QString appID = m_app.id;
    if (m_state.isDemoActive()) {
        builds = MockData::builds(appID, m_state.platform().clock->now());
    } else {
        try {
            auto api = co_await client();
            if (!run) {
                co_return;
            }
            builds = co_await m_state.buildsService().builds(appID, api, forceRefresh);
        } catch (const std::exception& error) {
            run.fail(u"Builds konnten nicht geladen werden"_s, error);
            co_return;
        }
        if (!run) {
            co_return;
        }
    }
    setBuilds(builds);
    const bool chosenIsThere = std::any_of(
        builds.cbegin(), builds.cend(), [this](const ManagedBuild& b) { return b.id == m_selectedBuildID; });
    if (!chosenIsThere) {
        selectBuild(builds.isEmpty() ? QString() : builds.first().id);
    }
    run.succeed();
}

void PerformanceViewModel::chooseBuild(int index) {
    const QString buildID = m_buildRows->value(index, 0).toString();
    if (buildID.isEmpty() || buildID == m_selectedBuildID) {
        return;
    }
    selectBuild(buildID);
    QCoro::connect(loadSignatures(), this, [] {});
}

void PerformanceViewModel::publishSignatureRows() {
    QList<RowListModel::Row> rows;
    rows.reserve(m_signatures.size());
    for (const ManagedDiagnosticSignature& s : std::as_const(m_signatures)) {
        const QString title = s.signature.trimmed().isEmpty() ? u"Ohne Signaturtext"_s : s.signature;
        const QString kind = s.diagnosticType ? DiagnosticTypes::label(*s.diagnosticType) : QString();
        const QString weight =
            s.weight ? u"Anteil "_s + QLocale(QLocale::German).toString(*s.weight * 100, 'f', 1) + u" %"_s
                     : QString();
        const QString detail = QStringList{kind, weight}.filter(QRegularExpression(u"."_s)).join(u" · "_s);
        rows.append({s.id, title, detail, s.insightSummary.value_or(QString()), s.id == m_selectedSignature});
    }
    m_signatureRows->setRows(rows);
}

void PerformanceViewModel::setSignatures(QList<ManagedDiagnosticSignature> signatures, QString emptyText) {
    m_signatures = std::move(signatures);
    publishSignatureRows();
    if (m_signaturesEmptyText != emptyText) {
        m_signaturesEmptyText = std::move(emptyText);
        Q_EMIT signaturesEmptyTextChanged();
    }
}

void PerformanceViewModel::setSelectedSignature(const QString& signatureID) {
    if (signatureID == m_selectedSignature) {
        return;
    }
    m_selectedSignature = signatureID;
    Q_EMIT selectedSignatureChanged();
    Q_EMIT proposedLogFileNameChanged();
    publishSignatureRows();
}

void PerformanceViewModel::setLogText(std::optional<QString> text) {
    const bool had = m_logText.has_value();
    const QString before = logText();
    m_logText = std::move(text);
    if (logText() != before) {
        Q_EMIT logTextChanged();
    }
    if (had != hasLog()) {
        Q_EMIT hasLogChanged();
    }
}

QCoro::Task<> PerformanceViewModel::loadSignatures() {
    // Another build or kind: what was chosen below it belongs to the old list.
    m_logsOp->abandon();
    m_logsOp->clearError();
    setSelectedSignature({});
    setLogText(std::nullopt);
    auto run = m_signaturesOp->start();
    if (m_state.isDemoActive()) {
        setSignatures({}, {});
        run.fail(u"Im Demo-Modus liegen keine Absturzdiagnosen vor."_s);
        co_return;
    }
    if (m_selectedBuildID.isEmpty()) {
        setSignatures({}, {});
        run.succeed();
        co_return;
    }
    QList<ManagedDiagnosticSignature> signatures;
    try {
        auto api = co_await client();
        if (!run) {
            co_return;
        }
        const QString buildID = m_selectedBuildID;
        signatures = co_await m_state.performanceService().signatures(buildID, m_diagnosticType, api);
    } catch (const std::exception& error) {
        // A failure that comes back late belongs to a build or kind the user has left, or to a
        // screen that is gone: it must not empty the list shown now.
        if (!run) {
            co_return;
        }
        setSignatures({}, {});
        run.fail(u"Diagnosesignaturen konnten nicht geladen werden"_s, error);
        co_return;
    }
    if (!run) {
        co_return;
    }
    const bool empty = signatures.isEmpty();
    setSignatures(std::move(signatures), empty ? emptySignaturesText() : QString());
    run.succeed();
}

void PerformanceViewModel::chooseSignature(const QString& signatureID) {
    QCoro::connect(loadLogs(signatureID), this, [] {});
}

QCoro::Task<> PerformanceViewModel::loadLogs(QString signatureID) {
    setSelectedSignature(signatureID);
    setLogText(std::nullopt);
    setStatusMessage({});
    m_exportOp->clearError();
    auto run = m_logsOp->start();
    QString text;
    try {
        auto api = co_await client();
        if (!run) {
            co_return;
        }
        text = co_await m_state.performanceService().logs(signatureID, api);
    } catch (const std::exception& error) {
        run.fail(u"Protokolle konnten nicht geladen werden"_s, error);
        co_return;
    }
    if (!run) {
        co_return;
    }
    setLogText(text);
    run.succeed();
}

bool PerformanceViewModel::exportLog(const QString& pathOrFileUrl) {
    auto run = m_exportOp->start();
    setStatusMessage({});
    const QString failed = u"Export fehlgeschlagen: "_s;
    if (!m_logText) {
        run.fail(failed + u"Es ist kein Protokoll geladen."_s);
        return false;
    }
    const auto path = localPathFrom(pathOrFileUrl);
    if (!path) {
        run.fail(failed + u"Auf den gewählten Ort kann nicht zugegriffen werden."_s);
        return false;
    }
    // A save dialog names a folder that exists; one that is gone is not made up here.
    const QFileInfo folder(QFileInfo(*path).absolutePath());
    if (!folder.exists()) {
        run.fail(failed + germanFileError(ENOENT));
        return false;
    }
    if (!folder.isDir()) {
        run.fail(failed + germanFileError(ENOTDIR));
        return false;
    }
    if (QFileInfo(*path).isDir()) {
        run.fail(failed + germanFileError(EISDIR));
        return false;
    }
    errno = 0;
    if (const auto error = AtomicFile::write(*path, m_logText->toUtf8())) {
        run.fail(failed + (errno != 0 ? germanFileError(errno) : *error));
        return false;
    }
    run.succeed();
    setStatusMessage(u"Protokoll exportiert."_s);
    return true;
}

void PerformanceViewModel::noteShown(bool shown) {
    if (shown && !m_hasStarted) {
        startLoad(false);
    }
}

void PerformanceViewModel::startLoad(bool forceRefresh) {
    m_hasStarted = true;
    // The metrics and the builds do not wait for each other; the signatures need a build.
    QCoro::connect(loadMetrics(forceRefresh), this, [] {});
    QCoro::connect(loadBuildsAndSignatures(forceRefresh), this, [] {});
}

QCoro::Task<> PerformanceViewModel::loadBuildsAndSignatures(bool forceRefresh) {
    QPointer<PerformanceViewModel> self(this);
    co_await loadBuilds(forceRefresh);
    if (!self || m_buildsOp->hasError()) {
        co_return;
    }
    co_await loadSignatures();
}
