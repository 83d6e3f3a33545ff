#pragma once

#include "platform/SecretStore.h"

// The platform keychain through QtKeychain: the macOS Keychain, the Windows credential store,
// the Secret Service (GNOME Keyring, KWallet) on Linux.
class KeychainSecretStore final : public SecretStore {
public:
    explicit KeychainSecretStore(QString service);

    QCoro::Task<> save(QString account, QByteArray data) override;
    QCoro::Task<QByteArray> read(QString account) override;
    QCoro::Task<> remove(QString account) override;

private:
    QString m_service;
};
