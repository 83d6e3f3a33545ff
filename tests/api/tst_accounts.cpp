#include "api/AccountStore.h"
#include "api/AppStoreConnectClient.h"
#include "api/AuditLog.h"
#include "api/EnvironmentAccount.h"
#include "api/KeyImportValidator.h"
#include "fixtures/JsonApi.h"
#include "platform/AtomicFile.h"
#include "platform/Clock.h"
#include "platform/KeychainError.h"
#include "support/AwaitTask.h"
#include "support/FakeTransport.h"
#include "support/MemorySecretStore.h"
#include "support/RawEndpoints.h"
#include "support/TestKeys.h"
#include "support/TestPlatform.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLoggingCategory>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QUrlQuery>

#include <time.h>

using namespace Qt::StringLiterals;
using VarnisTest::awaitTask;

namespace {

const QString issuer = u"57246542-96fe-1a63-e053-0824d011072a"_s;

// Everything a store needs, on fakes and a temporary folder.
struct Fixture : TestPlatform {
    QByteArray pem = makeTestKey().privateKeyPEM;

    QString accountsFile() const { return platform().paths.accountsFile(); }
};

struct Raised {
    QString description;
    bool isKeychainError = false;
};

// A failure comes back as a value, so that a test can compare what was raised.
template <class T> QCoro::Task<std::optional<Raised>> raisedBy(QCoro::Task<T> task) {
    try {
        co_await std::move(task);
    } catch (const KeychainError& error) {
        co_return Raised{error.errorDescription(), true};
    } catch (const std::exception& error) {
        co_return Raised{describeError(error), false};
    }
    co_return std::nullopt;
}

// Runs `task` to its end; what it raised, if anything.
template <class T> std::optional<Raised> raised(QCoro::Task<T> task) {
    auto wrapped = raisedBy(std::move(task));
    return awaitTask(std::move(wrapped));
}

Account addAccount(AccountStore& store, QString name, QByteArray pem,
                   std::optional<QString> vendor = std::nullopt, QString keyID = u"ABCDE12345"_s) {
    const QString issuerID = issuer;
    auto task = store.addAccount(name, issuerID, keyID, pem, vendor);
    return awaitTask(std::move(task));
}

QByteArray readFile(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QStringList namesInFile(const QString& path) {
    QStringList names;
    for (const auto& value : QJsonDocument::fromJson(readFile(path)).array()) {
        names.append(value.toObject().value(u"name"_s).toString());
    }
    return names;
}

// Every message of every category, for the secrecy test.
QStringList* capturedMessages = nullptr;
QtMessageHandler previousHandler = nullptr;

void captureMessage(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    if (capturedMessages) {
        capturedMessages->append(QString::fromUtf8(context.category ? context.category : "") + u' ' +
                                 message);
    }
    if (type != QtDebugMsg && previousHandler) {
        previousHandler(type, context, message);
    }
}

} // namespace

class TestAccounts : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void selectsFirstAfterLaunch();
    void damagedFileStartsEmpty();
    void removeSelectsNext();
    void failingSecretStoreLeavesList();
    void updateUnknownDoesNothing();
    void interruptedWritesAreMended_data();
    void interruptedWritesAreMended();
    void identifiers_data();
    void identifiers();
    void keyIDFromFileName_data();
    void keyIDFromFileName();
    void findings_data();
    void findings();
    void vendorNumbers_data();
    void vendorNumbers();
    void probeWithDeletedKey();
    void probe_data();
    void probe();
    void environment_data();
    void environment();
    void environmentAccountIsStableAndStaysInMemory();
    void keyNeverLeaks();

private:
    QTemporaryDir m_home;
};

void TestAccounts::initTestCase() {
    // Whatever might fall back to the user's own folders lands here instead, where the secrecy
    // test can look at it.
    qputenv("XDG_DATA_HOME", m_home.filePath(u"data"_s).toLocal8Bit());
    qputenv("XDG_CONFIG_HOME", m_home.filePath(u"config"_s).toLocal8Bit());
    qputenv("XDG_CACHE_HOME", m_home.filePath(u"cache"_s).toLocal8Bit());
    // Far from UTC, so that a local day in place of the UTC day shows up.
    qputenv("TZ", "Pacific/Kiritimati");
    tzset();
}

