#include "wire/ASCUploadOperation.h"

#include <QJsonArray>

using namespace Qt::StringLiterals;

ASCUploadOperation ASCUploadOperation::fromJson(const JsonReader& r) {
    ASCUploadOperation operation;
    operation.method = r.optString(u"method"_s);
    operation.url = r.optString(u"url"_s);
    operation.length = r.optInt(u"length"_s);
    operation.offset = r.optInt(u"offset"_s);
    if (auto headers = r.optArray(u"requestHeaders"_s)) {
        QList<Header> parsed;
        parsed.reserve(headers->size());
        for (const auto& h : *headers) {
            const JsonReader header = JsonReader::of(h, u"requestHeaders[]"_s);
            parsed.append({header.optString(u"name"_s), header.optString(u"value"_s)});
        }
        operation.requestHeaders = parsed;
    }
    return operation;
}

std::optional<QList<ASCUploadOperation>>
ASCUploadOperation::listFromAttributes(const JsonReader& attributes) {
    const auto operations = attributes.optArray(u"uploadOperations"_s);
    if (!operations) {
        return std::nullopt;
    }
    QList<ASCUploadOperation> list;
    list.reserve(operations->size());
    for (const auto& value : *operations) {
        list.append(fromJson(JsonReader::of(value, u"uploadOperations[]"_s)));
    }
    return list;
}
