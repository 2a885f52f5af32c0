#pragma once

#include "ui/View.hpp"

#include <functional>
#include <memory>
#include <string>

namespace sentrel::ports {

/// An item of the menu bar with a menu in the style of a window. The destructor removes it. Main thread.
class StatusItem {
public:
    virtual ~StatusItem() = default;

    /// Sets the image asset shown in the menu bar and its text for screen readers.
    virtual void setImage(const std::string& asset, const std::string& accessibilityLabel) = 0;

    /// Replaces the menu's tree. May be called by the tree's own actions and bindings.
    virtual void showContent(ui::View content) = 0;

    /// Sets the callback for when the user has opened the menu.
    virtual void setOpened(std::function<void()> opened) = 0;

    /// Closes the menu.
    virtual void dismiss() = 0;
};

/// The menu bar (`NSStatusBar`). Main thread.
class StatusBar {
public:
    virtual ~StatusBar() = default;
    [[nodiscard]] virtual std::unique_ptr<StatusItem> makeStatusItem() = 0;
};

} // namespace sentrel::ports
