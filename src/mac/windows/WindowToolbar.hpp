#pragma once

#include "mac/windows/DrawnNode.hpp"
#include "ui/Attachments.hpp"

@class SentrelToolbarDelegate;

namespace sentrel::mac {

/// A window's toolbar: the children of all toolbars that are attached to the tree. Buttons are items of the toolbar's
/// own kind, spacers its flexible spaces, other views are drawn in it. Main thread.
class WindowToolbar {
public:
    WindowToolbar();
    WindowToolbar(const WindowToolbar&) = delete;
    WindowToolbar& operator=(const WindowToolbar&) = delete;

    /// Shows these in the window, if not nil; without any, removes its toolbar.
    void show(NSWindow* window, const std::vector<ui::Attachment>& toolbars);

private:
    void showItem(const std::string& identity, const ui::View& view, bool isEnabled);
    void arrange();

    NSToolbar* const toolbar_;
    SentrelToolbarDelegate* const delegate_;
};

} // namespace sentrel::mac
