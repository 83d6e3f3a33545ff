#include "reports/AnalyticsViewModel.h"

#include "api/AccountStore.h"
#include "api/AppStoreConnectClient.h"
#include "api/ModelOperation.h"
#include "api/PendingWrite.h"
#include "api/RowListModel.h"
#include "platform/Clock.h"
#include "reports/AnalyticsService.h"
#include "reports/PerformanceViewModel.h"
#include "workspace/AppState.h"
#include "workspace/MockData.h"

#include <QLocale>

using namespace Qt::StringLiterals;

namespace {

const QStringList periodNames{u"7 Tage"_s, u"30 Tage"_s, u"90 Tage"_s, u"1 Jahr"_s};

QString sizeText(const std::optional<qint64>& bytes) {
    return bytes ? QLocale(QLocale::German).formattedDataSize(*bytes) : u"Größe unbekannt"_s;
}

QString number(double value) {
    return QLocale(QLocale::German).toString(value, 'f', value == qint64(value) ? 0 : 2);
}

// The rows again, with the last role telling whether the row's key is `selected`; rows that keep
// their mark are left alone.
void markRows(RowListModel* list, const QVariant& selected) {
    QList<RowListModel::Row> rows = list->rows();
    for (RowListModel::Row& row : rows) {
        row.last() = selected.isValid() && row.first() == selected;
    }
    list->setRows(rows);
}

} // namespace

AnalyticsViewModel::AnalyticsViewModel(AppState& state, ManagedApp app, QObject* parent)
    : QObject(parent), m_state(state), m_app(std::move(app)),
      m_performance(new PerformanceViewModel(state, m_app, this)), m_requestsOp(new ModelOperation(this)),
      m_creatingOp(new ModelOperation(this)), m_reportsOp(new ModelOperation(this)),
      m_instancesOp(new ModelOperation(this)), m_segmentsOp(new ModelOperation(this)),
      m_tableOp(new ModelOperation(this)),
      m_requestRows(new RowListModel({"itemId", "title", "detail", "isSelected"}, this)),
      m_reportRows(new RowListModel({"itemId", "title", "detail", "isSelected"}, this)),
      m_instanceRows(new RowListModel({"itemId", "title", "detail", "isSelected"}, this)),
      m_segmentRows(new RowListModel({"itemId", "title", "detail", "isSelected"}, this)),
      m_tableRows(new RowListModel({"row", "cells"}, this)),
      m_numericRows(new RowListModel({"columnIndex", "name", "isSelected"}, this)) {
    const auto forward = [this](ModelOperation* op, auto busy, auto error) {
        connect(op, &ModelOperation::busyChanged, this, busy);
        connect(op, &ModelOperation::errorChanged, this, error);
    };
    forward(m_requestsOp, &AnalyticsViewModel::isLoadingRequestsChanged,
            &AnalyticsViewModel::requestsErrorChanged);
    // A failed creation reads where the list's failures read.
    forward(m_creatingOp, &AnalyticsViewModel::isCreatingRequestChanged,
            &AnalyticsViewModel::requestsErrorChanged);
    forward(m_reportsOp, &AnalyticsViewModel::isLoadingReportsChanged,
            &AnalyticsViewModel::reportsErrorChanged);
    forward(m_instancesOp, &AnalyticsViewModel::isLoadingInstancesChanged,
            &AnalyticsViewModel::instancesErrorChanged);
    forward(m_segmentsOp, &AnalyticsViewModel::isLoadingSegmentsChanged,
            &AnalyticsViewModel::segmentsErrorChanged);
    forward(m_tableOp, &AnalyticsViewModel::isLoadingTableChanged, &AnalyticsViewModel::tableErrorChanged);
    // The caption tells of a load under way.
    connect(m_tableOp, &ModelOperation::busyChanged, this, &AnalyticsViewModel::tableCaptionChanged);
    // The hint speaks only of a list that has loaded empty, without a failure.
    for (ModelOperation* op : {m_requestsOp, m_creatingOp}) {
        connect(op, &ModelOperation::busyChanged, this, &AnalyticsViewModel::requestsHintChanged);
        connect(op, &ModelOperation::errorChanged, this, &AnalyticsViewModel::requestsHintChanged);
    }
    connect(m_requestRows, &RowListModel::countChanged, this, &AnalyticsViewModel::requestsHintChanged);
}

AnalyticsViewModel::~AnalyticsViewModel() = default;

