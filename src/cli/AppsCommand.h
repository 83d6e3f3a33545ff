#pragma once

#include "api/Account.h"
#include "cli/Command.h"
#include "workspace/ManagedApp.h"

#include <memory>

#include <variant>

class AppStoreConnectClient;

// varnis apps
namespace AppsCommand {
void declare(CommandSyntax& syntax);
QCoro::Task<int> run(Invocation call);

// The app with this id, else the first in list order whose name contains the text in any case;
// loads the list when none is there yet.
QCoro::Task<std::optional<ManagedApp>> findApp(AppState& state, QString query);
// findApp, or exit status 1 with the message that no app has that name.
QCoro::Task<std::variant<ManagedApp, int>> findNamedApp(Invocation call, QString query);
// Exit status 1 with the message when no account is there to ask Apple with.
std::optional<int> requireAccount(const Invocation& call);
// The account the app was listed under; with one account that is the selected one.
std::optional<Account> accountOf(const AppState& state, const ManagedApp& app);

// The app a command names by its first positional argument, the account it belongs to and a
// client of that account. `status` is not 0 when the command ends with it, its message printed.
struct AppTarget {
    int status = 0;
    ManagedApp app;
    Account account;
    std::shared_ptr<AppStoreConnectClient> client;
};
// `count` positional arguments in all; `wrongCount` is the usage message when there are others.
QCoro::Task<AppTarget> findAppTarget(Invocation call, qsizetype count, QString wrongCount);
} // namespace AppsCommand
