#pragma once

#include "cli/Command.h"

// varnis accounts list | add | remove | probe
namespace AccountsCommand {
void declareList(CommandSyntax& syntax);
QCoro::Task<int> list(Invocation call);
void declareAdd(CommandSyntax& syntax);
QCoro::Task<int> add(Invocation call);
void declareRemove(CommandSyntax& syntax);
QCoro::Task<int> remove(Invocation call);
void declareProbe(CommandSyntax& syntax);
QCoro::Task<int> probe(Invocation call);
} // namespace AccountsCommand
