#pragma once

#include "workspace/ManagedApp.h"
#include <QCoro/QCoroTask>

#include <QStringList>

class AppState;
class QTextStream;

// The headless commands: the same AppState and services as the window, German messages,
// `--json` for machines. Exit status 0 on success, 1 on a failure the user must act on, 2 on a
// usage error.
class CommandLine {
public:
    CommandLine(AppState& state, QTextStream& out, QTextStream& err);

    // `arguments` without the program name.
    QCoro::Task<int> run(QStringList arguments);

    static bool isCommand(const QStringList& arguments);
    static QString helpText();

private:
    QCoro::Task<int> accounts(QStringList arguments);
    QCoro::Task<int> accountsAdd(QStringList arguments);
    QCoro::Task<int> accountsRemove(QStringList arguments);
    QCoro::Task<int> accountsProbe(QStringList arguments);
    int accountsList(const QStringList& arguments);
    QCoro::Task<int> apps(QStringList arguments);
    int auditLog(const QStringList& arguments);
    QCoro::Task<int> metadata(QStringList arguments);
    QCoro::Task<std::optional<ManagedApp>> findApp(QString query);
    int usage(const QString& message);

    AppState& m_state;
    QTextStream& m_out;
    QTextStream& m_err;
};
