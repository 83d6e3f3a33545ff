#pragma once

#include "cli/Command.h"

struct SalesSummary;
class AnalyticsTable;

// varnis report …: report files on this machine, without the network. Its members are chosen by
// the word after "report" in the command table.
namespace ReportCommand {
void declareInspect(CommandSyntax& syntax);
QCoro::Task<int> inspect(Invocation call);

// The summary as the sales commands print it too.
QJsonObject summaryJson(const SalesSummary& summary);
void printSummary(const Invocation& call, const SalesSummary& summary);
QJsonArray rowsJson(const AnalyticsTable& table, qsizetype limit);
} // namespace ReportCommand
