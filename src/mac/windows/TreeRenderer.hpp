#pragma once

#include "mac/windows/Placing.hpp"
#include "mac/windows/WindowAttachments.hpp"

namespace sentrel::mac {

/// Draws view trees in a container with AppKit, and what is attached to them (toolbars, sheets and dialogs) at the
/// container's window. A node keeps its AppKit view as long as its identity and its kind stay. Main thread.
class TreeRenderer {
public:
    explicit TreeRenderer(NSView* container);
    ~TreeRenderer();
    TreeRenderer(const TreeRenderer&) = delete;
    TreeRenderer& operator=(const TreeRenderer&) = delete;

    /// Shows the tree from now on.
    void render(ui::View content);

    /// The container has come into a window, or its window to the screen: gives the keyboard to the node that asks for
    /// it, and begins what lies over the window.
    void windowChanged();

    /// The tree that is shown; null before the first.
    [[nodiscard]] std::shared_ptr<const ui::View> content() const { return content_; }

private:
    __weak NSView* container_;
    std::shared_ptr<const ui::View> content_;
    std::unique_ptr<DrawnNode> root_;
    Placement placement_;
    WindowAttachments attachments_;
};

} // namespace sentrel::mac
