#pragma once

#include "cli/CommandLine.h"
#include "support/AwaitTask.h"

#include <QStringList>
#include <QTextStream>

// The command line run in process on this state; `out` and `err` hold what it printed.
inline int runCommandLine(AppState& state, const QStringList& arguments, QString& out, QString& err) {
    out.clear();
    err.clear();
    QTextStream outStream(&out);
    QTextStream errStream(&err);
    CommandLine cli(state, outStream, errStream);
    return VarnisTest::awaitTask(cli.run(arguments));
}
