#pragma once

#include "cli/Command.h"

// varnis audit-log
namespace AuditLogCommand {
void declare(CommandSyntax& syntax);
QCoro::Task<int> run(Invocation call);
} // namespace AuditLogCommand
