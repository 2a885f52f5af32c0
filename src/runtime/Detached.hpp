#pragma once

#include "runtime/Task.hpp"

#include <type_traits>
#include <utility>

namespace sentrel {

/// Starts a coroutine off the main thread, on no queue, at the given urgency.
template <class T> Task<T> detached(Scheduler& scheduler, QualityOfService priority, Async<T> work)
{
    Executor& executor = scheduler.globalExecutor(priority);
    return Task<T>::start(scheduler, executor, executor, nullptr, std::move(work));
}

/// A coroutine that calls a plain function; the function lives in the coroutine's frame.
template <class Function> Async<std::invoke_result_t<Function&>> asAsync(Function function)
{
    co_return function();
}

/// Runs a plain function (deriving a key, reading a directory) off the main thread at the given urgency.
template <class Function>
    requires std::is_invocable_v<Function&>
Task<std::invoke_result_t<Function&>> detached(Scheduler& scheduler, QualityOfService priority, Function function)
{
    return detached(scheduler, priority, asAsync(std::move(function)));
}

} // namespace sentrel
