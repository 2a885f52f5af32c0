#pragma once

#include "ports/Windows.hpp"
#include "ui/Elements.hpp"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace sentrel::simulation {

// What a person does with the menu, the windows and the panels. Views are named by their text or their identity.

/// The application's windows.
enum class ShellWindow { main, alerts };

/// Opens the menu, if it isn't open, and presses something there; with nothing to press it only opens or closes it.
struct UseMenu {
    std::string wanted;
    bool isOpen = true; ///< afterwards, when nothing is pressed
};

/// Clicks in what is in front: an alert, the lock screen, or the window that was used last.
struct ClickOn {
    std::string wanted;
};

/// Types where the keyboard goes, or replaces what stands in a field.
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
    std::optional<ports::Size> size; ///< of the content
    std::optional<ports::Size> to;   ///< of the lower left corner, from that of the built-in display
};

/// How the system answers from now on when the application wants to open at login, or no longer.
struct AnswerLoginItem {
    bool fails = false;
};

/// How save panels are answered from now on.
struct AnswerSavePanel {
    std::optional<std::string> folder; ///< on the disk; none: cancelled
};

} // namespace sentrel::simulation
