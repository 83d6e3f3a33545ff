// The disk cache's files: the last app list, versions and builds of an app. The first byte picks
// the list, the rest is the file. A damaged file is no list; a list that was read must read back
// unchanged once the cache writes it again.

#include "FuzzSupport.h"

#include "api/DiskCache.h"
#include "platform/Clock.h"
#include "release/VelmoraVersion.h"
#include "testflight/ManagedBuild.h"
#include "workspace/ManagedApp.h"

#include <QDir>
#include <QFile>

using namespace Qt::StringLiterals;

namespace {

template <class T> QJsonArray storedForm(const QList<T>& values) {
    QJsonArray array;
    for (const auto& value : values) {
        array.append(value.toJson());
    }
    return array;
}

template <class T> void readList(DiskCache& cache, const QString& key) {
    const auto cached = cache.loadList<T>(key);
    if (!cached) {
        return;
    }
    (void)cache.ageDescription(cached->storedAt);
    cache.storeList(key, cached->value);
    const auto again = cache.loadList<T>(key);
    Fuzz::check(again.has_value(), "a list the cache wrote does not read back");
    Fuzz::check(storedForm(again->value) == storedForm(cached->value), "a cached list reads back changed");
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    Fuzz::startApplication();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1) {
        return 0;
    }
    static DiskCache cache(Fuzz::scratchDirectory() + u"/Daten"_s, std::make_shared<ManualClock>());
    static const bool made = QDir().mkpath(cache.directory());
    Fuzz::check(made, "cannot make the cache folder");
    const QString key = u"apps:1"_s;
    {
        QFile file(cache.fileForKey(key));
        Fuzz::check(file.open(QIODevice::WriteOnly | QIODevice::Truncate), "cannot write the scratch file");
        file.write(Fuzz::bytes(data + 1, size - 1));
    }
    if (const auto cached = cache.loadJson(key)) {
        (void)cache.ageDescription(cached->storedAt);
    }
    switch (data[0] % 3) {
    case 0:
        readList<ManagedApp>(cache, key);
        break;
    case 1:
        readList<VelmoraVersion>(cache, key);
        break;
    default:
        readList<ManagedBuild>(cache, key);
        break;
    }
    return 0;
}
