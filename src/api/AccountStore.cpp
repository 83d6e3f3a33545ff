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
}

AccountStore::~AccountStore() = default;

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

namespace {

// Ids of new accounts are derived from issuer and key id within this namespace.
const QUuid accountNamespace(u"{6f1c7e52-3a8d-4b0e-9d21-5c4f8a7b9e13}"_s);

} // namespace

QCoro::Task<Account> AccountStore::addAccount(QString name, QString issuerID, QString keyID,
                                              QByteArray privateKeyPEM, std::optional<QString> vendorNumber) {
    QPointer<AccountStore> self(this);
    const QString nameKey = name.trimmed().toCaseFolded();
    // The account this add stands for, if it is one already listed: the same key under the same
    // name, or the same key of an account whose key went missing.
    std::optional<Account> sameKey;
    const QList<Account> listed = m_accounts;
    for (const Account& existing : listed) {
        if (existing.keyID != keyID || existing.issuerID.compare(issuerID, Qt::CaseInsensitive) != 0) {
            continue;
        }
        const bool sameName = existing.name.trimmed().toCaseFolded() == nameKey;
        if (sameName || co_await checkKeyMissing(existing)) {
            sameKey = existing;
            break;
        }
    }
    if (!self) {
        co_return Account{};
    }
    Account account = sameKey.value_or(Account{});
    if (!sameKey) {
        account.id =
            QUuid::createUuidV5(accountNamespace, issuerID.toLower() + u'/' + keyID + u'/' + nameKey);
        account.issuerID = issuerID;
        account.keyID = keyID;
        account.createdAt = m_platform.clock->now();
    }
    account.name = std::move(name);
    account.vendorNumber = nilIfBlank(vendorNumber);
    const QString keyName = account.idText();
    co_await m_platform.secrets->save(keyName, privateKeyPEM);
    if (!self) {
        co_return account;
    }
    noteKeyMissing(account.id, false);
    if (const qsizetype row = sameKey ? m_accounts.indexOf(*sameKey) : -1; row >= 0) {
        m_accounts.replace(row, account);
    } else {
        m_accounts.append(account);
    }
    setSelectedAccountID(account.id);
    persist();
    Q_EMIT accountsChanged();
    co_return account;
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
