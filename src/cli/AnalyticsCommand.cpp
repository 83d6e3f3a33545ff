#include "cli/AnalyticsCommand.h"

#include "api/Account.h"
#include "api/AccountStore.h"
#include "cli/AppsCommand.h"
#include "platform/VarnisError.h"
#include "reports/AnalyticsService.h"
#include "workspace/AppState.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QLocale>
#include <QTextStream>

using namespace Qt::StringLiterals;

namespace {

const QString jsonFlag = u"json"_s;
const QString reportOption = u"report"_s;

struct InstanceNode {
    ManagedAnalyticsReportInstance instance;
    QList<ManagedAnalyticsReportSegment> segments;
};

struct ReportNode {
    ManagedAnalyticsReport report;
    QList<InstanceNode> instances;
};

struct RequestNode {
    ManagedAnalyticsReportRequest request;
    QList<ReportNode> reports;
};

// A report the --report text names: by a part of its name in any case, or by its id.
bool isNamed(const ManagedAnalyticsReport& report, const QString& wanted) {
    return wanted.isEmpty() || report.id == wanted || report.name.contains(wanted, Qt::CaseInsensitive);
}

// The whole chain below the app, or the exception of the first link that failed.
QCoro::Task<QList<RequestNode>> loadChain(AppState& state, QString appID, QString wantedReport,
                                          std::shared_ptr<AppStoreConnectClient> client) {
    AnalyticsService& service = state.analyticsService();
    QList<RequestNode> chain;
    const auto requests = co_await service.reportRequests(appID, client, false);
    for (const auto& request : requests) {
        RequestNode requestNode{request, {}};
        const auto reports = co_await service.reports(request.id, client);
        for (const auto& report : reports) {
            if (!isNamed(report, wantedReport)) {
                continue;
            }
            ReportNode reportNode{report, {}};
            const auto instances = co_await service.instances(report.id, client);
            for (const auto& instance : instances) {
                auto segments = co_await service.segments(instance.id, client);
                reportNode.instances.append({instance, std::move(segments)});
            }
            requestNode.reports.append(reportNode);
        }
        chain.append(requestNode);
    }
    co_return chain;
}

QString sizeText(const std::optional<qint64>& bytes) {
    return bytes ? QLocale(QLocale::German).toString(*bytes) + u" Bytes"_s : u"Größe unbekannt"_s;
}

QJsonObject segmentJson(const ManagedAnalyticsReportSegment& s) {
    return QJsonObject{{u"id"_s, s.id},
                       {u"sizeInBytes"_s, s.sizeInBytes ? QJsonValue(*s.sizeInBytes) : QJsonValue()},
                       {u"checksum"_s, optionalJson(s.checksum)},
                       {u"hasDownloadURL"_s, s.downloadURL.has_value()}};
}

QJsonObject chainJson(const ManagedApp& app, const QList<RequestNode>& chain) {
    QJsonArray requests;
    for (const RequestNode& r : chain) {
        QJsonArray reports;
        for (const ReportNode& rep : r.reports) {
            QJsonArray instances;
            for (const InstanceNode& i : rep.instances) {
                QJsonArray segments;
                for (const auto& s : i.segments) {
                    segments.append(segmentJson(s));
                }
                instances.append(QJsonObject{{u"id"_s, i.instance.id},
                                             {u"granularity"_s, i.instance.granularity},
                                             {u"processingDate"_s, optionalJson(i.instance.processingDate)},
                                             {u"segments"_s, segments}});
            }
            reports.append(QJsonObject{{u"id"_s, rep.report.id},
                                       {u"name"_s, rep.report.name},
                                       {u"category"_s, optionalJson(rep.report.category)},
                                       {u"instances"_s, instances}});
        }
        requests.append(QJsonObject{{u"id"_s, r.request.id},
                                    {u"accessType"_s, r.request.accessType},
                                    {u"isStopped"_s, r.request.isStopped},
                                    {u"reports"_s, reports}});
    }
    return QJsonObject{{u"app"_s, QJsonObject{{u"id"_s, app.id}, {u"name"_s, app.name}}},
                       {u"requests"_s, requests}};
}

void printChain(const Invocation& call, const ManagedApp& app, const QList<RequestNode>& chain,
                bool filtered) {
    call.out << u"Analytics-Reports von "_s << app.name << u'\n';
    if (chain.isEmpty()) {
        call.out << u"Für diese App gibt es noch keine Report-Anfrage. Im Fenster legt „Momentaufnahme "
                    u"anfordern“ eine an; Apple füllt sie im Lauf von ein bis zwei Tagen mit Reports.\n"_s;
        return;
    }
    bool anySegment = false;
    for (const RequestNode& r : chain) {
        call.out << u"Anfrage "_s << r.request.id << u" · "_s << r.request.accessType;
        if (r.request.isStopped) {
            call.out << u" · von Apple angehalten: lange nicht abgerufen"_s;
        }
        call.out << u'\n';
        if (r.reports.isEmpty()) {
            call.out << (filtered ? u"  (kein passender Report)\n"_s : u"  (noch keine Reports)\n"_s);
        }
        for (const ReportNode& rep : r.reports) {
            call.out << u"  Report "_s << rep.report.id << u" · "_s << rep.report.name;
            if (rep.report.category) {
                call.out << u" · "_s << *rep.report.category;
            }
            call.out << u'\n';
            if (rep.instances.isEmpty()) {
                call.out << u"    (noch keine Zeiträume)\n"_s;
            }
            for (const InstanceNode& i : rep.instances) {
                call.out << u"    Zeitraum "_s << i.instance.id << u" · "_s << i.instance.granularity
                         << u" · "_s << i.instance.processingDate.value_or(u"–"_s) << u'\n';
                if (i.segments.isEmpty()) {
                    call.out << u"      (keine Segmente)\n"_s;
                }
                for (const auto& s : i.segments) {
                    anySegment = true;
                    call.out << u"      Segment "_s << s.id << u" · "_s << sizeText(s.sizeInBytes) << u" · "_s
                             << (s.checksum ? u"MD5 "_s + *s.checksum : u"ohne Prüfsumme"_s) << u'\n';
                }
            }
        }
    }
    if (anySegment) {
        call.out << u"Download-Adressen werden nicht angezeigt: Apple signiert sie nur für wenige Minuten, "
                    u"und wer sie hat, lädt die Datei ohne Schlüssel.\n"_s;
    }
}

} // namespace

