#include "api/AccountStore.h"

#include "api/AccountEndpoints.h"
#include "api/AppStoreConnectClient.h"
#include "api/AuditLog.h"
#include "api/AuthenticationService.h"
#include "api/RateLimitGovernor.h"
#include "api/TruncationRegistry.h"
#include "platform/AtomicFile.h"
#include "platform/Clock.h"
#include "platform/KeychainError.h"
#include "platform/SecretStore.h"
#include "wire/VelmoraAPIError.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QLoggingCategory>
#include <QPointer>
#include <QStringDecoder>

using namespace Qt::StringLiterals;

Q_LOGGING_CATEGORY(lcAccountStore, "com.tolsenmark.Velmora.AccountStore", QtInfoMsg)

AccountStore::AccountStore(Platform platform, QObject* parent)
    : QObject(parent), m_platform(std::move(platform)),
      m_governor(std::make_shared<RateLimitGovernor>(m_platform.clock)),
      m_truncation(std::make_shared<TruncationRegistry>()),
      m_auditLog(std::make_shared<AuditLog>(m_platform.paths.auditLogFile())) {
    load();
    QCoro::connect(dropUnfinishedKeys(), this, [] {});
}

AccountStore::~AccountStore() = default;

const QString AccountStore::keysInProgressFile = u"keys-in-progress.json"_s;

void AccountStore::load() {
    // A damaged file counts as empty and is left alone until the next successful write.
    const auto bytes = AtomicFile::read(m_platform.paths.accountsFile());
    if (!bytes) {
        return;
    }
    const auto doc = QJsonDocument::fromJson(*bytes);
    if (!doc.isArray()) {
        return;
    }
    QList<Account> loaded;
    try {
        for (const auto& value : doc.array()) {
            loaded.append(Account::fromJson(JsonReader::of(value)));
        }
    } catch (const DecodingError&) {
        return;
    }
    m_accounts = std::move(loaded);
    m_selectedAccountID = m_accounts.isEmpty() ? std::nullopt : std::optional<QUuid>(m_accounts.first().id);
}

void AccountStore::persist() {
    if (m_ephemeralKey) {
        return;
    }
    QJsonArray array;
    for (const auto& account : std::as_const(m_accounts)) {
        array.append(account.toJson());
    }
    if (auto error = AtomicFile::write(m_platform.paths.accountsFile(), QJsonDocument(array).toJson())) {
        qCWarning(lcAccountStore, "Failed to persist account metadata: %s", qPrintable(*error));
    }
}

void AccountStore::setSelectedAccountID(std::optional<QUuid> id) {
    if (m_selectedAccountID == id) {
        return;
    }
    m_selectedAccountID = id;
    Q_EMIT selectedAccountChanged();
}

std::optional<Account> AccountStore::selectedAccount() const {
    if (!m_selectedAccountID) {
        return std::nullopt;
    }
    return account(*m_selectedAccountID);
}

std::optional<Account> AccountStore::account(const QUuid& id) const {
    for (const auto& a : m_accounts) {
        if (a.id == id) {
            return a;
        }
    }
    return std::nullopt;
}

QCoro::Task<Account> AccountStore::addAccount(QString name, QString issuerID, QString keyID,
                                              QByteArray privateKeyPEM, std::optional<QString> vendorNumber) {
    Account account;
    account.id = QUuid::createUuid();
    account.name = std::move(name);
    account.issuerID = std::move(issuerID);
    account.keyID = std::move(keyID);
    account.createdAt = m_platform.clock->now();
    account.vendorNumber = nilIfBlank(vendorNumber);
    QPointer<AccountStore> self(this);
    const QString keyName = account.idText();
    // Noted before the keychain is written: if the process ends before the accounts file lists
    // the account, the next start finds the key nobody lists and deletes it.
    noteKeyInProgress(account.id, true);
    try {
        co_await m_platform.secrets->save(keyName, privateKeyPEM);
    } catch (...) {
        if (self) {
            noteKeyInProgress(account.id, false);
        }
        throw;
    }
    if (!self) {
        co_return account;
    }
    m_accounts.append(account);
    setSelectedAccountID(account.id);
    persist();
    noteKeyInProgress(account.id, false);
    Q_EMIT accountsChanged();
    co_return account;
}

