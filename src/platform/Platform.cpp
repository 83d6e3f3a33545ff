#include "platform/Platform.h"

#include "platform/Clock.h"
#include "platform/KeychainSecretStore.h"
#include "platform/QtHttpTransport.h"
#include "platform/UrlOpener.h"

using namespace Qt::StringLiterals;

QUrl Platform::defaultApiRoot() {
    const QString fromEnv = qEnvironmentVariable("VARNIS_API_ROOT").trimmed();
    if (!fromEnv.isEmpty()) {
        return QUrl(fromEnv);
    }
    return QUrl(u"https://api.appstoreconnect.apple.com"_s);
}

Platform Platform::standard() {
    Platform platform;
    platform.clock = std::make_shared<SystemClock>();
    platform.transport = std::make_shared<QtHttpTransport>(platform.clock);
    platform.secrets = std::make_shared<KeychainSecretStore>(QString::fromLatin1(keychainService));
    platform.urlOpener = std::make_shared<DesktopUrlOpener>();
    return platform;
}
