// The preferences file (favourites, recent apps, background settings, saved filters and where the
// windows were left), in the INI form the settings of the program are stored in.

#include "FuzzSupport.h"

#include "workspace/AppPreferencesStore.h"
#include "workspace/SidebarSection.h"

#include <QDateTime>
#include <QFile>
#include <QSettings>

using namespace Qt::StringLiterals;

// Qt's INI reader takes the lengths inside a "@Variant(...)" value at their word and asks for that
// much memory at once (15 GB for a damaged pen). Without sanitizers the request fails or stays
// untouched address space, and Qt drops the value; here too, instead of a report about Qt.
extern "C" const char* __asan_default_options() {
    return "allocator_may_return_null=1:max_allocation_size_mb=2048";
}

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    Fuzz::startApplication();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // QSettings keeps a file it has read and reads it again only when its size or time changed:
    // every input gets a time of its own. One name for all keeps that cache from growing.
    static const QString path = Fuzz::scratchDirectory() + u"/settings.ini"_s;
    static QDateTime stamp(QDate(2020, 1, 1), QTime(0, 0), Qt::UTC);
    stamp = stamp.addSecs(1);
    {
        QFile file(path);
        Fuzz::check(file.open(QIODevice::WriteOnly | QIODevice::Truncate), "cannot write the scratch file");
        file.write(Fuzz::bytes(data, size));
        file.flush();
        file.setFileTime(stamp, QFileDevice::FileModificationTime);
    }
    {
        auto settings = std::make_shared<QSettings>(path, QSettings::IniFormat);
        const AppPreferencesStore store(settings);
        Fuzz::check(store.backgroundRefreshMinutes() >= 15, "a refresh interval under 15 minutes");
        (void)store.favoriteAppIDs();
        (void)store.recentAppIDs();
        (void)store.savedFilter(u"apps"_s);
        (void)SidebarSections::fromRaw(store.sceneText(u"velmora.main.section"_s, u"overview"_s));
        (void)store.sceneText(u"velmora.main.appID"_s, QString());
    }
    return 0;
}