void TestAccounts::selectsFirstAfterLaunch() {
    Fixture f;
    QUuid first;
    {
        AccountStore store(f.platform());
        first = addAccount(store, u"Erster"_s, f.pem).id;
        const Account second = addAccount(store, u"Zweiter"_s, f.pem);
        QCOMPARE(store.selectedAccountID(), std::optional<QUuid>(second.id));
    }
    AccountStore relaunched(f.platform());
    QCOMPARE(relaunched.accounts().size(), 2);
    QCOMPARE(relaunched.selectedAccountID(), std::optional<QUuid>(first));
    QCOMPARE(relaunched.selectedAccount()->name, u"Erster"_s);
}

void TestAccounts::damagedFileStartsEmpty() {
    Fixture f;
    const QByteArray damaged = R"([{"id":"not a uuid","name":"A"}])"_ba;
    QVERIFY(QDir().mkpath(f.dataRoot()));
    {
        QFile file(f.accountsFile());
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(damaged);
    }
    AccountStore store(f.platform());
    QVERIFY(store.accounts().isEmpty());
    QCOMPARE(store.selectedAccountID(), std::nullopt);
    // Left as it was until a successful write replaces it.
    QCOMPARE(readFile(f.accountsFile()), damaged);
    addAccount(store, u"Neu"_s, f.pem);
    QCOMPARE(namesInFile(f.accountsFile()), QStringList{u"Neu"_s});
}

void TestAccounts::removeSelectsNext() {
    Fixture f;
    AccountStore store(f.platform());
    const Account a = addAccount(store, u"A"_s, f.pem);
    const Account b = addAccount(store, u"B"_s, f.pem);
    QCOMPARE(store.selectedAccountID(), std::optional<QUuid>(b.id));

    QVERIFY(!raised(store.removeAccount(b)));
    QCOMPARE(store.selectedAccountID(), std::optional<QUuid>(a.id));
    QVERIFY(!f.secrets->contents().contains(b.idText()));

    QVERIFY(!raised(store.removeAccount(a)));
    QCOMPARE(store.selectedAccountID(), std::nullopt);
    QVERIFY(store.accounts().isEmpty());
    QVERIFY(f.secrets->contents().isEmpty());
    QCOMPARE(QJsonDocument::fromJson(readFile(f.accountsFile())), QJsonDocument(QJsonArray()));
}

void TestAccounts::failingSecretStoreLeavesList() {
    Fixture f;
    AccountStore store(f.platform());
    const Account kept = addAccount(store, u"Bestehend"_s, f.pem);
    const QByteArray fileBefore = readFile(f.accountsFile());
    QSignalSpy changed(&store, &AccountStore::accountsChanged);

    const KeychainError refusal = KeychainError::unhandled(-25308, u"User interaction is not allowed."_s);
    f.secrets->failWith(refusal);
    const QString name = u"Neu"_s;
    const QString keyID = u"ABCDE12345"_s;
    const auto failure = raised(store.addAccount(name, issuer, keyID, f.pem));
    QVERIFY(failure);
    QVERIFY(failure->isKeychainError);
    QCOMPARE(failure->description, refusal.errorDescription());
    QCOMPARE(store.accounts(), QList<Account>{kept});
    QCOMPARE(store.selectedAccountID(), std::optional<QUuid>(kept.id));
    QCOMPARE(readFile(f.accountsFile()), fileBefore);
    QCOMPARE(changed.count(), 0);

    // Removing fails the same way and keeps the account.
    QVERIFY(raised(store.removeAccount(kept)));
    QCOMPARE(store.accounts(), QList<Account>{kept});
}