bool AnalyticsViewModel::isLoadingRequests() const {
    return m_requestsOp->isBusy();
}
QString AnalyticsViewModel::requestsError() const {
    return m_creatingOp->errorText().isEmpty() ? m_requestsOp->errorText() : m_creatingOp->errorText();
}
bool AnalyticsViewModel::isCreatingRequest() const {
    return m_creatingOp->isBusy();
}
bool AnalyticsViewModel::isLoadingReports() const {
    return m_reportsOp->isBusy();
}
QString AnalyticsViewModel::reportsError() const {
    return m_reportsOp->errorText();
}
bool AnalyticsViewModel::isLoadingInstances() const {
    return m_instancesOp->isBusy();
}
QString AnalyticsViewModel::instancesError() const {
    return m_instancesOp->errorText();
}
bool AnalyticsViewModel::isLoadingSegments() const {
    return m_segmentsOp->isBusy();
}
QString AnalyticsViewModel::segmentsError() const {
    return m_segmentsOp->errorText();
}
bool AnalyticsViewModel::isLoadingTable() const {
    return m_tableOp->isBusy();
}
QString AnalyticsViewModel::tableError() const {
    return m_tableOp->errorText();
}

QStringList AnalyticsViewModel::tableColumns() const {
    return m_table ? m_table->columns() : QStringList();
}

QString AnalyticsViewModel::tableCaption() const {
    if (!m_table) {
        return isLoadingTable() ? u"Report wird geladen und entpackt …"_s : QString();
    }
    return u"Rohdaten aus Apples Report (%1 Zeilen)"_s.arg(
        QLocale(QLocale::German).toString(m_table->rowCount()));
}

QString AnalyticsViewModel::tableNote() const {
    return m_table && m_table->rowCount() > maxTableRows
               ? u"Nur die ersten 100 Zeilen werden angezeigt. Die vollständige Datei lässt sich oben herunterladen."_s
               : QString();
}

QStringList AnalyticsViewModel::periodLabels() const {
    return periodNames;
}

void AnalyticsViewModel::setPeriod(int period) {
    if (period < 0 || period >= int(periodNames.size()) || period == m_period) {
        return;
    }
    m_period = period;
    Q_EMIT periodChanged();
    emitSummaryChanged();
}

void AnalyticsViewModel::setSelectedColumnIndex(int column) {
    if (column == m_selectedColumn) {
        return;
    }
    m_selectedColumn = column;
    Q_EMIT selectedColumnIndexChanged();
    markRows(m_numericRows, effectiveColumnIndex());
    emitSummaryChanged();
}

int AnalyticsViewModel::effectiveColumnIndex() const {
    if (!m_table) {
        return -1;
    }
    if (m_selectedColumn >= 0) {
        return m_selectedColumn;
    }
    const QList<qsizetype> numeric = m_table->numericColumnIndices();
    return numeric.isEmpty() ? -1 : int(numeric.constFirst());
}

std::optional<AnalyticsSummary> AnalyticsViewModel::summary() const {
    const int column = effectiveColumnIndex();
    if (column < 0) {
        return std::nullopt;
    }
    return AnalyticsSummary::make(*m_table, column, periodDays[m_period], m_state.platform().clock->now());
}

QString AnalyticsViewModel::summaryUnavailableReason() const {
    if (!m_table) {
        return {};
    }
    if (m_table->rowCount() == 0) {
        return u"Dieses Segment enthält keine Datenzeilen."_s;
    }
    if (!m_table->dateColumnIndex()) {
        return u"Dieser Report enthält keine Datumsspalte. Eine Auswertung über Zeiträume ist damit nicht "
               u"möglich; "
               u"die Rohdaten stehen unten."_s;
    }
    if (m_numericRows->count() == 0) {
        return u"Dieser Report enthält keine numerische Spalte, die sich über die Zeit auswerten ließe."_s;
    }
    const auto s = summary();
    if (!s || s->points.isEmpty()) {
        return u"Im gewählten Zeitraum enthält der Report keine Zeilen. Wähle einen längeren Zeitraum."_s;
    }
    return {};
}

QString AnalyticsViewModel::summaryHeadline() const {
    const auto s = summary();
    return s ? u"Summe %1 · %2"_s.arg(s->columnName, periodNames[m_period]) : QString();
}

QString AnalyticsViewModel::totalText() const {
    const auto s = summary();
    return s ? number(s->total) : QString();
}

