#include "cli/SalesCommand.h"

#include "api/Account.h"
#include "api/AccountStore.h"
#include "cli/AppsCommand.h"
#include "cli/ReportCommand.h"
#include "platform/VarnisError.h"
#include "reports/SalesReportsService.h"
#include "reports/SalesSummary.h"
#include "reports/SalesViewModel.h"
#include "workspace/AppState.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTextStream>

using namespace Qt::StringLiterals;

namespace {

const QString jsonFlag = u"json"_s;
const QString saveOption = u"save"_s;

QStringList rawNames(const QList<SalesReportFrequency>& frequencies) {
    QStringList names;
    for (const auto frequency : frequencies) {
        names.append(SalesReportKinds::rawValue(frequency));
    }
    return names;
}

QStringList rawNames(const QList<SalesReportType>& types) {
    QStringList names;
    for (const auto type : types) {
        names.append(SalesReportKinds::rawValue(type));
    }
    return names;
}

// The selected account with its vendor number, or the exit status.
std::variant<Account, int> accountWithVendorNumber(const Invocation& call, const QString& missingText) {
    if (auto status = AppsCommand::requireAccount(call)) {
        return *status;
    }
    const auto account = call.state.accountStore().selectedAccount();
    if (!account) {
        return call.fail(u"Es ist kein Account ausgewählt."_s);
    }
    if (!account->hasUsableVendorNumber()) {
        return call.fail(missingText);
    }
    return *account;
}

int printReport(const Invocation& call, const ManagedSalesReport& report, const QString& caption,
                const QString& savedTo) {
    const SalesSummary summary = SalesSummary::of(report.table);
    const bool empty = report.table.rowCount() == 0;
    if (call.args.isSet(jsonFlag)) {
        QJsonObject json{
            {u"report"_s, report.id()},
            {u"missing"_s, report.isMissing},
            {u"columns"_s, QJsonArray::fromStringList(report.table.columns())},
            {u"summary"_s, ReportCommand::summaryJson(summary)},
            {u"rows"_s, ReportCommand::rowsJson(report.table, SalesViewModel::previewRows)},
            {u"hint"_s, empty ? QJsonValue(SalesViewModel::noRowsHint()) : QJsonValue(QJsonValue::Null)},
            {u"savedTo"_s,
             savedTo.isEmpty() || report.isMissing ? QJsonValue(QJsonValue::Null) : QJsonValue(savedTo)}};
        call.printJson(json);
        return 0;
    }
    call.out << caption << u'\n';
    if (empty) {
        call.out << SalesViewModel::noRowsHint() << u'\n';
        return 0;
    }
    call.out << u"Zeilen: "_s << report.table.rowCount() << u'\n';
    ReportCommand::printSummary(call, summary);
    if (!savedTo.isEmpty()) {
        call.out << u"Gespeichert: "_s << savedTo << u'\n';
    }
    return 0;
}

} // namespace

