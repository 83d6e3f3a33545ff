#pragma once

#include "workspace/SidebarSection.h"

#include <QString>
#include <QUrl>

#include <optional>

// Links of the form velmora://app/<app id>/<section raw value>, which open an app (and a section)
// from outside: from the desktop, a browser, a notification or a second start of the program.
namespace VelmoraURL {

struct Destination {
    QString appID;
    std::optional<SidebarSection> section;
    friend bool operator==(const Destination&, const Destination&) = default;
};

// The app and section a link names, or none when it is not one of our links. Scheme and host are
// compared without regard to case; the path is taken as written. An unknown section is no error:
// the link still opens the app.
std::optional<Destination> destination(const QUrl& url);

// The link that destination() reads back as `appID` and `section`.
QUrl url(const QString& appID, std::optional<SidebarSection> section = std::nullopt);

} // namespace VelmoraURL
