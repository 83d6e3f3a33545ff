#include "support/FakeTransport.h"

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
    result.contract.undeclaredValues = std::move(values);
    return result;
}

FakeTransport::Answer FakeTransport::Answer::breakingContract(QString why) const {
    Q_ASSERT(!why.isEmpty());
    Answer result = *this;
    result.contract.breach = std::move(why);
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
    QStringList queryNames;
    const auto items = QUrlQuery(request.url).queryItems(QUrl::FullyDecoded);
    for (const auto& item : items) {
        queryNames.append(item.first);
    }
    m_contract.request(request.method, request.url.path(QUrl::FullyEncoded), queryNames, request.body);
    if (m_holding) {
        co_await HoldAwaiter{this};
    }
    const Answer result = answer(request);
    if (result.transportError) {
        throw TransportError(*result.transportError, result.isOffline);
    }
    m_contract.answer(request.method, request.url.path(QUrl::FullyEncoded), result.response.status,
                      result.response.headers, result.response.body, result.contract);
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
