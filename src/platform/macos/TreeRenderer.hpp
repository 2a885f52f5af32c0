#pragma once

#include "ui/View.hpp"

#import <AppKit/AppKit.h>

#include <memory>

namespace sentrel::macos {

/// Draws view trees in a container with AppKit. A node keeps its AppKit view as long as its identity and its kind stay,
/// and with it what the user is doing there: a field keeps the keyboard, the caret and its text. Draws stacks, texts,
/// images, buttons, toggles, sliders, fields, progress, and forms with their sections; a window that shows another kind
/// ends the program. Main thread.
class TreeRenderer {
public:
    explicit TreeRenderer(NSView* container);
    ~TreeRenderer();
    TreeRenderer(const TreeRenderer&) = delete;

    /// Shows the tree from now on.
    void render(ui::View content);

    /// Gives the keyboard to the node that asks for it; for a container that has just come into a window.
    void applyFocus();

    [[nodiscard]] const ui::View& content() const { return content_; }

private:
    struct Node;

    void fill(Node& node);

    __weak NSView* container_;
    ui::View content_;
    std::unique_ptr<Node> root_;
};

} // namespace sentrel::macos
