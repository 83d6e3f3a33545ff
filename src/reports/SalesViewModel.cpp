#include "reports/SalesViewModel.h"

#include "api/Account.h"
#include "api/AccountStore.h"
#include "api/ModelOperation.h"
#include "api/RowListModel.h"
#include "platform/Clock.h"
#include "platform/LocalPath.h"
#include "wire/VelmoraAPIError.h"
#include "workspace/AppState.h"
#include "workspace/MockData.h"

#include <QCoro/QCoroCore>
#include <QDir>
#include <QLocale>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTimeZone>
#include <QVariantMap>

using namespace Qt::StringLiterals;

namespace {

// Apple puts a day's report out a day or two late.
constexpr qint64 deliveryDelaySeconds = 172800;

enum Role { Key, Cells };

QVariantMap option(const QString& value, const QString& label) {
    return QVariantMap{{u"value"_s, value}, {u"label"_s, label}};
}

int indexOfValue(const QVariantList& options, const QString& value) {
    for (qsizetype i = 0; i < options.size(); ++i) {
        if (options[i].toMap().value(u"value"_s).toString() == value) {
            return int(i);
        }
    }
    return -1;
}

// How many periods back the chooser reaches: about what Apple keeps of each kind.
int periodsOffered(SalesReportFrequency frequency) {
    switch (frequency) {
    case SalesReportFrequency::Daily:
        return 30;
    case SalesReportFrequency::Weekly:
        return 12;
    case SalesReportFrequency::Monthly:
        return 24;
    case SalesReportFrequency::Yearly:
        return 5;
    }
    return 1;
}

// A weekly report is asked for by the Sunday that ends its week, in UTC.
QDateTime weekEnding(const QDateTime& date) {
    const int daysAfterSunday = date.toTimeZone(QTimeZone::utc()).date().dayOfWeek() % 7;
    return date.addDays(-daysAfterSunday);
}

QDateTime periodBack(SalesReportFrequency frequency, const QDateTime& date, int steps) {
    switch (frequency) {
    case SalesReportFrequency::Daily:
        return date.addDays(-steps);
    case SalesReportFrequency::Weekly:
        return weekEnding(date).addDays(-7 * steps);
    case SalesReportFrequency::Monthly:
        return date.addMonths(-steps);
    case SalesReportFrequency::Yearly:
        return date.addYears(-steps);
    }
    return date;
}

QString periodLabel(SalesReportFrequency frequency, const QDateTime& date) {
    const QLocale german(QLocale::German, QLocale::Germany);
    const QDate day = date.toTimeZone(QTimeZone::utc()).date();
    switch (frequency) {
    case SalesReportFrequency::Daily:
        return german.toString(day, u"ddd, dd.MM.yyyy"_s);
    case SalesReportFrequency::Weekly:
        return u"Woche bis "_s + german.toString(day, u"dd.MM.yyyy"_s);
    case SalesReportFrequency::Monthly:
        return german.toString(day, u"MMMM yyyy"_s);
    case SalesReportFrequency::Yearly:
        return QString::number(day.year());
    }
    return {};
}

// The moment a period's filter text stands for: its first day, at noon UTC, so that no zone
// moves it to another day.
std::optional<QDateTime> dateOf(SalesReportFrequency frequency, const QString& text) {
    const auto normalized = SalesReportKinds::normalizedReportDate(frequency, text);
    if (!normalized) {
        return std::nullopt;
    }
    QDate day;
    switch (frequency) {
    case SalesReportFrequency::Daily:
    case SalesReportFrequency::Weekly:
        day = QDate::fromString(*normalized, u"yyyy-MM-dd"_s);
        break;
    case SalesReportFrequency::Monthly:
        day = QDate::fromString(*normalized, u"yyyy-MM"_s);
        break;
    case SalesReportFrequency::Yearly:
        day = QDate::fromString(*normalized, u"yyyy"_s);
        break;
    }
    return QDateTime(day, QTime(12, 0), QTimeZone::utc());
}

QString reportCaptionOf(const std::optional<QString>& financeRegion, const QString& typeLabel,
                        const QString& frequencyLabel, const QString& reportDate) {
    if (financeRegion) {
        return u"Finanzbericht · Region %1 · %2"_s.arg(*financeRegion, reportDate);
    }
    return u"%1 · %2 · %3"_s.arg(typeLabel, frequencyLabel, reportDate);
}

QString entryCaption(const ReportArchiveStore::Entry& entry) {
    const auto type = SalesReportKinds::typeFromRaw(entry.report.reportType);
    const auto frequency = SalesReportKinds::frequencyFromRaw(entry.report.frequency);
    return reportCaptionOf(
        entry.report.kind == ReportArchiveStore::Kind::Finance ? std::optional<QString>(entry.report.region)
                                                               : std::nullopt,
        type ? SalesReportKinds::label(*type) : entry.report.reportType,
        frequency ? SalesReportKinds::label(*frequency) : entry.report.frequency, entry.report.reportDate);
}

QString savedAtText(const QDateTime& savedAt) {
    const QLocale german(QLocale::German, QLocale::Germany);
    const QDateTime local = savedAt.toLocalTime();
    return u"abgelegt am %1, %2"_s.arg(german.toString(local.date(), u"d. MMMM yyyy"_s),
                                       german.toString(local.time(), u"HH:mm"_s));
}

} // namespace

