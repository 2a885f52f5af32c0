#pragma once

#include "ports/Windows.hpp"
#include "ui/Interaction.hpp"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sentrel::simulation {

/// The built-in display, in points.
inline constexpr ports::Rectangle builtInScreen{0.0, 0.0, 1728.0, 1117.0};

/// `FLT_MAX`, the largest side of a window that has no limits of its own.
inline constexpr double maximumSize = std::numeric_limits<float>::max();

/// Length of the UTF-8 character at the beginning of a text that isn't empty.
[[nodiscard]] std::size_t firstCharacter(std::string_view text);

/// The visible state of a window, and its setup.
struct WindowState {
    std::uint64_t number = 0; ///< unique among all windows ever made
    ports::WindowDescription description;
    std::string title;
    std::string identifier;
    ports::WindowDelegate delegate;
    ports::Rectangle frame;
    ports::Size contentMinSize;
    ports::Size contentMaxSize{maximumSize, maximumSize};
    std::int64_t level = 0;
    std::uint64_t collectionBehavior = 0;
    bool isOpaque = false;
    ui::Color background{1.0, 1.0, 1.0};
    bool hasShadow = true;
    bool isReleasedWhenClosed = true;
    ports::Rectangle hostFrame;
    std::uint64_t hostAutoresizing = 0;
    bool isHosting = false;
    ui::View content;
    std::uint64_t contentVersion = 0; ///< changes with each tree
    bool isVisible = false;
    std::uint64_t order = 0;     ///< greater than that of the windows behind it on its level
    bool isKey = false;          ///< has the keyboard, while the application is active
    std::string focusedIdentity; ///< of the node that the keyboard goes to; empty: none
};

/// The content of one window and the person's actions on it. They go through the tree's bindings and actions; each one
/// sees the tree that the one before produced. Main thread.
class WindowContent {
public:
    explicit WindowContent(WindowState& state) : state_(state) {}

    /// Shows a new tree: the focus moves where the tree requests it, and leaves nodes that are gone.
    void show(ui::View content);

    /// Clicks on a node; a field gets the keyboard.
    [[nodiscard]] ui::Interaction click(std::string_view wanted);

    /// Clicks into a field and replaces its text.
    [[nodiscard]] ui::Interaction fill(std::string_view field, std::string_view text);

    /// Moves a slider.
    [[nodiscard]] ui::Interaction slide(std::string_view wanted, double value);

    /// Selects the rows at these places, counted from 0 over all sections of the first list, and no others.
    [[nodiscard]] ui::Interaction select(const std::vector<std::size_t>& rows);

    /// Types the text, one character after the other, wherever the focus is. False if a character had no receiver.
    [[nodiscard]] bool type(std::string_view text);

    [[nodiscard]] ui::Interaction pressKey(ui::Key key);

    /// Moves the keyboard to a node.
    void focus(const std::string& identity);

    /// The tree shown, for other actions. A copy: they may replace the tree.
    [[nodiscard]] ui::View tree() const { return state_.content; }

private:
    WindowState& state_;
};

} // namespace sentrel::simulation
