#include "platform/UrlOpener.h"

#include <QDesktopServices>

bool DesktopUrlOpener::open(const QUrl& url) {
    return QDesktopServices::openUrl(url);
}
