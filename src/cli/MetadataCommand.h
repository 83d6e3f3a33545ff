#pragma once

#include "cli/Command.h"

// varnis metadata show | check | set: the store texts through the same model as the window.
namespace MetadataCommand {
void declareShow(CommandSyntax& syntax);
QCoro::Task<int> show(Invocation call);
void declareCheck(CommandSyntax& syntax);
QCoro::Task<int> check(Invocation call);
void declareSet(CommandSyntax& syntax);
QCoro::Task<int> set(Invocation call);
} // namespace MetadataCommand
