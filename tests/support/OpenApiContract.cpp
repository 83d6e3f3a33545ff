#include "support/OpenApiContract.h"

#include <QFile>
#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>
#include <QSet>
#include <QtDebug>

#include <cmath>

using namespace Qt::StringLiterals;

namespace OpenApiContract {

const QList<Allowance>& allowlist() {
    // Where the wire and asc-openapi-3.7.0.json part, each with its reason. What Apple added
    // after the document names the API version that brought it; remove such entries once a
    // newer document covers them. Nothing else belongs here: a request or an answer that the
    // document rejects is a bug in the client or in the test, not a reason for an entry.
    using Kind = Allowance::Kind;
    static const QList<Allowance> entries{
        {.kind = Kind::NullText,
         .method = u"PATCH"_s,
         .resourceType = u"*"_s,
         .name = u"attributes.*"_s,
         .reason =
             u"An update clears a text attribute with an explicit null; leaving the attribute out keeps "
             u"the old text. The document declares these attributes as plain strings, but Apple needs "
             u"the null to clear them."_s},
        // JSON:API's empty to-one relationship: `data` is null. The document declares the
        // linkage (and the related resource) as an object that is always there.
        {.kind = Kind::Null,
         .method = u"PATCH"_s,
         .path = u"/v1/appStoreVersions/{id}/relationships/build"_s,
         .name = u"data"_s,
         .reason = u"Removing the build from a version sends the linkage as null."_s},
        {.kind = Kind::Null,
         .method = u"GET"_s,
         .path = u"/v1/appStoreVersions/{id}/build"_s,
         .name = u"data"_s,
         .reason = u"A version without a build answers data: null."_s},
        {.kind = Kind::Null,
         .method = u"GET"_s,
         .path = u"/v1/appStoreVersions/{id}/appStoreReviewDetail"_s,
         .name = u"data"_s,
         .reason = u"A version whose review details were never saved answers data: null."_s},
        {.kind = Kind::Null,
         .method = u"GET"_s,
         .path = u"/v1/appStoreVersions/{id}/appStoreVersionPhasedRelease"_s,
         .name = u"data"_s,
         .reason = u"A version without a phased release answers data: null."_s},
        // TestFlight feedback came with App Store Connect API 4.0, after the document.
        {.kind = Kind::Operation,
         .method = u"GET"_s,
         .path = u"/v1/apps/{id}/betaFeedbackScreenshotSubmissions"_s,
         .reason = u"Screenshot feedback of testers: added in API 4.0."_s},
        {.kind = Kind::Operation,
         .method = u"GET"_s,
         .path = u"/v1/apps/{id}/betaFeedbackCrashSubmissions"_s,
         .reason = u"Crash feedback of testers: added in API 4.0."_s},
        {.kind = Kind::Operation,
         .method = u"GET"_s,
         .path = u"/v1/betaFeedbackCrashSubmissions/{id}/crashLog"_s,
         .reason = u"The log of a crash feedback: added in API 4.0."_s},
    };
    return entries;
}

} // namespace OpenApiContract

