#include "api/DiskCache.h"
#include "api/TaskCenter.h"
#include "platform/Clock.h"
#include "platform/GermanRelativeTime.h"
#include "workspace/ManagedApp.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

struct CacheFixture {
    QTemporaryDir dir;
    std::shared_ptr<ManualClock> clock = std::make_shared<ManualClock>();
    QString folder() const { return dir.filePath(u"Daten"_s); }
    DiskCache cache{folder(), clock};
};

QByteArray readFile(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

BackgroundTask task(QString title, std::optional<double> progress, bool cancellable = false) {
    BackgroundTask t;
    t.title = std::move(title);
    t.detail = u"3 von 10"_s;
    t.progress = progress;
    t.isCancellable = cancellable;
    return t;
}

} // namespace

class TestStores : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void keyWithSeparatorsIsOneFile();
    void unreadableFileIsNoneAndStays_data();
    void unreadableFileIsNoneAndStays();
    void storeWhereWritingFails_data();
    void storeWhereWritingFails();
    void yearOldValueStillLoads();
    void relativeTime_data();
    void relativeTime();
    void updateOfFinishedTaskChangesNothing();
    void cancel_data();
    void cancel();
};

void TestStores::keyWithSeparatorsIsOneFile() {
    CacheFixture f;
    f.cache.storeJson(u"apps/team:1"_s, QJsonArray{1, 2});
    QCOMPARE(QDir(f.folder()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden),
             QStringList{u"apps_team_1.json"_s});
    const auto loaded = f.cache.loadJson(u"apps/team:1"_s);
    QVERIFY(loaded);
    QCOMPARE(loaded->value, QJsonValue(QJsonArray{1, 2}));
    QCOMPARE(loaded->storedAt, f.clock->now());
}

void TestStores::unreadableFileIsNoneAndStays_data() {
    QTest::addColumn<QByteArray>("contents"); // null: never stored, while another key is
    QTest::newRow("never stored") << QByteArray();
    QTest::newRow("invalid JSON") << R"({"value":[1,)"_ba;
    QTest::newRow("empty file") << QByteArray();
    QTest::newRow("array") << "[1,2]"_ba;
    QTest::newRow("no storedAt") << R"({"value":[]})"_ba;
    QTest::newRow("no value") << R"({"storedAt":"2026-01-01T00:00:00Z"})"_ba;
    QTest::newRow("storedAt not a date") << R"({"value":[],"storedAt":"gestern"})"_ba;
    QTest::newRow("list of something else") << R"({"value":[{"id":1}],"storedAt":"2026-01-01T00:00:00Z"})"_ba;
}

void TestStores::unreadableFileIsNoneAndStays() {
    QFETCH(QByteArray, contents);
    CacheFixture f;
    const QString path = f.cache.fileForKey(u"apps-x"_s);
    QVERIFY(QDir().mkpath(f.folder()));
    if (contents.isNull()) {
        f.cache.storeJson(u"apps-known"_s, QJsonValue(1));
        QVERIFY(!f.cache.loadJson(u"apps-x"_s));
    } else {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(contents);
    }
    QVERIFY(!f.cache.loadList<ManagedApp>(u"apps-x"_s));
    QCOMPARE(readFile(path), contents);
    QCOMPARE(QFileInfo::exists(path), !contents.isNull());
}

void TestStores::storeWhereWritingFails_data() {
    QTest::addColumn<bool>("folderIsFile");
    QTest::newRow("read-only folder") << false;
    // Fails for every user, root included.
    QTest::newRow("folder is a file") << true;
}