void AnalyticsCommand::declareSegments(CommandSyntax& syntax) {
    syntax.addPositional(u"APP"_s, u"ein Teil des App-Namens oder die ID der App"_s);
    syntax.addValue(reportOption, u"NAME"_s,
                    u"nur Reports, deren Name den Text enthält (oder mit dieser ID)"_s);
    syntax.addFlag(jsonFlag, u"gibt die Kette als JSON aus"_s);
    syntax.addNote(u"Jeder Report und jeder Zeitraum kostet eine Anfrage vom stündlichen Kontingent; "
                   u"--report beschränkt die Liste."_s);
}

QCoro::Task<int> AnalyticsCommand::segments(Invocation call) {
    const QString wrongCount = u"„analytics segments“ nimmt genau eine App."_s;
    const AppsCommand::AppTarget target = co_await AppsCommand::findAppTarget(call, 1, wrongCount);
    if (target.status != 0) {
        co_return target.status;
    }
    const ManagedApp& app = target.app;
    const QString wanted = call.args.value(reportOption).trimmed();
    QList<RequestNode> chain;
    try {
        chain = co_await loadChain(call.state, app.id, wanted, target.client);
    } catch (const std::exception& error) {
        co_return call.fail(u"Die Analytics-Reports konnten nicht geladen werden: "_s + describeError(error));
    }
    if (call.args.isSet(jsonFlag)) {
        call.printJson(chainJson(app, chain));
    } else {
        printChain(call, app, chain, !wanted.isEmpty());
    }
    co_return 0;
}
