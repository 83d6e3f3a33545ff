// One call of the API client from the answers of a server: status, headers and body of each
// answer, including the `next` links of a list that the client follows on its own. The first
// byte picks the call; the answers follow, separated by the byte 0x1E. An answer starts with a
// byte for its status, then header lines "Name: value" and an empty line, then the body.
//
// A call ends in its value or in VelmoraAPIError, never in another exception and never hangs;
// the token goes only to https hosts; a list has at most the pages its endpoint allows.

#include "FuzzSupport.h"

#include "api/AppStoreConnectClient.h"
#include "api/AuditLog.h"
#include "api/AuthenticationService.h"
#include "api/PipelineStages.h"
#include "api/RateLimitGovernor.h"
#include "api/TruncationRegistry.h"
#include "platform/Clock.h"
#include "release/ReleaseEndpoints.h"
#include "support/AwaitTask.h"
#include "workspace/AppsEndpoints.h"

#include <QFile>

#include <openssl/evp.h>
#include <openssl/pem.h>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace {

constexpr int maxPages = 3;

class ScriptedTransport final : public HttpTransport {
public:
    explicit ScriptedTransport(QList<HttpResponse> answers) : m_answers(std::move(answers)) {}

    QCoro::Task<HttpResponse> send(HttpRequest request) override {
        m_requests.append(request);
        // The last answer repeats, as a server that keeps saying the same.
        const qsizetype index = std::min(m_next++, m_answers.size() - 1);
        co_return m_answers.at(index);
    }

    const QList<HttpRequest>& requests() const { return m_requests; }

private:
    QList<HttpResponse> m_answers;
    QList<HttpRequest> m_requests;
    qsizetype m_next = 0;
};

HttpResponse answerFrom(const QByteArray& text) {
    static constexpr std::array<int, 16> statuses{200, 200, 200, 201, 204, 400, 401, 403,
                                                  404, 409, 422, 429, 500, 502, 503, 302};
    HttpResponse response;
    response.status = text.isEmpty() ? 200 : statuses[quint8(text[0]) % statuses.size()];
    QByteArray rest = text.mid(1);
    // Headers only where an empty line ends them; otherwise all of it is the body.
    const qsizetype blank = rest.indexOf("\n\n");
    if (blank >= 0) {
        for (const QByteArray& line : rest.left(blank).split('\n')) {
            const qsizetype colon = line.indexOf(':');
            if (colon > 0) {
                response.headers.append({line.left(colon).trimmed(), line.mid(colon + 1).trimmed()});
            }
        }
        rest.remove(0, blank + 2);
    }
    response.body = rest;
    return response;
}

QList<HttpResponse> answersFrom(const QByteArray& input) {
    QList<HttpResponse> answers;
    for (const QByteArray& part : input.split('\x1e')) {
        answers.append(answerFrom(part));
        if (answers.size() == 8) {
            break;
        }
    }
    return answers;
}

// A P-256 key made at start, so that the token stage signs as it does for a user.
QByteArray freshKey() {
    EVP_PKEY* key = EVP_EC_gen("P-256");
    BIO* bio = BIO_new(BIO_s_mem());
    Fuzz::check(key && bio && PEM_write_bio_PrivateKey(bio, key, nullptr, nullptr, 0, nullptr, nullptr) == 1,
                "no key for the token");
    char* data = nullptr;
    const long length = BIO_get_mem_data(bio, &data);
    QByteArray pem(data, qsizetype(length));
    BIO_free(bio);
    EVP_PKEY_free(key);
    return pem;
}

void checkRequests(const ScriptedTransport& transport) {
    for (const HttpRequest& request : transport.requests()) {
        const bool carriesToken = std::any_of(request.headers.cbegin(), request.headers.cend(),
                                              [](const auto& h) { return h.first == "Authorization"; });
        Fuzz::check(request.url.isValid() && !request.url.host().isEmpty(), "a request without a host");
        Fuzz::check(!carriesToken || request.url.scheme() == u"https"_s, "the token leaves over plain text");
    }
}

template <class A>
void run(AppStoreConnectClient& client, Endpoint<A> endpoint, ScriptedTransport& transport) {
    try {
        if constexpr (std::is_void_v<typename A::Value>) {
            VarnisTest::awaitTask(client.call(std::move(endpoint)), std::chrono::seconds(5));
        } else {
            const auto value =
                VarnisTest::awaitTask(client.call(std::move(endpoint)), std::chrono::seconds(5));
            if constexpr (EndpointReturns::isAllPages<A>) {
                (void)value.truncated;
                Fuzz::check(transport.requests().size() <= maxPages * RetryStage::maxAttempts,
                            "more pages fetched than the endpoint allows");
            }
        }
    } catch (const VelmoraAPIError& error) {
        const QString text = error.errorDescription();
        Fuzz::check(!text.trimmed().isEmpty(), "an error without words");
    } catch (const VarnisTest::TaskTimedOut&) {
        Fuzz::fail("a call never ends");
    }
    checkRequests(transport);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    Fuzz::startApplication();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1) {
        return 0;
    }
    static const QDateTime start(QDate(2026, 1, 15), QTime(10, 0), Qt::UTC);
    static const auto clock = [] {
        auto made = std::make_shared<ManualClock>(start);
        made->setAutoAdvance(true);
        return made;
    }();
    static const auto auth = std::make_shared<AuthenticationService>(
        u"ABCDE12345"_s, u"57246542-96fe-1a63-e053-0824d011072a"_s, freshKey());
    static const QString logPath = Fuzz::scratchDirectory() + u"/client-log.json"_s;
    clock->setNow(start);
    QFile::remove(logPath);

    const quint8 selector = data[0];
    auto transport = std::make_shared<ScriptedTransport>(answersFrom(Fuzz::bytes(data + 1, size - 1)));
    AppStoreConnectClient::Parts parts;
    parts.clock = clock;
    parts.transport = transport;
    parts.apiRoot = QUrl(u"https://api.example.test"_s);
    parts.auth = auth;
    parts.accountName = u"Fuzz"_s;
    parts.auditLog = std::make_shared<AuditLog>(logPath);
    parts.governor = std::make_shared<RateLimitGovernor>(clock);
    parts.truncationRegistry = std::make_shared<TruncationRegistry>();
    const auto client = AppStoreConnectClient::create(std::move(parts));

    const RequestPriority priority =
        selector & 0x80 ? RequestPriority::Background : RequestPriority::Interactive;
    switch (selector % 4) {
    case 0:
        run(*client, AppsEndpoints::apps(2, maxPages).withPriority(priority), *transport);
        break;
    case 1:
        run(*client, ReleaseEndpoints::buildOfVersion(u"v/1"_s).withPriority(priority), *transport);
        break;
    case 2:
        run(*client, ReleaseEndpoints::submissionsOfApp(u"1"_s, 10).withPriority(priority), *transport);
        break;
    default:
        run(*client, ReleaseEndpoints::deleteVersion(u"1"_s), *transport);
        break;
    }
    return 0;
}
