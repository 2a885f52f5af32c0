#pragma once

#include "runtime/MainActor.hpp"
#include "runtime/Weak.hpp"

#include <type_traits>
#include <utility>

namespace sentrel {

/// A main-actor task that calls the object's method, unless the object has died before its turn.
template <class T, class... Parameters>
Async<void> callIfAlive(Weak<T> weak, void (T::*method)(Parameters...), std::decay_t<Parameters>... arguments)
{
    if (T* const object = weak.get()) {
        (object->*method)(std::move(arguments)...);
    }
    co_return;
}

/// A callback for timers and notifications that doesn't keep its owner alive: each call starts a main-actor task that
/// calls the method, with these arguments and those of the call, if the owner still lives. Callable on any thread.
template <class T, class... Parameters, class... Bound>
auto weakCall(MainActor mainActor, Weak<T> weak, void (T::*method)(Parameters...), Bound... bound)
{
    return [mainActor, weak = std::move(weak), method, bound...](auto... given) {
        mainActor.spawn(callIfAlive(weak, method, bound..., std::move(given)...));
    };
}

} // namespace sentrel
