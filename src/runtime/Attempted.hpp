#pragma once

#include "runtime/CancellationError.hpp"
#include "runtime/Task.hpp"

#include <optional>
#include <utility>

namespace sentrel {

/// The task's value; none when it throws anything but a `CancellationError`. For a wait whose end the user sees.
template <class T> Async<std::optional<T>> attempted(Task<T> task)
{
    try {
        T value = co_await task;
        co_return std::optional<T>{std::move(value)};
    } catch (const CancellationError&) {
        throw;
    } catch (...) {
        co_return std::nullopt;
    }
}

/// The same for work that has not started.
template <class T> Async<std::optional<T>> attempted(Async<T> work)
{
    try {
        T value = co_await std::move(work);
        co_return std::optional<T>{std::move(value)};
    } catch (const CancellationError&) {
        throw;
    } catch (...) {
        co_return std::nullopt;
    }
}

} // namespace sentrel
