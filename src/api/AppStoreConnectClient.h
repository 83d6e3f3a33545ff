#pragma once

#include "api/Endpoint.h"
#include "platform/HttpTransport.h"
#include "wire/APIRequest.h"
#include "wire/ASCUploadOperation.h"
#include "wire/JSONAPI.h"
#include "wire/VelmoraAPIError.h"

#include <QCoro/QCoroTask>
#include <QUrl>

#include <memory>
#include <type_traits>

class AuditLog;
class AuthenticationService;
class Clock;
class HttpTransport;
class RateLimitGovernor;
class RequestCoalescer;
class TruncationRegistry;
class WaitAnnouncer;

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
        // Who tells the user of a long wait; absent: waits pass in silence.
        std::shared_ptr<WaitAnnouncer> waitAnnouncer;
    };

    static std::shared_ptr<AppStoreConnectClient> create(Parts parts);
    ~AppStoreConnectClient();

    // Sends an endpoint's request and decodes its answer as the endpoint's type says. Identical
    // GETs in flight share one network call; every page of a list is fetched in turn.
    template <class A> QCoro::Task<typename A::Value> call(Endpoint<A> endpoint) {
        static_assert(!std::is_same_v<A, Returns::File>, "a file endpoint names its file: download()");
        auto self = shared_from_this();
        if constexpr (EndpointReturns::isAllPages<A>) {
            co_return co_await self->paged(std::move(endpoint));
        } else {
            const QByteArray body = co_await self->fetch(std::move(endpoint.request));
            if constexpr (std::is_void_v<typename A::Value>) {
                co_return;
            } else {
                co_return decoded([&] { return EndpointReturns::Decoder<A>::decode(body); });
            }
        }
    }

    // Sends a file endpoint's request like every call (token, budget, retries, Apple's errors)
    // and writes the body of its success into `target.path` as it arrives; the file appears
    // there only whole. Downloads are never merged: each names its own file.
    QCoro::Task<SavedFile> download(Endpoint<Returns::File> endpoint, DownloadTarget target);

    // A file from a presigned address Apple handed out (analytics report segments): the address
    // is its own permission, so no token goes with it, and it costs nothing of the budget.
    QCoro::Task<SavedFile> downloadPresigned(QUrl url, DownloadTarget target);

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
    HttpRequest buildRequest(const APIRequest& request) const;

    void pageListComplete(const QString& path);
    void pageListTruncated(const QString& path, int pages);

    template <class F> static auto decoded(F&& decode) -> decltype(decode()) {
        try {
            return decode();
        } catch (const DecodingError& error) {
            throw VelmoraAPIError::decoding(error.errorDescription());
        }
    }

    template <class Attributes>
    QCoro::Task<PagedResult<JSONAPIResource<Attributes>>>
    paged(Endpoint<Returns::AllPages<Attributes>> endpoint) {
        auto self = shared_from_this();
        const int maxPages = std::max(1, endpoint.maxPages);
        const APIRequest& first = endpoint.request;
        PagedResult<JSONAPIResource<Attributes>> result;
        APIRequest current = first;
        for (int pageIndex = 0;; ++pageIndex) {
            const QByteArray body = co_await self->fetch(current);
            auto page = decoded([&] { return JSONAPIDecode::list<JSONAPIResource<Attributes>>(body); });
            result.items.append(std::move(page.data));
            if (!page.links || !page.links->next) {
                self->pageListComplete(first.path);
                co_return result;
            }
            if (pageIndex == maxPages - 1) {
                self->pageListTruncated(first.path, pageIndex + 1);
                result.truncated = true;
                co_return result;
            }
            APIRequest next = APIRequest::get(*page.links->next);
            next.priority = first.priority;
            current = std::move(next);
        }
    }

    struct Private;
    std::unique_ptr<Private> d;
};
