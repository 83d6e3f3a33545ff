#pragma once

#include "api/RequestPipeline.h"
#include "api/WaitAnnouncer.h"

#include <QString>

#include <memory>
#include <optional>

class AuditLog;
class AuthenticationService;
class Clock;
class RateLimitGovernor;

// The stages of a call to the API, outermost first; the client stacks them in this order:
//   ErrorMappingStage → RetryStage → AuditStage → GovernorStage → TokenStage → transport.
// Within one attempt that waits for the governor, then the token, then the network, then
// hands the rate header back to the governor and only then writes the audit entry.

// Turns a final answer that is no success into the one German error the user reads.
class ErrorMappingStage : public PipelineStage {
public:
    // An API answer reads Apple's error document; a storage answer (uploads) only its status.
    enum class Kind { Api, Storage };
    explicit ErrorMappingStage(Kind kind) : m_kind(kind) {}
    QCoro::Task<HttpResponse> process(PipelineCall call, PipelineNext next) override;

private:
    Kind m_kind;
};

// The one place that tries again. Up to four tries: after a 429 it waits for Retry-After or
// 2, 4, 6 s, after a 5xx for 1.5, 3, 4.5 s; every other answer, and the last one, goes up as
// it came. Without a network it waits for one (2, 4, 8 … 30 s) for up to five minutes; those
// waits count as no try. Storage uploads only wait for the network. A wait longer than the
// announcer's threshold is announced for as long as it lasts.
class RetryStage : public PipelineStage {
public:
    static constexpr int maxAttempts = 4;
    static constexpr double connectivityWindow = 300;
    enum class Policy { ApiAnswers, ConnectivityOnly };

    explicit RetryStage(std::shared_ptr<Clock> clock, Policy policy = Policy::ApiAnswers,
                        std::shared_ptr<WaitAnnouncer> announcer = {}, QString accountName = {})
        : m_clock(std::move(clock)), m_policy(policy), m_announcer(std::move(announcer)),
          m_accountName(std::move(accountName)) {}
    QCoro::Task<HttpResponse> process(PipelineCall call, PipelineNext next) override;

private:
    QCoro::Task<> pause(double seconds, WaitAnnouncer::Reason reason);

    std::shared_ptr<Clock> m_clock;
    Policy m_policy;
    std::shared_ptr<WaitAnnouncer> m_announcer;
    QString m_accountName;
};

// One entry per attempt of a write that got an answer; reads leave none.
class AuditStage : public PipelineStage {
public:
    AuditStage(std::shared_ptr<AuditLog> log, std::shared_ptr<Clock> clock, QString accountName)
        : m_log(std::move(log)), m_clock(std::move(clock)), m_accountName(std::move(accountName)) {}
    QCoro::Task<HttpResponse> process(PipelineCall call, PipelineNext next) override;

private:
    std::shared_ptr<AuditLog> m_log;
    std::shared_ptr<Clock> m_clock;
    QString m_accountName;
};

// Leave from the hourly budget before the request, the rate header after it (failures too).
class GovernorStage : public PipelineStage {
public:
    explicit GovernorStage(std::shared_ptr<RateLimitGovernor> governor) : m_governor(std::move(governor)) {}
    QCoro::Task<HttpResponse> process(PipelineCall call, PipelineNext next) override;

private:
    std::shared_ptr<RateLimitGovernor> m_governor;
};

// The signed token for each attempt. Whatever goes wrong with the key reads as one error: the
// cause may hold key data.
class TokenStage : public PipelineStage {
public:
    TokenStage(std::shared_ptr<AuthenticationService> auth, std::shared_ptr<Clock> clock)
        : m_auth(std::move(auth)), m_clock(std::move(clock)) {}
    QCoro::Task<HttpResponse> process(PipelineCall call, PipelineNext next) override;

private:
    std::shared_ptr<AuthenticationService> m_auth;
    std::shared_ptr<Clock> m_clock;
};

// Retry-After as seconds: a number that is finite and not negative, at most an hour.
std::optional<double> parseRetryAfter(const std::optional<QString>& header);
