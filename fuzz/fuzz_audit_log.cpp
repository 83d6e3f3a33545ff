// The change log's file: every write that left the program. A damaged file reads as empty; a
// file it read must keep its entries when the next write is recorded.

#include "FuzzSupport.h"

#include "api/AuditLog.h"

#include <QFile>

using namespace Qt::StringLiterals;

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    Fuzz::startApplication();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const QString path = Fuzz::scratchDirectory() + u"/aenderungsprotokoll.json"_s;
    {
        QFile file(path);
        Fuzz::check(file.open(QIODevice::WriteOnly | QIODevice::Truncate), "cannot write the scratch file");
        file.write(Fuzz::bytes(data, size));
    }

    AuditLog log(path);
    QList<AuditLog::Entry> expected = log.entries();
    (void)log.exportText();

    AuditLog::Entry entry;
    entry.id = QUuid::fromString(u"0F6C1F4E-2A55-4D39-9D1E-6B8C7A0E5F21"_s);
    entry.date = QDateTime(QDate(2026, 1, 15), QTime(10, 0, 0, 250), Qt::UTC);
    entry.method = u"PATCH"_s;
    entry.path = u"/v1/appStoreVersions/1"_s;
    entry.statusCode = 200;
    log.record(entry);

    expected.prepend(entry);
    if (expected.size() > AuditLog::maxEntries) {
        expected.resize(AuditLog::maxEntries);
    }
    AuditLog again(path);
    Fuzz::check(again.entries() == expected, "the change log read back differs from what was written");
    return 0;
}
