#pragma once

#include <functional>

namespace sentrel::ui {

/// What a view does when the user acts on it. Called on the main thread, from a renderer's event handling: it must not
/// destroy the window that it belongs to. Empty: nothing happens.
using Action = std::function<void()>;

/// A value that a view shows and the user changes. The value is the one of the moment at which the view was made, so
/// that a tree never reads a state that has gone; setting it changes the state, which then makes a new view.
template <class T> struct Binding {
    T value{};
    std::function<void(T)> set;
};

} // namespace sentrel::ui
