#include "support/OpenApiContract.h"

#include <QFile>
#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>
#include <QtDebug>

using namespace Qt::StringLiterals;

namespace OpenApiContract {

const QList<AllowedEndpoint>& allowlist() {
    // Endpoints (or single query parameters of an endpoint) that Apple serves and the client
    // uses but that asc-openapi-3.7.0.json does not describe yet, because they are newer than
    // the document. Each entry says what Apple's documentation or release notes introduced it,
    // e.g.
    //     {u"GET"_s, u"/v1/apps/{id}/someNewRelationship"_s, {}},          // whole operation
    //     {u"GET"_s, u"/v1/apps"_s, u"filter[someNewAttribute]"_s},        // one parameter
    // Nothing else belongs here: a request the document rejects is a bug in the client or in
    // the test, not a reason for an entry. Remove entries once a newer document covers them.
    static const QList<AllowedEndpoint> entries{};
    return entries;
}

} // namespace OpenApiContract

namespace {

struct PathTemplate {
    QString text;
    QStringList segments;
    // Upper-case method -> the query parameter names declared for that operation.
    QHash<QString, QSet<QString>> queryNamesByMethod;
};

struct Document {
    bool available = false;
    QString loadError; // the file exists but could not be used
    QList<PathTemplate> paths;
};

// Follows local "$ref"s ("#/components/parameters/limit").
QJsonValue resolve(const QJsonObject& root, QJsonValue value) {
    for (int depth = 0; depth < 16 && value.toObject().contains(u"$ref"_s); ++depth) {
        const QString ref = value.toObject().value(u"$ref"_s).toString();
        if (!ref.startsWith(u"#/"_s)) {
            return {};
        }
        QJsonValue cursor = root;
        for (QString token : ref.mid(2).split(u'/')) {
            token.replace(u"~1"_s, u"/"_s).replace(u"~0"_s, u"~"_s);
            cursor = cursor.toObject().value(token);
        }
        value = cursor;
    }
    return value;
}

void addQueryNames(const QJsonObject& root, const QJsonArray& parameters, QSet<QString>& names) {
    for (const QJsonValue& entry : parameters) {
        const QJsonObject parameter = resolve(root, entry).toObject();
        if (parameter.value(u"in"_s).toString() == u"query"_s) {
            names.insert(parameter.value(u"name"_s).toString());
        }
    }
}

Document load() {
    Document doc;
    QFile file(QStringLiteral(VARNIS_OPENAPI_PATH));
    if (!file.exists()) {
        qInfo("OpenAPI document %s not found; requests are not checked against it.", VARNIS_OPENAPI_PATH);
        return doc;
    }
    if (!file.open(QIODevice::ReadOnly)) {
        doc.loadError =
            u"The OpenAPI document %1 cannot be read: %2"_s.arg(file.fileName(), file.errorString());
        return doc;
    }
    QJsonParseError error;
    const QJsonObject root = QJsonDocument::fromJson(file.readAll(), &error).object();
    const QJsonObject paths = root.value(u"paths"_s).toObject();
    if (error.error != QJsonParseError::NoError || paths.isEmpty()) {
        doc.loadError = u"The OpenAPI document %1 is damaged: %2"_s.arg(file.fileName(), error.errorString());
        return doc;
    }
    static const QStringList methods{u"get"_s,     u"put"_s,  u"post"_s,  u"delete"_s,
                                     u"options"_s, u"head"_s, u"patch"_s, u"trace"_s};
    for (auto it = paths.begin(); it != paths.end(); ++it) {
        const QJsonObject item = resolve(root, it.value()).toObject();
        PathTemplate path{it.key(), it.key().split(u'/'), {}};
        QSet<QString> shared;
        addQueryNames(root, item.value(u"parameters"_s).toArray(), shared);
        for (const QString& method : methods) {
            if (!item.contains(method)) {
                continue;
            }
            QSet<QString> names = shared;
            addQueryNames(root, resolve(root, item.value(method)).toObject().value(u"parameters"_s).toArray(),
                          names);
            path.queryNamesByMethod.insert(method.toUpper(), names);
        }
        doc.paths.append(std::move(path));
    }
    doc.available = true;
    return doc;
}

const Document& document() {
    static const Document doc = load();
    return doc;
}

bool isParameter(const QString& segment) {
    return segment.startsWith(u'{') && segment.endsWith(u'}');
}

// Segment by segment: a "{name}" segment stands for any non-empty segment.
bool matches(const QStringList& pattern, const QStringList& segments) {
    if (pattern.size() != segments.size()) {
        return false;
    }
    for (qsizetype i = 0; i < pattern.size(); ++i) {
        if (isParameter(pattern[i]) ? segments[i].isEmpty() : pattern[i] != segments[i]) {
            return false;
        }
    }
    return true;
}

// Of two matching templates, the one with a literal segment where the other has a parameter.
bool moreSpecific(const QStringList& a, const QStringList& b) {
    for (qsizetype i = 0; i < a.size(); ++i) {
        if (isParameter(a[i]) != isParameter(b[i])) {
            return !isParameter(a[i]);
        }
    }
    return false;
}

const PathTemplate* findTemplate(const Document& doc, const QStringList& segments) {
    const PathTemplate* best = nullptr;
    for (const PathTemplate& candidate : doc.paths) {
        if (matches(candidate.segments, segments) &&
            (!best || moreSpecific(candidate.segments, best->segments))) {
            best = &candidate;
        }
    }
    return best;
}

} // namespace

