// velmora:// links, which reach the program from the desktop, a browser, a notification or a
// second start. A link is read the way the window reads a handed-over message; what it names
// must lead to a link that names the same again.

#include "FuzzSupport.h"

#include "workspace/VelmoraURL.h"

#include <QUrl>

using namespace Qt::StringLiterals;

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    Fuzz::startApplication();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QString message = QString::fromUtf8(Fuzz::bytes(data, size));
    for (const QUrl& url : {QUrl(message), QUrl(message, QUrl::StrictMode)}) {
        const auto destination = VelmoraURL::destination(url);
        if (!destination) {
            continue;
        }
        Fuzz::check(!destination->appID.isEmpty(), "a link names an app without an id");
        const QUrl again = VelmoraURL::url(destination->appID, destination->section);
        Fuzz::check(again.isValid(), "the link of a destination is not valid");
        // The window passes links on as text, from one instance to the other.
        const auto reread = VelmoraURL::destination(QUrl(again.toString()));
        Fuzz::check(reread.has_value(), "the link of a destination names nothing");
        Fuzz::check(*reread == *destination, "the link of a destination names another one");
    }
    return 0;
}