void TestAccounts::interruptedWritesAreMended_data() {
    QTest::addColumn<QString>("cut");
    // The keychain was written, the accounts file not: the next start deletes the key.
    QTest::newRow("add cut off after the keychain") << u"add"_s;
    // The file was written, the note of the key in progress not yet cleared: the key stays.
    QTest::newRow("add cut off after the file") << u"listed"_s;
    // The key went, the file still lists the account: the account says so and takes it again.
    QTest::newRow("remove cut off after the keychain") << u"remove"_s;
}

void TestAccounts::interruptedWritesAreMended() {
    QFETCH(QString, cut);
    Fixture f;
    Account listed;
    {
        AccountStore before(f.platform());
        listed = addAccount(before, u"Studio"_s, f.pem);
    }
    const QUuid orphan = QUuid::createUuid();
    const QString progress = f.platform().paths.file(u"keys-in-progress.json"_s);
    if (cut == u"add"_s) {
        awaitTask(f.secrets->save(Account::idText(orphan), f.pem));
        QVERIFY(!AtomicFile::write(progress, "[\"" + Account::idText(orphan).toLatin1() + "\"]"));
    } else if (cut == u"listed"_s) {
        QVERIFY(!AtomicFile::write(progress, "[\"" + listed.idText().toLatin1() + "\"]"));
    } else {
        f.secrets->setContents({});
    }

    AccountStore store(f.platform());
    QTRY_COMPARE(QJsonDocument::fromJson(readFile(progress)), QJsonDocument(QJsonArray()));
    QCOMPARE(store.accounts().size(), 1);
    QCOMPARE(f.secrets->contents().keys(), cut == u"remove"_s ? QStringList{} : QStringList{listed.idText()});
    QCOMPARE(awaitTask(store.checkKeyMissing(listed)), cut == u"remove"_s);
    QCOMPARE(store.isKeyMissing(listed.id), cut == u"remove"_s);
    if (cut == u"remove"_s) {
        const auto refused = raised(store.makeClient(listed));
        QVERIFY(refused && refused->description == KeychainError::notFound().errorDescription());
        QVERIFY(!raised(store.replaceKey(listed, f.pem)));
        QVERIFY(!store.isKeyMissing(listed.id));
        QVERIFY(!raised(store.makeClient(listed)));
    }
}

void TestAccounts::updateUnknownDoesNothing() {
    Fixture f;
    AccountStore store(f.platform());
    const Account kept = addAccount(store, u"A"_s, f.pem);
    const QByteArray fileBefore = readFile(f.accountsFile());
    QSignalSpy changed(&store, &AccountStore::accountsChanged);

    Account stranger = kept;
    stranger.id = QUuid::createUuid();
    stranger.name = u"Fremd"_s;
    store.updateAccount(stranger);
    QCOMPARE(store.accounts(), QList<Account>{kept});
    QCOMPARE(readFile(f.accountsFile()), fileBefore);
    QCOMPARE(changed.count(), 0);
}

void TestAccounts::identifiers_data() {
    QTest::addColumn<bool>("isKeyID"); // else an issuer id
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("valid");
    const auto key = [](const char* name, const QString& text, bool valid) {
        QTest::addRow("key id, %s", name) << true << text << valid;
    };
    const auto issuerRow = [](const char* name, const QString& text, bool valid) {
        QTest::addRow("issuer, %s", name) << false << text << valid;
    };
    key("apple form", u"ABCDE12345"_s, true);
    key("blanks around", u" ABCDE12345\n"_s, true);
    key("lower-case letter", u"ABCDe12345"_s, false);
    key("nine", u"ABCDE1234"_s, false);
    key("eleven", u"ABCDE123456"_s, false);
    key("blank inside", u"ABCDE 2345"_s, false);
    key("empty", QString(), false);
    issuerRow("lower case", issuer, true);
    issuerRow("upper case", issuer.toUpper(), true);
    issuerRow("blanks around", u"  "_s + issuer + u"\n"_s, true);
    issuerRow("braces", u"{"_s + issuer + u"}"_s, false);
    issuerRow("one short", issuer.chopped(1), false);
    issuerRow("not hex", u"57246542-96fe-1a63-e053-0824d011072g"_s, false);
    issuerRow("no dashes", QString(issuer).remove(u'-'), false);
    issuerRow("dash moved", u"572465429-6fe-1a63-e053-0824d011072a"_s, false);
    issuerRow("all zero", u"00000000-0000-0000-0000-000000000000"_s, true);
    issuerRow("empty", QString(), false);
}