QCoro::Task<> AccountStore::replaceKey(Account account, QByteArray privateKeyPEM) {
    QPointer<AccountStore> self(this);
    const QString keyName = account.idText();
    co_await m_platform.secrets->save(keyName, privateKeyPEM);
    if (self) {
        noteKeyMissing(account.id, false);
    }
}

void AccountStore::noteKeyInProgress(const QUuid& id, bool inProgress) {
    const QString path = m_platform.paths.file(keysInProgressFile);
    QJsonArray ids = QJsonDocument::fromJson(AtomicFile::read(path).value_or(QByteArray())).array();
    const QJsonValue text(Account::idText(id));
    if (inProgress) {
        ids.append(text);
    } else {
        for (qsizetype i = ids.size() - 1; i >= 0; --i) {
            if (ids.at(i) == text) {
                ids.removeAt(i);
            }
        }
    }
    if (auto error = AtomicFile::write(path, QJsonDocument(ids).toJson(QJsonDocument::Compact))) {
        qCWarning(lcAccountStore, "Failed to note a key in progress: %s", qPrintable(*error));
    }
}

QCoro::Task<> AccountStore::dropUnfinishedKeys() {
    QPointer<AccountStore> self(this);
    const QString path = m_platform.paths.file(keysInProgressFile);
    const auto bytes = AtomicFile::read(path);
    if (!bytes) {
        co_return;
    }
    const QJsonArray ids = QJsonDocument::fromJson(*bytes).array();
    for (const QJsonValue& value : ids) {
        const QUuid id(value.toString());
        if (id.isNull() || account(id)) {
            // Listed after all: the add got through to the file.
            noteKeyInProgress(id, false);
            continue;
        }
        const QString keyName = value.toString();
        try {
            co_await m_platform.secrets->remove(keyName);
        } catch (...) {
            // The keychain cannot be asked now; the entry stays for the next start.
            co_return;
        }
        if (!self) {
            co_return;
        }
        noteKeyInProgress(id, false);
    }
}

QCoro::Task<> AccountStore::removeAccount(Account account) {
    QPointer<AccountStore> self(this);
    const QString keyName = account.idText();
    co_await m_platform.secrets->remove(keyName);
    if (!self) {
        co_return;
    }
    m_accounts.removeIf([&](const Account& a) { return a.id == account.id; });
    m_missingKeys.remove(account.id);
    if (m_selectedAccountID == account.id) {
        setSelectedAccountID(m_accounts.isEmpty() ? std::nullopt
                                                  : std::optional<QUuid>(m_accounts.first().id));
    }
    persist();
    Q_EMIT accountsChanged();
}

void AccountStore::updateAccount(const Account& account) {
    for (auto& a : m_accounts) {
        if (a.id == account.id) {
            a = account;
            persist();
            Q_EMIT accountsChanged();
            return;
        }
    }
}

QCoro::Task<QByteArray> AccountStore::privateKey(Account account) {
    QByteArray bytes;
    if (m_ephemeralKey && m_accounts.size() == 1 && m_accounts.first().id == account.id) {
        bytes = *m_ephemeralKey;
    } else {
        const QString keyName = account.idText();
        QPointer<AccountStore> self(this);
        try {
            bytes = co_await m_platform.secrets->read(keyName);
        } catch (const KeychainError& error) {
            if (self && error.kind() == KeychainError::Kind::NotFound) {
                noteKeyMissing(account.id, true);
            }
            throw;
        }
        if (self) {
            noteKeyMissing(account.id, false);
        }
    }
    auto decoder = QStringDecoder(QStringDecoder::Utf8);
    (void)QString(decoder(bytes));
    if (decoder.hasError()) {
        throw KeychainError::encodingFailed();
    }
    co_return bytes;
}

QCoro::Task<bool> AccountStore::checkKeyMissing(Account account) {
    try {
        co_await privateKey(account);
    } catch (const KeychainError& error) {
        co_return error.kind() == KeychainError::Kind::NotFound;
    } catch (...) {
    }
    co_return false;
}

