#pragma once

#include "cli/Command.h"
#include "workspace/ManagedApp.h"

#include <variant>

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
} // namespace AppsCommand
