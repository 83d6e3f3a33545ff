#pragma once

#include "platform/DataPaths.h"

#include <QUrl>

#include <memory>

class Clock;
class HttpTransport;
class SecretStore;

// The seams to the operating system, handed to AppState and from there to everything that needs
// time, the network, secrets or files. Tests build one from fakes.
struct Platform {
    std::shared_ptr<Clock> clock;
    std::shared_ptr<HttpTransport> transport;
    std::shared_ptr<SecretStore> secrets;
    DataPaths paths = DataPaths::standard();
    QUrl apiRoot = defaultApiRoot();

    // The real clock, HTTP stack and keychain; the API root from VARNIS_API_ROOT if set.
    static Platform standard();
    static QUrl defaultApiRoot();

    static constexpr const char* keychainService = "com.tolsenmark.Velmora.apiKeys";
};
