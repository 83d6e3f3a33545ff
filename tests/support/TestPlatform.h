#pragma once

#include "platform/Clock.h"
#include "platform/Platform.h"
#include "support/FakeTransport.h"
#include "support/MemorySecretStore.h"
#include "support/RecordingUrlOpener.h"

#include <QSettings>
#include <QTemporaryDir>

#include <memory>

// The seams of a test: virtual time, a scripted transport, secrets in memory, and files and
// preferences in a temporary folder.
struct TestPlatform {
    QTemporaryDir dir;
    std::shared_ptr<ManualClock> clock = std::make_shared<ManualClock>();
    std::shared_ptr<FakeTransport> transport = std::make_shared<FakeTransport>();
    std::shared_ptr<MemorySecretStore> secrets = std::make_shared<MemorySecretStore>();
    std::shared_ptr<RecordingUrlOpener> urlOpener = std::make_shared<RecordingUrlOpener>();
    std::shared_ptr<QSettings> settings =
        std::make_shared<QSettings>(dir.filePath(QStringLiteral("settings.ini")), QSettings::IniFormat);

    QString dataRoot() const { return dir.filePath(QStringLiteral("data")); }

    Platform platform() const {
        Platform p;
        p.clock = clock;
        p.transport = transport;
        p.secrets = secrets;
        p.urlOpener = urlOpener;
        p.paths = DataPaths::at(dataRoot());
        p.apiRoot = QUrl(QStringLiteral("https://api.example.test"));
        return p;
    }
};
