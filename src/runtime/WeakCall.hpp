#pragma once

#include "runtime/MainActor.hpp"
#include "runtime/Weak.hpp"

#include <functional>
#include <utility>

namespace sentrel {

/// A main-actor task that calls the object's method, unless the object has died before its turn.
template <class T> Async<void> callIfAlive(Weak<T> weak, void (T::*method)())
{
    if (T* const object = weak.get()) {
        (object->*method)();
    }
    co_return;
}

/// A callback for timers and notifications that doesn't keep its owner alive: each call starts a main-actor task that
/// calls the method if the owner still lives. Callable on any thread.
template <class T> std::function<void()> weakCall(MainActor mainActor, Weak<T> weak, void (T::*method)())
{
    return [mainActor, weak = std::move(weak), method] { mainActor.spawn(callIfAlive(weak, method)); };
}

} // namespace sentrel