void TestStores::storeWhereWritingFails() {
    QFETCH(bool, folderIsFile);
    CacheFixture f;
    if (folderIsFile) {
        QFile file(f.folder());
        QVERIFY(file.open(QIODevice::WriteOnly));
    } else {
        QVERIFY(QDir().mkpath(f.folder()));
        QVERIFY(QFile::setPermissions(f.folder(), QFile::ReadOwner | QFile::ExeOwner));
    }
    auto restore = qScopeGuard(
        [&] { QFile::setPermissions(f.folder(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner); });
    if (!folderIsFile && ::access(QFile::encodeName(f.folder()).constData(), W_OK) == 0) {
        QSKIP("This user may write into a read-only folder (root?), so the failure cannot be provoked.");
    }
    f.cache.storeJson(u"apps-x"_s, QJsonValue(1));
    QVERIFY(!f.cache.loadJson(u"apps-x"_s));
    QVERIFY(!QFileInfo::exists(f.cache.fileForKey(u"apps-x"_s)));
}

void TestStores::yearOldValueStillLoads() {
    CacheFixture f;
    ManagedApp app;
    app.id = u"1"_s;
    app.name = u"Alt"_s;
    app.bundleID = u"com.example.alt"_s;
    const QDateTime storedAt = f.clock->now();
    f.cache.storeList(u"apps-old"_s, QList<ManagedApp>{app});
    f.clock->advance(365.0 * 86400);

    const auto loaded = f.cache.loadList<ManagedApp>(u"apps-old"_s);
    QVERIFY(loaded);
    QCOMPARE(loaded->value, QList<ManagedApp>{app});
    QCOMPARE(loaded->storedAt, storedAt);
    QCOMPARE(f.cache.ageDescription(loaded->storedAt), u"vor 1 Jahr"_s);
}

void TestStores::relativeTime_data() {
    QTest::addColumn<qint64>("secondsAgo"); // negative: in the future
    QTest::addColumn<QString>("text");
    QTest::newRow("one second") << qint64(1) << u"vor 1 Sekunde"_s;
    QTest::newRow("59 seconds") << qint64(59) << u"vor 59 Sekunden"_s;
    QTest::newRow("one minute") << qint64(60) << u"vor 1 Minute"_s;
    QTest::newRow("two hours") << qint64(2 * 3600 + 59) << u"vor 2 Stunden"_s;
    QTest::newRow("one day") << qint64(86400) << u"vor 1 Tag"_s;
    QTest::newRow("three days") << qint64(3 * 86400) << u"vor 3 Tagen"_s;
    QTest::newRow("two weeks") << qint64(14 * 86400) << u"vor 2 Wochen"_s;
    QTest::newRow("two years") << qint64(2 * 365 * 86400) << u"vor 2 Jahren"_s;
    QTest::newRow("in three days") << qint64(-3 * 86400) << u"in 3 Tagen"_s;
    QTest::newRow("in one hour") << qint64(-3600) << u"in 1 Stunde"_s;
}

void TestStores::relativeTime() {
    QFETCH(qint64, secondsAgo);
    QFETCH(QString, text);
    const QDateTime now(QDate(2026, 1, 15), QTime(10, 0), Qt::UTC);
    QCOMPARE(GermanRelativeTime::describe(now.addSecs(-secondsAgo), now), text);
}

void TestStores::updateOfFinishedTaskChangesNothing() {
    TaskCenter center;
    const BackgroundTask done = task(u"Fertig"_s, 0.9);
    const BackgroundTask other = task(u"Läuft"_s, 0.1);
    center.start(done);
    center.start(other);
    center.finish(done.id);
    QSignalSpy changed(&center, &TaskCenter::tasksChanged);
    center.update(done.id, 1.0, u"10 von 10"_s);
    center.finish(done.id);
    QCOMPARE(changed.count(), 0);
    QCOMPARE(center.tasks().size(), 1);
    QCOMPARE(center.tasks().first().id, other.id);
    QCOMPARE(center.tasks().first().progress, std::optional<double>(0.1));
}

void TestStores::cancel_data() {
    QTest::addColumn<bool>("cancellable");
    QTest::addColumn<bool>("withFunction");
    QTest::addColumn<int>("calls");
    QTest::newRow("with function") << true << true << 1;
    QTest::newRow("cancellable without function") << true << false << 0;
    QTest::newRow("not cancellable") << false << true << 0;
}

void TestStores::cancel() {
    QFETCH(bool, cancellable);
    QFETCH(bool, withFunction);
    QFETCH(int, calls);
    TaskCenter center;
    int called = 0;
    const BackgroundTask first = task(u"Erste"_s, std::nullopt);
    const BackgroundTask t = task(u"Aktion"_s, 0.2, cancellable);
    const BackgroundTask last = task(u"Letzte"_s, std::nullopt);
    center.start(first);
    if (withFunction) {
        center.start(t, [&called] { ++called; });
    } else {
        center.start(t);
    }
    center.start(last);

    center.cancel(t.id);
    QCOMPARE(center.tasks().size(), 2);
    QCOMPARE(center.tasks().at(0).id, first.id);
    QCOMPARE(center.tasks().at(1).id, last.id);
    // A second cancel or the job's own late finish calls nothing more.
    center.cancel(t.id);
    center.finish(t.id);
    QCOMPARE(called, calls);
}

QTEST_GUILESS_MAIN(TestStores)
#include "tst_stores.moc"