SalesViewModel::SalesViewModel(AppState& state, QObject* parent)
    : QObject(parent), m_state(state), m_loading(new ModelOperation(this)),
      m_archiving(new ModelOperation(this)), m_exporting(new ModelOperation(this)),
      m_rows(new RowListModel({"key", "cells"}, this)),
      m_archiveRows(new RowListModel({"fileName", "title", "detail", "accessibleName"}, this)),
      m_date(state.platform().clock->now().addSecs(-deliveryDelaySeconds)), m_latest(m_date),
      m_financeMonth(SalesReportKinds::financeMonth(m_date)) {
    connect(m_loading, &ModelOperation::busyChanged, this, &SalesViewModel::isLoadingChanged);
    connect(m_archiving, &ModelOperation::busyChanged, this, &SalesViewModel::isArchivingChanged);
    connect(m_archiving, &ModelOperation::busyChanged, this, &SalesViewModel::canArchiveChanged);
    connect(m_exporting, &ModelOperation::busyChanged, this, &SalesViewModel::isExportingChanged);
    connect(m_exporting, &ModelOperation::busyChanged, this, &SalesViewModel::canExportChanged);
    for (ModelOperation* operation : {m_loading, m_archiving, m_exporting}) {
        connect(operation, &ModelOperation::errorChanged, this, &SalesViewModel::errorMessageChanged);
    }
    connect(&m_state.accountStore(), &AccountStore::selectedAccountChanged, this, [this] {
        Q_EMIT vendorNumberHintChanged();
        Q_EMIT canArchiveChanged();
    });
    // Demo and account keep their reports apart: the list shows the side that is active now.
    connect(&m_state, &AppState::demoModeChanged, this, &SalesViewModel::demoOrAccountChanged);
    connect(&m_state.accountStore(), &AccountStore::accountsChanged, this,
            &SalesViewModel::demoOrAccountChanged);
    connect(m_archiveRows, &RowListModel::countChanged, this, &SalesViewModel::hasArchiveChanged);
}

SalesViewModel::~SalesViewModel() = default;

void SalesViewModel::setReportType(const QString& raw) {
    const auto type = SalesReportKinds::typeFromRaw(raw);
    if (!type || *type == m_type) {
        return;
    }
    m_type = *type;
    Q_EMIT reportTypeChanged();
    Q_EMIT typeIndexChanged();
    Q_EMIT frequencyOptionsChanged();
    Q_EMIT frequencyIndexChanged();
    if (!SalesReportKinds::accepts(m_type, m_frequency)) {
        setFrequencyValue(SalesReportKinds::acceptedFrequencies(m_type).constFirst());
    }
}

void SalesViewModel::setFrequency(const QString& raw) {
    const auto frequency = SalesReportKinds::frequencyFromRaw(raw);
    if (frequency && SalesReportKinds::accepts(m_type, *frequency)) {
        setFrequencyValue(*frequency);
    }
}

