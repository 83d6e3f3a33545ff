// The answer headers the client acts on: X-Rate-Limit, which sets Apple's hourly budget for
// every account, and Retry-After of a 429, which sets how long a request waits.

#include "FuzzSupport.h"

#include "api/PipelineStages.h"
#include "api/RateLimitGovernor.h"
#include "platform/Clock.h"
#include "platform/HttpTransport.h"

#include <cmath>

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    Fuzz::startApplication();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // The header value as the transport hands it over.
    HttpResponse response;
    response.headers = {{QByteArrayLiteral("x-rate-limit"), Fuzz::bytes(data, size)},
                        {QByteArrayLiteral("retry-after"), Fuzz::bytes(data, size)}};

    static auto clock = std::make_shared<ManualClock>();
    RateLimitGovernor governor(clock);
    governor.update(response.header("X-Rate-Limit"));
    Fuzz::check(governor.updatedAt().has_value(), "a received header leaves no time of update");
    if (governor.limit() && governor.remaining() && *governor.limit() > 0) {
        (void)(double(*governor.remaining()) / double(*governor.limit()));
    }

    if (const auto wait = parseRetryAfter(response.header("Retry-After"))) {
        Fuzz::check(std::isfinite(*wait) && *wait >= 0 && *wait <= 3600, "a wait outside 0 to 3600 s");
    }
    return 0;
}
