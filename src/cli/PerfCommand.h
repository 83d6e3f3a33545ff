#pragma once

#include "cli/Command.h"

// varnis perf metrics: Apple's performance figures of one app, through the same service as the
// window.
namespace PerfCommand {
void declareMetrics(CommandSyntax& syntax);
QCoro::Task<int> metrics(Invocation call);
} // namespace PerfCommand