void TestAccounts::identifiers() {
    QFETCH(bool, isKeyID);
    QFETCH(QString, text);
    QFETCH(bool, valid);
    QCOMPARE(isKeyID ? KeyImportValidator::isValidKeyID(text) : KeyImportValidator::isValidIssuerID(text),
             valid);
}

void TestAccounts::keyIDFromFileName_data() {
    QTest::addColumn<QString>("fileName");
    QTest::addColumn<QString>("expected"); // null: none
    QTest::newRow("apple's name") << u"AuthKey_ABCDE12345.p8"_s << u"ABCDE12345"_s;
    QTest::newRow("with folder") << u"/home/a/Downloads/AuthKey_ABCDE12345.p8"_s << u"ABCDE12345"_s;
    QTest::newRow("without prefix") << u"ABCDE12345.p8"_s << u"ABCDE12345"_s;
    QTest::newRow("short id") << u"AuthKey_abc.p8"_s << QString();
    QTest::newRow("lower-case id") << u"AuthKey_abcde12345.p8"_s << QString();
    QTest::newRow("other prefix") << u"authkey_ABCDE12345.p8"_s << QString();
    QTest::newRow("copy suffix") << u"AuthKey_ABCDE12345 (1).p8"_s << QString();
    QTest::newRow("two extensions") << u"AuthKey_ABCDE12345.p8.txt"_s << QString();
}

void TestAccounts::keyIDFromFileName() {
    QFETCH(QString, fileName);
    QFETCH(QString, expected);
    const auto found = KeyImportValidator::keyIDFromFileName(fileName);
    QCOMPARE(found, expected.isNull() ? std::nullopt : std::optional<QString>(expected));
}

void TestAccounts::findings_data() {
    QTest::addColumn<QString>("keyID");
    QTest::addColumn<QString>("issuerID");
    QTest::addColumn<QByteArray>("pem");
    QTest::addColumn<QString>("fileName"); // null: no file
    QTest::addColumn<QStringList>("ids");
    QTest::addColumn<bool>("blocking");

    const QByteArray good = makeTestKey().privateKeyPEM;
    QTest::newRow("blank fields") << u"  "_s << u"\n"_s << " \n"_ba << QString() << QStringList() << false;
    QTest::newRow("complete") << u"ABCDE12345"_s << issuer << good << u"AuthKey_ABCDE12345.p8"_s
                              << QStringList() << false;
    QTest::newRow("lower-case key id")
        << u"abcde12345"_s << issuer << good << QString() << QStringList{u"keyID.format"_s} << true;
    QTest::newRow("bad issuer") << u"ABCDE12345"_s << u"issuer"_s << good << QString()
                                << QStringList{u"issuerID.format"_s} << true;
    QTest::newRow("garbage pem") << u"ABCDE12345"_s << issuer << "not a key at all"_ba << QString()
                                 << QStringList{u"key.unusable"_s} << true;
    QTest::newRow("name differs") << u" ZZZZZ99999 "_s << issuer << good << u"AuthKey_ABCDE12345.p8"_s
                                  << QStringList{u"keyID.mismatch"_s} << false;
    QTest::newRow("name says nothing")
        << u"ZZZZZ99999"_s << issuer << good << u"key.p8"_s << QStringList() << false;
    QTest::newRow("file but no key id")
        << QString() << issuer << good << u"AuthKey_ABCDE12345.p8"_s << QStringList() << false;
    QTest::newRow("all wrong, in order")
        << u"abc"_s << u"x"_s << "x"_ba << u"AuthKey_ABCDE12345.p8"_s
        << QStringList{u"keyID.format"_s, u"issuerID.format"_s, u"key.unusable"_s, u"keyID.mismatch"_s}
        << true;
}

