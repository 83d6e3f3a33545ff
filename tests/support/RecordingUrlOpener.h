#pragma once

#include "platform/UrlOpener.h"

#include <QList>

// Remembers what would have opened; `succeeds` decides what the system answers.
class RecordingUrlOpener final : public UrlOpener {
public:
    bool open(const QUrl& url) override {
        opened.append(url);
        return succeeds;
    }

    QList<QUrl> opened;
    bool succeeds = true;
};
