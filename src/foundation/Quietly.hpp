#pragma once

#include <type_traits>

namespace sentrel {

/// The value of a call, or a default-made value when the call throws anything: an Objective-C exception is no
/// `std::exception`. For calls whose failure must not stop what follows.
template <class Call> std::invoke_result_t<Call&> quietly(Call call) noexcept
{
    try {
        return call();
    } catch (...) {
        return std::invoke_result_t<Call&>();
    }
}

} // namespace sentrel
