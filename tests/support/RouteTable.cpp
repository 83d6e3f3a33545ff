#include "support/RouteTable.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

QByteArray appleErrorBody(int status, const QString& code, const QString& title, const QString& detail) {
    const QJsonObject error{{u"id"_s, u"00000000-0000-0000-0000-000000000000"_s},
                            {u"status"_s, QString::number(status)},
                            {u"code"_s, code},
                            {u"title"_s, title},
                            {u"detail"_s, detail}};
    return QJsonDocument(QJsonObject{{u"errors"_s, QJsonArray{error}}}).toJson(QJsonDocument::Compact);
}

QByteArray appleNotFoundBody() {
    return appleErrorBody(404, u"NOT_FOUND"_s, u"The specified resource does not exist"_s,
                          u"The path provided does not match a defined resource type."_s);
}
