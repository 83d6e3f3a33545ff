#include "cli/AppsCommand.h"

#include "api/AccountStore.h"
#include "api/PendingWrite.h"
#include "platform/VarnisError.h"
#include "wire/VelmoraAPIError.h"
#include "workspace/AppState.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QTextStream>

using namespace Qt::StringLiterals;

namespace {

const QString jsonFlag = u"json"_s;

QJsonObject appJson(const ManagedApp& app) {
    QJsonObject o{{u"id"_s, app.id},
                  {u"name"_s, app.name},
                  {u"bundleID"_s, app.bundleID},
                  {u"sku"_s, optionalJson(app.sku)},
                  {u"primaryLocale"_s, optionalJson(app.primaryLocale)}};
    if (app.accountName) {
        o.insert(u"accountName"_s, *app.accountName);
    }
    return o;
}

void printApps(const Invocation& call) {
    if (call.state.appsFromCacheAge()) {
        call.err << u"Gespeicherte Liste von "_s << *call.state.appsFromCacheAge() << u".\n"_s;
    }
    for (const auto& app : call.state.apps()) {
        call.out << app.name << u"  "_s << app.bundleID << u"  "_s << app.id;
        if (app.accountName) {
            call.out << u"  ["_s << *app.accountName << u']';
        }
        call.out << u'\n';
    }
}

} // namespace

QCoro::Task<std::variant<ManagedApp, int>> AppsCommand::findNamedApp(Invocation call, QString query) {
    const auto app = co_await findApp(call.state, query);
    if (!app) {
        co_return call.fail(
            call.state.appsError().value_or(u"Keine App mit dem Namen „%1“ gefunden."_s.arg(query)));
    }
    co_return *app;
}

std::optional<int> AppsCommand::requireAccount(const Invocation& call) {
    if (call.state.hasAccount()) {
        return std::nullopt;
    }
    return call.fail(VelmoraAPIError::notConfigured().errorDescription());
}

std::optional<Account> AppsCommand::accountOf(const AppState& state, const ManagedApp& app) {
    if (app.accountID) {
        for (const Account& account : state.accountStore().accounts()) {
            if (account.id == *app.accountID) {
                return account;
            }
        }
    }
    return state.accountStore().selectedAccount();
}

QCoro::Task<AppsCommand::AppTarget> AppsCommand::findAppTarget(Invocation call, qsizetype count,
                                                               QString wrongCount) {
    AppTarget target;
    if (call.args.positional.isEmpty()) {
        target.status = call.usage(u"Es fehlt die App (ein Teil ihres Namens oder ihre ID)."_s);
        co_return target;
    }
    if (call.args.positional.size() != count) {
        target.status = call.usage(wrongCount);
        co_return target;
    }
    if (auto status = requireAccount(call)) {
        target.status = *status;
        co_return target;
    }
    const QString query = call.args.positional.first();
    const auto app = co_await findNamedApp(call, query);
    if (const int* status = std::get_if<int>(&app)) {
        target.status = *status;
        co_return target;
    }
    target.app = std::get<ManagedApp>(app);
    const auto account = accountOf(call.state, target.app);
    if (!account) {
        target.status = call.fail(WriteGate::noAccountMessage());
        co_return target;
    }
    target.account = *account;
    try {
        target.client = co_await call.state.accountStore().makeClient(*account);
    } catch (const std::exception& error) {
        target.status = call.fail(describeError(error));
    }
    co_return target;
}

void AppsCommand::declare(CommandSyntax& syntax) {
    syntax.addFlag(jsonFlag, u"gibt die Liste als JSON aus"_s);
    syntax.addFlag(u"refresh"_s, u"fragt Apple, statt die gespeicherte Liste zu nehmen"_s);
    syntax.addFlag(u"all-accounts"_s, u"listet die Apps aller Accounts"_s);
}

QCoro::Task<int> AppsCommand::run(Invocation call) {
    if (auto status = requireAccount(call)) {
        co_return *status;
    }
    if (call.args.isSet(u"all-accounts"_s)) {
        call.state.setShowsAppsOfAllAccountsOverride(true);
    }
    co_await call.state.loadApps(call.args.isSet(u"refresh"_s));
    if (call.args.isSet(jsonFlag)) {
        QJsonArray array;
        for (const auto& app : call.state.apps()) {
            array.append(appJson(app));
        }
        call.printJson(array);
    } else {
        printApps(call);
    }
    if (call.state.appsError()) {
        co_return call.fail(*call.state.appsError());
    }
    co_return 0;
}

QCoro::Task<std::optional<ManagedApp>> AppsCommand::findApp(AppState& state, QString query) {
    if (state.apps().isEmpty()) {
        co_await state.loadApps(false);
    }
    for (const auto& app : state.apps()) {
        if (app.id == query) {
            co_return app;
        }
    }
    for (const auto& app : state.apps()) {
        if (app.name.contains(query, Qt::CaseInsensitive)) {
            co_return app;
        }
    }
    co_return std::nullopt;
}
