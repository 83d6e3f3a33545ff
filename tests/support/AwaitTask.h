#pragma once

#include <QCoro/QCoroTask>

#include <exception>
#include <optional>
#include <type_traits>

// Runs the event loop until `task` is done and returns its result or rethrows its exception.
// QCoro 0.8's QCoro::waitFor loses a task's exception and then never returns; this does not.
namespace VarnisTest {

namespace detail {
template <typename T>
QCoro::Task<> capture(QCoro::Task<T> task, std::optional<T>& result, std::exception_ptr& error) {
    try {
        result.emplace(co_await task);
    } catch (...) {
        error = std::current_exception();
    }
}

inline QCoro::Task<> captureVoid(QCoro::Task<> task, std::exception_ptr& error) {
    try {
        co_await task;
    } catch (...) {
        error = std::current_exception();
    }
}
} // namespace detail

template <typename T> T awaitTask(QCoro::Task<T> task) {
    std::exception_ptr error;
    if constexpr (std::is_void_v<T>) {
        QCoro::waitFor(detail::captureVoid(std::move(task), error));
        if (error) {
            std::rethrow_exception(error);
        }
    } else {
        std::optional<T> result;
        QCoro::waitFor(detail::capture(std::move(task), result, error));
        if (error) {
            std::rethrow_exception(error);
        }
        return std::move(*result);
    }
}

} // namespace VarnisTest
