#pragma once

#include "runtime/Weak.hpp"
#include "ui/View.hpp"

#include <string>
#include <utility>

namespace sentrel {

// Parts shared by several views.

/// An action that calls the object's method while the object lives.
template <class T> ui::Action weakAction(Weak<T> weak, void (T::*method)())
{
    return [weak = std::move(weak), method] {
        if (T* const object = weak.get()) {
            (object->*method)();
        }
    };
}

/// A value that the object's method sets while the object lives.
template <class T, class Value> ui::Binding<Value> weakBinding(Weak<T> weak, Value value, void (T::*set)(Value))
{
    return {std::move(value), [weak = std::move(weak), set](Value next) {
                if (T* const object = weak.get()) {
                    (object->*set)(std::move(next));
                }
            }};
}

/// A system symbol.
[[nodiscard]] ui::Image symbol(std::string name);

[[nodiscard]] ui::View symbolButton(std::string title, std::string symbolName, ui::Action action,
                                    ui::Button::Role role = ui::Button::Role::standard);

/// Fills an otherwise empty pane: a symbol, a title, and a hint what to do.
[[nodiscard]] ui::View emptyPane(std::string symbolName, std::string title, std::string message);

/// A text in the alarm's colour.
[[nodiscard]] ui::View warning(std::string text);

} // namespace sentrel
