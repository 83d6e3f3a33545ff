#pragma once

#include "platform/HttpTransport.h"

#include <memory>

class Clock;
class QNetworkAccessManager;

// HTTP over Qt's network stack. One QNetworkAccessManager serves the whole process, so that
// connections (and HTTP/2 sessions) are reused across the short-lived API clients.
class QtHttpTransport final : public HttpTransport {
public:
    explicit QtHttpTransport(std::shared_ptr<Clock> clock);

    QCoro::Task<HttpResponse> send(HttpRequest request) override;

    static QNetworkAccessManager* sharedManager();

private:
    std::shared_ptr<Clock> m_clock;
};
