#include "api/AuditLog.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

AuditLog::Entry entry(QString path, QDateTime date = QDateTime(QDate(2025, 1, 2), QTime(3, 4, 5), Qt::UTC)) {
    AuditLog::Entry e;
    e.id = QUuid::createUuid();
    e.date = std::move(date);
    e.method = u"PATCH"_s;
    e.path = std::move(path);
    return e;
}

QByteArray readFile(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeFile(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

} // namespace

class TestAuditLog : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void keepsNewest500();
    void damagedFileReadsEmpty_data();
    void damagedFileReadsEmpty();
    void exportText();
    void storesReferenceDateSeconds();
    void datesOutOfRangeAreAbsent_data();
    void datesOutOfRangeAreAbsent();
};

void TestAuditLog::keepsNewest500() {
    QTemporaryDir dir;
    const QString file = dir.filePath(u"log.json"_s);
    AuditLog log(file);
    for (int i = 0; i <= AuditLog::maxEntries; ++i) {
        log.record(entry(u"/v1/e%1"_s.arg(i)));
    }
    const auto entries = log.entries();
    QCOMPARE(entries.size(), 500);
    QCOMPARE(entries.first().path, u"/v1/e500"_s);
    QCOMPARE(entries.last().path, u"/v1/e1"_s);
    // What a later launch reads is the same list in the same order.
    QCOMPARE(AuditLog(file).entries(), entries);
}

void TestAuditLog::damagedFileReadsEmpty_data() {
    QTest::addColumn<QByteArray>("contents"); // null: neither the file nor its folder exist
    QTest::newRow("absent") << QByteArray();
    QTest::newRow("not JSON") << "\x00\x01garbage"_ba;
    QTest::newRow("cut off") << R"([{"id":"6F9619FF-8B86-D011-B42D-00CF4FC964FF","date":1)"_ba;
    QTest::newRow("object") << "{}"_ba;
    QTest::newRow("not an entry") << "[1]"_ba;
    QTest::newRow("bad id") << R"([{"id":"nope","date":1,"method":"POST","path":"/v1/x"}])"_ba;
    QTest::newRow("missing path")
        << R"([{"id":"6F9619FF-8B86-D011-B42D-00CF4FC964FF","date":1,"method":"POST"}])"_ba;
}

void TestAuditLog::damagedFileReadsEmpty() {
    QFETCH(QByteArray, contents);
    QTemporaryDir dir;
    const QString file = dir.filePath(u"Velmora/aenderungsprotokoll.json"_s);
    if (!contents.isNull()) {
        QVERIFY(QDir().mkpath(dir.filePath(u"Velmora"_s)));
        writeFile(file, contents);
    }
    AuditLog log(file);
    QVERIFY(log.entries().isEmpty());
    QCOMPARE(log.exportText(), QString());
    log.record(entry(u"/v1/apps/1"_s));
    const auto reread = AuditLog(file).entries();
    QCOMPARE(reread.size(), 1);
    QCOMPARE(reread.first().path, u"/v1/apps/1"_s);
}

void TestAuditLog::exportText() {
    QTemporaryDir dir;
    AuditLog log(dir.filePath(u"log.json"_s));
    auto failed = entry(u"/v1/appInfos/9"_s, QDateTime(QDate(2025, 1, 2), QTime(3, 4, 5, 678), Qt::UTC));
    failed.method = u"POST"_s;
    failed.statusCode = 422;
    failed.appleRequestID = u"REQ-1"_s;
    failed.accountName = u"Firma"_s;
    failed.errorMessage = u"HTTP 422"_s;
    log.record(failed);
    // A local time still exports in UTC.
    log.record(entry(u"/v1/apps/1"_s, QDateTime(QDate(2025, 6, 1), QTime(14, 0), Qt::OffsetFromUTC, 7200)));
    QCOMPARE(log.exportText(), u"2025-06-01T12:00:00Z\tPATCH\t/v1/apps/1\t–\t–\t–\t\n"
                               "2025-01-02T03:04:05Z\tPOST\t/v1/appInfos/9\t422\tREQ-1\tFirma\tHTTP 422"_s);
}

void TestAuditLog::storesReferenceDateSeconds() {
    QTemporaryDir dir;
    const QString file = dir.filePath(u"log.json"_s);
    auto e = entry(u"/v1/x"_s, QDateTime(QDate(2001, 1, 1), QTime(0, 1, 40, 500), Qt::UTC));
    e.statusCode = 204;
    AuditLog(file).record(e);

    const auto array = QJsonDocument::fromJson(readFile(file)).array();
    QCOMPARE(array.size(), 1);
    const auto object = array.first().toObject();
    QCOMPARE(object[u"date"_s].toDouble(), 100.5);
    QCOMPARE(object[u"statusCode"_s].toInt(), 204);
    QCOMPARE(QUuid::fromString(object[u"id"_s].toString()), e.id);
    // Absent values are left out, not written as null.
    QVERIFY(!object.contains(u"appleRequestID"_s));
    QVERIFY(!object.contains(u"errorMessage"_s));
    QCOMPARE(AuditLog(file).entries(), QList<AuditLog::Entry>{e});
}

void TestAuditLog::datesOutOfRangeAreAbsent_data() {
    QTest::addColumn<QByteArray>("date");
    QTest::addColumn<bool>("present");
    QTest::newRow("ordinary") << "100.5"_ba << true;
    QTest::newRow("far future") << "1e300"_ba << false;
    QTest::newRow("far past") << "-1e300"_ba << false;
    QTest::newRow("beyond year 9999") << "2.6e11"_ba << false;
    QTest::newRow("missing") << QByteArray() << false;
}

// Only the date of the damaged entry goes; the entry and its neighbours stay.
void TestAuditLog::datesOutOfRangeAreAbsent() {
    QFETCH(QByteArray, date);
    QFETCH(bool, present);
    QTemporaryDir dir;
    const QString file = dir.filePath(u"log.json"_s);
    const QByteArray dateMember = date.isNull() ? QByteArray() : ",\"date\":" + date;
    writeFile(file,
              "[{\"id\":\"6F9619FF-8B86-D011-B42D-00C04FC964FF\",\"method\":\"POST\",\"path\":\"/v1/a\"" +
                  dateMember +
                  "},{\"id\":\"7F9619FF-8B86-D011-B42D-00C04FC964FF\",\"date\":1,"
                  "\"method\":\"DELETE\",\"path\":\"/v1/b\"}]");
    AuditLog log(file);
    const auto entries = log.entries();
    QCOMPARE(entries.size(), 2);
    QCOMPARE(entries.first().date.isValid(), present);
    QCOMPARE(entries.last().date, QDateTime(QDate(2001, 1, 1), QTime(0, 0, 1), Qt::UTC));
    // Written again, the absent date stays absent rather than turning into a real one.
    log.record(entry(u"/v1/c"_s));
    QCOMPARE(AuditLog(file).entries().at(1).date.isValid(), present);
}

QTEST_GUILESS_MAIN(TestAuditLog)
#include "tst_auditlog.moc"
