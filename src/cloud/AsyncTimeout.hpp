#pragma once

#include "runtime/MainActor.hpp"
#include "runtime/Semaphore.hpp"
#include "runtime/Sleep.hpp"

#include <exception>
#include <memory>
#include <mutex>
#include <optional>
#include <type_traits>
#include <utility>
#include <variant>

namespace sentrel {

/// Runs an asynchronous operation against a deadline: the first to end decides, the other is cancelled.
class AsyncTimeout {
public:
    /// Thrown when the deadline came first.
    class TimedOut : public std::exception {
    public:
        [[nodiscard]] const char* what() const noexcept override { return "timed out"; }
    };

    /// The shared state of one timed run: the first outcome wins. Any thread.
    template <class T> class Race {
    public:
        using Value = std::conditional_t<std::is_void_v<T>, std::monostate, T>;
        using Result = std::variant<Value, std::exception_ptr>;

        /// Records the outcome and wakes the caller; later outcomes change nothing.
        void finish(Result result)
        {
            {
                const std::lock_guard guard{lock_};
                if (result_) {
                    return;
                }
                result_.emplace(std::move(result));
            }
            // Outside the lock: the woken caller may read the result at once.
            finished_.signal();
        }

        Semaphore& finished() { return finished_; }

        /// Returns the outcome's value or throws its error. Requires a recorded outcome.
        T take()
        {
            const std::lock_guard guard{lock_};
            if (const auto* const error = std::get_if<std::exception_ptr>(&*result_)) {
                std::rethrow_exception(*error);
            }
            if constexpr (!std::is_void_v<T>) {
                return std::move(std::get<Value>(*result_));
            }
        }

    private:
        std::mutex lock_;
        Semaphore finished_;
        std::optional<Result> result_;
    };

    /// Runs the operation on the main actor for at most `timeout` of the continuous clock. Returns its value, or throws
    /// its error, `TimedOut`, or a `CancellationError` when the calling task was cancelled.
    template <class T> static Async<T> run(MainActor actor, Duration timeout, Async<T> operation)
    {
        auto race = std::make_shared<Race<T>>();
        Task<T> operationTask = actor.spawn(std::move(operation));
        Task<void> timerTask = actor.spawn(expire<T>(race, operationTask, timeout));
        actor.spawn(relay<T>(race, operationTask, timerTask));
        try {
            co_await race->finished().wait();
        } catch (const CancellationError&) {
            operationTask.cancel();
            timerTask.cancel();
            race->finish(std::current_exception());
        }
        co_return race->take();
    }

    /// Waits at most `timeout` for the task's end. Returns its value or throws as above; never cancels the task.
    template <class T> static Async<T> wait(MainActor actor, Duration timeout, Task<T> task)
    {
        return run(actor, timeout, endOf(std::move(task)));
    }

private:
    template <class T> static Async<T> endOf(Task<T> task) { co_return co_await task; }

    template <class T> static Async<void> expire(std::shared_ptr<Race<T>> race, Task<T> operation, Duration timeout)
    {
        const bool hasElapsed = co_await elapse(timeout);
        if (!hasElapsed) {
            co_return;
        }
        race->finish(std::make_exception_ptr(TimedOut{}));
        operation.cancel();
    }

    template <class T> static Async<void> relay(std::shared_ptr<Race<T>> race, Task<T> operation, Task<void> timer)
    {
        typename Race<T>::Result result;
        try {
            if constexpr (std::is_void_v<T>) {
                co_await operation;
            } else {
                T value = co_await operation;
                result = std::move(value);
            }
        } catch (...) {
            result = std::current_exception();
        }
        timer.cancel();
        race->finish(std::move(result));
    }
};

} // namespace sentrel
