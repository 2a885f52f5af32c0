#pragma once

#include <functional>
#include <utility>

namespace sentrel::mac {

/// Calls a copy of the function, if it is not empty: the call may replace or destroy the original.
template <class... Parameters, class... Arguments>
void callCopy(std::function<void(Parameters...)> function, Arguments&&... arguments)
{
    if (function) {
        function(std::forward<Arguments>(arguments)...);
    }
}

} // namespace sentrel::mac
