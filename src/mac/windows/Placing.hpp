#pragma once

#include "mac/windows/DrawnNode.hpp"

// Positions of nodes in their enclosing views. Main thread.

namespace sentrel::mac {

/// Stronger than sizes that views prefer, weaker than sizes that a tree asks for.
inline constexpr NSLayoutPriority stretch = 749.0F;

/// Weaker than all others.
inline constexpr NSLayoutPriority givesWay = 1.0F;

/// Keeps the inner view at this distance from each edge of the outer one.
void pin(NSView* inner, NSView* outer, double inset);

/// The constraint, with this priority.
NSLayoutConstraint* weakened(NSLayoutConstraint* constraint, NSLayoutPriority priority);

/// How strongly the view keeps to its content's size, in both directions.
void setPriorities(NSView* view, NSLayoutPriority priority);

/// A node's constraints in a view or a layout guide: from edge to edge in a direction in which it takes all space, else
/// centered.
class Placement {
public:
    Placement() = default;
    ~Placement() { forget(); }
    Placement(const Placement&) = delete;
    Placement& operator=(const Placement&) = delete;

    /// Places the node, already a subview of the area's view; `fills`: from edge to edge in any case.
    void place(id area, const DrawnNode& node, bool fills = false);

    /// Removes the constraints.
    void forget();

private:
    __weak id area_ = nil;
    Standing standing_;
    Constraints constraints_;
};

/// Puts the views into the stack in this order. A view that stays is never removed, so that it keeps the keyboard.
void arrange(NSStackView* stack, NSArray<NSView*>* views);

/// A vertical stack.
[[nodiscard]] NSStackView* makeColumn(double spacing);

} // namespace sentrel::mac
