#include "cli/Command.h"

#include "cli/AccountsCommand.h"
#include "cli/AppsCommand.h"
#include "cli/AuditLogCommand.h"
#include "cli/MetadataCommand.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTextStream>

using namespace Qt::StringLiterals;

const QList<Command>& commandTable() {
    static const QList<Command> table{
        {u"accounts list"_s, u"listet die eingerichteten Accounts"_s, AccountsCommand::declareList,
         AccountsCommand::list},
        {u"accounts add"_s, u"richtet einen Account mit seinem API-Schlüssel ein"_s,
         AccountsCommand::declareAdd, AccountsCommand::add},
        {u"accounts remove"_s, u"löscht einen Account und seinen Private Key"_s,
         AccountsCommand::declareRemove, AccountsCommand::remove},
        {u"accounts probe"_s, u"misst mit je einem Testaufruf, was der Schlüssel eines Accounts darf"_s,
         AccountsCommand::declareProbe, AccountsCommand::probe},
        {u"apps"_s, u"listet die Apps des Accounts"_s, AppsCommand::declare, AppsCommand::run},
        {u"audit-log"_s, u"zeigt das Änderungsprotokoll der Schreibzugriffe"_s, AuditLogCommand::declare,
         AuditLogCommand::run},
        {u"metadata show"_s, u"zeigt die Store-Texte einer App"_s, MetadataCommand::declareShow,
         MetadataCommand::show},
        {u"metadata check"_s, u"prüft die Store-Texte einer App wie vor dem Einreichen"_s,
         MetadataCommand::declareCheck, MetadataCommand::check},
        {u"metadata set"_s, u"ändert Store-Texte einer Sprache; ohne --yes nur als Vorschau"_s,
         MetadataCommand::declareSet, MetadataCommand::set},
    };
    return table;
}

CommandSyntax Command::syntax() const {
    CommandSyntax syntax(name);
    declare(syntax);
    return syntax;
}

int Invocation::usage(const QString& message) const {
    err << message << u"\n\n"_s << usageText;
    return 2;
}

int Invocation::fail(const QString& message) const {
    err << message << u'\n';
    return 1;
}

void Invocation::printJson(const QJsonValue& value) const {
    const QJsonDocument doc =
        value.isArray() ? QJsonDocument(value.toArray()) : QJsonDocument(value.toObject());
    out << QString::fromUtf8(doc.toJson(QJsonDocument::Indented)).trimmed() << u'\n';
}

QJsonValue optionalJson(const std::optional<QString>& value) {
    return value ? QJsonValue(*value) : QJsonValue(QJsonValue::Null);
}