QString AnalyticsViewModel::daysWithDataText() const {
    const auto s = summary();
    return s ? u"%1 Tage mit Daten"_s.arg(s->points.size()) : QString();
}

QString AnalyticsViewModel::previousTotalText() const {
    const auto s = summary();
    return s && s->previousTotal ? number(*s->previousTotal) : QString();
}

QString AnalyticsViewModel::changeText() const {
    const auto s = summary();
    if (!s) {
        return {};
    }
    if (!s->previousTotal || *s->previousTotal == 0) {
        return u"Nicht genug Historie"_s;
    }
    return QString::asprintf("%+.1f %%", (s->total - *s->previousTotal) / *s->previousTotal * 100.0);
}

QString AnalyticsViewModel::changeNote() const {
    const auto s = summary();
    return s && (!s->previousTotal || *s->previousTotal == 0)
               ? u"Der Report reicht nicht weit genug zurück."_s
               : QString();
}

QVariantList AnalyticsViewModel::chartPoints() const {
    QVariantList points;
    if (const auto s = summary()) {
        for (const AnalyticsSummary::Point& p : s->points) {
            points.append(QVariantMap{{u"day"_s, p.date.toJulianDay()},
                                      {u"value"_s, p.value},
                                      {u"dateText"_s, p.date.toString(u"dd.MM.yyyy"_s)}});
        }
    }
    return points;
}

QString AnalyticsViewModel::requestsHint() const {
    if (!m_requestsLoaded || isLoadingRequests() || isCreatingRequest() || !requestsError().isEmpty() ||
        m_requestRows->count() > 0) {
        return {};
    }
    return u"Für diese App gibt es noch keine Report-Anfrage. „Momentaufnahme anfordern“ legt eine an; "
           u"Apple füllt sie im Lauf von ein bis zwei Tagen mit Reports."_s;
}

QString AnalyticsViewModel::sampleNote() const {
    return m_isSample ? u"Im Demo-Modus stehen keine echten Download-Links zur Verfügung. Die Tabelle "
                        u"zeigt Beispieldaten."_s
                      : QString();
}

void AnalyticsViewModel::markSelections() {
    markRows(m_requestRows, m_selectedRequest);
    markRows(m_reportRows, m_selectedReport);
    markRows(m_instanceRows, m_selectedInstance);
    markRows(m_segmentRows, m_chosenSegment);
    markRows(m_numericRows, effectiveColumnIndex());
}

QCoro::Task<std::shared_ptr<AppStoreConnectClient>> AnalyticsViewModel::client() {
    const auto account = m_state.accountStore().selectedAccount();
    if (!account) {
        co_return std::shared_ptr<AppStoreConnectClient>();
    }
    auto made = co_await m_state.accountStore().makeClient(*account);
    co_return made;
}

void AnalyticsViewModel::clearBelowInstance() {
    m_segments.clear();
    m_chosenSegment.clear();
    m_segmentRows->setRows({});
    m_segmentsOp->abandon();
    m_segmentsOp->clearError();
    m_tableOp->abandon();
    m_tableOp->clearError();
    setTable(std::nullopt, {}, false);
}

void AnalyticsViewModel::clearBelowReport() {
    if (!m_selectedInstance.isEmpty()) {
        m_selectedInstance.clear();
        Q_EMIT selectedInstanceChanged();
    }
    m_instanceRows->setRows({});
    m_instancesOp->abandon();
    m_instancesOp->clearError();
    clearBelowInstance();
}

void AnalyticsViewModel::clearBelowRequest() {
    if (!m_selectedReport.isEmpty()) {
        m_selectedReport.clear();
        Q_EMIT selectedReportChanged();
    }
    m_reportRows->setRows({});
    m_reportsOp->abandon();
    m_reportsOp->clearError();
    clearBelowReport();
}

void AnalyticsViewModel::clearInstanceSelection() {
    if (!m_selectedInstance.isEmpty()) {
        m_selectedInstance.clear();
        Q_EMIT selectedInstanceChanged();
    }
    clearBelowInstance();
}

