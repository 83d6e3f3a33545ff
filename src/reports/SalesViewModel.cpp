#include "reports/SalesViewModel.h"

#include "api/Account.h"
#include "api/AccountStore.h"
#include "api/ModelOperation.h"
#include "api/RowListModel.h"
#include "platform/Clock.h"
#include "wire/VelmoraAPIError.h"
#include "workspace/AppState.h"

#include <QCoro/QCoroCore>
#include <QVariantMap>

using namespace Qt::StringLiterals;

namespace {

// Apple puts a day's report out a day or two late.
constexpr qint64 deliveryDelaySeconds = 172800;

enum Role { Key, Cells };

QVariantMap option(const QString& value, const QString& label) {
    return QVariantMap{{u"value"_s, value}, {u"label"_s, label}};
}

} // namespace

SalesViewModel::SalesViewModel(AppState& state, QObject* parent)
    : QObject(parent), m_state(state), m_loading(new ModelOperation(this)),
      m_rows(new RowListModel({"key", "cells"}, this)),
      m_date(state.platform().clock->now().addSecs(-deliveryDelaySeconds)) {
    connect(m_loading, &ModelOperation::busyChanged, this, &SalesViewModel::isLoadingChanged);
    connect(m_loading, &ModelOperation::errorChanged, this, &SalesViewModel::errorMessageChanged);
    connect(&m_state.accountStore(), &AccountStore::selectedAccountChanged, this,
            &SalesViewModel::vendorNumberHintChanged);
}

SalesViewModel::~SalesViewModel() = default;

void SalesViewModel::setReportType(const QString& raw) {
    const auto type = SalesReportKinds::typeFromRaw(raw);
    if (!type || *type == m_type) {
        return;
    }
    m_type = *type;
    Q_EMIT reportTypeChanged();
    Q_EMIT frequencyOptionsChanged();
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
    Q_EMIT frequencyChanged();
    Q_EMIT dateUnitLabelChanged();
}

void SalesViewModel::setDate(const QDateTime& date) {
    if (!date.isValid() || date == m_date) {
        return;
    }
    m_date = date;
    Q_EMIT dateChanged();
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
    if (m_report->financeRegion) {
        return u"Finanzbericht · Region %1 · %2"_s.arg(*m_report->financeRegion, m_report->reportDate);
    }
    return u"%1 · %2 · %3"_s.arg(SalesReportKinds::label(m_report->type),
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
    return m_loading->errorText();
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

void SalesViewModel::publish(ManagedSalesReport report, std::optional<SalesComparison> comparison) {
    m_summary = comparison ? comparison->current : SalesSummary::of(report.table);
    m_comparison = std::move(comparison);
    m_report = std::move(report);
    QList<RowListModel::Row> rows;
    const AnalyticsTable& table = m_report->table;
    for (qsizetype r = 0; r < std::min<qsizetype>(table.rowCount(), previewRows); ++r) {
        rows.append(RowListModel::Row{int(r), table.row(r)});
    }
    m_rows->setRows(rows);
    Q_EMIT hasReportChanged();
    Q_EMIT reportCaptionChanged();
    Q_EMIT columnsChanged();
    Q_EMIT rowsNoteChanged();
    Q_EMIT unitsTextChanged();
    Q_EMIT proceedsTextChanged();
    Q_EMIT rowCountChanged();
    Q_EMIT comparisonTextChanged();
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
    if (!account) {
        m_loading->setError(m_state.isDemoActive() ? u"Im Demo-Modus liegen keine Verkaufsberichte vor."_s
                                                   : VelmoraAPIError::notConfigured().errorDescription());
        co_return;
    }
    if (!account->hasUsableVendorNumber()) {
        m_loading->setError(
            u"Für Verkaufsberichte fehlt die Vendor-Nummer des Accounts. Sie lässt sich in den "
            u"Einstellungen nachtragen."_s);
        co_return;
    }
    auto run = m_loading->start();
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
        publish(std::move(report), SalesComparison{current, previous});
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
    if (!account) {
        m_loading->setError(m_state.isDemoActive() ? u"Im Demo-Modus liegen keine Finanzberichte vor."_s
                                                   : VelmoraAPIError::notConfigured().errorDescription());
        co_return;
    }
    if (!account->hasUsableVendorNumber()) {
        m_loading->setError(u"Für Finanzberichte fehlt die Vendor-Nummer des Accounts."_s);
        co_return;
    }
    auto run = m_loading->start();
    setStatusMessage({});
    FinanceReportRequest request;
    request.regionCode = m_financeRegion;
    request.month = SalesReportKinds::financeMonth(m_date);
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
        publish(std::move(report), std::nullopt);
        if (empty) {
            run.fail(noRowsHint());
        } else {
            run.succeed();
        }
    } catch (const std::exception& error) {
        run.fail(error);
    }
}