void TestAccounts::findings() {
    QFETCH(QString, keyID);
    QFETCH(QString, issuerID);
    QFETCH(QByteArray, pem);
    QFETCH(QString, fileName);
    QFETCH(QStringList, ids);
    QFETCH(bool, blocking);

    const auto file = fileName.isNull() ? std::nullopt : std::optional<QString>(fileName);
    const auto found = KeyImportValidator::findings(keyID, issuerID, pem, file);
    QStringList foundIDs;
    for (const auto& finding : found) {
        foundIDs.append(finding.id);
        QCOMPARE(finding.severity == KeyImportValidator::Finding::Severity::Warning,
                 finding.id == u"keyID.mismatch"_s);
    }
    QCOMPARE(foundIDs, ids);
    QCOMPARE(KeyImportValidator::hasBlocking(found), blocking);
    if (ids == QStringList{u"keyID.mismatch"_s}) {
        QCOMPARE(found.first().message,
                 u"Der Dateiname nennt die Key-ID ABCDE12345, eingetragen ist ZZZZZ99999. "
                 "Meist ist eine der beiden vertauscht."_s);
    }
}

void TestAccounts::vendorNumbers_data() {
    QTest::addColumn<QString>("vendor"); // null: none
    QTest::addColumn<bool>("usable");
    QTest::newRow("none") << QString() << false;
    QTest::newRow("five digits") << u"12345"_s << false;
    QTest::newRow("six digits") << u"123456"_s << true;
    QTest::newRow("letter") << u"12345a"_s << false;
    QTest::newRow("blanks around") << u" \t123456\n"_s << true;
    QTest::newRow("five and blanks") << u" 12345 "_s << false;
    QTest::newRow("blank inside") << u"123 456"_s << false;
    QTest::newRow("blank") << u"   "_s << false;
}

void TestAccounts::vendorNumbers() {
    QFETCH(QString, vendor);
    QFETCH(bool, usable);
    Account account;
    if (!vendor.isNull()) {
        account.vendorNumber = vendor;
    }
    QCOMPARE(account.hasUsableVendorNumber(), usable);
}

void TestAccounts::probeWithDeletedKey() {
    Fixture f;
    AccountStore store(f.platform());
    Account account = addAccount(store, u"A"_s, f.pem, u"1234567"_s);
    AccountCapabilities earlier;
    earlier.canReadApps = true;
    earlier.canReadUsers = true;
    earlier.checkedAt = f.clock->now().addDays(-3);
    account.capabilities = earlier;
    store.updateAccount(account);
    f.secrets->setContents({});

    const AccountCapabilities caps = awaitTask(store.probeCapabilities(account));
    QVERIFY(!caps.canReadApps && !caps.canReadUsers && !caps.canReadAnalytics && !caps.canReadSalesReports);
    QCOMPARE(caps.checkedAt, f.clock->now());
    QCOMPARE(store.account(account.id)->capabilities, std::optional<AccountCapabilities>(earlier));
    QCOMPARE(f.transport->requestCount(), 0);
}

void TestAccounts::probe_data() {
    QTest::addColumn<QString>("vendor"); // null: none
    QTest::addColumn<int>("usersStatus");
    QTest::addColumn<bool>("users");
    QTest::addColumn<bool>("sales");
    QTest::addColumn<bool>("asksSales");
    QTest::newRow("no vendor number") << QString() << 200 << true << false << false;
    QTest::newRow("vendor number") << u" 8765432 "_s << 200 << true << true << true;
    QTest::newRow("users forbidden") << u"8765432"_s << 403 << false << true << true;
}