void AnalyticsViewModel::setTable(std::optional<AnalyticsTable> table, QString segmentID, bool isSample) {
    m_table = std::move(table);
    if (m_isSample != isSample) {
        m_isSample = isSample;
        Q_EMIT sampleNoteChanged();
    }
    m_loadedSegmentID = std::move(segmentID);
    QList<RowListModel::Row> rows;
    QList<RowListModel::Row> numeric;
    if (m_table) {
        for (qsizetype r = 0; r < std::min<qsizetype>(m_table->rowCount(), maxTableRows); ++r) {
            rows.append({int(r), m_table->row(r)});
        }
        for (const qsizetype column : m_table->numericColumnIndices()) {
            numeric.append({int(column), m_table->columns()[column], false});
        }
    }
    m_tableRows->setRows(rows);
    m_numericRows->setRows(numeric);
    // A new table starts with its first numeric column.
    if (m_selectedColumn != -1) {
        m_selectedColumn = -1;
        Q_EMIT selectedColumnIndexChanged();
    }
    markRows(m_numericRows, effectiveColumnIndex());
    Q_EMIT loadedSegmentIDChanged();
    emitTableChanged();
    emitSummaryChanged();
}

void AnalyticsViewModel::emitTableChanged() {
    Q_EMIT tableColumnsChanged();
    Q_EMIT tableCaptionChanged();
    Q_EMIT tableNoteChanged();
}

void AnalyticsViewModel::emitSummaryChanged() {
    Q_EMIT summaryUnavailableReasonChanged();
    Q_EMIT summaryHeadlineChanged();
    Q_EMIT totalTextChanged();
    Q_EMIT daysWithDataTextChanged();
    Q_EMIT previousTotalTextChanged();
    Q_EMIT changeTextChanged();
    Q_EMIT changeNoteChanged();
    Q_EMIT chartPointsChanged();
}

void AnalyticsViewModel::startLoad(bool forceRefresh) {
    QCoro::connect(loadRequests(forceRefresh), this, [] {});
}

void AnalyticsViewModel::startCreatingSnapshotRequest() {
    QCoro::connect(createSnapshotRequest(), this, [] {});
}

void AnalyticsViewModel::choose(const QString& level, const QString& id) {
    if (level == u"request"_s) {
        QCoro::connect(selectRequest(id), this, [] {});
    } else if (level == u"report"_s) {
        QCoro::connect(selectReport(id), this, [] {});
    } else if (level == u"instance"_s) {
        QCoro::connect(selectInstance(id), this, [] {});
    } else if (level == u"segment"_s) {
        QCoro::connect(loadTable(id), this, [] {});
    }
}

void AnalyticsViewModel::chooseRow(const QString& level, int row) {
    const QHash<QString, RowListModel*> lists{{u"request"_s, m_requestRows},
                                              {u"report"_s, m_reportRows},
                                              {u"instance"_s, m_instanceRows},
                                              {u"segment"_s, m_segmentRows}};
    RowListModel* list = lists.value(level);
    if (list && row >= 0 && row < list->count()) {
        choose(level, list->value(row, 0).toString());
    }
}

QCoro::Task<> AnalyticsViewModel::loadRequests(bool forceRefresh) {
    auto run = m_requestsOp->start();
    QList<ManagedAnalyticsReportRequest> requests;
    if (m_state.isDemoActive()) {
        requests = MockData::analyticsReportRequests(m_app.id);
    } else {
        try {
            auto api = co_await client();
            if (!run || !api) {
                co_return;
            }
            const QString appID = m_app.id;
            requests = co_await m_state.analyticsService().reportRequests(appID, api, forceRefresh);
        } catch (const std::exception& error) {
            run.fail(error);
            co_return;
        }
        if (!run) {
            co_return;
        }
    }
    QList<RowListModel::Row> rows;
    for (const auto& r : requests) {
        rows.append({r.id, r.accessType,
                     r.isStopped ? u"Von Apple angehalten: lange nicht abgerufen"_s : u"Aktiv"_s,
                     r.id == m_selectedRequest});
    }
    m_requestRows->setRows(rows);
    m_requestsLoaded = true;
    run.succeed();
}

QCoro::Task<> AnalyticsViewModel::createSnapshotRequest() {
    auto run = m_creatingOp->start();
    if (const auto blocked = m_state.writeBlockedReason()) {
        run.fail(*blocked);
        co_return;
    }
    if (m_state.isDemoActive()) {
        run.fail(WriteGate::demoMessage());
        co_return;
    }
    try {
        auto api = co_await client();
        if (!run || !api) {
            co_return;
        }
        const QString appID = m_app.id;
        co_await m_state.analyticsService().createOneTimeSnapshotRequest(appID, api);
    } catch (const std::exception& error) {
        run.fail(error);
        co_return;
    }
    if (!run) {
        co_return;
    }
    run.succeed();
    // Apple adds the request at its own pace; the list shows what it has now.
    co_await loadRequests(true);
}

