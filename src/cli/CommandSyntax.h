#pragma once

#include <QHash>
#include <QList>
#include <QSet>
#include <QStringList>

#include <optional>
#include <variant>

// What one command was given once its syntax accepted it; options by their names without dashes.
struct CommandArguments {
    QStringList positional;
    QHash<QString, QString> values;
    QSet<QString> flags;

    bool isSet(const QString& flag) const { return flags.contains(flag); }
    QString value(const QString& option) const { return values.value(option); }
    bool wantsHelp() const { return isSet(QStringLiteral("help")); }
};

// The options and positional arguments of one command: parsed with QCommandLineParser, described
// in German for its usage text. Every command takes -h/--help.
class CommandSyntax {
public:
    enum class Need { Optional, Required };

    explicit CommandSyntax(QString command) : m_command(std::move(command)) {}

    void addFlag(const QString& name, const QString& description);
    // An option with a value; a required one missing or blank is a usage error.
    void addValue(const QString& name, const QString& valueName, const QString& description,
                  Need need = Need::Optional);
    // Without any, a command takes no positional arguments at all.
    void addPositional(const QString& syntax, const QString& description);
    // A paragraph below the options.
    void addNote(const QString& text) { m_notes.append(text); }

    const QString& command() const { return m_command; }
    // "NAME [--json]"
    QString synopsis() const;
    QString usage(const QString& summary) const;

    // The arguments, or the German message of the usage error.
    std::variant<CommandArguments, QString> parse(const QStringList& arguments) const;

private:
    struct Option {
        QString name;
        QString valueName;
        QString description;
        Need need;
    };
    struct Positional {
        QString syntax;
        QString description;
    };

    static QString optionText(const Option& option);
    const Option* option(const QString& name) const;
    QString failureText(const QStringList& unknownNames, const QStringList& arguments) const;
    std::optional<QString> missingText(const CommandArguments& parsed) const;

    QString m_command;
    QList<Option> m_options;
    QList<Positional> m_positionals;
    QStringList m_notes;
};

// Two columns, the left one as wide as its widest entry, each line indented by two spaces.
QString formatColumns(const QList<QPair<QString, QString>>& rows);
