#pragma once

#include "ports/StatusBar.hpp"
#include "runtime/OncePerTurn.hpp"
#include "ui/View.hpp"

#include <functional>
#include <memory>
#include <string>

namespace sentrel {

/// The application's item in the menu bar. Main actor.
class MenuBarScene {
public:
    /// What stands in the menu bar, and behind it.
    struct Content {
        std::function<std::string()> image;      ///< the asset
        std::function<std::string()> imageLabel; ///< for screen readers
        std::function<ui::View()> menu;
        std::function<void()> opened; ///< the user has opened the menu
    };

    MenuBarScene(MainActor actor, ports::StatusBar& statusBar);
    MenuBarScene(const MenuBarScene&) = delete;

    /// Puts the item into the menu bar, where it stays as long as this lives.
    void appear(Content content);

    /// What it shows has changed: it is drawn anew at the next turn, once for all changes until then.
    void contentChanged() { redraw_.request(); }

    /// Closes the menu.
    void dismiss();

private:
    void draw();

    ports::StatusBar& statusBar_;
    Content content_;
    std::unique_ptr<ports::StatusItem> item_;
    OncePerTurn redraw_;
};

} // namespace sentrel