void SalesViewModel::setFrequencyValue(SalesReportFrequency frequency) {
    if (frequency == m_frequency) {
        return;
    }
    m_frequency = frequency;
    if (m_frequency == SalesReportFrequency::Weekly && weekEnding(m_date) != m_date) {
        m_date = weekEnding(m_date);
        Q_EMIT dateChanged();
    }
    Q_EMIT frequencyChanged();
    Q_EMIT dateUnitLabelChanged();
    Q_EMIT frequencyIndexChanged();
    Q_EMIT periodOptionsChanged();
    Q_EMIT reportDateChanged();
    Q_EMIT periodIndexChanged();
}

void SalesViewModel::setDate(const QDateTime& date) {
    const QDateTime chosen = m_frequency == SalesReportFrequency::Weekly ? weekEnding(date) : date;
    if (!chosen.isValid() || chosen == m_date) {
        return;
    }
    const QString before = reportDateText();
    m_date = chosen;
    Q_EMIT dateChanged();
    if (reportDateText() != before) {
        Q_EMIT reportDateChanged();
        Q_EMIT periodOptionsChanged();
        Q_EMIT periodIndexChanged();
    }
}

void SalesViewModel::setReportDateText(const QString& text) {
    if (const auto date = dateOf(m_frequency, text); date && *date <= m_latest.addDays(1)) {
        if (SalesReportKinds::reportDate(m_frequency, *date) != reportDateText()) {
            setDate(*date);
        }
    }
}

QVariantList SalesViewModel::periodOptions() const {
    QVariantList options;
    bool current = false;
    for (int step = 0; step < periodsOffered(m_frequency); ++step) {
        const QDateTime date = periodBack(m_frequency, m_latest, step);
        const QString value = SalesReportKinds::reportDate(m_frequency, date);
        current = current || value == reportDateText();
        options.append(option(value, periodLabel(m_frequency, date)));
    }
    // A date chosen elsewhere (a kept report, a link) still shows as what it is.
    if (!current) {
        options.prepend(option(reportDateText(), periodLabel(m_frequency, m_date)));
    }
    return options;
}

void SalesViewModel::setFinanceMonth(const QString& month) {
    const auto normalized = SalesReportKinds::normalizedReportDate(SalesReportFrequency::Monthly, month);
    // Only a month the chooser offers: none ahead, none beyond what Apple keeps.
    if (normalized && *normalized != m_financeMonth &&
        indexOfValue(financeMonthOptions(), *normalized) >= 0) {
        m_financeMonth = *normalized;
        Q_EMIT financeMonthChanged();
        Q_EMIT financeMonthIndexChanged();
    }
}

QVariantList SalesViewModel::financeMonthOptions() const {
    QVariantList options;
    for (int step = 0; step < periodsOffered(SalesReportFrequency::Monthly); ++step) {
        const QDateTime date = periodBack(SalesReportFrequency::Monthly, m_latest, step);
        options.append(
            option(SalesReportKinds::financeMonth(date), periodLabel(SalesReportFrequency::Monthly, date)));
    }
    return options;
}

int SalesViewModel::typeIndex() const {
    return indexOfValue(typeOptions(), reportType());
}

int SalesViewModel::frequencyIndex() const {
    return indexOfValue(frequencyOptions(), frequency());
}

int SalesViewModel::periodIndex() const {
    return indexOfValue(periodOptions(), reportDateText());
}

int SalesViewModel::financeMonthIndex() const {
    return indexOfValue(financeMonthOptions(), m_financeMonth);
}

QStringList SalesViewModel::tabTitles() const {
    return {u"Zusammenfassung"_s, u"Apples Tabelle"_s, u"Verlauf"_s};
}

void SalesViewModel::selectTab(int tab) {
    if (tab >= 0 && tab < tabTitles().size() && tab != m_selectedTab) {
        m_selectedTab = tab;
        Q_EMIT selectedTabChanged();
    }
}

void SalesViewModel::setFinanceRegion(const QString& region) {
    const QString code = region.trimmed().toUpper();
    if (code.isEmpty() || code == m_financeRegion) {
        return;
    }
    m_financeRegion = code;
    Q_EMIT financeRegionChanged();
}

