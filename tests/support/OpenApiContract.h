#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

// Checks requests against Apple's OpenAPI description of the App Store Connect API
// (VARNIS_OPENAPI_PATH). The document is loaded once per process, on first use. On a checkout
// without it every check passes.
namespace OpenApiContract {

// An endpoint, or one query parameter of an endpoint, that Apple serves but the document does
// not describe yet.
struct AllowedEndpoint {
    QString method;       // "GET"
    QString pathTemplate; // "/v1/apps/{id}/someNewRelationship"
    QString queryName;    // empty: the whole operation, with any query
};

// The allowlist of the project (see OpenApiContract.cpp).
const QList<AllowedEndpoint>& allowlist();

// True when the document was found and loaded.
bool isAvailable();

// Nothing when `method` on `path` (a concrete path like "/v1/apps/123/appStoreVersions", without
// query) with the query parameter names `queryNames` is declared by the document or allowlisted;
// otherwise a description of the violation.
std::optional<QString> check(const QString& method, const QString& path, const QStringList& queryNames);

// The same against another allowlist; for testing the allowlist itself.
std::optional<QString> check(const QString& method, const QString& path, const QStringList& queryNames,
                             const QList<AllowedEndpoint>& allowlist);

} // namespace OpenApiContract
