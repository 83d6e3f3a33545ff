#pragma once

#include "api/Account.h"
#include "platform/Platform.h"

#include <QCoro/QCoroTask>
#include <QHash>
#include <QObject>
#include <QSet>

#include <memory>
#include <optional>

class AppStoreConnectClient;
class AuditLog;
class RateLimitGovernor;
class TruncationRegistry;
class WaitAnnouncer;

// The accounts: metadata in accounts.json, private keys in the secret store, and the objects
// that every client shares (governor, truncation registry, change log). Makes clients.
class AccountStore : public QObject {
    Q_OBJECT
public:
    explicit AccountStore(Platform platform, QObject* parent = nullptr);
    ~AccountStore() override;

    const QList<Account>& accounts() const { return m_accounts; }
    std::optional<QUuid> selectedAccountID() const { return m_selectedAccountID; }
    void setSelectedAccountID(std::optional<QUuid> id);
    std::optional<Account> selectedAccount() const;
    std::optional<Account> account(const QUuid& id) const;

    // Raises KeychainError; the list stays unchanged then.
    QCoro::Task<Account> addAccount(QString name, QString issuerID, QString keyID, QByteArray privateKeyPEM,
                                    std::optional<QString> vendorNumber = std::nullopt);
    QCoro::Task<> removeAccount(Account account);
    // Stores the key of a listed account anew, for an account whose key went missing; raises
    // KeychainError.
    QCoro::Task<> replaceKey(Account account, QByteArray privateKeyPEM);
    void updateAccount(const Account& account);

    // The account's private key (raises KeychainError; encodingFailed if it is not UTF-8).
    QCoro::Task<QByteArray> privateKey(Account account);
    // Looks into the keychain: true only when it holds no key for the account (an interrupted
    // add or remove); a keychain that cannot be asked is another matter and answers false.
    QCoro::Task<bool> checkKeyMissing(Account account);
    // What the last look into the keychain found for the account, without looking again.
    bool isKeyMissing(const QUuid& id) const { return m_missingKeys.contains(id); }
    // A fresh client with the shared governor, registry and change log; raises KeychainError.
    QCoro::Task<std::shared_ptr<AppStoreConnectClient>> makeClient(Account account);
    // The same from a key already at hand.
    std::shared_ptr<AppStoreConnectClient> clientWithKey(const Account& account, const QByteArray& pem) const;
    // A client for a connection test: no change log, no governor, no registry.
    static std::shared_ptr<AppStoreConnectClient>
    makeTestClient(const Platform& platform, const Account& account, const QByteArray& pem);

    // Measures what the key may do; never raises.
    QCoro::Task<AccountCapabilities> probeCapabilities(Account account);

    // An account for this run only: held in memory with its key, never written anywhere, and
    // used instead of the stored accounts.
    void useEphemeralAccount(Account account, QByteArray privateKeyPEM);
    bool isEphemeral() const { return m_ephemeralKey.has_value(); }

    const Platform& platform() const { return m_platform; }
    const std::shared_ptr<RateLimitGovernor>& rateLimitGovernor() const { return m_governor; }
    const std::shared_ptr<TruncationRegistry>& truncationRegistry() const { return m_truncation; }
    const std::shared_ptr<AuditLog>& auditLog() const { return m_auditLog; }
    // Handed to every client made from now on.
    void setWaitAnnouncer(std::shared_ptr<WaitAnnouncer> announcer) {
        m_waitAnnouncer = std::move(announcer);
    }

Q_SIGNALS:
    void accountsChanged();
    void selectedAccountChanged();
    void missingKeysChanged();

private:
    void load();
    void persist();
    void noteKeyMissing(const QUuid& id, bool missing);
    // The ids whose key is being written while the accounts file does not list them yet.
    void noteKeyInProgress(const QUuid& id, bool inProgress);
    // Deletes the keys of adds that never reached the accounts file.
    QCoro::Task<> dropUnfinishedKeys();
    static const QString keysInProgressFile;

    Platform m_platform;
    QList<Account> m_accounts;
    std::optional<QUuid> m_selectedAccountID;
    std::shared_ptr<RateLimitGovernor> m_governor;
    std::shared_ptr<TruncationRegistry> m_truncation;
    std::shared_ptr<AuditLog> m_auditLog;
    std::shared_ptr<WaitAnnouncer> m_waitAnnouncer;
    std::optional<QByteArray> m_ephemeralKey;
    QSet<QUuid> m_missingKeys;
};
