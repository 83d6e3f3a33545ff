#include "platform/KeychainError.h"
#include "platform/KeychainSecretStore.h"
#include "support/AwaitTask.h"

#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using VarnisTest::awaitTask;

namespace {

QCoro::Task<std::optional<KeychainError>> failureOf(QCoro::Task<> task) {
    try {
        co_await std::move(task);
    } catch (const KeychainError& e) {
        co_return e;
    }
    co_return std::nullopt;
}

QCoro::Task<> readOnly(QCoro::Task<QByteArray> task) {
    co_await std::move(task);
}

} // namespace

// A machine without a reachable Secret Service (a server, a container, a session without D-Bus)
// must get the message that points at the environment account, whatever operation hit it.
class TestKeychainUnavailable : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void unreachable_data();
    void unreachable();

private:
    QTemporaryDir m_dir;
};

void TestKeychainUnavailable::initTestCase() {
    QVERIFY(m_dir.isValid());
    // The session bus is looked up on first use, which is after this point.
    const QString socket = m_dir.filePath(u"kein-bus"_s);
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + QFile::encodeName(socket));
}

void TestKeychainUnavailable::unreachable_data() {
    QTest::addColumn<QString>("operation");
    QTest::newRow("save") << u"save"_s;
    QTest::newRow("read") << u"read"_s;
    // Removing a missing entry is fine, but an unreachable store is not "missing".
    QTest::newRow("remove") << u"remove"_s;
}

void TestKeychainUnavailable::unreachable() {
    QFETCH(QString, operation);
    KeychainSecretStore store(u"com.tolsenmark.Velmora.apiKeys.test"_s);
    const QString account = u"0F8FAD5B-D9CB-469F-A165-70867728950E"_s;

    std::optional<KeychainError> error;
    if (operation == u"save") {
        error = awaitTask(failureOf(store.save(account, "geheim"_ba)));
    } else if (operation == u"read") {
        error = awaitTask(failureOf(readOnly(store.read(account))));
    } else {
        error = awaitTask(failureOf(store.remove(account)));
    }

    QVERIFY(error);
    QVERIFY2(error->kind() == KeychainError::Kind::Unavailable, qPrintable(error->errorDescription()));
    QVERIFY(error->errorDescription().contains(u"VARNIS_KEY_FILE"_s));
}

QTEST_GUILESS_MAIN(TestKeychainUnavailable)
#include "tst_keychain_unavailable.moc"
