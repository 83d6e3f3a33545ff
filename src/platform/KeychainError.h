#pragma once

#include "platform/VarnisError.h"

// The one error of the key store.
class KeychainError : public VarnisError {
public:
    enum class Kind { Unhandled, NotFound, EncodingFailed, Unauthorized, Unavailable };

    static KeychainError unhandled(int status, QString platformMessage = {});
    static KeychainError notFound() { return KeychainError(Kind::NotFound); }
    static KeychainError encodingFailed() { return KeychainError(Kind::EncodingFailed); }
    static KeychainError unauthorized() { return KeychainError(Kind::Unauthorized); }
    // No secret store can be reached at all (no Secret Service on the session bus).
    static KeychainError unavailable(QString platformMessage);

    Kind kind() const { return m_kind; }
    int status() const { return m_status; }
    QString errorDescription() const override;

private:
    explicit KeychainError(Kind kind) : m_kind(kind) {}
    Kind m_kind;
    int m_status = 0;
    QString m_platformMessage;
};
