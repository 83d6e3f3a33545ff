#pragma once

#include "cli/Command.h"

// varnis sales get | finance get: one of Apple's sales or finance reports of the selected
// account, through the same service as the window.
namespace SalesCommand {
void declareSalesGet(CommandSyntax& syntax);
QCoro::Task<int> salesGet(Invocation call);
void declareFinanceGet(CommandSyntax& syntax);
QCoro::Task<int> financeGet(Invocation call);
} // namespace SalesCommand