void TestAccounts::probe() {
    QFETCH(QString, vendor);
    QFETCH(int, usersStatus);
    QFETCH(bool, users);
    QFETCH(bool, sales);
    QFETCH(bool, asksSales);

    Fixture f;
    // 11:00 UTC is already the next day in Kiritimati: the report day must follow UTC.
    f.clock->setNow(QDateTime(QDate(2026, 3, 1), QTime(11, 0), Qt::UTC));
    AccountStore store(f.platform());
    const auto vendorNumber = vendor.isNull() ? std::nullopt : std::optional<QString>(vendor);
    const Account account = addAccount(store, u"A"_s, f.pem, vendorNumber);
    f.transport->script(
        "GET", u"/v1/apps"_s,
        {FakeTransport::Answer::json(
            200, JsonApi::page({JsonApi::resource(u"apps"_s, u"app-7"_s, {{u"name"_s, u"Eins"_s}})}))});
    f.transport->script("GET", u"/v1/users"_s,
                        {FakeTransport::Answer::json(
                            usersStatus, usersStatus == 200 ? R"({"data":[]})"_ba : R"({"errors":[]})"_ba)});
    f.transport->script("GET", u"/v1/apps/app-7/analyticsReportRequests"_s,
                        {FakeTransport::Answer::json(200, R"({"data":[]})"_ba)});
    f.transport->script("GET", u"/v1/salesReports"_s, {FakeTransport::Answer::json(200, "gzip"_ba)});

    const AccountCapabilities caps = awaitTask(store.probeCapabilities(account));
    QVERIFY(caps.canReadApps);
    QCOMPARE(caps.canReadUsers, users);
    QVERIFY(caps.canReadAnalytics);
    QCOMPARE(caps.canReadSalesReports, sales);
    QCOMPARE(caps.checkedAt, f.clock->now());

    const auto salesRequests = f.transport->requestsTo("GET", u"/v1/salesReports"_s);
    QCOMPARE(salesRequests.size(), asksSales ? 1 : 0);
    if (asksSales) {
        const QList<QPair<QString, QString>> expected{
            {u"filter[frequency]"_s, u"DAILY"_s},       {u"filter[reportType]"_s, u"SALES"_s},
            {u"filter[reportSubType]"_s, u"SUMMARY"_s}, {u"filter[vendorNumber]"_s, vendor.trimmed()},
            {u"filter[reportDate]"_s, u"2026-02-27"_s}, {u"filter[version]"_s, u"1_1"_s},
        };
        QCOMPARE(QUrlQuery(salesRequests.first().url).queryItems(QUrl::FullyDecoded), expected);
    }

    // Kept on the account, and in the file.
    QCOMPARE(store.account(account.id)->capabilities, std::optional<AccountCapabilities>(caps));
    QCOMPARE(AccountStore(f.platform()).account(account.id)->capabilities,
             std::optional<AccountCapabilities>(caps));
    VARNIS_VERIFY_CONTRACT(*f.transport);
}

void TestAccounts::environment_data() {
    QTest::addColumn<QString>("issuerID");
    QTest::addColumn<QString>("keyID");
    QTest::addColumn<QString>("keyFile"); // "<key>": a readable file with a good key; "<junk>": one without
    QTest::addColumn<QString>("messageStart");
    QTest::addColumn<bool>("usage");
    const QString usageText =
        u"Für einen Account aus der Umgebung braucht es VARNIS_ISSUER_ID, VARNIS_KEY_ID und VARNIS_KEY_FILE zusammen."_s;
    QTest::newRow("issuer only") << issuer << QString() << QString() << usageText << true;
    QTest::newRow("no file") << issuer << u"ABCDE12345"_s << u"  "_s << usageText << true;
    QTest::newRow("unreadable file") << issuer << u"ABCDE12345"_s << u"/nonexistent/AuthKey_ABCDE12345.p8"_s
                                     << u"Datei konnte nicht gelesen werden: "_s << false;
    QTest::newRow("no key in file") << issuer << u"ABCDE12345"_s << u"<junk>"_s
                                    << u"Die Datei enthält keinen nutzbaren P-256-Schlüssel."_s << false;
    QTest::newRow("bad key id") << issuer << u"abcde12345"_s << u"<key>"_s << u"Die Key-ID besteht"_s
                                << false;
}

