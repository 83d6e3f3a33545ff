#pragma once

#include "platform/HttpTransport.h"
#include "support/RouteTable.h"

#include <QStringList>

#include <coroutine>
#include <optional>

// HttpTransport without a network: scripted answers by method and path, every request
// recorded. Unscripted requests get Apple's 404 error document.
//
// Every request to an API path ("/v<digits>/...", on any host, so also `next` links) is checked
// against Apple's OpenAPI document (OpenApiContract): method, path, query parameter names and
// body; so is every successful JSON answer scripted for it, since that is what the decoders
// are tested on. A violation is printed with qWarning, recorded in violations(), and fails the
// running test function at once (QTest::qFail), so that it cannot be overlooked. Tests that
// send bad requests on purpose use setContractMode(ContractMode::Record) and look at
// violations(); an answer that breaks the document on purpose says so itself
// (Answer::withUndeclaredValues, Answer::breakingContract).
class FakeTransport final : public HttpTransport {
public:
    // One scripted outcome: a response, or a TransportError with `transportError` as its text.
    struct Answer {
        HttpResponse response;
        std::optional<QString> transportError;
        bool isOffline = false;

        // Raw values that this answer carries on purpose where the document declares an
        // enumeration, to see the client keep a raw text it does not know.
        QStringList undeclaredValues;
        // Why this answer breaks the document on purpose (a success that no decoder can read);
        // such an answer is not checked at all.
        QString contractBreach;

        static Answer json(int status, QByteArray body, QList<QPair<QByteArray, QByteArray>> headers = {});
        static Answer error(QString description);
        // A TransportError that says the machine has no network.
        static Answer offline(QString description);

        Answer withUndeclaredValues(QStringList values) const;
        Answer breakingContract(QString why) const;
    };
    using Handler = std::function<Answer(const HttpRequest&)>;

    enum class ContractMode { Fail, Record, Off };

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

    void setContractMode(ContractMode mode) { m_contractMode = mode; }
    const QStringList& violations() const { return m_violations; }
    void clearViolations() { m_violations.clear(); }

private:
    struct HoldAwaiter {
        FakeTransport* transport;
        bool await_ready() const noexcept { return false; }
        void await_suspend(std::coroutine_handle<> handle) { transport->m_held.append(handle); }
        void await_resume() const noexcept {}
    };

    void checkContract(const HttpRequest& request);
    void checkContract(const HttpRequest& request, const Answer& answer);
    void reportViolation(const QString& violation);
    Answer answer(const HttpRequest& request) const;

    RouteTable<HttpRequest, Answer> m_routes;
    QList<HttpRequest> m_requests;
    QList<std::coroutine_handle<>> m_held;
    QStringList m_violations;
    ContractMode m_contractMode = ContractMode::Fail;
    bool m_holding = false;
};

// In a test function: fails with the list of contract violations that `transport` saw.
#define VARNIS_VERIFY_CONTRACT(transport)                                                                    \
    QVERIFY2((transport).violations().isEmpty(), qPrintable((transport).violations().join(QLatin1Char('\n'))))
