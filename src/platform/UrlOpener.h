#pragma once

#include <QUrl>

// Hands an address or a local file to the program the user has chosen for it (browser, text
// viewer). Behind a seam so that tests see what would have opened without starting anything.
class UrlOpener {
public:
    virtual ~UrlOpener() = default;
    // False when the system has no program for it or refused to start one.
    virtual bool open(const QUrl& url) = 0;
};

// The desktop's default handlers.
class DesktopUrlOpener final : public UrlOpener {
public:
    bool open(const QUrl& url) override;
};
