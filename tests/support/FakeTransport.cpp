#include "support/FakeTransport.h"

#include "support/OpenApiContract.h"

#include <QRegularExpression>
#include <QTest>
#include <QUrlQuery>
#include <QtDebug>

using namespace Qt::StringLiterals;

FakeTransport::Answer FakeTransport::Answer::json(int status, QByteArray body,
                                                  QList<QPair<QByteArray, QByteArray>> headers) {
    const bool typed = std::any_of(headers.cbegin(), headers.cend(), [](const auto& header) {
        return header.first.compare("Content-Type", Qt::CaseInsensitive) == 0;
    });
    if (!typed) {
        headers.append(qMakePair(QByteArray("Content-Type"), QByteArray("application/json")));
    }
    Answer result;
    result.response.status = status;
    result.response.headers = std::move(headers);
    result.response.body = std::move(body);
    return result;
}

FakeTransport::Answer FakeTransport::Answer::error(QString description) {
    Answer result;
    result.transportError = std::move(description);
    return result;
}

FakeTransport::Answer FakeTransport::Answer::offline(QString description) {
    Answer result = error(std::move(description));
    result.isOffline = true;
    return result;
}

FakeTransport::Answer FakeTransport::Answer::withUndeclaredValues(QStringList values) const {
    Answer result = *this;
    result.undeclaredValues = std::move(values);
    return result;
}

FakeTransport::Answer FakeTransport::Answer::breakingContract(QString why) const {
    Q_ASSERT(!why.isEmpty());
    Answer result = *this;
    result.contractBreach = std::move(why);
    return result;
}

FakeTransport::~FakeTransport() {
    if (!m_held.isEmpty()) {
        // Resuming them now could run code of objects that are already gone; they stay suspended.
        qWarning("FakeTransport destroyed with %d held request(s) that were never released", heldCount());
    }
}

QCoro::Task<HttpResponse> FakeTransport::send(HttpRequest request) {
    m_requests.append(request);
    checkContract(request);
    if (m_holding) {
        co_await HoldAwaiter{this};
    }
    const Answer result = answer(request);
    checkContract(request, result);
    if (result.transportError) {
        throw TransportError(*result.transportError, result.isOffline);
    }
    co_return result.response;
}

void FakeTransport::script(const QByteArray& method, const QString& path, QList<Answer> answers,
                           RouteMatch match) {
    m_routes.addSequence(method, path, match, std::move(answers));
}

void FakeTransport::route(const QByteArray& method, const QString& path, Handler handler, RouteMatch match) {
    m_routes.add(method, path, match, std::move(handler));
}

void FakeTransport::failWith(const QByteArray& method, const QString& path, const QString& description,
                             RouteMatch match) {
    script(method, path, {Answer::error(description)}, match);
}

void FakeTransport::releaseHeld() {
    // Taken first: a resumed caller may send (and be held) again.
    const QList<std::coroutine_handle<>> held = std::exchange(m_held, {});
    for (const auto handle : held) {
        handle.resume();
    }
}

QList<HttpRequest> FakeTransport::requestsTo(const QByteArray& method, const QString& path) const {
    QList<HttpRequest> result;
    for (const HttpRequest& request : m_requests) {
        if (request.method.compare(method, Qt::CaseInsensitive) == 0 && request.url.path() == path) {
            result.append(request);
        }
    }
    return result;
}

FakeTransport::Answer FakeTransport::answer(const HttpRequest& request) const {
    if (const auto handler = m_routes.find(request.method, request.url.path())) {
        return (*handler)(request);
    }
    return Answer::json(404, appleNotFoundBody());
}

namespace {

// Only API calls; uploads and presigned downloads go to other paths.
bool isApiCall(const HttpRequest& request) {
    static const QRegularExpression apiPath(u"^/v\\d+/"_s);
    return apiPath.match(request.url.path(QUrl::FullyEncoded)).hasMatch();
}

bool isJson(const HttpResponse& response) {
    return std::any_of(response.headers.cbegin(), response.headers.cend(), [](const auto& header) {
        return header.first.compare("Content-Type", Qt::CaseInsensitive) == 0 &&
               header.second.toLower().contains("json");
    });
}

} // namespace

void FakeTransport::checkContract(const HttpRequest& request) {
    if (m_contractMode == ContractMode::Off || !isApiCall(request)) {
        return;
    }
    const QString method = QString::fromLatin1(request.method);
    const QString path = request.url.path(QUrl::FullyEncoded);
    QStringList names;
    const auto items = QUrlQuery(request.url).queryItems(QUrl::FullyDecoded);
    for (const auto& item : items) {
        names.append(item.first);
    }
    // A body is only worth checking once the operation is known.
    auto violation = OpenApiContract::check(method, path, names);
    if (!violation) {
        violation = OpenApiContract::checkBody(method, path, request.body);
    }
    if (violation) {
        reportViolation(*violation);
    }
}

void FakeTransport::checkContract(const HttpRequest& request, const Answer& answer) {
    if (m_contractMode == ContractMode::Off || answer.transportError || !answer.contractBreach.isEmpty() ||
        !isApiCall(request) || !isJson(answer.response)) {
        return;
    }
    const auto violation = OpenApiContract::checkAnswer(
        QString::fromLatin1(request.method), request.url.path(QUrl::FullyEncoded), answer.response.status,
        answer.response.body, answer.undeclaredValues);
    if (violation) {
        reportViolation(*violation);
    }
}

void FakeTransport::reportViolation(const QString& violation) {
    m_violations.append(violation);
    const QByteArray message = "OpenAPI contract violation: " + violation.toUtf8();
    qWarning("%s", message.constData());
    if (m_contractMode == ContractMode::Fail && QTest::currentTestFunction() && !QTest::currentTestFailed()) {
        QTest::qFail(message.constData(), __FILE__, __LINE__);
    }
}
