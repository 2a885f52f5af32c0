#pragma once

#include "app/ShellWindowDelegate.hpp"
#include "runtime/OncePerTurn.hpp"
#include "ui/View.hpp"

#include <functional>
#include <memory>
#include <string>

namespace sentrel {

/// A single window: created when first opened, then hidden and shown again. Main actor.
class WindowScene {
public:
    /// The delegate says which window this is. The title is in the user's language; `body` returns the current content.
    WindowScene(MainActor actor, ports::Windows& windows, ShellWindows& shellWindows, ShellWindowDelegate& delegate,
                std::string title, std::function<ui::View()> body);
    WindowScene(const WindowScene&) = delete;

    /// Brings the window to the front, with its last size and position.
    void open();

    /// Call when the content has changed; redraws at the next turn, once for all changes until then.
    void contentChanged() { redraw_.request(); }

private:
    void makeWindow();
    void draw();

    ports::Windows& windows_;
    ShellWindows& shellWindows_;
    ShellWindowDelegate& delegate_;
    const WindowSpec spec_;
    std::string title_;
    std::function<ui::View()> body_;
    std::unique_ptr<ports::Window> window_;
    OncePerTurn redraw_;
};

} // namespace sentrel
