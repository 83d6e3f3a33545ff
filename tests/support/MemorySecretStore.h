#pragma once

#include "platform/KeychainError.h"
#include "platform/SecretStore.h"

#include <QMap>

#include <optional>

// SecretStore in memory. It can be told to fail every call, to test the failure paths.
class MemorySecretStore final : public SecretStore {
public:
    QCoro::Task<> save(QString account, QByteArray data) override;
    QCoro::Task<QByteArray> read(QString account) override;
    QCoro::Task<> remove(QString account) override;

    // Every later call raises `error`, until failNever().
    void failWith(const KeychainError& error) { m_failure = error; }
    void failNever() { m_failure.reset(); }

    // Account -> secret, for assertions and for setting up a test.
    const QMap<QString, QByteArray>& contents() const { return m_contents; }
    void setContents(QMap<QString, QByteArray> contents) { m_contents = std::move(contents); }

    // How many calls of save, read and remove reached the store, failed ones included.
    int callCount() const { return m_calls; }

private:
    void enter();

    QMap<QString, QByteArray> m_contents;
    std::optional<KeychainError> m_failure;
    int m_calls = 0;
};
