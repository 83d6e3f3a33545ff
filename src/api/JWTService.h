#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QStringList>

#include <exception>
#include <memory>
#include <optional>

// A parsed private key, ready to sign; what it holds stays inside the signing code.
struct SigningKey;

// Makes the ES256 token that every API call carries. The key is parsed for each new token and
// never kept in parsed form.
class JWTService {
public:
    enum class JWTError { InvalidPrivateKey, EncodingFailed };
    class Failure : public std::exception {
    public:
        explicit Failure(JWTError error) : m_error(error) {}
        JWTError error() const { return m_error; }
        const char* what() const noexcept override { return "token could not be made"; }

    private:
        JWTError m_error;
    };

    static constexpr int tokenLifetimeSeconds = 1140;

    JWTService(QString keyID, QString issuerID, QByteArray privateKeyPEM);
    JWTService(QString keyID, QString issuerID, std::shared_ptr<const SigningKey> key);

    // The P-256 key of `pem`, parsed once, or null.
    static std::shared_ptr<const SigningKey> signingKey(const QByteArray& pem);

    // Raises Failure.
    QString makeToken(const std::optional<QStringList>& scope, const QDateTime& now) const;

    // True when `pem` holds a P-256 private key in PKCS#8 ("BEGIN PRIVATE KEY").
    static bool isUsableP256Key(const QByteArray& pem);
    static QByteArray base64url(const QByteArray& data);

private:
    QString m_keyID;
    QString m_issuerID;
    QByteArray m_privateKeyPEM;
    std::shared_ptr<const SigningKey> m_key;
};
