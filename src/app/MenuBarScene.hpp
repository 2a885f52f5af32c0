#pragma once

#include "ports/StatusBar.hpp"
#include "runtime/OncePerTurn.hpp"
#include "runtime/RepeatingTimer.hpp"
#include "ui/View.hpp"

#include <functional>
#include <memory>
#include <string>

namespace sentrel {

/// The application's item in the menu bar. Main actor.
class MenuBarScene {
public:
    /// The item in the menu bar, and its menu.
    struct Content {
        std::function<std::string()> image;      ///< the asset
        std::function<std::string()> imageLabel; ///< for screen readers
        std::function<ui::View()> menu;
        std::function<void()> opened; ///< the user has opened the menu
    };

    MenuBarScene(MainActor actor, ports::StatusBar& statusBar);
    MenuBarScene(const MenuBarScene&) = delete;

    /// Adds the item to the menu bar for the life of this object.
    void appear(Content content);

    /// Call when the content has changed; redraws at the next turn, once for all changes until then.
    void contentChanged() { redraw_.request(); }

    /// Closes the menu.
    void dismiss();

private:
    void draw();
    void drawInsistently();

    MainActor actor_;
    ports::StatusBar& statusBar_;
    Content content_;
    std::unique_ptr<ports::StatusItem> item_;
    OncePerTurn redraw_;
    std::unique_ptr<RepeatingTimer> retry_; ///< while the menu bar shows something old, or nothing
};

} // namespace sentrel
