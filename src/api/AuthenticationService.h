#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>

#include <memory>
#include <optional>

struct SigningKey;

// Keeps the last token of one client and renews it a minute before it runs out. The key is
// parsed once; its PEM text is wiped then, and from the first key on the process makes no
// core dump that could hold it.
class AuthenticationService {
public:
    static constexpr double renewalMargin = 60;

    AuthenticationService(QString keyID, QString issuerID, QByteArray privateKeyPEM);

    // Raises JWTService::Failure when no token can be made; the cache then stays as it was.
    QString currentToken(const QDateTime& now);

    // How many tokens this service has signed (for measuring signature cost).
    int tokensMade() const { return m_tokensMade; }

private:
    struct CachedToken {
        QString value;
        QDateTime expiresAt;
    };
    QString m_keyID;
    QString m_issuerID;
    std::shared_ptr<const SigningKey> m_key;
    std::optional<CachedToken> m_cached;
    int m_tokensMade = 0;
};
