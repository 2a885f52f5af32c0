#pragma once

#include "mac/windows/Placing.hpp"
#include "mac/windows/WindowAttachments.hpp"

namespace sentrel::mac {

/// Draws view trees in a container with AppKit, and their attachments (toolbars, sheets and dialogs) at its window. A
/// node keeps its AppKit view as long as its identity and its kind stay. Main thread.
class TreeRenderer {
public:
    explicit TreeRenderer(NSView* container);
    ~TreeRenderer();
    TreeRenderer(const TreeRenderer&) = delete;
    TreeRenderer& operator=(const TreeRenderer&) = delete;

    /// Shows the tree from now on.
    void render(ui::View content);

    /// Call when the container enters a window or the window appears: gives the keyboard to the node that asks for it,
    /// and begins sheets and dialogs.
    void windowChanged();

    /// The tree that is shown; null before the first.
    [[nodiscard]] std::shared_ptr<const ui::View> content() const { return content_; }

    /// Visits the drawn nodes by their identities. No effect before the first tree.
    void visit(const DrawnNode::Visit& visitor);

private:
    __weak NSView* container_;
    std::shared_ptr<const ui::View> content_;
    std::unique_ptr<DrawnNode> root_;
    Placement placement_;
    WindowAttachments attachments_;
};

} // namespace sentrel::mac
