#pragma once

#include "platform/HttpTransport.h"
#include "support/ContractCheck.h"
#include "support/RouteTable.h"

#include <QStringList>

#include <coroutine>
#include <optional>

// HttpTransport without a network: scripted answers by method and path, every request
// recorded. Unscripted requests get Apple's 404 error document.
//
// Requests and answers are checked against Apple's OpenAPI document (ContractCheck). Tests
// that send bad requests on purpose use setContractMode(ContractMode::Record) and look at
// violations(); an answer that leaves the document on purpose says so itself
// (Answer::withUndeclaredValues, Answer::breakingContract).
class FakeTransport final : public HttpTransport {
public:
    // One scripted outcome: a response, or a TransportError with `transportError` as its text.
    struct Answer {
        HttpResponse response;
        std::optional<QString> transportError;
        bool isOffline = false;

        ContractCheck::Leeway contract;

        static Answer json(int status, QByteArray body, QList<QPair<QByteArray, QByteArray>> headers = {});
        static Answer error(QString description);
        // A TransportError that says the machine has no network.
        static Answer offline(QString description);

        Answer withUndeclaredValues(QStringList values) const;
        Answer breakingContract(QString why) const;
    };
    using Handler = std::function<Answer(const HttpRequest&)>;

    using ContractMode = ContractCheck::Mode;

    FakeTransport() = default;
    ~FakeTransport() override;
    FakeTransport(const FakeTransport&) = delete;
    FakeTransport& operator=(const FakeTransport&) = delete;

    QCoro::Task<HttpResponse> send(HttpRequest request) override;

    // Answers `method` on `path` (the URL's path, query and host ignored) with `answers` in
    // order; the last one repeats. A later script for the same route replaces it.
    void script(const QByteArray& method, const QString& path, QList<Answer> answers,
                RouteMatch match = RouteMatch::Exact);
    void route(const QByteArray& method, const QString& path, Handler handler,
               RouteMatch match = RouteMatch::Exact);
    // Every request to the route raises TransportError(description).
    void failWith(const QByteArray& method, const QString& path, const QString& description,
                  RouteMatch match = RouteMatch::Exact);

    // While holding, send() suspends until releaseHeld(); the answer is chosen on release.
    void holdReplies(bool hold) { m_holding = hold; }
    // Resumes every held send(), in the order they arrived. Turning holding off does not do this.
    void releaseHeld();
    int heldCount() const { return int(m_held.size()); }

    // Every request, in the order send() was called (held ones included).
    const QList<HttpRequest>& requests() const { return m_requests; }
    int requestCount() const { return int(m_requests.size()); }
    // Requests with this method and URL path.
    QList<HttpRequest> requestsTo(const QByteArray& method, const QString& path) const;
    void clearRequests() { m_requests.clear(); }

    void setContractMode(ContractMode mode) { m_contract.setMode(mode); }
    const QStringList& violations() const { return m_contract.violations(); }

private:
    struct HoldAwaiter {
        FakeTransport* transport;
        bool await_ready() const noexcept { return false; }
        void await_suspend(std::coroutine_handle<> handle) { transport->m_held.append(handle); }
        void await_resume() const noexcept {}
    };

    Answer answer(const HttpRequest& request) const;

    RouteTable<HttpRequest, Answer> m_routes;
    QList<HttpRequest> m_requests;
    QList<std::coroutine_handle<>> m_held;
    ContractCheck m_contract;
    bool m_holding = false;
};

// In a test function: fails with the list of contract violations that `transport` saw.
#define VARNIS_VERIFY_CONTRACT(transport)                                                                    \
    QVERIFY2((transport).violations().isEmpty(), qPrintable((transport).violations().join(QLatin1Char('\n'))))
