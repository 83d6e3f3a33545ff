#pragma once

#include "cli/Command.h"

// varnis report archive list|export
namespace ReportArchiveCommand {
void declare(CommandSyntax& syntax);
QCoro::Task<int> run(Invocation call);
} // namespace ReportArchiveCommand
