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

    // How long a request keeps trying while the machine has no network (seconds).
    void setConnectivityWindow(double seconds) { m_connectivityWindow = seconds; }

    static QNetworkAccessManager* sharedManager();

private:
    std::shared_ptr<Clock> m_clock;
    double m_connectivityWindow = 300;
};
