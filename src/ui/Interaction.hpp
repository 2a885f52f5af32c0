#pragma once

#include "ui/View.hpp"

#include <set>
#include <string>
#include <string_view>

namespace sentrel::ui {

/// The result of an attempted user action.
enum class Interaction {
    done,
    notFound,    ///< no such view is visible
    unreachable, ///< it is disabled, or a sheet or a dialog lies over it
    unsuitable,  ///< it doesn't support the action
};

// User actions on the views of a window, through bindings and actions only. `wanted` is an identity or a visible text,
// see `find`. The effects show in the next tree, not in `root`.

/// Presses a button, or flips a toggle.
Interaction press(const View& root, std::string_view wanted);

/// Sets a toggle; no effect when it is in that position already.
Interaction switchTo(const View& root, std::string_view wanted, bool isOn);

/// Moves a slider as near to the value as its range and its steps allow.
Interaction slideTo(const View& root, std::string_view wanted, double value);

/// Appends text to a field.
Interaction typeText(const View& root, std::string_view wanted, std::string_view text);

/// Replaces a field's text.
Interaction setText(const View& root, std::string_view wanted, std::string_view text);

/// Empties a field.
Interaction clearText(const View& root, std::string_view wanted);

/// Selects the rows of these ids in a list, and no others.
Interaction selectRows(const View& root, std::string_view wanted, const std::set<std::string>& rows);

/// Presses a key while the view of this identity (empty: none) has the keyboard: return submits a field, delete removes
/// its last character. A key that no field takes goes to the button with this shortcut, then to the dialog in front
/// (escape cancels, return gives the first answer unless it is destructive or one of several and cancels), then to the
/// window's key commands.
Interaction pressKey(const View& root, Key key, std::string_view focusedIdentity);

} // namespace sentrel::ui
