#pragma once

#include "runtime/MainActor.hpp"
#include "runtime/Weak.hpp"

#include <functional>
#include <utility>

namespace sentrel {

/// Calls the object's method on the main thread's next turn, unless the object has died before. Any thread.
template <class T> void callIfAlive(MainActor mainActor, Weak<T> weak, void (T::*method)())
{
    mainActor.post([weak = std::move(weak), method] {
        if (T* const object = weak.get()) {
            (object->*method)();
        }
    });
}

/// A callback for timers and notifications that doesn't keep its owner alive: each call is a `callIfAlive`. Callable on
/// any thread.
template <class T> std::function<void()> weakCall(MainActor mainActor, Weak<T> weak, void (T::*method)())
{
    return [mainActor, weak = std::move(weak), method] { callIfAlive(mainActor, weak, method); };
}

} // namespace sentrel
