#include "cli/CommandSyntax.h"

#include <QCommandLineParser>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

const QString helpName = u"help"_s;
const QString helpDescription = u"zeigt diese Hilfe"_s;

QString dashed(const QString& name) {
    return (name.size() == 1 ? u"-"_s : u"--"_s) + name;
}

// An unknown short option as it was typed ("-bunt"), a long one without its value ("--bunt").
QString typedOption(const QString& name, const QStringList& arguments) {
    if (name.size() == 1) {
        for (const QString& argument : arguments) {
            if (argument == u"--"_s) {
                break;
            }
            if (argument.startsWith(u'-') && !argument.startsWith(u"--"_s) && argument.contains(name)) {
                return argument;
            }
        }
    }
    return dashed(name);
}

} // namespace

void CommandSyntax::addFlag(const QString& name, const QString& description) {
    m_options.append({name, {}, description, Need::Optional});
}

void CommandSyntax::addValue(const QString& name, const QString& valueName, const QString& description,
                             Need need) {
    m_options.append({name, valueName, description, need});
}

void CommandSyntax::addPositional(const QString& syntax, const QString& description) {
    m_positionals.append({syntax, description});
}

const CommandSyntax::Option* CommandSyntax::option(const QString& name) const {
    const auto it = std::find_if(m_options.cbegin(), m_options.cend(),
                                 [&](const Option& option) { return option.name == name; });
    return it == m_options.cend() ? nullptr : &*it;
}

QString CommandSyntax::optionText(const Option& option) {
    return dashed(option.name) + (option.valueName.isEmpty() ? QString() : u' ' + option.valueName);
}

QString CommandSyntax::synopsis() const {
    QStringList parts;
    for (const Positional& positional : m_positionals) {
        parts.append(positional.syntax);
    }
    for (const Option& option : m_options) {
        const QString text = optionText(option);
        parts.append(option.need == Need::Required ? text : u'[' + text + u']');
    }
    return parts.join(u' ');
}

QString CommandSyntax::usage(const QString& summary) const {
    // The listing's line as a sentence.
    const QString sentence = summary.left(1).toUpper() + summary.mid(1) + u'.';
    QString text = u"Aufruf: varnis %1 %2\n\n%3\n"_s.arg(m_command, synopsis(), sentence);
    if (!m_positionals.isEmpty()) {
        QList<QPair<QString, QString>> rows;
        for (const Positional& positional : m_positionals) {
            rows.append({positional.syntax, positional.description});
        }
        text += u"\nAngaben:\n"_s + formatColumns(rows);
    }
    QList<QPair<QString, QString>> rows;
    for (const Option& option : m_options) {
        rows.append({optionText(option), option.description});
    }
    rows.append({u"-h, --help"_s, helpDescription});
    text += u"\nOptionen:\n"_s + formatColumns(rows);
    for (const QString& note : m_notes) {
        text += u'\n' + note + u'\n';
    }
    return text;
}

std::variant<CommandArguments, QString> CommandSyntax::parse(const QStringList& arguments) const {
    QCommandLineParser parser;
    parser.addOption(QCommandLineOption({u"h"_s, helpName}, helpDescription));
    for (const Option& option : m_options) {
        parser.addOption(QCommandLineOption(option.name, option.description, option.valueName));
    }
    for (const Positional& positional : m_positionals) {
        parser.addPositionalArgument(positional.syntax, positional.description);
    }
    // The parser takes the first word for the program's name.
    if (!parser.parse(QStringList{m_command} + arguments)) {
        return failureText(parser.unknownOptionNames(), arguments);
    }
    CommandArguments parsed;
    if (parser.isSet(helpName)) {
        parsed.flags.insert(helpName);
        return parsed;
    }
    parsed.positional = parser.positionalArguments();
    for (const Option& option : m_options) {
        if (!parser.isSet(option.name)) {
            continue;
        }
        if (option.valueName.isEmpty()) {
            parsed.flags.insert(option.name);
        } else {
            parsed.values.insert(option.name, parser.value(option.name));
        }
    }
    if (auto missing = missingText(parsed)) {
        return *missing;
    }
    return parsed;
}

QString CommandSyntax::failureText(const QStringList& unknownNames, const QStringList& arguments) const {
    if (!unknownNames.isEmpty()) {
        return u"Unbekannte Option: "_s + typedOption(unknownNames.constFirst(), arguments);
    }
    // Otherwise an option lacks its value or a switch was given one.
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString& argument = arguments[i];
        if (argument == u"--"_s) {
            break;
        }
        const Option* known =
            argument.startsWith(u"--"_s) ? option(argument.mid(2).section(u'=', 0, 0)) : nullptr;
        if (!known) {
            continue;
        }
        const bool inlineValue = argument.contains(u'=');
        if (known->valueName.isEmpty()) {
            if (inlineValue) {
                return u"Die Option %1 nimmt keinen Wert."_s.arg(dashed(known->name));
            }
        } else if (!inlineValue && ++i == arguments.size()) {
            return u"Zur Option %1 fehlt der Wert."_s.arg(dashed(known->name));
        }
    }
    return u"Der Aufruf lässt sich nicht lesen."_s;
}

std::optional<QString> CommandSyntax::missingText(const CommandArguments& parsed) const {
    for (const Option& option : m_options) {
        if (option.need == Need::Required && parsed.value(option.name).trimmed().isEmpty()) {
            return u"Es fehlt %1."_s.arg(dashed(option.name));
        }
    }
    if (m_positionals.isEmpty() && !parsed.positional.isEmpty()) {
        return u"„%1“ nimmt keine weiteren Angaben."_s.arg(m_command);
    }
    return std::nullopt;
}

QString formatColumns(const QList<QPair<QString, QString>>& rows) {
    qsizetype width = 0;
    for (const auto& [left, right] : rows) {
        width = std::max(width, left.size());
    }
    QString text;
    for (const auto& [left, right] : rows) {
        text += u"  "_s + left.leftJustified(width + 2) + right + u'\n';
    }
    return text;
}