QVariantList SalesViewModel::typeOptions() const {
    QVariantList options;
    for (const SalesReportType type : SalesReportKinds::allTypes()) {
        options.append(option(SalesReportKinds::rawValue(type), SalesReportKinds::label(type)));
    }
    return options;
}

QVariantList SalesViewModel::frequencyOptions() const {
    QVariantList options;
    for (const SalesReportFrequency frequency : SalesReportKinds::acceptedFrequencies(m_type)) {
        options.append(option(SalesReportKinds::rawValue(frequency), SalesReportKinds::label(frequency)));
    }
    return options;
}

QString SalesViewModel::dateUnitLabel() const {
    return m_frequency == SalesReportFrequency::Monthly ? u"MONAT"_s : u"DATUM"_s;
}

QString SalesViewModel::reportCaption() const {
    if (!m_report) {
        return {};
    }
    return reportCaptionOf(m_report->financeRegion, SalesReportKinds::label(m_report->type),
                           SalesReportKinds::label(m_report->frequency), m_report->reportDate);
}

QStringList SalesViewModel::columns() const {
    return m_report ? m_report->table.columns() : QStringList();
}

QString SalesViewModel::rowsNote() const {
    return rowCount() > previewRows ? u"Angezeigt sind die ersten 100 Zeilen; der Export enthält alle."_s
                                    : QString();
}

QString SalesViewModel::unitsText() const {
    return m_summary ? m_summary->unitsText() : QString();
}

QString SalesViewModel::proceedsText() const {
    return m_summary ? m_summary->proceedsText() : QString();
}

QString SalesViewModel::comparisonText() const {
    return m_comparison ? m_comparison->text() : QString();
}

bool SalesViewModel::isLoading() const {
    return m_loading->isBusy();
}

QString SalesViewModel::errorMessage() const {
    for (const ModelOperation* operation : {m_loading, m_archiving, m_exporting}) {
        if (operation->hasError()) {
            return operation->errorText();
        }
    }
    return {};
}

void SalesViewModel::clearErrorsBut(ModelOperation* operation) {
    for (ModelOperation* other : {m_loading, m_archiving, m_exporting}) {
        if (other != operation) {
            other->clearError();
        }
    }
}

QString SalesViewModel::vendorNumberHint() const {
    const auto account = m_state.accountStore().selectedAccount();
    if (!account || account->hasUsableVendorNumber()) {
        return {};
    }
    return u"Ohne Vendor-Nummer liefert Apple keine Verkaufs- und Finanzberichte. Sie steht in App Store "
           u"Connect unter „Zahlungen und Finanzberichte“ und lässt sich in den Einstellungen am Account "
           u"nachtragen."_s;
}

QString SalesViewModel::noRowsHint() {
    return u"Apple liefert für diesen Zeitraum keine Zeilen. Das heißt „keine Verkäufe“ – oder der Bericht "
           u"ist noch nicht fertig; Apple stellt ihn mit ein bis zwei Tagen Verzug bereit."_s;
}

void SalesViewModel::setStatusMessage(const QString& text) {
    if (text != m_statusMessage) {
        m_statusMessage = text;
        Q_EMIT statusMessageChanged();
    }
}

void SalesViewModel::publish(ManagedSalesReport report, std::optional<SalesComparison> comparison,
                             QString vendorNumber) {
    m_summary = comparison ? comparison->current : SalesSummary::of(report.table);
    m_comparison = std::move(comparison);
    m_report = std::move(report);
    m_reportVendor = std::move(vendorNumber);
    setReportIsSample(false);
    QList<RowListModel::Row> rows;
    const AnalyticsTable& table = m_report->table;
    for (qsizetype r = 0; r < std::min<qsizetype>(table.rowCount(), previewRows); ++r) {
        rows.append(RowListModel::Row{int(r), table.row(r)});
    }
    m_rows->setRows(rows);
    emitReportChanged();
    setStatusMessage(u"%1 geladen: %2 Zeilen."_s.arg(reportCaption()).arg(table.rowCount()));
}

void SalesViewModel::startLoad() {
    QCoro::connect(load(), this, [] {});
}

void SalesViewModel::startLoadFinanceReport() {
    QCoro::connect(loadFinanceReport(), this, [] {});
}

