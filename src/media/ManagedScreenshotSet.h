#pragma once

#include <QString>

// A group of screenshots of one display type within one version localization.
struct ManagedScreenshotSet {
    QString id;
    QString displayType; // Apple's raw display type, e.g. "APP_IPHONE_67"
    friend bool operator==(const ManagedScreenshotSet&, const ManagedScreenshotSet&) = default;
};
