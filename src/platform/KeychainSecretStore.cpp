#include "platform/KeychainSecretStore.h"

#include "platform/KeychainError.h"

#include <qt6keychain/keychain.h>
#include <QCoro/QCoroSignal>

namespace {

// Runs a QtKeychain job to its end and turns its error into KeychainError. The job is owned by
// the caller and must not delete itself.
QCoro::Task<> runJob(QKeychain::Job* job, bool missingIsFine) {
    job->setAutoDelete(false);
    job->setInsecureFallback(false);
    job->start();
    co_await qCoro(job, &QKeychain::Job::finished);
    switch (job->error()) {
    case QKeychain::NoError:
        co_return;
    case QKeychain::EntryNotFound:
        if (missingIsFine) {
            co_return;
        }
        throw KeychainError::notFound();
    case QKeychain::NoBackendAvailable:
    case QKeychain::NotImplemented:
        throw KeychainError::unavailable(job->errorString());
    case QKeychain::AccessDeniedByUser:
    case QKeychain::AccessDenied:
        throw KeychainError::unauthorized();
    default:
        throw KeychainError::unhandled(int(job->error()), job->errorString());
    }
}

} // namespace

KeychainSecretStore::KeychainSecretStore(QString service) : m_service(std::move(service)) {}

QCoro::Task<> KeychainSecretStore::save(QString account, QByteArray data) {
    auto job = std::make_unique<QKeychain::WritePasswordJob>(m_service);
    job->setKey(account);
    job->setBinaryData(data);
    co_await runJob(job.get(), false);
}

QCoro::Task<QByteArray> KeychainSecretStore::read(QString account) {
    auto job = std::make_unique<QKeychain::ReadPasswordJob>(m_service);
    job->setKey(account);
    co_await runJob(job.get(), false);
    co_return job->binaryData();
}

QCoro::Task<> KeychainSecretStore::remove(QString account) {
    auto job = std::make_unique<QKeychain::DeletePasswordJob>(m_service);
    job->setKey(account);
    co_await runJob(job.get(), true);
}
