#include "cli/AuditLogCommand.h"

#include "api/AccountStore.h"
#include "api/AuditLog.h"
#include "workspace/AppState.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QTextStream>

using namespace Qt::StringLiterals;

namespace {

QJsonObject entryJson(const AuditLog::Entry& e) {
    return QJsonObject{
        {u"id"_s, e.id.toString(QUuid::WithoutBraces).toUpper()},
        {u"date"_s, e.date.toUTC().toString(Qt::ISODate)},
        {u"method"_s, e.method},
        {u"path"_s, e.path},
        {u"statusCode"_s, e.statusCode ? QJsonValue(*e.statusCode) : QJsonValue(QJsonValue::Null)},
        {u"appleRequestID"_s, optionalJson(e.appleRequestID)},
        {u"accountName"_s, optionalJson(e.accountName)},
        {u"errorMessage"_s, optionalJson(e.errorMessage)},
    };
}

} // namespace

void AuditLogCommand::declare(CommandSyntax& syntax) {
    syntax.addFlag(u"json"_s, u"gibt die Einträge als JSON aus"_s);
}

QCoro::Task<int> AuditLogCommand::run(Invocation call) {
    AuditLog& log = *call.state.accountStore().auditLog();
    if (call.args.isSet(u"json"_s)) {
        QJsonArray array;
        for (const auto& entry : log.entries()) {
            array.append(entryJson(entry));
        }
        call.printJson(array);
    } else if (const QString text = log.exportText(); !text.isEmpty()) {
        call.out << text << u'\n';
    }
    co_return 0;
}
