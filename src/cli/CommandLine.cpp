#include "cli/CommandLine.h"

#include "api/AccountStore.h"
#include "api/WaitAnnouncer.h"
#include "cli/Command.h"
#include "platform/Clock.h"
#include "workspace/AppState.h"

#include <QTextStream>

using namespace Qt::StringLiterals;

namespace {

bool isHelpOption(const QString& word) {
    return word == u"--help"_s || word == u"-h"_s;
}

// What the first words of a call name: a command, or a group whose member is missing or whose
// listing was asked for, or the usage error.
struct Lookup {
    const Command* command = nullptr;
    qsizetype words = 0;
    QString group;
    bool wantsHelp = false;
    QString error;
};

QList<const Command*> membersOf(const QString& group) {
    QList<const Command*> members;
    for (const Command& command : commandTable()) {
        if (command.name.startsWith(group + u' ')) {
            members.append(&command);
        }
    }
    return members;
}

QString memberWord(const Command& command) {
    return command.name.section(u' ', 1);
}

Lookup commandOf(const Command* command, qsizetype words) {
    Lookup found;
    found.command = command;
    found.words = words;
    return found;
}

Lookup groupOf(const QString& group, bool wantsHelp, const QString& error = {}) {
    Lookup found;
    found.group = group;
    found.wantsHelp = wantsHelp;
    found.error = error;
    return found;
}

Lookup lookUp(const QStringList& words) {
    const QString first = words.value(0);
    for (const Command& command : commandTable()) {
        if (command.name == first) {
            return commandOf(&command, 1);
        }
    }
    const auto members = membersOf(first);
    if (members.isEmpty()) {
        Lookup unknown;
        unknown.error =
            (first.startsWith(u'-') ? u"Unbekannte Option: %1"_s : u"Unbekannter Befehl: %1"_s).arg(first);
        return unknown;
    }
    if (words.size() < 2 || isHelpOption(words[1])) {
        return groupOf(first, words.size() >= 2);
    }
    for (const Command* member : members) {
        if (memberWord(*member) == words[1]) {
            return commandOf(member, 2);
        }
    }
    return groupOf(first, false, u"Unbekannter Unterbefehl: %1 %2"_s.arg(first, words[1]));
}

// "list, add, remove oder probe"
QString alternatives(const QString& group) {
    QStringList words;
    for (const Command* member : membersOf(group)) {
        words.append(memberWord(*member));
    }
    const QString last = words.takeLast();
    return words.isEmpty() ? last : words.join(u", "_s) + u" oder "_s + last;
}

QString groupUsage(const QString& group) {
    QList<QPair<QString, QString>> rows;
    for (const Command* member : membersOf(group)) {
        rows.append({memberWord(*member), member->summary});
    }
    return u"Aufruf: varnis %1 BEFEHL …\n\nBefehle:\n"_s.arg(group) + formatColumns(rows) +
           u"\nMehr zu einem Befehl: varnis help %1 BEFEHL\n"_s.arg(group);
}

// On the command line there is no task bar: a long wait is one line on stderr, so that a
// script's log says why nothing happens.
class StderrWaitAnnouncer final : public WaitAnnouncer {
public:
    StderrWaitAnnouncer(QTextStream& err, std::shared_ptr<Clock> clock)
        : m_err(err), m_clock(std::move(clock)) {}
    int started(Reason reason, QDateTime until, QString accountName) override {
        const QString text = describe(reason, until, m_clock->now());
        m_err << (accountName.isEmpty() ? text : accountName + u": "_s + text) << u"\n"_s;
        m_err.flush();
        return 0;
    }
    void ended(int) override {}

private:
    QTextStream& m_err;
    std::shared_ptr<Clock> m_clock;
};

} // namespace

CommandLine::CommandLine(AppState& state, QTextStream& out, QTextStream& err)
    : m_state(state), m_out(out), m_err(err) {
    m_state.accountStore().setWaitAnnouncer(
        std::make_shared<StderrWaitAnnouncer>(m_err, m_state.platform().clock));
}

CommandLine::~CommandLine() {
    // The announcer writes to `m_err`, which may go with this object.
    m_state.accountStore().setWaitAnnouncer({});
}

QString CommandLine::helpText() {
    QList<QPair<QString, QString>> commands;
    for (const Command& command : commandTable()) {
        commands.append({command.name, command.summary});
    }
    return u"Varnis – Arbeitsplatz für App Store Connect\n"
           "\n"
           "Aufruf:\n"
           "  varnis                   öffnet das Fenster\n"
           "  varnis BEFEHL …          führt den Befehl ohne Fenster aus\n"
           "  varnis help BEFEHL       zeigt, was ein Befehl annimmt (ebenso: varnis BEFEHL --help)\n"
           "\n"
           "Befehle:\n"_s +
           formatColumns(commands) +
           u"\n"
           "Umgebung:\n"
           "  VARNIS_API_ROOT          ersetzt die Adresse der API\n"
           "  VARNIS_ISSUER_ID, VARNIS_KEY_ID, VARNIS_KEY_FILE\n"
           "                           ein Account nur für diesen Lauf, nie gespeichert\n"
           "\n"
           "Exit-Status: 0 Erfolg, 1 Fehler, 2 falscher Aufruf.\n"_s;
}

int CommandLine::usage(const QString& message, const QString& usageText) {
    m_err << message << u"\n\n"_s << usageText;
    return 2;
}

QCoro::Task<int> CommandLine::run(QStringList arguments) {
    const int status = co_await dispatch(arguments);
    m_out.flush();
    m_err.flush();
    co_return status;
}

QCoro::Task<int> CommandLine::dispatch(QStringList arguments) {
    if (arguments.isEmpty() || isHelpOption(arguments.first())) {
        m_out << helpText();
        co_return 0;
    }
    if (arguments.first() == u"help"_s) {
        co_return help(arguments.mid(1));
    }
    const Lookup found = lookUp(arguments);
    if (!found.error.isEmpty()) {
        co_return usage(found.error, found.group.isEmpty() ? helpText() : groupUsage(found.group));
    }
    if (found.wantsHelp) {
        m_out << groupUsage(found.group);
        co_return 0;
    }
    if (!found.command) {
        co_return usage(u"„%1“ braucht einen Unterbefehl: %2."_s.arg(found.group, alternatives(found.group)),
                        groupUsage(found.group));
    }
    const CommandSyntax syntax = found.command->syntax();
    const QString usageText = syntax.usage(found.command->summary);
    const auto parsed = syntax.parse(arguments.mid(found.words));
    if (const QString* error = std::get_if<QString>(&parsed)) {
        co_return usage(*error, usageText);
    }
    const auto& args = std::get<CommandArguments>(parsed);
    if (args.wantsHelp()) {
        m_out << usageText;
        co_return 0;
    }
    // Named before it is awaited: g++ 12 destroys a temporary of an awaited call's arguments twice.
    const Invocation call{m_state, m_out, m_err, args, usageText};
    const int status = co_await found.command->run(call);
    co_return status;
}

int CommandLine::help(const QStringList& words) {
    if (words.isEmpty()) {
        m_out << helpText();
        return 0;
    }
    const Lookup found = lookUp(words);
    if (!found.error.isEmpty()) {
        return usage(found.error, helpText());
    }
    m_out << (found.command ? found.command->usage() : groupUsage(found.group));
    return 0;
}
