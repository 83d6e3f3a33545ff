#pragma once

#include "wire/APIRequest.h"
#include "wire/ASCUploadOperation.h"
#include "wire/JSONAPI.h"
#include "wire/VelmoraAPIError.h"

#include <QCoro/QCoroTask>
#include <QUrl>

#include <memory>

class AuditLog;
class AuthenticationService;
class Clock;
class HttpTransport;
class RateLimitGovernor;
class RequestCoalescer;
class TruncationRegistry;

template <class T> struct PagedResult {
    QList<T> items;
    bool truncated = false;
};

// The only object that talks to the API. It is cheap and made per use; what must outlive it
// (governor, truncation registry, audit log) is handed in. Always held by shared_ptr, so that a
// call in flight keeps its client alive.
class AppStoreConnectClient : public std::enable_shared_from_this<AppStoreConnectClient> {
public:
    struct Parts {
        std::shared_ptr<Clock> clock;
        std::shared_ptr<HttpTransport> transport;
        QUrl apiRoot;
        std::shared_ptr<AuthenticationService> auth;
        QString accountName;
        // Absent for the connection test of a new account.
        std::shared_ptr<AuditLog> auditLog;
        std::shared_ptr<RateLimitGovernor> governor;
        std::shared_ptr<TruncationRegistry> truncationRegistry;
    };

    static std::shared_ptr<AppStoreConnectClient> create(Parts parts);
    ~AppStoreConnectClient();

    QCoro::Task<QByteArray> sendRawData(APIRequest request);
    QCoro::Task<> sendVoid(APIRequest request);

    // `T::fromJson(const JsonReader&)` on the whole document.
    template <class T> QCoro::Task<T> sendDecodable(APIRequest request) {
        auto self = shared_from_this();
        const QByteArray body = co_await self->fetch(std::move(request));
        co_return decoded([&] { return T::fromJson(JSONAPIDecode::documentRoot(body)); });
    }

    template <class A> QCoro::Task<APIResponse<QList<JSONAPIResource<A>>>> send(APIRequest request) {
        return sendResources<JSONAPIResource<A>>(std::move(request));
    }
    template <class A> QCoro::Task<JSONAPIResource<A>> sendSingle(APIRequest request) {
        return sendSingleResource<JSONAPIResource<A>>(std::move(request));
    }
    template <class A> QCoro::Task<std::optional<JSONAPIResource<A>>> sendSingleOptional(APIRequest request) {
        auto self = shared_from_this();
        const QByteArray body = co_await self->fetch(std::move(request));
        co_return decoded([&] { return JSONAPIDecode::singleOptional<JSONAPIResource<A>>(body); });
    }

    // A domain resource type `T` with `static T fromJson(const JsonReader&)`.
    template <class T> QCoro::Task<APIResponse<QList<T>>> sendResources(APIRequest request) {
        auto self = shared_from_this();
        const QByteArray body = co_await self->fetch(std::move(request));
        co_return decoded([&] { return JSONAPIDecode::list<T>(body); });
    }
    template <class T> QCoro::Task<T> sendSingleResource(APIRequest request) {
        auto self = shared_from_this();
        const QByteArray body = co_await self->fetch(std::move(request));
        co_return decoded([&] { return JSONAPIDecode::single<T>(body); });
    }

    // Every page, one after the other, up to `maxPages`; `truncated` says whether it stopped early.
    template <class A>
    QCoro::Task<PagedResult<JSONAPIResource<A>>> sendPagedResult(APIRequest request, int maxPages) {
        return paged<JSONAPIResource<A>>(std::move(request), maxPages, true);
    }
    template <class T> QCoro::Task<QList<T>> sendPagedResources(APIRequest request, int maxPages) {
        auto self = shared_from_this();
        auto result = co_await self->paged<T>(std::move(request), maxPages, false);
        co_return std::move(result.items);
    }

    // GET /v1/apps with limit 1; raises on failure.
    QCoro::Task<> testConnection();

    // One chunk of an upload, straight to the storage address Apple named: no token, no
    // governor, no audit entry, no retry.
    QCoro::Task<> performUploadOperation(ASCUploadOperation operation, QByteArray data);

    const QString& accountName() const;
    AuthenticationService& auth() const;
    RequestCoalescer& coalescer() const;

private:
    explicit AppStoreConnectClient(Parts parts);

    // Coalesced for GET, direct for writes; returns the body of a 2xx answer.
    QCoro::Task<QByteArray> fetch(APIRequest request);
    QCoro::Task<QByteArray> execute(APIRequest request);
    struct BuiltRequest;
    BuiltRequest buildRequest(const APIRequest& request) const;

    void pageListComplete(const QString& path, bool removeFromRegistry);
    void pageListTruncated(const QString& path, int pages);

    template <class F> static auto decoded(F&& decode) -> decltype(decode()) {
        try {
            return decode();
        } catch (const DecodingError& error) {
            throw VelmoraAPIError::decoding(error.errorDescription());
        }
    }

    template <class T>
    QCoro::Task<PagedResult<T>> paged(APIRequest request, int maxPages, bool removeWhenComplete) {
        auto self = shared_from_this();
        maxPages = std::max(1, maxPages);
        PagedResult<T> result;
        APIRequest current = request;
        for (int pageIndex = 0;; ++pageIndex) {
            const QByteArray body = co_await self->fetch(current);
            auto page = decoded([&] { return JSONAPIDecode::list<T>(body); });
            result.items.append(std::move(page.data));
            if (!page.links || !page.links->next) {
                self->pageListComplete(request.path, removeWhenComplete);
                co_return result;
            }
            if (pageIndex == maxPages - 1) {
                self->pageListTruncated(request.path, pageIndex + 1);
                result.truncated = true;
                co_return result;
            }
            APIRequest next = APIRequest::get(*page.links->next);
            next.priority = request.priority;
            current = std::move(next);
        }
    }

    struct Private;
    std::unique_ptr<Private> d;
};