void AccountStore::noteKeyMissing(const QUuid& id, bool missing) {
    const bool changed = missing ? !m_missingKeys.contains(id) : m_missingKeys.remove(id);
    if (missing) {
        m_missingKeys.insert(id);
    }
    if (changed) {
        Q_EMIT missingKeysChanged();
    }
}

std::shared_ptr<AppStoreConnectClient> AccountStore::clientWithKey(const Account& account,
                                                                   const QByteArray& pem) const {
    AppStoreConnectClient::Parts parts;
    parts.clock = m_platform.clock;
    parts.transport = m_platform.transport;
    parts.apiRoot = m_platform.apiRoot;
    parts.auth = std::make_shared<AuthenticationService>(account.keyID, account.issuerID, pem);
    parts.accountName = account.name;
    parts.auditLog = m_auditLog;
    parts.governor = m_governor;
    parts.truncationRegistry = m_truncation;
    parts.waitAnnouncer = m_waitAnnouncer;
    return AppStoreConnectClient::create(std::move(parts));
}

std::shared_ptr<AppStoreConnectClient>
AccountStore::makeTestClient(const Platform& platform, const Account& account, const QByteArray& pem) {
    AppStoreConnectClient::Parts parts;
    parts.clock = platform.clock;
    parts.transport = platform.transport;
    parts.apiRoot = platform.apiRoot;
    parts.auth = std::make_shared<AuthenticationService>(account.keyID, account.issuerID, pem);
    parts.accountName = account.name;
    return AppStoreConnectClient::create(std::move(parts));
}

QCoro::Task<std::shared_ptr<AppStoreConnectClient>> AccountStore::makeClient(Account account) {
    QPointer<AccountStore> self(this);
    const QByteArray pem = co_await privateKey(account);
    if (!self) {
        throw VelmoraAPIError::notConfigured();
    }
    co_return clientWithKey(account, pem);
}

namespace {

// The first app id of a list answer, if any; the probe needs one app to ask about analytics.
std::optional<QString> firstAppID(const QByteArray& body) {
    const auto doc = QJsonDocument::fromJson(body);
    const auto data = doc.object().value(u"data"_s).toArray();
    if (data.isEmpty()) {
        return std::nullopt;
    }
    const QString id = data.first().toObject().value(u"id"_s).toString();
    return id.isEmpty() ? std::nullopt : std::optional<QString>(id);
}

} // namespace

QCoro::Task<AccountCapabilities> AccountStore::probeCapabilities(Account account) {
    QPointer<AccountStore> self(this);
    AccountCapabilities caps;
    caps.checkedAt = m_platform.clock->now();
    std::shared_ptr<AppStoreConnectClient> client;
    try {
        client = co_await makeClient(account);
    } catch (...) {
        co_return caps;
    }

    std::optional<QString> appID;
    try {
        appID = firstAppID(co_await client->call(AccountEndpoints::firstApp()));
        caps.canReadApps = true;
    } catch (...) {
    }

    try {
        co_await client->call(AccountEndpoints::firstUser());
        caps.canReadUsers = true;
    } catch (...) {
    }

    // Analytics report requests can only be listed per app, so the probe asks about the first
    // app it saw; without any app there is nothing to measure.
    if (appID) {
        try {
            co_await client->call(AccountEndpoints::firstAnalyticsReportRequest(*appID));
            caps.canReadAnalytics = true;
        } catch (...) {
        }
    }

    if (account.hasUsableVendorNumber()) {
        try {
            const QDate day = caps.checkedAt.toUTC().addSecs(-172800).date();
            co_await client->call(AccountEndpoints::dailySalesSummary(account.vendorNumber->trimmed(), day));
            caps.canReadSalesReports = true;
        } catch (...) {
        }
    }

    if (!self) {
        co_return caps;
    }
    if (auto current = this->account(account.id)) {
        current->capabilities = caps;
        updateAccount(*current);
    }
    co_return caps;
}

void AccountStore::useEphemeralAccount(Account account, QByteArray privateKeyPEM) {
    m_ephemeralKey = std::move(privateKeyPEM);
    m_accounts = {account};
    Q_EMIT accountsChanged();
    setSelectedAccountID(account.id);
}
