#pragma once

#include "ports/Windows.hpp"
#include "ui/Elements.hpp"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace sentrel::simulation {

// Actions of a person on the menu, the windows and the panels. Views are named by their text or their identity.

/// The application's windows.
enum class ShellWindow { main, alerts };

/// Opens the menu, if it isn't open, and presses a view there. If `wanted` is empty, only opens or closes the menu.
struct UseMenu {
    std::string wanted;
    bool isOpen = true; ///< the menu's state afterwards, if nothing is pressed
};

/// Clicks in the front: an alert, the lock screen, or the window used last.
struct ClickOn {
    std::string wanted;
};

/// Types at the keyboard focus, or replaces a field's text.
struct TypeText {
    std::optional<std::string> field;
    std::string text;
};

/// Presses a key.
struct PressKey {
    ui::Key key = ui::Key::returnKey;
};

/// Moves a slider.
struct MoveSlider {
    std::string slider;
    double value = 0.0;
};

/// Selects rows of the list, counted from 0, and no others.
struct SelectRows {
    std::vector<std::size_t> rows;
};

/// Opens a window by its button in the menu.
struct OpenWindow {
    ShellWindow window = ShellWindow::main;
};

/// Closes a window by its title bar.
struct CloseWindow {
    ShellWindow window = ShellWindow::main;
};

/// Drags a window's edges, its title bar, or both.
struct DragWindow {
    ShellWindow window = ShellWindow::main;
    std::optional<ports::Size> size; ///< size of the content
    std::optional<ports::Size> to;   ///< lower left corner, from that of the built-in display
};

/// Sets the system's answer from now on when the application registers or unregisters as a login item.
struct AnswerLoginItem {
    bool fails = false;
};

/// Sets the answer to save panels from now on.
struct AnswerSavePanel {
    std::optional<std::string> folder; ///< on the disk; none: cancelled
};

} // namespace sentrel::simulation
