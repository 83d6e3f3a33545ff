#pragma once

#include "wire/APIRequest.h"
#include "wire/JSONAPI.h"

#include <QStringView>

#include <initializer_list>
#include <optional>

// Where a file endpoint's answer went.
struct SavedFile {
    QString path;
    qint64 bytes = 0;
};

template <class T> struct PagedResult {
    QList<T> items;
    bool truncated = false;
};

// What an endpoint answers, and so how the client decodes it.
namespace Returns {

// The body written into a file as it arrives (AppStoreConnectClient::download).
struct File {
    using Value = SavedFile;
};
// No body that matters (204, or a write whose answer nobody reads).
struct Nothing {
    using Value = void;
};
// The bytes as they came.
struct Bytes {
    using Value = QByteArray;
};
// One resource.
template <class Attributes> struct One { using Value = JSONAPIResource<Attributes>; };
// One resource, or `data: null`.
template <class Attributes> struct MaybeOne { using Value = std::optional<JSONAPIResource<Attributes>>; };
// One page of a list, with its links.
template <class Attributes> struct Page { using Value = APIResponse<QList<JSONAPIResource<Attributes>>>; };
// Every page up to the endpoint's page limit; says whether the list was cut off.
template <class Attributes> struct AllPages { using Value = PagedResult<JSONAPIResource<Attributes>>; };

} // namespace Returns

// How the client turns an answer's bytes into its value.
namespace EndpointReturns {

template <class A> constexpr bool isAllPages = false;
template <class Attributes> constexpr bool isAllPages<Returns::AllPages<Attributes>> = true;

template <class A> struct Decoder;
template <> struct Decoder<Returns::Bytes> {
    static QByteArray decode(const QByteArray& body) { return body; }
};
template <class Attributes> struct Decoder<Returns::One<Attributes>> {
    static auto decode(const QByteArray& body) {
        return JSONAPIDecode::single<JSONAPIResource<Attributes>>(body);
    }
};
template <class Attributes> struct Decoder<Returns::MaybeOne<Attributes>> {
    static auto decode(const QByteArray& body) {
        return JSONAPIDecode::singleOptional<JSONAPIResource<Attributes>>(body);
    }
};
template <class Attributes> struct Decoder<Returns::Page<Attributes>> {
    static auto decode(const QByteArray& body) {
        return JSONAPIDecode::list<JSONAPIResource<Attributes>>(body);
    }
};

} // namespace EndpointReturns

// A path under the API root from its segments, each percent-encoded on its own, so that an id
// holding "/", "?", "%" or a blank stays one segment: apiPath({u"v1", u"apps", appID}).
QString apiPath(std::initializer_list<QStringView> segments);

// One request of the API as a value: verb, path, query and body, and in its type what the
// answer is. Services name one of these for every call; the client sends it.
template <class A> struct Endpoint {
    using Returns = A;
    APIRequest request;
    // For Returns::AllPages: how many pages at most.
    int maxPages = 1;

    // A request made elsewhere, such as a `next` link or a test's own.
    static Endpoint of(APIRequest request, int maxPages = 1) {
        Endpoint endpoint;
        endpoint.request = std::move(request);
        endpoint.maxPages = maxPages;
        return endpoint;
    }
    static Endpoint get(QString path, QList<QueryItem> query = {}, int maxPages = 1) {
        Endpoint endpoint;
        endpoint.request = APIRequest::get(std::move(path), std::move(query));
        endpoint.maxPages = maxPages;
        return endpoint;
    }
    static Endpoint post(QString path, QByteArray body) {
        return withBody(APIRequest::Method::Post, std::move(path), std::move(body));
    }
    static Endpoint patch(QString path, QByteArray body) {
        return withBody(APIRequest::Method::Patch, std::move(path), std::move(body));
    }
    static Endpoint remove(QString path) {
        Endpoint endpoint;
        endpoint.request.method = APIRequest::Method::Delete;
        endpoint.request.path = std::move(path);
        return endpoint;
    }

    Endpoint withPriority(RequestPriority priority) && {
        request.priority = priority;
        return std::move(*this);
    }
    // For endpoints that answer in a type of their own (see MediaTypes.h).
    Endpoint withAccept(QByteArrayView mediaType) && {
        request.accept = mediaType.toByteArray();
        return std::move(*this);
    }

private:
    static Endpoint withBody(APIRequest::Method method, QString path, QByteArray body) {
        Endpoint endpoint;
        endpoint.request = APIRequest::withBody(method, std::move(path), std::move(body));
        return endpoint;
    }
};