QCoro::Task<> SalesViewModel::load() {
    const auto account = m_state.accountStore().selectedAccount();
    if (!account && m_state.isDemoActive()) {
        co_await loadDemo(false);
        co_return;
    }
    if (!account) {
        m_loading->setError(VelmoraAPIError::notConfigured().errorDescription());
        co_return;
    }
    if (!account->hasUsableVendorNumber()) {
        m_loading->setError(
            u"Für Verkaufsberichte fehlt die Vendor-Nummer des Accounts. Sie lässt sich in den "
            u"Einstellungen nachtragen."_s);
        co_return;
    }
    auto run = m_loading->start();
    clearErrorsBut(m_loading);
    setStatusMessage({});
    SalesReportRequest request;
    request.type = m_type;
    request.frequency = m_frequency;
    request.reportDate = SalesReportKinds::reportDate(m_frequency, m_date);
    request.vendorNumber = *account->vendorNumber;
    SalesReportRequest previousRequest = request;
    previousRequest.reportDate =
        SalesReportKinds::reportDate(m_frequency, SalesReportKinds::previousPeriodDate(m_frequency, m_date));
    const QString noFile;
    try {
        auto client = co_await m_state.accountStore().makeClient(*account);
        if (!run) {
            co_return;
        }
        ManagedSalesReport report =
            co_await m_state.salesReportsService().salesReport(request, client, noFile);
        if (!run) {
            co_return;
        }
        std::optional<SalesSummary> previous;
        try {
            const ManagedSalesReport before =
                co_await m_state.salesReportsService().salesReport(previousRequest, client, noFile);
            if (!before.isMissing) {
                previous = SalesSummary::of(before.table);
            }
        } catch (const std::exception&) {
            // Without the period before there is only no comparison; the report itself stands.
        }
        if (!run) {
            co_return;
        }
        const SalesSummary current = SalesSummary::of(report.table);
        publish(std::move(report), SalesComparison{current, previous}, request.vendorNumber);
        if (current.rowCount == 0) {
            run.fail(noRowsHint());
        } else {
            run.succeed();
        }
    } catch (const std::exception& error) {
        run.fail(error);
    }
}

QCoro::Task<> SalesViewModel::loadFinanceReport() {
    const auto account = m_state.accountStore().selectedAccount();
    if (!account && m_state.isDemoActive()) {
        co_await loadDemo(true);
        co_return;
    }
    if (!account) {
        m_loading->setError(VelmoraAPIError::notConfigured().errorDescription());
        co_return;
    }
    if (!account->hasUsableVendorNumber()) {
        m_loading->setError(u"Für Finanzberichte fehlt die Vendor-Nummer des Accounts."_s);
        co_return;
    }
    auto run = m_loading->start();
    clearErrorsBut(m_loading);
    setStatusMessage({});
    FinanceReportRequest request;
    request.regionCode = m_financeRegion;
    request.month = m_financeMonth;
    request.vendorNumber = *account->vendorNumber;
    const QString noFile;
    try {
        auto client = co_await m_state.accountStore().makeClient(*account);
        if (!run) {
            co_return;
        }
        ManagedSalesReport report =
            co_await m_state.salesReportsService().financeReport(request, client, noFile);
        if (!run) {
            co_return;
        }
        const bool empty = report.table.rowCount() == 0;
        publish(std::move(report), std::nullopt, request.vendorNumber);
        if (empty) {
            run.fail(noRowsHint());
        } else {
            run.succeed();
        }
    } catch (const std::exception& error) {
        run.fail(error);
    }
}

// The samples answer at once; nothing is sent and nothing is cached.
QCoro::Task<> SalesViewModel::loadDemo(bool finance) {
    auto run = m_loading->start();
    clearErrorsBut(m_loading);
    setStatusMessage({});
    ManagedSalesReport report;
    report.fetchedAt = m_state.platform().clock->now();
    if (finance) {
        report.frequency = SalesReportFrequency::Monthly;
        report.reportDate = m_financeMonth;
        report.financeRegion = m_financeRegion;
        report.table = MockData::financeReport(m_financeRegion, m_financeMonth);
        publish(std::move(report), std::nullopt, MockData::salesVendorNumber());
    } else {
        report.type = m_type;
        report.frequency = m_frequency;
        report.reportDate = reportDateText();
        report.table = MockData::salesReport(m_type, m_frequency, report.reportDate);
        const QString before = SalesReportKinds::reportDate(
            m_frequency, SalesReportKinds::previousPeriodDate(m_frequency, m_date));
        const SalesSummary current = SalesSummary::of(report.table);
        const SalesSummary previous = SalesSummary::of(MockData::salesReport(m_type, m_frequency, before));
        publish(std::move(report), SalesComparison{current, previous}, MockData::salesVendorNumber());
    }
    setReportIsSample(true);
    run.succeed();
    co_return;
}

