#pragma once

#include "cli/Command.h"

// varnis testflight groups | testers | import | notes: TestFlight through the same service and
// tester import as the window.
namespace TestFlightCommand {
void declareGroups(CommandSyntax& syntax);
QCoro::Task<int> groups(Invocation call);
void declareTesters(CommandSyntax& syntax);
QCoro::Task<int> testers(Invocation call);
void declareImport(CommandSyntax& syntax);
QCoro::Task<int> import(Invocation call);
void declareNotes(CommandSyntax& syntax);
QCoro::Task<int> notes(Invocation call);
} // namespace TestFlightCommand
