#pragma once

#include "runtime/CancellationError.hpp"
#include "runtime/Task.hpp"

#include <optional>
#include <utility>

namespace sentrel {

/// The value of a task, or of work that has not started; none when it throws anything but a `CancellationError`. For a
/// wait whose end the user sees.
template <template <class> class Work, class T> Async<std::optional<T>> attempted(Work<T> work)
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
