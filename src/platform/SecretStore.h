#pragma once

#include <QByteArray>
#include <QCoro/QCoroTask>
#include <QString>

// Secret bytes under a two-level name (service, account). Saving an existing account replaces
// its value; reading a missing one raises KeychainError::notFound; removing a missing one is fine.
class SecretStore {
public:
    virtual ~SecretStore() = default;
    virtual QCoro::Task<> save(QString account, QByteArray data) = 0;
    virtual QCoro::Task<QByteArray> read(QString account) = 0;
    virtual QCoro::Task<> remove(QString account) = 0;
};
