#include "api/AuthenticationService.h"

#include "api/JWTService.h"

AuthenticationService::AuthenticationService(QString keyID, QString issuerID, QByteArray privateKeyPEM)
    : m_keyID(std::move(keyID)), m_issuerID(std::move(issuerID)), m_privateKeyPEM(std::move(privateKeyPEM)) {}

QString AuthenticationService::currentToken(const QDateTime& now) {
    if (m_cached && double(now.msecsTo(m_cached->expiresAt)) / 1000.0 > renewalMargin) {
        return m_cached->value;
    }
    const QString token = JWTService(m_keyID, m_issuerID, m_privateKeyPEM).makeToken(std::nullopt, now);
    m_cached = CachedToken{token, now.addSecs(JWTService::tokenLifetimeSeconds)};
    ++m_tokensMade;
    return token;
}
