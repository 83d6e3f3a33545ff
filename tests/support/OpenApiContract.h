#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

// Checks requests, their bodies and the answers that tests make up against Apple's OpenAPI
// description of the App Store Connect API (VARNIS_OPENAPI_PATH). The document is loaded and
// indexed once per process, on first use. On a checkout without it every check passes.
namespace OpenApiContract {

// One known difference between the wire and the document, or a leeway the client needs on
// purpose. Each entry of the allowlist says why; what Apple added after the document names the
// API version that brought it.
//
// Members are named by the type of the resource they belong to and their path inside it,
// without list positions: "attributes.reviewType", "relationships.app.data". Outside any
// resource (the top of a document) the resource type is empty and the path starts at the top:
// "data". A "*" in a path stands for any text.
struct Allowance {
    enum class Kind {
        Operation,      // `method` on `path` is served but not described; nothing of it is checked
        QueryParameter, // the query parameter `name` of `method` on `path`
        Member,         // the undeclared member `name` of resources of `resourceType`
        Value,          // `value` for the enumerated member `name` of resources of `resourceType`
        NullText,       // in request bodies: JSON null for a member `name` that is declared as text
        Null,           // in bodies and answers: JSON null for a member `name`, whatever it declares
    };
    Kind kind = Kind::Operation;
    QString method = {};       // "GET"; empty: any
    QString path = {};         // a path template, "/v1/apps/{id}/builds"; empty: any
    QString resourceType = {}; // "appStoreVersions"; "*": any, also none; empty: outside any resource
    QString name = {};         // query parameter or member path
    QString value = {};        // for Kind::Value
    QString reason = {};
};

// The allowlist of the project (see OpenApiContract.cpp).
const QList<Allowance>& allowlist();

// True when the document was found and loaded.
bool isAvailable();

// Each check gives nothing when the document (or `allowed`) accepts what it is given, and
// otherwise a description of every violation found.

// `method` on `path` (a concrete path like "/v1/apps/123/appStoreVersions", without query) with
// the query parameter names `queryNames`.
std::optional<QString> check(const QString& method, const QString& path, const QStringList& queryNames,
                             const QList<Allowance>& allowed = allowlist());

// The body of a request against the operation's request schema: resource type, attribute
// names, their JSON types and enumerations, relationships and the members it requires. An
// operation the document does not know is the business of check().
std::optional<QString> checkBody(const QString& method, const QString& path, const QByteArray& body,
                                 const QList<Allowance>& allowed = allowlist());

// A successful answer that a test makes up for `method` on `path`, against the schema the
// operation declares for `status`: resource types, attribute names, their JSON types and
// enumerations, in `data` and `included`. `undeclaredValues` are raw values that the answer
// carries on purpose where an enumeration is declared, to exercise how the client keeps a raw
// text it does not know. Members that only the document's answers require (links, paging) may
// be left out; resources need their `type` and `id`.
std::optional<QString> checkAnswer(const QString& method, const QString& path, int status,
                                   const QByteArray& body, const QStringList& undeclaredValues = {},
                                   const QList<Allowance>& allowed = allowlist());

} // namespace OpenApiContract
