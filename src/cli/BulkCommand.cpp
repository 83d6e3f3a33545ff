#include "cli/BulkCommand.h"

#include "cli/AppsCommand.h"
#include "metadata/AppStoreLocales.h"
#include "testflight/BulkActionsViewModel.h"
#include "workspace/AppState.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QTextStream>

using namespace Qt::StringLiterals;

namespace {

const QString appsOption = u"apps"_s;
const QString allFlag = u"all"_s;

// The apps --apps names, each by id or a part of its name, or all of --all; the exit status when
// one is unknown.
QCoro::Task<std::variant<QList<ManagedApp>, int>> chosenApps(Invocation call) {
    QList<ManagedApp> apps;
    if (call.args.isSet(allFlag)) {
        if (call.state.apps().isEmpty()) {
            co_await call.state.loadApps(false);
        }
        apps = call.state.apps();
        if (apps.isEmpty()) {
            co_return call.fail(call.state.appsError().value_or(u"Der Account hat keine Apps."_s));
        }
        co_return apps;
    }
    for (const QString& part : call.args.value(appsOption).split(u',', Qt::SkipEmptyParts)) {
        const QString query = part.trimmed();
        if (query.isEmpty()) {
            continue;
        }
        const auto app = co_await AppsCommand::findNamedApp(call, query);
        if (const int* status = std::get_if<int>(&app)) {
            co_return *status;
        }
        apps.append(std::get<ManagedApp>(app));
    }
    co_return apps;
}

QJsonObject resultJson(const BulkActionsViewModel::Result& r) {
    return QJsonObject{
        {u"id"_s, r.id}, {u"name"_s, r.appName}, {u"succeeded"_s, r.succeeded}, {u"message"_s, r.message}};
}

} // namespace

void BulkCommand::declareWhatsNew(CommandSyntax& syntax) {
    syntax.addValue(u"locale"_s, u"L"_s, u"die Sprache, etwa de-DE"_s, CommandSyntax::Need::Required);
    syntax.addValue(u"text"_s, u"T"_s,
                    u"der Text für „Neu in dieser Version“; @datei liest ihn als UTF-8 aus der Datei"_s,
                    CommandSyntax::Need::Required);
    syntax.addValue(appsOption, u"A,B"_s,
                    u"die Apps, je ein Teil des Namens oder die ID, durch Kommas getrennt"_s);
    syntax.addFlag(allFlag, u"alle Apps des Accounts"_s);
    syntax.addFlag(u"yes"_s, u"schickt den Text an App Store Connect; ohne nur die Vorschau"_s);
    syntax.addFlag(u"json"_s, u"gibt Vorschau oder Ergebnisse als JSON aus"_s);
    syntax.addNote(
        BulkActionsViewModel::explanation(BulkActionsViewModel::Action::WhatsNew) +
        u" Die Apps kommen nacheinander an die Reihe; eine App, bei der es nicht geht, hält die übrigen "
        u"nicht auf. Der Status ist 1, wenn eine App scheiterte."_s);
}

QCoro::Task<int> BulkCommand::whatsNew(Invocation call) {
    if (call.args.isSet(allFlag) == call.args.values.contains(appsOption)) {
        co_return call.usage(u"Es braucht entweder --apps oder --all."_s);
    }
    const auto chosenLocale = localeValue(call, u"locale"_s);
    if (const int* status = std::get_if<int>(&chosenLocale)) {
        co_return *status;
    }
    const QString locale = std::get<QString>(chosenLocale);
    const auto given = textOrFile(call, u"text"_s);
    if (const int* status = std::get_if<int>(&given)) {
        co_return *status;
    }
    if (auto status = AppsCommand::requireAccount(call)) {
        co_return *status;
    }
    const auto chosen = co_await chosenApps(call);
    if (const int* status = std::get_if<int>(&chosen)) {
        co_return *status;
    }

    // The window's bulk action, driven as the sheet drives it.
    BulkActionsViewModel model(call.state);
    model.setAction(BulkActionsViewModel::Action::WhatsNew);
    model.setLocale(locale);
    model.setWhatsNewText(std::get<QString>(given));
    for (const ManagedApp& app : std::get<QList<ManagedApp>>(chosen)) {
        if (!model.selectedAppIDs().contains(app.id)) {
            model.toggle(app.id);
        }
    }
    if (!model.canRun()) {
        co_return call.usage(u"Der Text ist leer."_s);
    }
    model.requestRun();
    if (model.errorMessage()) {
        co_return call.fail(*model.errorMessage());
    }
    const bool json = call.args.isSet(u"json"_s);
    const QList<ManagedApp> apps = model.chosenApps();
    if (!call.args.isSet(u"yes"_s)) {
        model.cancelPendingWrite();
        if (json) {
            QJsonArray list;
            for (const ManagedApp& app : apps) {
                list.append(QJsonObject{{u"id"_s, app.id}, {u"name"_s, app.name}});
            }
            call.printJson(QJsonObject{{u"locale"_s, locale}, {u"sent"_s, false}, {u"apps"_s, list}});
        } else {
            call.out << BulkActionsViewModel::rawValue(model.action()) << u" ("_s << locale << u")\n"_s;
            for (const ManagedApp& app : apps) {
                call.out << u"  "_s << app.name << u'\n';
            }
            call.out << u"Nichts gesendet. Mit --yes wird der Text an App Store Connect geschickt.\n"_s;
        }
        co_return 0;
    }
    if (!json) {
        QObject::connect(&model, &BulkActionsViewModel::resultAdded, &model,
                         [&call](const BulkActionsViewModel::Result& r) {
                             call.out << (r.succeeded ? u"✓ "_s : u"✗ "_s) << r.appName << u": "_s
                                      << r.message << u'\n';
                             call.out.flush();
                         });
    }
    co_await model.confirmPendingWriteAsync();
    if (model.errorMessage()) {
        co_return call.fail(*model.errorMessage());
    }
    const auto& results = model.resultList();
    const auto failed = std::count_if(results.cbegin(), results.cend(),
                                      [](const BulkActionsViewModel::Result& r) { return !r.succeeded; });
    if (json) {
        QJsonArray list;
        for (const auto& r : results) {
            list.append(resultJson(r));
        }
        call.printJson(QJsonObject{{u"locale"_s, locale}, {u"sent"_s, true}, {u"results"_s, list}});
    }
    if (failed > 0) {
        co_return call.fail(u"%1 von %2 Apps sind gescheitert."_s.arg(failed).arg(results.size()));
    }
    co_return 0;
}
