#include "api/AuthenticationService.h"

#include "api/JWTService.h"
#include "platform/SecretMemory.h"

AuthenticationService::AuthenticationService(QString keyID, QString issuerID, QByteArray privateKeyPEM)
    : m_keyID(std::move(keyID)), m_issuerID(std::move(issuerID)) {
    keepSecretsOutOfCoreDumps();
    m_key = JWTService::signingKey(privateKeyPEM);
    wipe(privateKeyPEM);
}

QString AuthenticationService::currentToken(const QDateTime& now) {
    if (m_cached && double(now.msecsTo(m_cached->expiresAt)) / 1000.0 > renewalMargin) {
        return m_cached->value;
    }
    if (!m_key) {
        throw JWTService::Failure(JWTService::JWTError::InvalidPrivateKey);
    }
    const QString token = JWTService(m_keyID, m_issuerID, m_key).makeToken(std::nullopt, now);
    m_cached = CachedToken{token, now.addSecs(JWTService::tokenLifetimeSeconds)};
    ++m_tokensMade;
    return token;
}