// Everything that is read from the report on screen.
void SalesViewModel::emitReportChanged() {
    Q_EMIT hasReportChanged();
    Q_EMIT reportCaptionChanged();
    Q_EMIT columnsChanged();
    Q_EMIT rowsNoteChanged();
    Q_EMIT unitsTextChanged();
    Q_EMIT proceedsTextChanged();
    Q_EMIT rowCountChanged();
    Q_EMIT comparisonTextChanged();
    Q_EMIT canArchiveChanged();
    Q_EMIT canExportChanged();
    Q_EMIT exportProposalChanged();
}

QString SalesViewModel::sampleNote() const {
    if (!m_reportIsSample || !m_report) {
        return {};
    }
    return (!m_report->financeRegion ? u"Im Demo-Modus liegen keine Verkaufsberichte vor."_s
                                     : u"Im Demo-Modus liegen keine Finanzberichte vor."_s) +
           u" Gezeigt wird ein Beispielbericht; an Apple ging nichts."_s;
}

void SalesViewModel::setReportIsSample(bool sample) {
    m_reportIsSample = sample;
    Q_EMIT sampleNoteChanged();
}

void SalesViewModel::demoOrAccountChanged() {
    if (!m_state.isDemoActive()) {
        // When the demo ends, its samples go: the folder of kept ones and the report on screen.
        // A keeping, removal or reopening still under way worked on the samples: its answer is
        // dropped.
        if (m_demoArchive) {
            m_archiving->abandon();
            m_loading->abandon();
        }
        m_demoArchive.reset();
        m_demoFolder.reset();
        if (m_reportIsSample) {
            forgetReport();
        }
    }
    loadArchive();
}

void SalesViewModel::forgetReport() {
    m_loading->abandon();
    m_loading->clearError();
    m_report.reset();
    m_summary.reset();
    m_comparison.reset();
    m_reportVendor.clear();
    setReportIsSample(false);
    m_rows->setRows({});
    setStatusMessage({});
    emitReportChanged();
}

ReportArchiveStore& SalesViewModel::archiveStore() {
    if (!m_state.isDemoActive()) {
        return m_state.reportArchive();
    }
    if (!m_demoArchive) {
        m_demoFolder = std::make_shared<QTemporaryDir>();
        m_demoArchive = std::make_unique<ReportArchiveStore>(m_demoFolder->filePath(u"Berichte"_s),
                                                             m_state.platform().clock);
    }
    return *m_demoArchive;
}

bool SalesViewModel::hasArchive() const {
    return m_archiveRows->count() > 0;
}

bool SalesViewModel::canArchive() const {
    return m_report && !m_report->isMissing && !m_reportVendor.isEmpty() && !m_archiving->isBusy();
}

bool SalesViewModel::isArchiving() const {
    return m_archiving->isBusy();
}

void SalesViewModel::loadArchive() {
    QList<RowListModel::Row> rows;
    for (const ReportArchiveStore::Entry& entry : archiveStore().entries()) {
        const QString title = entryCaption(entry);
        const QString detail = ReportArchiveStore::rowsText(entry) + u" · "_s + savedAtText(entry.savedAt);
        rows.append(RowListModel::Row{entry.fileName, title, detail, title + u", "_s + detail});
    }
    m_archiveRows->setRows(rows);
    // A removal asked for a line that is gone by now has nothing left to ask about.
    if (!m_removalCandidate.isEmpty() && m_archiveRows->indexOfKey(m_removalCandidate) < 0) {
        setRemovalCandidate({});
    }
}

