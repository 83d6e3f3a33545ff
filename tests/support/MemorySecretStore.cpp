#include "support/MemorySecretStore.h"

void MemorySecretStore::enter() {
    ++m_calls;
    if (m_failure) {
        throw *m_failure;
    }
}

QCoro::Task<> MemorySecretStore::save(QString account, QByteArray data) {
    enter();
    m_contents.insert(account, data);
    co_return;
}

QCoro::Task<QByteArray> MemorySecretStore::read(QString account) {
    enter();
    const auto it = m_contents.constFind(account);
    if (it == m_contents.constEnd()) {
        throw KeychainError::notFound();
    }
    co_return *it;
}

QCoro::Task<> MemorySecretStore::remove(QString account) {
    enter();
    m_contents.remove(account);
    co_return;
}
