#include "wire/JSONAPI.h"

#include <QJsonParseError>

using namespace Qt::StringLiterals;

PagingLinks PagingLinks::fromJson(const JsonReader& r) {
    return PagingLinks{r.optString(u"self"_s), r.optString(u"first"_s), r.optString(u"next"_s)};
}

PagingMeta PagingMeta::fromJson(const JsonReader& r) {
    PagingMeta meta;
    if (auto paging = r.optObject(u"paging"_s)) {
        meta.paging = Paging{paging->optInt(u"total"_s), paging->optInt(u"limit"_s)};
    }
    return meta;
}

JSONAPILinkage JSONAPILinkage::fromJson(const JsonReader& r) {
    return JSONAPILinkage{r.string(u"type"_s), r.string(u"id"_s)};
}

QJsonObject JSONAPILinkage::toJson() const {
    return QJsonObject{{u"type"_s, type}, {u"id"_s, id}};
}

JsonReader JSONAPIDecode::documentRoot(const QByteArray& body) {
    QJsonParseError error;
    const auto doc = QJsonDocument::fromJson(body, &error);
    if (error.error != QJsonParseError::NoError) {
        throw DecodingError(u"The body is not JSON: "_s + error.errorString());
    }
    if (!doc.isObject()) {
        throw DecodingError(u"The body is not a JSON object"_s);
    }
    return JsonReader(doc.object());
}

void JSONAPIDecode::readEnvelope(const JsonReader& root, std::optional<PagingLinks>& links,
                                 std::optional<PagingMeta>& meta) {
    if (auto l = root.optObject(u"links"_s)) {
        links = PagingLinks::fromJson(*l);
    }
    if (auto m = root.optObject(u"meta"_s)) {
        meta = PagingMeta::fromJson(*m);
    }
}
