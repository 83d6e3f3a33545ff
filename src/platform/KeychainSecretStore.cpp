#include "platform/KeychainSecretStore.h"

#include "platform/KeychainError.h"

#include <QCoro/QCoroSignal>
#include <qt6keychain/keychain.h>

#if defined(Q_OS_UNIX) && !defined(Q_OS_DARWIN) && !defined(Q_OS_ANDROID)
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#define VARNIS_SECRET_SERVICE 1
#endif

using namespace Qt::StringLiterals;

namespace {

// Whether the failure of a job means that there is no keychain at all. libsecret reports a
// missing session bus ("Could not connect: ...") or a bus without any Secret Service as a plain
// GLib error, which QtKeychain passes on as OtherError, the same code as a fault inside a running
// keyring; only asking the bus tells the two apart. The question is asked on failure only.
bool noSecretServiceReachable() {
#ifdef VARNIS_SECRET_SERVICE
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        return true;
    }
    const QDBusConnectionInterface* daemon = bus.interface();
    if (daemon == nullptr) {
        return true;
    }
    const QString secretService = u"org.freedesktop.secrets"_s;
    if (daemon->isServiceRegistered(secretService).value()) {
        return false;
    }
    // A service that the bus can start on demand counts as reachable.
    const QDBusReply<QStringList> activatable = daemon->activatableServiceNames();
    return activatable.isValid() && !activatable.value().contains(secretService);
#else
    return false;
#endif
}

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
    case QKeychain::OtherError:
        if (noSecretServiceReachable()) {
            throw KeychainError::unavailable(job->errorString());
        }
        [[fallthrough]];
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
    if (job->binaryData().isEmpty()) {
        // An entry without bytes is not a key; say so here rather than as a bad signature later.
        throw KeychainError::unhandled(0);
    }
    co_return job->binaryData();
}

QCoro::Task<> KeychainSecretStore::remove(QString account) {
    auto job = std::make_unique<QKeychain::DeletePasswordJob>(m_service);
    job->setKey(account);
    co_await runJob(job.get(), true);
}
