#pragma once

#include "mac/windows/NodeTarget.hpp"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace sentrel::mac {

/// The properties of a node's place in the tree.
struct Surroundings {
    bool isEnabled = true;
    bool isInSidebar = false;
    bool isPane = false;  ///< one side of a split view, as wide as the user likes
    bool isInRow = false; ///< side by side with its siblings
    bool isInCenteredColumn = false;
};

/// Constraints that hold until others replace them.
class Constraints {
public:
    void replace(NSArray<NSLayoutConstraint*>* others);

private:
    NSArray<NSLayoutConstraint*>* active_ = @[];
};

/// The inputs of a node's constraints among its siblings, which are remade only when these change.
struct Standing {
    const void* view = nullptr;
    bool isSpacer = false;
    bool expandsX = false;
    bool expandsY = false;
    bool stretchesAcross = false;
    friend bool operator==(const Standing&, const Standing&) = default;
};

/// One node of a view tree as AppKit draws it: its AppKit view, the target of its control, and its children. It lives
/// as long as the node keeps its identity and its kind of element, which preserves the user's input: a field keeps the
/// keyboard, the caret and its text. Main thread.
class DrawnNode {
public:
    virtual ~DrawnNode() = default;
    DrawnNode(const DrawnNode&) = delete;
    DrawnNode& operator=(const DrawnNode&) = delete;

    /// Draws the view, with the node drawn before under its identity if that can show it, else with a new one.
    [[nodiscard]] static std::unique_ptr<DrawnNode> draw(std::unique_ptr<DrawnNode> before, const ui::View& view,
                                                         std::string step, const Surroundings& surroundings);

    /// The same for the node in a container. True when the container has got another subview for it.
    static bool drawIn(NSView* container, std::unique_ptr<DrawnNode>& node, const ui::View& view, std::string step,
                       const Surroundings& surroundings);

    /// The node's step in its identity.
    [[nodiscard]] const std::string& step() const { return step_; }

    /// The subview of the enclosing view: the node's view, or the wrapper that pads it.
    [[nodiscard]] NSView* outer() const { return outer_; }

    /// Whether it takes all available space in this direction.
    [[nodiscard]] bool expands(NSLayoutConstraintOrientation orientation) const;

    /// Whether it fills its stack across the axis without making the stack larger.
    [[nodiscard]] virtual bool stretchesAcross() const { return false; }

    [[nodiscard]] virtual bool isSpacer() const { return false; }

    [[nodiscard]] Standing standing() const;

    /// Adds the visible label before a control, for alignment within its form.
    virtual void collectLabels(NSMutableArray<NSView*>* /*labels*/) const {}

    /// Gives the keyboard to nodes in the subtree that ask for it; the last wins.
    void applyFocus();

    /// Visits this node of the given identity and all inside it: with its outermost view, and with the control that has
    /// the keyboard and that screen readers name.
    using Visit = std::function<void(const std::string& identity, NSView* outer, NSView* control)>;
    void visit(const std::string& identity, const Visit& visitor);

protected:
    explicit DrawnNode(NSView* view);

    [[nodiscard]] NSView* view() const { return view_; }
    [[nodiscard]] SentrelNodeTarget* target() const { return target_; }

    /// Brings the AppKit view up to date; touches only what differs.
    virtual void show(const ui::View& view, const Surroundings& surroundings) = 0;

    /// The part that has the keyboard and that screen readers name.
    [[nodiscard]] virtual NSView* control() const { return view_; }

    /// The accessibility label of the control if the tree has none; empty: AppKit's default.
    [[nodiscard]] virtual std::string spokenText(const ui::View& /*view*/) const { return {}; }

    /// Whether such content takes all available space.
    [[nodiscard]] virtual bool wantsAll(NSLayoutConstraintOrientation /*orientation*/) const { return false; }

    virtual void eachChild(const std::function<void(DrawnNode&)>& /*visit*/) {}

private:
    [[nodiscard]] bool canShow(const ui::View& view) const;
    void update(const ui::View& view, std::string step, const Surroundings& surroundings);
    void updateSize(ui::SizeWish wish);
    void updateBackground(const std::optional<ui::Color>& color);
    void wrap(double padding);

    std::string step_;
    SentrelNodeTarget* const target_ = [[SentrelNodeTarget alloc] init];
    NSView* const view_;
    NSView* outer_;
    Constraints sizes_;
    std::string spoken_;
    bool isPane_ = false;
    bool isDrawn_ = false;
};

/// The children of a node, each known by its identity.
class DrawnChildren {
public:
    /// Draws the children that are not hidden. True when the standing of any has changed.
    bool show(const std::vector<ui::View>& children, const Surroundings& surroundings);

    [[nodiscard]] const std::vector<std::unique_ptr<DrawnNode>>& nodes() const { return nodes_; }

    /// Their outer views, first to last.
    [[nodiscard]] NSArray<NSView*>* views() const;

    [[nodiscard]] bool anyExpands(NSLayoutConstraintOrientation orientation) const;
    void each(const std::function<void(DrawnNode&)>& visit) const;
    void collectLabels(NSMutableArray<NSView*>* labels) const;

private:
    std::vector<std::unique_ptr<DrawnNode>> nodes_;
    std::vector<Standing> standings_;
};

} // namespace sentrel::mac
