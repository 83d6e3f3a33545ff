#include "wire/AppleErrorDocument.h"

#include "wire/JsonReader.h"

#include <QJsonDocument>

using namespace Qt::StringLiterals;

QList<AppleErrorObject> AppleErrorDocument::decodeLenient(const QByteArray& body) {
    QList<AppleErrorObject> result;
    try {
        const auto doc = QJsonDocument::fromJson(body);
        if (!doc.isObject()) {
            return {};
        }
        const JsonReader root(doc.object());
        const auto errors = root.array(u"errors"_s);
        for (const auto& value : errors) {
            const auto e = JsonReader::of(value, u"errors"_s);
            result.append(AppleErrorObject{e.optString(u"id"_s), e.optString(u"status"_s),
                                           e.optString(u"code"_s), e.optString(u"title"_s),
                                           e.optString(u"detail"_s)});
        }
    } catch (const DecodingError&) {
        return {};
    }
    return result;
}