void SalesViewModel::startArchiveCurrentReport() {
    QCoro::connect(archiveCurrentReport(), this, [] {});
}

QCoro::Task<> SalesViewModel::archiveCurrentReport() {
    if (!canArchive()) {
        co_return;
    }
    ReportArchiveStore::Report kept;
    if (m_report->financeRegion) {
        kept.kind = ReportArchiveStore::Kind::Finance;
        kept.reportType = u"FINANCIAL"_s;
        kept.region = *m_report->financeRegion;
    } else {
        kept.reportType = SalesReportKinds::rawValue(m_report->type);
    }
    kept.vendorNumber = m_reportVendor;
    kept.frequency = SalesReportKinds::rawValue(m_report->frequency);
    kept.reportDate = m_report->reportDate;
    auto run = m_archiving->start();
    clearErrorsBut(m_archiving);
    setStatusMessage({});
    ReportArchiveStore& store = archiveStore();
    const std::shared_ptr<QTemporaryDir> demoFolder = m_demoFolder;
    std::variant<ReportArchiveStore::Entry, QString> stored =
        co_await store.storeAsync(m_report->table, kept);
    if (!run) {
        co_return;
    }
    if (const auto* reason = std::get_if<QString>(&stored)) {
        run.fail(ReportArchiveStore::archiveFailedMessage(*reason));
        co_return;
    }
    loadArchive();
    setStatusMessage(ReportArchiveStore::archivedMessage());
    run.succeed();
}

void SalesViewModel::startLoadFromArchive(const QString& fileName) {
    QCoro::connect(loadFromArchive(fileName), this, [] {});
}

QCoro::Task<> SalesViewModel::loadFromArchive(QString fileName) {
    // A reopened report takes the place of whatever was loading: its late answer is dropped.
    auto run = m_loading->start();
    clearErrorsBut(m_loading);
    setStatusMessage({});
    const std::optional<ReportArchiveStore::Entry> entry = archiveStore().entry(fileName);
    if (!entry) {
        run.fail(ReportArchiveStore::unreadableMessage());
        co_return;
    }
    const std::shared_ptr<QTemporaryDir> demoFolder = m_demoFolder;
    std::optional<AnalyticsTable> table = co_await archiveStore().reopenAsync(fileName);
    if (!run) {
        co_return;
    }
    if (!table) {
        run.fail(ReportArchiveStore::unreadableMessage());
        co_return;
    }
    ManagedSalesReport report;
    report.type = SalesReportKinds::typeFromRaw(entry->report.reportType).value_or(SalesReportType::Sales);
    report.frequency =
        SalesReportKinds::frequencyFromRaw(entry->report.frequency).value_or(SalesReportFrequency::Daily);
    report.reportDate = entry->report.reportDate;
    if (entry->report.kind == ReportArchiveStore::Kind::Finance) {
        report.financeRegion = entry->report.region;
    }
    report.table = std::move(*table);
    report.fetchedAt = entry->savedAt;
    publish(std::move(report), std::nullopt, entry->report.vendorNumber);
    // A sample kept in the demo stays a sample when reopened, and goes when the demo ends.
    setReportIsSample(m_state.isDemoActive());
    setStatusMessage(ReportArchiveStore::reopenedMessage(entry->savedAt));
    run.succeed();
}

QString SalesViewModel::removalQuestion() const {
    if (m_removalCandidate.isEmpty()) {
        return {};
    }
    const int row = m_archiveRows->indexOfKey(m_removalCandidate);
    const QString title = row >= 0 ? m_archiveRows->value(row, ArchiveTitle).toString() : m_removalCandidate;
    return u"„%1“ aus dem Verlauf löschen? Die abgelegte Datei wird entfernt; hält Apple den Bericht nicht "
           u"mehr vor, ist er danach nicht mehr zu haben."_s.arg(title);
}

void SalesViewModel::setRemovalCandidate(const QString& fileName) {
    if (fileName == m_removalCandidate) {
        return;
    }
    const bool wasConfirming = isConfirmingRemoval();
    m_removalCandidate = fileName;
    Q_EMIT removalQuestionChanged();
    if (wasConfirming != isConfirmingRemoval()) {
        Q_EMIT isConfirmingRemovalChanged();
    }
}

