#pragma once

#include "runtime/MainActor.hpp"
#include "runtime/Weak.hpp"

#include <type_traits>
#include <utility>

namespace sentrel {

/// Calls the object's method on the main thread's next turn, unless the object has died before. Any thread.
template <class T, class... Parameters, class... Arguments>
void callIfAlive(MainActor mainActor, Weak<T> weak, void (T::*method)(Parameters...), Arguments... arguments)
{
    mainActor.post([weak = std::move(weak), method, ... arguments = std::move(arguments)]() mutable {
        if (T* const object = weak.get()) {
            (object->*method)(std::move(arguments)...);
        }
    });
}

/// A callback for timers and notifications that doesn't keep its owner alive: each call is a `callIfAlive` with these
/// arguments and those of the call. Callable on any thread.
template <class T, class... Parameters, class... Bound>
auto weakCall(MainActor mainActor, Weak<T> weak, void (T::*method)(Parameters...), Bound... bound)
{
    return [mainActor, weak = std::move(weak), method, bound...](auto... given) {
        callIfAlive(mainActor, weak, method, bound..., std::move(given)...);
    };
}

} // namespace sentrel
