#include "cli/PerfCommand.h"

#include "api/Account.h"
#include "api/AccountStore.h"
#include "cli/AppsCommand.h"
#include "platform/VarnisError.h"
#include "reports/PerformanceService.h"
#include "reports/PerformanceViewModel.h"
#include "wire/VelmoraAPIError.h"
#include "workspace/AppState.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QTextStream>

using namespace Qt::StringLiterals;

namespace {

const QString jsonFlag = u"json"_s;
const QString deviceOption = u"device"_s;

QJsonValue optionalNumber(const std::optional<double>& value) {
    return value ? QJsonValue(*value) : QJsonValue(QJsonValue::Null);
}

QJsonObject metricJson(const ManagedPerformanceMetric& m) {
    return {{u"category"_s, m.category},
            {u"identifier"_s, m.identifier},
            {u"unit"_s, optionalJson(m.unit)},
            {u"percentile"_s, optionalJson(m.percentile)},
            {u"device"_s, optionalJson(m.device)},
            {u"version"_s, optionalJson(m.version)},
            {u"value"_s, m.value},
            {u"errorMargin"_s, optionalNumber(m.errorMargin)}};
}

} // namespace

namespace PerfCommand {

void declareMetrics(CommandSyntax& syntax) {
    syntax.addPositional(u"APP"_s, u"ein Teil des App-Namens oder die ID der App"_s);
    syntax.addValue(deviceOption, u"T"_s,
                    u"nur diese Geräteart, etwa all_iphones, all_ipads oder iPhone15_2"_s);
    syntax.addFlag(jsonFlag, u"gibt die Kennzahlen als JSON aus"_s);
    syntax.addNote(u"Ohne --device liefert Apple die Kennzahlen aller Geräte und Geräteklassen."_s);
}

QCoro::Task<int> metrics(Invocation call) {
    const QString wrongCount = u"„perf metrics“ nimmt genau eine App."_s;
    const AppsCommand::AppTarget target = co_await AppsCommand::findAppTarget(call, 1, wrongCount);
    if (target.status != 0) {
        co_return target.status;
    }
    const ManagedApp& app = target.app;
    const auto device = nilIfBlank(call.args.value(deviceOption));
    QList<ManagedPerformanceMetric> list;
    try {
        list = co_await call.state.performanceService().metrics(app.id, device, target.client, false);
    } catch (const std::exception& error) {
        co_return call.fail(u"Leistungskennzahlen konnten nicht geladen werden: "_s + describeError(error));
    }
    ManagedPerformanceMetric::sortForDisplay(list);
    const bool empty = list.isEmpty();
    if (call.args.isSet(jsonFlag)) {
        QJsonArray metrics;
        for (const ManagedPerformanceMetric& m : std::as_const(list)) {
            metrics.append(metricJson(m));
        }
        call.printJson(QJsonObject{{u"app"_s, QJsonObject{{u"id"_s, app.id}, {u"name"_s, app.name}}},
                                   {u"deviceType"_s, optionalJson(device)},
                                   {u"metrics"_s, metrics},
                                   {u"hint"_s, empty ? QJsonValue(PerformanceViewModel::emptyMetricsText())
                                                     : QJsonValue(QJsonValue::Null)}});
        co_return 0;
    }
    call.out << u"Leistungskennzahlen · "_s << app.name << u" · "_s
             << PerformanceViewModel::deviceTypeLabel(device) << u'\n';
    if (empty) {
        call.out << PerformanceViewModel::emptyMetricsText() << u'\n';
        co_return 0;
    }
    QString heading;
    for (const ManagedPerformanceMetric& m : std::as_const(list)) {
        const QString category = ManagedPerformanceMetric::categoryLabel(m.category);
        if (category != heading) {
            heading = category;
            call.out << u'\n' << heading << u'\n';
        }
        const QString detail = PerformanceViewModel::detailText(m);
        call.out << u"  "_s << m.identifier << u": "_s << PerformanceViewModel::valueText(m)
                 << (detail.isEmpty() ? QString() : u" ("_s + detail + u')') << u'\n';
    }
    co_return 0;
}

} // namespace PerfCommand