namespace {

using OpenApiContract::Allowance;
using Kind = Allowance::Kind;

struct Operation {
    QSet<QString> queryNames;
    bool takesBody = false;
    bool bodyRequired = false;
    QJsonValue body;               // the schema of the JSON body, when it takes one
    QMap<int, QJsonValue> answers; // 2xx status -> the schema of its JSON answer
};

struct PathTemplate {
    QString text;
    QStringList segments;
    QHash<QString, Operation> operations; // by upper-case method
};

struct Document {
    bool available = false;
    QString loadError; // the file exists but could not be used
    QJsonObject root;  // kept for "$ref"s, which the checks follow as they meet them
    QList<PathTemplate> paths;
};

// Follows local "$ref"s ("#/components/schemas/App").
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

QJsonValue jsonSchema(const QJsonObject& root, const QJsonValue& bodyOrAnswer) {
    return resolve(root, bodyOrAnswer)
        .toObject()
        .value(u"content"_s)
        .toObject()
        .value(u"application/json"_s)
        .toObject()
        .value(u"schema"_s);
}

Operation operationOf(const QJsonObject& root, const QJsonObject& operation, QSet<QString> queryNames) {
    Operation result;
    addQueryNames(root, operation.value(u"parameters"_s).toArray(), queryNames);
    result.queryNames = std::move(queryNames);
    const QJsonValue requestBody = operation.value(u"requestBody"_s);
    result.body = jsonSchema(root, requestBody);
    result.takesBody = !result.body.isUndefined();
    result.bodyRequired = resolve(root, requestBody).toObject().value(u"required"_s).toBool();
    const QJsonObject responses = operation.value(u"responses"_s).toObject();
    for (auto it = responses.begin(); it != responses.end(); ++it) {
        bool isNumber = false;
        const int status = it.key().toInt(&isNumber);
        const QJsonValue schema = jsonSchema(root, it.value());
        if (isNumber && status >= 200 && status < 300 && !schema.isUndefined()) {
            result.answers.insert(status, schema);
        }
    }
    return result;
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
    doc.root = QJsonDocument::fromJson(file.readAll(), &error).object();
    const QJsonObject paths = doc.root.value(u"paths"_s).toObject();
    if (error.error != QJsonParseError::NoError || paths.isEmpty()) {
        doc.loadError = u"The OpenAPI document %1 is damaged: %2"_s.arg(file.fileName(), error.errorString());
        return doc;
    }
    static const QStringList methods{u"get"_s,     u"put"_s,  u"post"_s,  u"delete"_s,
                                     u"options"_s, u"head"_s, u"patch"_s, u"trace"_s};
    for (auto it = paths.begin(); it != paths.end(); ++it) {
        const QJsonObject item = resolve(doc.root, it.value()).toObject();
        PathTemplate path{it.key(), it.key().split(u'/'), {}};
        QSet<QString> shared;
        addQueryNames(doc.root, item.value(u"parameters"_s).toArray(), shared);
        for (const QString& method : methods) {
            if (item.contains(method)) {
                path.operations.insert(
                    method.toUpper(),
                    operationOf(doc.root, resolve(doc.root, item.value(method)).toObject(), shared));
            }
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

// The method and path of a request, and the allowances that name them.
struct Request {
    QString verb;
    QString path;
    QStringList segments;

    Request(const QString& method, const QString& concretePath)
        : verb(method.toUpper()), path(concretePath), segments(concretePath.split(u'/')) {}

    QString text() const { return verb + u' ' + path; }

    bool isNamedBy(const Allowance& allowance) const {
        return (allowance.method.isEmpty() || allowance.method.compare(verb, Qt::CaseInsensitive) == 0) &&
               (allowance.path.isEmpty() || matches(allowance.path.split(u'/'), segments));
    }

    bool isUndescribed(const QList<Allowance>& allowed) const {
        return std::any_of(allowed.begin(), allowed.end(),
                           [this](const Allowance& a) { return a.kind == Kind::Operation && isNamedBy(a); });
    }

    // The operation whose body and answers are checked; none for what check() reports or the
    // allowlist exempts.
    const Operation* operation(const Document& doc, const QList<Allowance>& allowed) const {
        if (isUndescribed(allowed)) {
            return nullptr;
        }
        const PathTemplate* found = findTemplate(doc, segments);
        if (!found) {
            return nullptr;
        }
        const auto operation = found->operations.constFind(verb);
        return operation == found->operations.constEnd() ? nullptr : &*operation;
    }
};

// A "*" stands for any text, dots included.
bool wildcardMatch(QStringView pattern, QStringView text) {
    const qsizetype star = pattern.indexOf(u'*');
    if (star < 0) {
        return pattern == text;
    }
    if (!text.startsWith(pattern.left(star))) {
        return false;
    }
    const QStringView rest = pattern.mid(star + 1);
    for (qsizetype i = star; i <= text.size(); ++i) {
        if (wildcardMatch(rest, text.mid(i))) {
            return true;
        }
    }
    return false;
}

// Where in a body or answer a value stands.
struct Where {
    QString shown;        // for messages, with list positions: "included[2].attributes.name"
    QString resourceType; // the type of the innermost resource around it; empty outside any
    QString member;       // its path inside that resource, without list positions

    Where child(const QString& key) const {
        return {shown.isEmpty() ? key : shown + u'.' + key, resourceType,
                member.isEmpty() ? key : member + u'.' + key};
    }
    Where item(qsizetype index) const {
        return {shown + u'[' + QString::number(index) + u']', resourceType, member};
    }
};

QString jsonTypeOf(const QJsonValue& value) {
    switch (value.type()) {
    case QJsonValue::Null:
        return u"null"_s;
    case QJsonValue::Bool:
        return u"boolean"_s;
    case QJsonValue::Double:
        return u"number"_s;
    case QJsonValue::String:
        return u"string"_s;
    case QJsonValue::Array:
        return u"array"_s;
    case QJsonValue::Object:
        return u"object"_s;
    case QJsonValue::Undefined:
        break;
    }
    return u"nothing"_s;
}

bool hasType(const QJsonValue& value, const QString& type) {
    if (type == u"integer"_s) {
        const double number = value.toDouble();
        return value.isDouble() && std::isfinite(number) && std::trunc(number) == number;
    }
    if (type == u"string"_s || type == u"number"_s || type == u"boolean"_s || type == u"array"_s ||
        type == u"object"_s) {
        return jsonTypeOf(value) == type;
    }
    return true;
}

QString listed(const QJsonArray& values) {
    QStringList texts;
    for (const QJsonValue& value : values) {
        if (texts.size() == 8) {
            texts.append(u"…"_s);
            break;
        }
        texts.append(value.toString());
    }
    return texts.join(u", "_s);
}

// Walks a JSON value along its schema, with the subset of JSON Schema that Apple's document
// uses: "$ref", "type", "properties", "required", "items", "enum", "oneOf" and
// "additionalProperties". A member that an object's schema does not declare is a violation,
// unlike in JSON Schema: the document lists every member the API knows.
class SchemaCheck {
public:
    SchemaCheck(const QJsonObject& root, const QList<Allowance>& allowed, const Request& request, bool answer,
                const QStringList& undeclaredValues)
        : m_root(&root), m_allowed(&allowed), m_request(&request), m_answer(answer),
          m_undeclaredValues(&undeclaredValues) {}

    void run(const QJsonValue& value, const QJsonValue& schemaValue, const Where& where) {
        const QJsonObject schema = resolve(*m_root, schemaValue).toObject();
        if (schema.isEmpty()) {
            return; // nothing declared
        }
        const QString type = schema.value(u"type"_s).toString();
        if (value.isNull()) {
            if (!(type == u"string"_s && !m_answer && allows(Kind::NullText, where)) &&
                !allows(Kind::Null, where)) {
                report(where, u"null where %1 is declared"_s.arg(type.isEmpty() ? u"a value"_s : type));
            }
            return;
        }
        if (schema.contains(u"oneOf"_s)) {
            oneOf(value, schema.value(u"oneOf"_s).toArray(), where);
            return;
        }
        if (!hasType(value, type)) {
            report(where, u"%1 where %2 is declared"_s.arg(jsonTypeOf(value), type));
            return;
        }
        if (value.isString()) {
            enumeration(value.toString(), schema.value(u"enum"_s).toArray(), where);
        } else if (value.isObject()) {
            object(value.toObject(), schema, where);
        } else if (value.isArray()) {
            const QJsonArray items = value.toArray();
            for (qsizetype i = 0; i < items.size(); ++i) {
                run(items.at(i), schema.value(u"items"_s), where.item(i));
            }
        }
    }

    QStringList problems;

private:
    bool allows(Kind kind, const Where& where, const QString& value = {}) const {
        return std::any_of(m_allowed->begin(), m_allowed->end(), [&](const Allowance& a) {
            return a.kind == kind && m_request->isNamedBy(a) &&
                   (a.resourceType == u"*"_s || a.resourceType == where.resourceType) &&
                   wildcardMatch(a.name, where.member) && (kind != Kind::Value || a.value == value);
        });
    }

    void report(const Where& where, const QString& text) {
        problems.append((where.shown.isEmpty() ? u"the document"_s : where.shown) + u": "_s + text);
    }

    bool undeclaredOnPurpose(const QString& value, const Where& where) const {
        return m_undeclaredValues->contains(value) || allows(Kind::Value, where, value);
    }

    void enumeration(const QString& value, const QJsonArray& declared, const Where& where) {
        if (!declared.isEmpty() && !declared.contains(value) && !undeclaredOnPurpose(value, where)) {
            report(where, u"\"%1\" is not a declared value (%2)"_s.arg(value, listed(declared)));
        }
    }

    void object(const QJsonObject& object, const QJsonObject& schema, const Where& outside) {
        const QJsonObject properties = resolve(*m_root, schema.value(u"properties"_s)).toObject();
        const QJsonValue additional = schema.value(u"additionalProperties"_s);
        if (properties.isEmpty() && additional.isUndefined()) {
            return; // a free-form object
        }
        // A resource or a resource identifier: what it holds is named from here on.
        Where where = outside;
        const bool isResource = properties.contains(u"type"_s) && object.value(u"type"_s).isString() &&
                                (properties.contains(u"id"_s) || properties.contains(u"attributes"_s) ||
                                 properties.contains(u"relationships"_s));
        if (isResource) {
            where.resourceType = object.value(u"type"_s).toString();
            where.member.clear();
        }
        for (auto it = object.begin(); it != object.end(); ++it) {
            const Where at = where.child(it.key());
            if (properties.contains(it.key())) {
                run(it.value(), properties.value(it.key()), at);
            } else if (additional.isObject()) {
                run(it.value(), additional, at);
            } else if (!additional.toBool() && !allows(Kind::Member, at)) {
                report(at, where.resourceType.isEmpty() ? u"not declared"_s
                                                        : u"not declared for %1"_s.arg(where.resourceType));
            }
        }
        for (const QJsonValue& required : schema.value(u"required"_s).toArray()) {
            const QString name = required.toString();
            // Made-up answers may leave out what no decoder reads (links, paging); a resource
            // is nothing without its type and id.
            const bool needed = !m_answer || name == u"type"_s || name == u"id"_s;
            if (needed && !object.contains(name)) {
                report(where.child(name), u"required but missing"_s);
            }
        }
    }

    void oneOf(const QJsonValue& value, const QJsonArray& alternatives, const Where& where) {
        // Resources (the members of `included`) are told apart by their type.
        if (value.toObject().value(u"type"_s).isString()) {
            const QString type = value.toObject().value(u"type"_s).toString();
            QJsonArray declared;
            for (const QJsonValue& alternative : alternatives) {
                const QJsonObject properties =
                    resolve(*m_root, resolve(*m_root, alternative).toObject().value(u"properties"_s))
                        .toObject();
                const QJsonArray types =
                    resolve(*m_root, properties.value(u"type"_s)).toObject().value(u"enum"_s).toArray();
                if (types.contains(type)) {
                    run(value, alternative, where);
                    return;
                }
                for (const QJsonValue& t : types) {
                    declared.append(t);
                }
            }
            if (!declared.isEmpty()) {
                if (!undeclaredOnPurpose(type, where.child(u"type"_s))) {
                    report(where.child(u"type"_s),
                           u"\"%1\" is none of the declared types (%2)"_s.arg(type, listed(declared)));
                }
                return;
            }
        }
        // Otherwise the first alternative that holds; failing all, the one that fails least.
        QStringList closest;
        for (const QJsonValue& alternative : alternatives) {
            SchemaCheck trial = *this;
            trial.problems.clear();
            trial.run(value, alternative, where);
            if (trial.problems.isEmpty()) {
                return;
            }
            if (closest.isEmpty() || trial.problems.size() < closest.size()) {
                closest = trial.problems;
            }
        }
        problems.append(closest);
    }

    const QJsonObject* m_root;
    const QList<Allowance>* m_allowed;
    const Request* m_request;
    bool m_answer;
    const QStringList* m_undeclaredValues;
};

std::optional<QJsonValue> parsed(const QByteArray& body, QString& error) {
    QJsonParseError parseError;
    const QJsonDocument json = QJsonDocument::fromJson(body, &parseError);
    if (parseError.error != QJsonParseError::NoError) {
        error = u"no JSON (%1)"_s.arg(parseError.errorString());
        return std::nullopt;
    }
    return json.isArray() ? QJsonValue(json.array()) : QJsonValue(json.object());
}

} // namespace

namespace OpenApiContract {

bool isAvailable() {
    return document().available;
}

std::optional<QString> check(const QString& method, const QString& path, const QStringList& queryNames,
                             const QList<Allowance>& allowed) {
    const Document& doc = document();
    if (!doc.loadError.isEmpty()) {
        return doc.loadError;
    }
    if (!doc.available) {
        return std::nullopt;
    }
    const Request request(method, path);
    if (request.isUndescribed(allowed)) {
        return std::nullopt;
    }
    QSet<QString> allowedNames;
    for (const Allowance& entry : allowed) {
        if (entry.kind == Kind::QueryParameter && request.isNamedBy(entry)) {
            allowedNames.insert(entry.name);
        }
    }

    const PathTemplate* found = findTemplate(doc, request.segments);
    if (!found) {
        return u"%1: no path of the OpenAPI document matches this path"_s.arg(request.text());
    }
    const auto operation = found->operations.constFind(request.verb);
    if (operation == found->operations.constEnd()) {
        QStringList declared = found->operations.keys();
        declared.sort();
        return u"%1: method %2 is not declared for %3 (declared: %4)"_s.arg(
            request.text(), request.verb, found->text, declared.join(u", "_s));
    }
    allowedNames.unite(operation->queryNames);
    // Apple's `next` links carry the paging token `cursor`, which the document never declares;
    // every paged GET (one that declares `limit`) accepts it.
    if (request.verb == u"GET"_s && operation->queryNames.contains(u"limit"_s)) {
        allowedNames.insert(u"cursor"_s);
    }
    QStringList undeclared;
    for (const QString& name : queryNames) {
        if (!allowedNames.contains(name) && !undeclared.contains(name)) {
            undeclared.append(name);
        }
    }
    if (!undeclared.isEmpty()) {
        return u"%1: query parameter(s) %2 not declared for %3 %4"_s.arg(
            request.text(), undeclared.join(u", "_s), request.verb, found->text);
    }
    return std::nullopt;
}

std::optional<QString> checkBody(const QString& method, const QString& path, const QByteArray& body,
                                 const QList<Allowance>& allowed) {
    const Document& doc = document();
    if (!doc.loadError.isEmpty()) {
        return doc.loadError;
    }
    const Request request(method, path);
    const Operation* operation = doc.available ? request.operation(doc, allowed) : nullptr;
    if (!operation) {
        return std::nullopt;
    }
    const bool empty = body.trimmed().isEmpty();
    if (!operation->takesBody) {
        return empty ? std::nullopt
                     : std::optional(u"%1: sends a body, but the operation takes none"_s.arg(request.text()));
    }
    if (empty) {
        return operation->bodyRequired
                   ? std::optional(u"%1: sends no body, but the operation requires one"_s.arg(request.text()))
                   : std::nullopt;
    }
    QString error;
    const auto json = parsed(body, error);
    if (!json) {
        return u"%1: the body is %2"_s.arg(request.text(), error);
    }
    SchemaCheck walk(doc.root, allowed, request, false, {});
    walk.run(*json, operation->body, {});
    if (walk.problems.isEmpty()) {
        return std::nullopt;
    }
    return u"%1: body: %2"_s.arg(request.text(), walk.problems.join(u"; "_s));
}

std::optional<QString> checkAnswer(const QString& method, const QString& path, int status,
                                   const QByteArray& body, const QStringList& undeclaredValues,
                                   const QList<Allowance>& allowed) {
    const Document& doc = document();
    if (!doc.loadError.isEmpty()) {
        return doc.loadError;
    }
    if (status < 200 || status >= 300 || body.trimmed().isEmpty() || !doc.available) {
        return std::nullopt;
    }
    const Request request(method, path);
    const Operation* operation = request.operation(doc, allowed);
    // No JSON answer declared: a report or a file, not a document of resources.
    if (!operation || operation->answers.isEmpty()) {
        return std::nullopt;
    }
    // A test that answers 200 where Apple says 201 still gets the declared document checked.
    const QJsonValue schema = operation->answers.value(status, operation->answers.first());
    QString error;
    const auto json = parsed(body, error);
    if (!json) {
        return u"%1: answer %2 is %3"_s.arg(request.text(), QString::number(status), error);
    }
    SchemaCheck walk(doc.root, allowed, request, true, undeclaredValues);
    walk.run(*json, schema, {});
    if (walk.problems.isEmpty()) {
        return std::nullopt;
    }
    return u"%1: answer %2: %3"_s.arg(request.text(), QString::number(status), walk.problems.join(u"; "_s));
}

} // namespace OpenApiContract
