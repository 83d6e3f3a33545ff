#pragma once

#include "cli/Command.h"

// varnis analytics segments: an app's analytics chain from its report requests down to the
// segments, through the same service as the window. A segment's download address is signed for
// a few minutes and works without a token, so it is never printed.
namespace AnalyticsCommand {
void declareSegments(CommandSyntax& syntax);
QCoro::Task<int> segments(Invocation call);
} // namespace AnalyticsCommand
