#pragma once

#include <QCoro/QCoroTask>

#include <QStringList>

class AppState;
class QTextStream;

// The headless commands: the same AppState and services as the window, German messages,
// `--json` for machines. Exit status 0 on success, 1 on a failure the user must act on, 2 on a
// usage error. The commands themselves stand in one table (cli/Command.h).
class CommandLine {
public:
    CommandLine(AppState& state, QTextStream& out, QTextStream& err);
    ~CommandLine();
    CommandLine(const CommandLine&) = delete;
    CommandLine& operator=(const CommandLine&) = delete;

    // `arguments` without the program name.
    QCoro::Task<int> run(QStringList arguments);

    // The listing of `varnis --help`.
    static QString helpText();

private:
    QCoro::Task<int> dispatch(QStringList arguments);
    int help(const QStringList& words);
    int usage(const QString& message, const QString& usageText);

    AppState& m_state;
    QTextStream& m_out;
    QTextStream& m_err;
};
