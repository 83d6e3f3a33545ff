#pragma once

#include "wire/JsonReader.h"

#include <QByteArray>
#include <QJsonDocument>
#include <QList>
#include <QString>

#include <optional>

struct PagingLinks {
    std::optional<QString> self;
    std::optional<QString> first;
    std::optional<QString> next;
    static PagingLinks fromJson(const JsonReader& r);
};

struct PagingMeta {
    struct Paging {
        std::optional<qint64> total;
        std::optional<qint64> limit;
    };
    std::optional<Paging> paging;
    static PagingMeta fromJson(const JsonReader& r);
};

struct JSONAPILinkage {
    QString type;
    QString id;
    static JSONAPILinkage fromJson(const JsonReader& r);
    QJsonObject toJson() const;
    friend bool operator==(const JSONAPILinkage&, const JSONAPILinkage&) = default;
};

// One resource of a JSON:API document. `Attributes` provides `static Attributes fromJson(const
// JsonReader&)`. Relationships stay raw for the domain types that read them.
template <class Attributes> struct JSONAPIResource {
    QString type;
    QString id;
    std::optional<Attributes> attributes;
    QJsonObject relationships;

    static JSONAPIResource fromJson(const JsonReader& r) {
        JSONAPIResource resource;
        resource.type = r.string(QStringLiteral("type"));
        resource.id = r.string(QStringLiteral("id"));
        if (auto attrs = r.optObject(QStringLiteral("attributes"))) {
            resource.attributes = Attributes::fromJson(*attrs);
        }
        if (auto rel = r.optObject(QStringLiteral("relationships"))) {
            resource.relationships = rel->object();
        }
        return resource;
    }
};

template <class T> struct APIResponse {
    T data;
    std::optional<PagingLinks> links;
    std::optional<PagingMeta> meta;
};

// Decoding of response documents; every failure raises DecodingError.
namespace JSONAPIDecode {

JsonReader documentRoot(const QByteArray& body);
void readEnvelope(const JsonReader& root, std::optional<PagingLinks>& links, std::optional<PagingMeta>& meta);

// `T` provides `static T fromJson(const JsonReader&)`.
template <class T> APIResponse<QList<T>> list(const QByteArray& body) {
    const JsonReader root = documentRoot(body);
    APIResponse<QList<T>> response;
    const QJsonArray data = root.array(QStringLiteral("data"));
    response.data.reserve(data.size());
    for (const auto& item : data) {
        response.data.append(T::fromJson(JsonReader::of(item, QStringLiteral("data[]"))));
    }
    readEnvelope(root, response.links, response.meta);
    return response;
}

template <class T> T single(const QByteArray& body) {
    const JsonReader root = documentRoot(body);
    return T::fromJson(root.objectAt(QStringLiteral("data")));
}

template <class T> std::optional<T> singleOptional(const QByteArray& body) {
    const JsonReader root = documentRoot(body);
    if (!root.contains(QStringLiteral("data"))) {
        root.fail(QStringLiteral("data"), QStringLiteral("an object or null"));
    }
    if (auto data = root.optObject(QStringLiteral("data"))) {
        return T::fromJson(*data);
    }
    return std::nullopt;
}

} // namespace JSONAPIDecode
