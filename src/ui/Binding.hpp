#pragma once

#include <functional>

namespace sentrel::ui {

/// A view's reaction to the user. Called on the main thread, from a renderer's event handling: it must not destroy its
/// window. May be empty.
using Action = std::function<void()>;

/// A value that a view shows and the user changes. `value` is a snapshot from when the view was made, so that a tree
/// never reads a state that is gone; `set` changes the state, which then makes a new view.
template <class T> struct Binding {
    T value{};
    std::function<void(T)> set;
};

} // namespace sentrel::ui
