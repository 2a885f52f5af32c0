#pragma once

#include "runtime/TaskState.hpp"

#include <cassert>
#include <coroutine>
#include <exception>
#include <optional>
#include <utility>

namespace sentrel {

template <class T> class Async;
template <class T> class Task;

/// The part of every coroutine's promise that doesn't depend on its value: task and awaiter.
class AsyncPromiseBase {
public:
    std::suspend_always initial_suspend() noexcept { return {}; }

    /// Hands control back to the awaiting coroutine, or ends the task. No symmetric transfer: compilers turn it into
    /// nested calls without optimisation, and a long loop would overflow the stack. A coroutine that finishes before
    /// its caller has suspended lets the caller go on by itself instead, so that the stack stays flat.
    struct FinalAwaiter {
        bool await_ready() noexcept { return false; }
        template <class Promise> void await_suspend(std::coroutine_handle<Promise> finished) noexcept
        {
            AsyncPromiseBase& promise = finished.promise();
            if (!promise.caller_) {
                promise.task_->finish();
                return;
            }
            promise.isFinished_ = true;
            if (promise.callerSuspended_) {
                promise.caller_.resume();
            }
        }
        void await_resume() noexcept {}
    };
    FinalAwaiter final_suspend() noexcept { return {}; }

    void unhandled_exception() noexcept { error_ = std::current_exception(); }

    /// The task that this coroutine runs in. Set before its first turn.
    [[nodiscard]] TaskState& task() { return *task_; }

protected:
    void rethrowIfFailed() const
    {
        if (error_) {
            std::rethrow_exception(error_);
        }
    }

private:
    template <class T> friend class Async;
    template <class T> friend class Task;
    TaskState* task_ = nullptr;
    std::coroutine_handle<> caller_;
    bool isFinished_ = false;
    bool callerSuspended_ = false;
    std::exception_ptr error_;
    /// Made only in the root of a task. In the frame, since a second allocation would cost a task more than the space
    /// costs all the coroutines that it calls.
    std::optional<TaskState> ownTask_;
};

template <class T> class AsyncPromise final : public AsyncPromiseBase {
public:
    Async<T> get_return_object() noexcept;
    template <class U> void return_value(U&& value) { value_.emplace(std::forward<U>(value)); }

    T& value()
    {
        rethrowIfFailed();
        assert(value_ && "a coroutine fell off its end");
        return *value_;
    }

private:
    std::optional<T> value_;
};

template <> class AsyncPromise<void> final : public AsyncPromiseBase {
public:
    Async<void> get_return_object() noexcept;
    void return_void() noexcept {}
    void value() const { rethrowIfFailed(); }
};

/// A coroutine that has not started. Awaiting it runs it here, in the awaiting task; `MainActor::spawn`,
/// `SerialQueue::async` and `detached` make a task of it. Exceptions of its body reach its awaiter.
template <class T> class [[nodiscard]] Async {
public:
    using promise_type = AsyncPromise<T>;
    using Handle = std::coroutine_handle<promise_type>;

    Async(Async&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
    Async& operator=(Async&& other) noexcept
    {
        std::swap(handle_, other.handle_);
        return *this;
    }
    ~Async()
    {
        if (handle_) {
            handle_.destroy();
        }
    }

    class Awaiter {
    public:
        explicit Awaiter(Handle callee) noexcept : callee_(callee) {}
        bool await_ready() const noexcept { return false; }
        template <class Promise> bool await_suspend(std::coroutine_handle<Promise> caller)
        {
            AsyncPromiseBase& promise = callee_.promise();
            promise.task_ = &caller.promise().task();
            promise.caller_ = caller;
            callee_.resume();
            if (promise.isFinished_) {
                return false;
            }
            promise.callerSuspended_ = true;
            return true;
        }
        T await_resume()
        {
            if constexpr (std::is_void_v<T>) {
                callee_.promise().value();
            } else {
                return std::move(callee_.promise().value());
            }
        }

    private:
        Handle callee_;
    };

    Awaiter operator co_await() && noexcept { return Awaiter{handle_}; }

private:
    friend class AsyncPromise<T>;
    friend class Task<T>;
    explicit Async(Handle handle) noexcept : handle_(handle) {}
    Handle handle_;
};

template <class T> Async<T> AsyncPromise<T>::get_return_object() noexcept
{
    return Async<T>{Async<T>::Handle::from_promise(*this)};
}

inline Async<void> AsyncPromise<void>::get_return_object() noexcept
{
    return Async<void>{Async<void>::Handle::from_promise(*this)};
}

} // namespace sentrel
