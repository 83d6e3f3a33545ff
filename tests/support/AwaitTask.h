#pragma once

#include <QCoro/QCoroTask>
#include <QEventLoop>
#include <QTimer>
#include <QtGlobal>

#include <chrono>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>

// Runs the event loop until `task` is done and returns its result or rethrows its exception.
// QCoro 0.8's QCoro::waitFor loses a task's exception and then never returns; this does not. A
// task that never finishes (an answer nobody sends, a prompt nobody answers) ends the wait after
// `timeout` with TaskTimedOut instead of hanging the run until ctest kills it without a word.
namespace VarnisTest {

inline constexpr std::chrono::milliseconds defaultTaskTimeout{10000};

// Not a std::exception on purpose: helpers that turn the awaited task's failures into values
// (`catch (const std::exception&)`) must not mistake a hang for one of them.
struct TaskTimedOut {
    std::string message;
    const char* what() const noexcept { return message.c_str(); }
};

namespace detail {

template <typename T> struct TaskState {
    std::optional<T> result;
    std::exception_ptr error;
    bool done = false;
    QEventLoop* loop = nullptr;
};

template <> struct TaskState<void> {
    std::exception_ptr error;
    bool done = false;
    QEventLoop* loop = nullptr;
};

// The state is shared: a task that outlives a timed-out wait still has somewhere to finish.
template <typename T> QCoro::Task<> capture(QCoro::Task<T> task, std::shared_ptr<TaskState<T>> state) {
    try {
        if constexpr (std::is_void_v<T>) {
            co_await task;
        } else {
            state->result.emplace(co_await task);
        }
    } catch (...) {
        state->error = std::current_exception();
    }
    state->done = true;
    if (state->loop) {
        state->loop->quit();
    }
}

[[noreturn]] inline void timedOut(std::chrono::milliseconds timeout) {
    TaskTimedOut failure{"awaitTask: the task did not finish within " + std::to_string(timeout.count()) +
                         " ms; something it waits for never answered"};
    qCritical("%s", failure.what());
    throw failure;
}

} // namespace detail

template <typename T>
T awaitTask(QCoro::Task<T> task, std::chrono::milliseconds timeout = defaultTaskTimeout) {
    auto state = std::make_shared<detail::TaskState<T>>();
    // A task runs at once up to its first suspension, so it may be done before any loop runs.
    const QCoro::Task<> runner = detail::capture(std::move(task), state);
    if (!state->done) {
        QEventLoop loop;
        QTimer guard;
        guard.setSingleShot(true);
        QObject::connect(&guard, &QTimer::timeout, &loop, &QEventLoop::quit);
        state->loop = &loop;
        guard.start(timeout);
        loop.exec();
        state->loop = nullptr;
    }
    if (!state->done) {
        detail::timedOut(timeout);
    }
    if (state->error) {
        std::rethrow_exception(state->error);
    }
    if constexpr (!std::is_void_v<T>) {
        return std::move(*state->result);
    }
}

} // namespace VarnisTest