QCoro::Task<> AnalyticsViewModel::selectRequest(QString requestID) {
    m_selectedRequest = requestID;
    Q_EMIT selectedRequestChanged();
    markSelections();
    clearBelowRequest();
    auto run = m_reportsOp->start();
    QList<ManagedAnalyticsReport> reports;
    if (m_state.isDemoActive()) {
        reports = MockData::analyticsReports(requestID);
    } else {
        try {
            auto api = co_await client();
            if (!run || !api) {
                co_return;
            }
            reports = co_await m_state.analyticsService().reports(requestID, api);
        } catch (const std::exception& error) {
            run.fail(error);
            co_return;
        }
        if (!run) {
            co_return;
        }
    }
    QList<RowListModel::Row> rows;
    for (const auto& r : reports) {
        rows.append({r.id, r.name, r.category.value_or(QString()), r.id == m_selectedReport});
    }
    m_reportRows->setRows(rows);
    run.succeed();
}

QCoro::Task<> AnalyticsViewModel::selectReport(QString reportID) {
    m_selectedReport = reportID;
    Q_EMIT selectedReportChanged();
    markSelections();
    clearBelowReport();
    auto run = m_instancesOp->start();
    QList<ManagedAnalyticsReportInstance> instances;
    if (m_state.isDemoActive()) {
        instances = MockData::analyticsReportInstances(reportID);
    } else {
        try {
            auto api = co_await client();
            if (!run || !api) {
                co_return;
            }
            instances = co_await m_state.analyticsService().instances(reportID, api);
        } catch (const std::exception& error) {
            run.fail(error);
            co_return;
        }
        if (!run) {
            co_return;
        }
    }
    QList<RowListModel::Row> rows;
    for (const auto& i : instances) {
        rows.append({i.id, i.granularity, i.processingDate.value_or(u"–"_s), i.id == m_selectedInstance});
    }
    m_instanceRows->setRows(rows);
    run.succeed();
}

QCoro::Task<> AnalyticsViewModel::selectInstance(QString instanceID) {
    m_selectedInstance = instanceID;
    Q_EMIT selectedInstanceChanged();
    markSelections();
    clearBelowInstance();
    auto run = m_segmentsOp->start();
    QList<ManagedAnalyticsReportSegment> segments;
    if (m_state.isDemoActive()) {
        segments = MockData::analyticsReportSegments(instanceID);
    } else {
        try {
            auto api = co_await client();
            if (!run || !api) {
                co_return;
            }
            segments = co_await m_state.analyticsService().segments(instanceID, api);
        } catch (const std::exception& error) {
            run.fail(error);
            co_return;
        }
        if (!run) {
            co_return;
        }
    }
    m_segments = segments;
    QList<RowListModel::Row> rows;
    for (qsizetype i = 0; i < segments.size(); ++i) {
        rows.append({segments[i].id, u"Segment %1"_s.arg(i + 1), sizeText(segments[i].sizeInBytes),
                     segments[i].id == m_chosenSegment});
    }
    m_segmentRows->setRows(rows);
    run.succeed();
}

QCoro::Task<> AnalyticsViewModel::loadTable(QString segmentID) {
    auto run = m_tableOp->start();
    const auto segment =
        std::find_if(m_segments.cbegin(), m_segments.cend(),
                     [&](const ManagedAnalyticsReportSegment& s) { return s.id == segmentID; });
    if (segment == m_segments.cend()) {
        co_return;
    }
    m_chosenSegment = segmentID;
    markRows(m_segmentRows, m_chosenSegment);
    if (m_state.isDemoActive()) {
        // Demo segments have no address to download from; a sample file shows what a real one
        // would, and says so.
        setTable(AnalyticsTable::parseTSV(
                     MockData::analyticsSegmentText(segmentID, m_state.platform().clock->now())),
                 segmentID, true);
        run.succeed();
        co_return;
    }
    const ManagedAnalyticsReportSegment chosen = *segment;
    const QString instanceID = m_selectedInstance;
    std::optional<AnalyticsTable> table;
    try {
        auto api = co_await client();
        if (!run || !api) {
            co_return;
        }
        table = co_await m_state.analyticsService().table(chosen, instanceID, api);
    } catch (const std::exception& error) {
        run.fail(error);
        co_return;
    }
    if (!run || m_selectedInstance != instanceID) {
        co_return;
    }
    setTable(std::move(table), chosen.id, false);
    run.succeed();
}
