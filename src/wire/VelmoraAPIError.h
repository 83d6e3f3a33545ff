#pragma once

#include "platform/VarnisError.h"
#include "wire/AppleErrorDocument.h"

#include <optional>

// The one error the API client raises; `errorDescription` is the German message.
class VelmoraAPIError : public VarnisError {
public:
    enum class Kind {
        Network,
        Decoding,
        Http,
        RateLimited,
        RateLimitBudgetExhausted,
        Forbidden,
        UploadFailed,
        WorkflowConflict,
        Unknown,
        NotConfigured,
        InvalidPrivateKey,
        Unauthorized,
    };

    static VelmoraAPIError network(QString underlying);
    static VelmoraAPIError decoding(QString underlying);
    static VelmoraAPIError http(int status, std::optional<QString> requestID, QList<AppleErrorObject> apple);
    static VelmoraAPIError rateLimited(std::optional<double> retryAfter);
    static VelmoraAPIError rateLimitBudgetExhausted(int remaining, int limit);
    static VelmoraAPIError forbidden(QList<AppleErrorObject> apple);
    static VelmoraAPIError uploadFailed(QString reason);
    static VelmoraAPIError workflowConflict(QString reason);
    static VelmoraAPIError unknown(int status);
    static VelmoraAPIError notConfigured() { return VelmoraAPIError(Kind::NotConfigured); }
    static VelmoraAPIError invalidPrivateKey() { return VelmoraAPIError(Kind::InvalidPrivateKey); }
    static VelmoraAPIError unauthorized() { return VelmoraAPIError(Kind::Unauthorized); }

    Kind kind() const { return m_kind; }
    int status() const { return m_status; }
    const std::optional<QString>& requestID() const { return m_requestID; }
    const QList<AppleErrorObject>& apple() const { return m_apple; }
    std::optional<double> retryAfter() const { return m_retryAfter; }
    int remaining() const { return m_remaining; }
    int limit() const { return m_limit; }
    // The underlying description (network, decoding) or the reason (upload, workflow).
    const QString& text() const { return m_text; }

    QString errorDescription() const override;

private:
    QString description() const;

    explicit VelmoraAPIError(Kind kind) : m_kind(kind) {}

    Kind m_kind;
    int m_status = 0;
    std::optional<QString> m_requestID;
    QList<AppleErrorObject> m_apple;
    std::optional<double> m_retryAfter;
    int m_remaining = 0;
    int m_limit = 0;
    QString m_text;
};