void TestAccounts::environment() {
    QFETCH(QString, issuerID);
    QFETCH(QString, keyID);
    QFETCH(QString, keyFile);
    QFETCH(QString, messageStart);
    QFETCH(bool, usage);

    QTemporaryDir dir;
    if (keyFile.startsWith(u'<')) {
        const QString path = dir.filePath(u"AuthKey_ABCDE12345.p8"_s);
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(keyFile == u"<key>"_s ? makeTestKey().privateKeyPEM : "junk"_ba);
        keyFile = path;
    }
    QProcessEnvironment env;
    env.insert(u"VARNIS_ISSUER_ID"_s, issuerID);
    env.insert(u"VARNIS_KEY_ID"_s, keyID);
    env.insert(u"VARNIS_KEY_FILE"_s, keyFile);

    const auto result = EnvironmentAccount::fromEnvironment(env, QDateTime::currentDateTimeUtc());
    QVERIFY(result);
    const auto* failure = std::get_if<EnvironmentAccount::Failure>(&*result);
    QVERIFY(failure);
    QVERIFY2(failure->message.startsWith(messageStart), qPrintable(failure->message));
    QCOMPARE(failure->isUsageError, usage);

    QVERIFY(!EnvironmentAccount::fromEnvironment(QProcessEnvironment(), QDateTime::currentDateTimeUtc()));
}

void TestAccounts::environmentAccountIsStableAndStaysInMemory() {
    Fixture f;
    const QString path = f.dir.filePath(u"AuthKey_ABCDE12345.p8"_s);
    {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(f.pem);
    }
    QProcessEnvironment env;
    env.insert(u"VARNIS_ISSUER_ID"_s, u" "_s + issuer);
    env.insert(u"VARNIS_KEY_ID"_s, u"ABCDE12345"_s);
    env.insert(u"VARNIS_KEY_FILE"_s, path);

    const auto first = EnvironmentAccount::fromEnvironment(env, f.clock->now());
    const auto second = EnvironmentAccount::fromEnvironment(env, f.clock->now().addDays(1));
    QVERIFY(first && second);
    const auto* loaded = std::get_if<EnvironmentAccount::Loaded>(&*first);
    QVERIFY(loaded);
    QCOMPARE(std::get<EnvironmentAccount::Loaded>(*second).account.id, loaded->account.id);
    QCOMPARE(loaded->account.issuerID, issuer);
    QCOMPARE(loaded->privateKeyPEM, f.pem);

    // Used for a run: requests work, the probe updates the account, and nothing reaches the
    // disk or the secret store.
    AccountStore store(f.platform());
    store.useEphemeralAccount(loaded->account, loaded->privateKeyPEM);
    f.transport->script("GET", u"/v1/apps"_s, {FakeTransport::Answer::json(200, R"({"data":[]})"_ba)});
    const Account account = *store.selectedAccount();
    const auto caps = awaitTask(store.probeCapabilities(account));
    QVERIFY(caps.canReadApps);
    QCOMPARE(store.selectedAccount()->capabilities, std::optional<AccountCapabilities>(caps));
    QCOMPARE(f.secrets->callCount(), 0);
    QVERIFY(!QFileInfo::exists(f.dataRoot()));
}

