#pragma once

#include "mac/windows/DrawnNode.hpp"

// Where nodes stand in the views that hold them. Main thread.

namespace sentrel::mac {

/// Strong enough against sizes that views like to have, and weaker than sizes that a tree asks for.
inline constexpr NSLayoutPriority stretch = 749.0F;

/// Below every wish.
inline constexpr NSLayoutPriority givesWay = 1.0F;

/// Keeps the inner view at this distance from each edge of the outer one.
void pin(NSView* inner, NSView* outer, double inset);

/// What the place of a node among its siblings depends on. Constraints are made anew only when it changes.
struct Standing {
    const void* view = nullptr;
    bool isSpacer = false;
    bool expandsX = false;
    bool expandsY = false;
    bool stretchesAcross = false;
    friend bool operator==(const Standing&, const Standing&) = default;
};

[[nodiscard]] Standing standingOf(const DrawnNode& node);
[[nodiscard]] std::vector<Standing> standingsOf(const DrawnChildren& children);

/// A node in the area of a view or of a layout guide: in a direction in which it takes all the space, from edge to
/// edge, else in the middle.
class Placement {
public:
    Placement() = default;
    ~Placement() { forget(); }
    Placement(const Placement&) = delete;
    Placement& operator=(const Placement&) = delete;

    /// Places the node, which stands in the area's view already; `fills`: from edge to edge in any case.
    void place(id area, const DrawnNode& node, bool fills = false);

    /// The node has left the area.
    void forget();

private:
    __weak id area_ = nil;
    Standing standing_;
    NSArray<NSLayoutConstraint*>* constraints_ = @[];
};

/// Puts the views into the stack in this order. A view that stays is never taken out, so that it keeps the keyboard.
void arrange(NSStackView* stack, NSArray<NSView*>* views);

/// A stack below each other.
[[nodiscard]] NSStackView* makeColumn(double spacing);

} // namespace sentrel::mac
