#pragma once

#include "ui/View.hpp"

#include <set>
#include <string>
#include <string_view>

namespace sentrel::ui {

/// What became of something that a person tried to do.
enum class Interaction {
    done,
    notFound,    ///< no such view is visible
    unreachable, ///< it is disabled, or a sheet or a dialog lies over it
    unsuitable,  ///< it is there but can't be used like that
};

// What a person does to the views of a window, through their bindings and actions only. `wanted` is an identity or a
// visible text, see `find`. Each works on the tree at hand: what follows from it shows in the next one.

/// Presses a button, or turns a toggle over.
Interaction press(const View& root, std::string_view wanted);

/// Brings a toggle into this position; nothing happens when it is there already.
Interaction switchTo(const View& root, std::string_view wanted, bool isOn);

/// Moves a slider as near to the value as its range and its steps allow.
Interaction slideTo(const View& root, std::string_view wanted, double value);

/// Adds text at the end of a field's.
Interaction typeText(const View& root, std::string_view wanted, std::string_view text);

/// Replaces what stands in a field.
Interaction setText(const View& root, std::string_view wanted, std::string_view text);

/// Empties a field.
Interaction clearText(const View& root, std::string_view wanted);

/// Selects the rows of these ids in a list, and no others.
Interaction selectRows(const View& root, std::string_view wanted, const std::set<std::string>& rows);

/// Presses a key while the view of this identity (empty: none) has the keyboard: return submits a field, delete edits
/// it. What no field takes goes to the button that has this shortcut, then to the dialog in front (escape cancels,
/// return gives its first answer if that can be undone), then to the window's key commands.
Interaction pressKey(const View& root, Key key, std::string_view focusedIdentity);

} // namespace sentrel::ui
