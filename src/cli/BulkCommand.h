#pragma once

#include "cli/Command.h"

// varnis bulk whats-new: one "what's new" for many apps, through the bulk actions of the window.
namespace BulkCommand {
void declareWhatsNew(CommandSyntax& syntax);
QCoro::Task<int> whatsNew(Invocation call);
} // namespace BulkCommand
