#pragma once

#include "cli/CommandSyntax.h"

#include <QCoro/QCoroTask>
#include <QJsonValue>

class AppState;
class QTextStream;

// One run of a command: the application it works on, where it writes, and what it was given.
struct Invocation {
    AppState& state;
    QTextStream& out;
    QTextStream& err;
    CommandArguments args;
    // The command's usage, which follows the message of a usage error.
    QString usageText;

    // Exit status 2: the message and the command's usage on stderr.
    int usage(const QString& message) const;
    // Exit status 1: the message on stderr.
    int fail(const QString& message) const;
    // Indented JSON and a line break on stdout.
    void printJson(const QJsonValue& value) const;
};

// One command of the table: its words ("accounts add"), a German line for the listing, what it
// takes, and what it does.
struct Command {
    QString name;
    QString summary;
    void (*declare)(CommandSyntax& syntax);
    QCoro::Task<int> (*run)(Invocation call);

    CommandSyntax syntax() const;
    QString usage() const { return syntax().usage(summary); }
};

// Every command, in the order of the listing. The words before a space name a group whose
// members are chosen by the next word.
const QList<Command>& commandTable();

// A text given as @datei: the file's content as UTF-8; none with the German reason in `error`.
std::optional<QString> readUtf8File(const QString& path, QString& error);

// The text of an option that takes T or @datei; the exit status when the file cannot be read.
std::variant<QString, int> textOrFile(const Invocation& call, const QString& option);
// The trimmed language code of `option`; a malformed one is a usage error (status 2), told
// without the usage. An empty one passes when `mayBeEmpty`.
std::variant<QString, int> localeValue(const Invocation& call, const QString& option,
                                       bool mayBeEmpty = false);

// JSON null for nothing.
QJsonValue optionalJson(const std::optional<QString>& value);