void TestAccounts::keyNeverLeaks() {
    Fixture f;
    f.clock->setAutoAdvance(true);
    AccountStore store(f.platform());
    const Account good = addAccount(store, u"Geheim"_s, f.pem);
    // A damaged copy of the same key: signing fails, and its text is mostly the real key's.
    const QByteArray damaged = f.pem.left(f.pem.size() * 2 / 3);
    const Account broken = addAccount(store, u"Kaputt"_s, damaged, std::nullopt, u"ZZZZZ99999"_s);

    QStringList messages;
    capturedMessages = &messages;
    previousHandler = qInstallMessageHandler(captureMessage);
    QLoggingCategory::setFilterRules(u"*.debug=true"_s);
    const auto stopCapturing = [] {
        QLoggingCategory::setFilterRules(QString());
        qInstallMessageHandler(previousHandler);
        capturedMessages = nullptr;
    };
    auto guard = qScopeGuard(stopCapturing);

    f.transport->script("POST", u"/v1/betaGroups"_s,
                        {FakeTransport::Answer::json(500, R"({"errors":[{"status":"500"}]})"_ba)});
    f.transport->script("GET", u"/v1/apps"_s, {FakeTransport::Answer::json(401, R"({"errors":[]})"_ba)});

    QStringList errors;
    auto run = [&](const Account& account, APIRequest request) {
        auto client = awaitTask(store.makeClient(account));
        const auto failure = raised(client->call(bytesOf(std::move(request))));
        QVERIFY(failure);
        errors.append(failure->description);
    };
    run(good, APIRequest::withBody(APIRequest::Method::Post, u"/v1/betaGroups"_s, newBetaGroupBody()));
    run(good, APIRequest::get(u"/v1/apps"_s));
    run(broken, APIRequest::get(u"/v1/apps"_s));
    QCOMPARE(errors.last(), u"Der private API-Schlüssel ist ungültig."_s);
    QCOMPARE(f.transport->requestCount(), 5);

    const QList<AuditLog::Entry> audit = store.auditLog()->entries();
    QCOMPARE(audit.size(), 4);
    QStringList auditTexts;
    for (const auto& entry : audit) {
        auditTexts << entry.method << entry.path << entry.errorMessage.value_or(QString())
                   << entry.appleRequestID.value_or(QString()) << entry.accountName.value_or(QString());
    }
    // The debug lines really were on; otherwise this test proves nothing.
    QVERIFY(std::any_of(messages.cbegin(), messages.cend(),
                        [](const QString& m) { return m.contains(u"/v1/betaGroups"_s); }));
    guard.dismiss();
    stopCapturing();

    // What must never show up: any 20 characters of the key's base64 body, and any token.
    QString body;
    for (const QByteArray& line : f.pem.split('\n')) {
        if (!line.startsWith("-----")) {
            body += QString::fromLatin1(line.trimmed());
        }
    }
    QStringList secrets;
    int tokens = 0;
    for (qsizetype i = 0; i + 20 <= body.size(); ++i) {
        secrets.append(body.mid(i, 20));
    }
    for (const auto& request : f.transport->requests()) {
        for (const auto& header : request.headers) {
            if (header.first == "Authorization") {
                const QString token = QString::fromLatin1(header.second).section(u' ', 1);
                secrets << token << token.section(u'.', 2, 2);
                ++tokens;
            }
        }
    }
    QCOMPARE(tokens, 5);

    auto check = [&](const QString& where, QString text) {
        const QString flat = QString(text).remove(u'\n').remove(u"\\n"_s);
        QVERIFY2(!text.contains(u"Bearer"_s, Qt::CaseInsensitive), qPrintable(where));
        for (const auto& secret : std::as_const(secrets)) {
            QVERIFY2(!text.contains(secret) && !flat.contains(secret), qPrintable(where + u": "_s + secret));
        }
    };
    for (const auto& m : std::as_const(messages)) {
        check(u"log"_s, m);
    }
    for (const auto& e : std::as_const(errors)) {
        check(u"error"_s, e);
    }
    for (const auto& a : std::as_const(auditTexts)) {
        check(u"audit"_s, a);
    }
    int files = 0;
    for (const QString& root : {f.dir.path(), m_home.path()}) {
        QDirIterator it(root, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
        while (it.hasNext()) {
            const QString path = it.next();
            ++files;
            check(path, QString::fromUtf8(readFile(path)));
        }
    }
    QVERIFY(files >= 2); // accounts.json and the change log at least
}

QTEST_GUILESS_MAIN(TestAccounts)
#include "tst_accounts.moc"
