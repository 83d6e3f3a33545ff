#pragma once

#include "platform/DataPaths.h"

#include <QUrl>

#include <memory>

class Clock;
class HttpTransport;
class SecretStore;
class UrlOpener;

// The seams to the operating system, handed to AppState and from there to everything that needs
// time, the network, secrets or files. Tests build one from fakes.
struct Platform {
    std::shared_ptr<Clock> clock;
    std::shared_ptr<HttpTransport> transport;
    std::shared_ptr<SecretStore> secrets;
    // Absent where nothing may be opened (the command line, headless tests).
    std::shared_ptr<UrlOpener> urlOpener;
    DataPaths paths = DataPaths::standard();
    QUrl apiRoot = defaultApiRoot();

    // The real clock, HTTP stack, keychain and desktop; the API root from VARNIS_API_ROOT if set.
    static Platform standard();
    static QUrl defaultApiRoot();

    static constexpr const char* keychainService = "com.tolsenmark.Velmora.apiKeys";
};
