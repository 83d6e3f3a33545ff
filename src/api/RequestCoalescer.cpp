#include "api/RequestCoalescer.h"

#include <coroutine>
#include <exception>
#include <optional>
#include <vector>

// The shared state of one network call: its outcome and whoever waits for it.
struct RequestCoalescer::Flight {
    bool done = false;
    QByteArray bytes;
    std::exception_ptr error;
    std::vector<std::coroutine_handle<>> waiters;

    void finish() {
        done = true;
        auto resume = std::move(waiters);
        waiters.clear();
        for (auto handle : resume) {
            handle.resume();
        }
    }
};

namespace {

// Holds a plain pointer: the caller keeps the flight alive in its own frame.
struct FlightAwaiter {
    RequestCoalescer::Flight* flight;
    bool await_ready() const noexcept { return flight->done; }
    void await_suspend(std::coroutine_handle<> handle) { flight->waiters.push_back(handle); }
    QByteArray await_resume() const {
        if (flight->error) {
            std::rethrow_exception(flight->error);
        }
        return flight->bytes;
    }
};

} // namespace

QCoro::Task<QByteArray> RequestCoalescer::data(QString key, Operation operation) {
    if (const auto existing = m_inFlight.value(key)) {
        // A named awaiter, not a temporary: GCC 12 destroys a temporary awaiter of a co_await
        // twice, which freed the shared flight under the caller that started it.
        FlightAwaiter awaiter{existing.get()};
        co_return co_await awaiter;
    }
    auto flight = std::make_shared<Flight>();
    m_inFlight.insert(key, flight);
    try {
        auto task = operation();
        flight->bytes = co_await task;
    } catch (...) {
        flight->error = std::current_exception();
    }
    // Only the caller that started the call removes it, and only its own entry.
    if (m_inFlight.value(key) == flight) {
        m_inFlight.remove(key);
    }
    flight->finish();
    if (flight->error) {
        std::rethrow_exception(flight->error);
    }
    co_return flight->bytes;
}