namespace SalesCommand {

void declareSalesGet(CommandSyntax& syntax) {
    syntax.addValue(u"type"_s, u"T"_s,
                    u"die Berichtsart: "_s + rawNames(SalesReportKinds::allTypes()).join(u", "_s),
                    CommandSyntax::Need::Required);
    syntax.addValue(u"frequency"_s, u"F"_s,
                    u"der Zeitraum: "_s + rawNames(SalesReportKinds::allFrequencies()).join(u", "_s),
                    CommandSyntax::Need::Required);
    syntax.addValue(u"date"_s, u"D"_s, u"der Tag (JJJJ-MM-TT), der Monat (JJJJ-MM) oder das Jahr (JJJJ)"_s,
                    CommandSyntax::Need::Required);
    syntax.addValue(saveOption, u"DATEI"_s, u"legt Apples Datei unverändert (gzip) dort ab"_s);
    syntax.addFlag(jsonFlag, u"gibt Zusammenfassung und die ersten 100 Zeilen als JSON aus"_s);
    syntax.addNote(
        u"Abo-Berichte (SUBSCRIPTION, SUBSCRIPTION_EVENT) und der Abonnentenbericht (SUBSCRIBER) "
        u"gibt es bei Apple nur täglich (DAILY). Gebraucht wird die Vendor-Nummer des ausgewählten "
        u"Accounts."_s);
}

QCoro::Task<int> salesGet(Invocation call) {
    const auto type = SalesReportKinds::typeFromRaw(call.args.value(u"type"_s));
    if (!type) {
        co_return call.usage(u"Unbekannte Berichtsart „%1“. Möglich: %2."_s.arg(
            call.args.value(u"type"_s), rawNames(SalesReportKinds::allTypes()).join(u", "_s)));
    }
    const auto frequency = SalesReportKinds::frequencyFromRaw(call.args.value(u"frequency"_s));
    if (!frequency) {
        co_return call.usage(u"Unbekannter Zeitraum „%1“. Möglich: %2."_s.arg(
            call.args.value(u"frequency"_s), rawNames(SalesReportKinds::allFrequencies()).join(u", "_s)));
    }
    if (!SalesReportKinds::accepts(*type, *frequency)) {
        co_return call.usage(u"Apple liefert „%1“ (%2) nur als %3."_s.arg(
            SalesReportKinds::label(*type), SalesReportKinds::rawValue(*type),
            rawNames(SalesReportKinds::acceptedFrequencies(*type)).join(u", "_s)));
    }
    const auto date = SalesReportKinds::normalizedReportDate(*frequency, call.args.value(u"date"_s));
    if (!date) {
        co_return call.usage(u"Das Datum „%1“ passt nicht zum Zeitraum %2; erwartet: %3."_s.arg(
            call.args.value(u"date"_s), SalesReportKinds::rawValue(*frequency),
            SalesReportKinds::reportDatePattern(*frequency)));
    }
    const auto account = accountWithVendorNumber(
        call,
        u"Für Verkaufsberichte fehlt die Vendor-Nummer des Accounts. Sie lässt sich in den Einstellungen "
        u"nachtragen."_s);
    if (const int* status = std::get_if<int>(&account)) {
        co_return *status;
    }
    SalesReportRequest request;
    request.type = *type;
    request.frequency = *frequency;
    request.reportDate = *date;
    request.vendorNumber = *std::get<Account>(account).vendorNumber;
    const QString savePath = call.args.value(saveOption);
    ManagedSalesReport report;
    try {
        auto client = co_await call.state.accountStore().makeClient(std::get<Account>(account));
        report = co_await call.state.salesReportsService().salesReport(request, client, savePath);
    } catch (const std::exception& error) {
        co_return call.fail(describeError(error));
    }
    co_return printReport(
        call, report,
        u"%1 · %2 · %3"_s.arg(SalesReportKinds::label(*type), SalesReportKinds::label(*frequency), *date),
        savePath);
}

void declareFinanceGet(CommandSyntax& syntax) {
    syntax.addValue(u"region"_s, u"R"_s, u"Apples Regionscode, etwa ZZ (alle), EU, US"_s,
                    CommandSyntax::Need::Required);
    syntax.addValue(u"month"_s, u"JJJJ-MM"_s, u"der Monat des Berichts"_s, CommandSyntax::Need::Required);
    syntax.addFlag(jsonFlag, u"gibt Zusammenfassung und die ersten 100 Zeilen als JSON aus"_s);
    syntax.addNote(u"Gebraucht wird die Vendor-Nummer des ausgewählten Accounts."_s);
}

QCoro::Task<int> financeGet(Invocation call) {
    const QString region = call.args.value(u"region"_s).trimmed().toUpper();
    if (!QRegularExpression(u"^[A-Z0-9]{2,3}$"_s).match(region).hasMatch()) {
        co_return call.usage(
            u"„%1“ ist kein Regionscode (zwei oder drei Buchstaben, etwa ZZ)."_s.arg(region));
    }
    const auto month =
        SalesReportKinds::normalizedReportDate(SalesReportFrequency::Monthly, call.args.value(u"month"_s));
    if (!month) {
        co_return call.usage(
            u"Der Monat „%1“ ist nicht in der Form JJJJ-MM."_s.arg(call.args.value(u"month"_s)));
    }
    const auto account =
        accountWithVendorNumber(call, u"Für Finanzberichte fehlt die Vendor-Nummer des Accounts."_s);
    if (const int* status = std::get_if<int>(&account)) {
        co_return *status;
    }
    FinanceReportRequest request;
    request.regionCode = region;
    request.month = *month;
    request.vendorNumber = *std::get<Account>(account).vendorNumber;
    const QString noFile;
    ManagedSalesReport report;
    try {
        auto client = co_await call.state.accountStore().makeClient(std::get<Account>(account));
        report = co_await call.state.salesReportsService().financeReport(request, client, noFile);
    } catch (const std::exception& error) {
        co_return call.fail(describeError(error));
    }
    co_return printReport(call, report, u"Finanzbericht · Region %1 · %2"_s.arg(region, *month), QString());
}

} // namespace SalesCommand
