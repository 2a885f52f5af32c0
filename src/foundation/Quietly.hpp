#pragma once

#include <type_traits>

namespace sentrel {

/// Returns the call's value, or a default-constructed one if it throws anything (an Objective-C exception is no
/// `std::exception`). For calls whose failure must not stop the caller.
template <class Call> std::invoke_result_t<Call&> quietly(Call call) noexcept
{
    try {
        return call();
    } catch (...) {
        return std::invoke_result_t<Call&>();
    }
}

/// The same, but asks a second time when the first call throws: a port that raises once may answer then. For calls that
/// much depends on.
template <class Call> std::invoke_result_t<Call&> insistently(Call call) noexcept
{
    try {
        return call();
    } catch (...) {
        return quietly(call);
    }
}

} // namespace sentrel