void SalesViewModel::requestRemoval(const QString& fileName) {
    if (m_archiveRows->indexOfKey(fileName) >= 0) {
        setRemovalCandidate(fileName);
    }
}

void SalesViewModel::startLoadFromArchiveAt(int row) {
    if (row >= 0 && row < m_archiveRows->count()) {
        startLoadFromArchive(m_archiveRows->value(row, ArchiveFileName).toString());
    }
}

void SalesViewModel::requestRemovalAt(int row) {
    if (row >= 0 && row < m_archiveRows->count()) {
        requestRemoval(m_archiveRows->value(row, ArchiveFileName).toString());
    }
}

void SalesViewModel::cancelRemoval() {
    setRemovalCandidate({});
}

void SalesViewModel::confirmRemoval() {
    const QString fileName = m_removalCandidate;
    setRemovalCandidate({});
    if (!fileName.isEmpty()) {
        QCoro::connect(removeFromArchive(fileName), this, [] {});
    }
}

QCoro::Task<> SalesViewModel::removeFromArchive(QString fileName) {
    auto run = m_archiving->start();
    clearErrorsBut(m_archiving);
    setStatusMessage({});
    ReportArchiveStore& store = archiveStore();
    const std::shared_ptr<QTemporaryDir> demoFolder = m_demoFolder;
    std::optional<QString> failure = co_await store.removeAsync(fileName);
    if (!run) {
        co_return;
    }
    loadArchive();
    if (failure) {
        run.fail(ReportArchiveStore::removeFailedMessage(*failure));
        co_return;
    }
    setStatusMessage(u"Aus dem Verlauf gelöscht."_s);
    run.succeed();
}

bool SalesViewModel::canExport() const {
    return m_report && !m_report->isMissing && !m_exporting->isBusy();
}

bool SalesViewModel::isExporting() const {
    return m_exporting->isBusy();
}

QUrl SalesViewModel::exportFolder() const {
    QString folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    if (folder.isEmpty() || !QDir(folder).exists()) {
        folder = QDir::homePath();
    }
    return QUrl::fromLocalFile(folder);
}

QUrl SalesViewModel::exportProposal() const {
    if (!m_report) {
        return {};
    }
    const QString type =
        m_report->financeRegion ? u"FINANCIAL"_s : SalesReportKinds::rawValue(m_report->type);
    return QUrl::fromLocalFile(
        QDir(exportFolder().toLocalFile())
            .filePath(ReportExport::proposedFileName(type, m_report->reportDate, m_exportFormat)));
}

QStringList SalesViewModel::exportNameFilters() const {
    return m_exportFormat == ReportExport::Format::Json ? QStringList{u"JSON-Dateien (*.json)"_s}
                                                        : QStringList{u"CSV-Dateien (*.csv)"_s};
}

void SalesViewModel::prepareExport(const QString& format) {
    const auto chosen = ReportExport::formatFromRaw(format);
    if (chosen && *chosen != m_exportFormat) {
        m_exportFormat = *chosen;
        Q_EMIT exportProposalChanged();
        Q_EMIT exportNameFiltersChanged();
    }
}

void SalesViewModel::startExport(const QUrl& file) {
    const auto path = localPathFrom(file.toString());
    if (!path) {
        m_exporting->setError(
            ReportExport::failureMessage(u"Auf den gewählten Ort kann nicht zugegriffen werden."_s));
        return;
    }
    QCoro::connect(exportReport(m_exportFormat, *path), this, [] {});
}

QCoro::Task<> SalesViewModel::exportReport(ReportExport::Format format, QString path) {
    if (!canExport()) {
        co_return;
    }
    auto run = m_exporting->start();
    clearErrorsBut(m_exporting);
    setStatusMessage({});
    // All rows, whatever the table card shows; written piece by piece on a worker thread.
    std::optional<QString> failure =
        co_await ReportExport::writeFileInBackground(m_report->table, format, std::move(path));
    if (!run) {
        co_return;
    }
    if (failure) {
        run.fail(ReportExport::failureMessage(*failure));
        co_return;
    }
    setStatusMessage(ReportExport::successMessage(format));
    run.succeed();
}