namespace OpenApiContract {

bool isAvailable() {
    return document().available;
}

std::optional<QString> check(const QString& method, const QString& path, const QStringList& queryNames) {
    return check(method, path, queryNames, allowlist());
}

std::optional<QString> check(const QString& method, const QString& path, const QStringList& queryNames,
                             const QList<AllowedEndpoint>& allowed) {
    const Document& doc = document();
    if (!doc.loadError.isEmpty()) {
        return doc.loadError;
    }
    if (!doc.available) {
        return std::nullopt;
    }
    const QString verb = method.toUpper();
    const QString request = verb + u' ' + path;
    const QStringList segments = path.split(u'/');

    QSet<QString> allowedNames;
    for (const AllowedEndpoint& entry : allowed) {
        if (entry.method.compare(verb, Qt::CaseInsensitive) != 0 ||
            !matches(entry.pathTemplate.split(u'/'), segments)) {
            continue;
        }
        if (entry.queryName.isEmpty()) {
            return std::nullopt;
        }
        allowedNames.insert(entry.queryName);
    }

    const PathTemplate* found = findTemplate(doc, segments);
    if (!found) {
        return u"%1: no path of the OpenAPI document matches this path"_s.arg(request);
    }
    const auto operation = found->queryNamesByMethod.constFind(verb);
    if (operation == found->queryNamesByMethod.constEnd()) {
        QStringList declared = found->queryNamesByMethod.keys();
        declared.sort();
        return u"%1: method %2 is not declared for %3 (declared: %4)"_s.arg(request, verb, found->text,
                                                                            declared.join(u", "_s));
    }
    allowedNames.unite(*operation);
    // Apple's `next` links carry the paging token `cursor`, which the document never declares;
    // every paged GET (one that declares `limit`) accepts it.
    if (verb == u"GET"_s && operation->contains(u"limit"_s)) {
        allowedNames.insert(u"cursor"_s);
    }
    QStringList undeclared;
    for (const QString& name : queryNames) {
        if (!allowedNames.contains(name) && !undeclared.contains(name)) {
            undeclared.append(name);
        }
    }
    if (!undeclared.isEmpty()) {
        return u"%1: query parameter(s) %2 not declared for %3 %4"_s.arg(request, undeclared.join(u", "_s),
                                                                         verb, found->text);
    }
    return std::nullopt;
}

} // namespace OpenApiContract
