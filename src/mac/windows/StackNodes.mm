#include "mac/windows/ElementNodes.hpp"
#include "mac/windows/Placing.hpp"
#include "ui/Node.hpp"

#include <utility>

// Stacks: rows, columns and layers.

namespace sentrel::mac {

namespace {

/// Several views share the remaining space equally, unless another constraint prevents it.
constexpr NSLayoutPriority fairShare = 150.0F;

/// Layers are no larger than the largest one unless necessary.
constexpr NSLayoutPriority hugging = 200.0F;

using Orientation = NSLayoutConstraintOrientation;
using Axis = ui::Stack::Axis;

NSLayoutAttribute alignmentOf(const ui::Stack& stack)
{
    const bool isRow = stack.axis == Axis::horizontal;
    switch (stack.alignment) {
    case ui::Stack::Alignment::leading:
        return isRow ? NSLayoutAttributeTop : NSLayoutAttributeLeading;
    case ui::Stack::Alignment::trailing:
        return isRow ? NSLayoutAttributeBottom : NSLayoutAttributeTrailing;
    case ui::Stack::Alignment::center:
        break;
    }
    return isRow ? NSLayoutAttributeCenterY : NSLayoutAttributeCenterX;
}

NSLayoutDimension* extentOf(NSView* view, bool isWidth)
{
    return isWidth ? view.widthAnchor : view.heightAnchor;
}

/// A row or a column.
class LineNode final : public DrawnNode {
public:
    LineNode() : DrawnNode([[NSStackView alloc] init]) { stackView().distribution = NSStackViewDistributionFill; }

private:
    [[nodiscard]] NSStackView* stackView() const { return static_cast<NSStackView*>(view()); }
    [[nodiscard]] bool suits(const ui::View& view) const override
    {
        return ui::elementOf<ui::Stack>(view)->axis != Axis::depth;
    }

    void show(const ui::View& view, const Surroundings& surroundings) override
    {
        const ui::Stack& stack = *ui::elementOf<ui::Stack>(view);
        const bool wasRow = std::exchange(isRow_, stack.axis == Axis::horizontal);
        stackView().orientation =
            isRow_ ? NSUserInterfaceLayoutOrientationHorizontal : NSUserInterfaceLayoutOrientationVertical;
        stackView().spacing = stack.spacing;
        stackView().alignment = alignmentOf(stack);
        Surroundings inner = surroundings;
        inner.isInForm = false;
        inner.isInRow = isRow_;
        inner.isInCenteredColumn = !isRow_ && stack.alignment == ui::Stack::Alignment::center;
        const bool hasChanged = children_.show(view.children, inner);
        arrange(stackView(), children_.views());
        if (wasRow != isRow_ || hasChanged) {
            sizes_.replace(sizes());
        }
    }

    /// Spacers are equal; views that expand get equal shares; views that stretch across fill the stack.
    [[nodiscard]] NSArray<NSLayoutConstraint*>* sizes() const
    {
        NSMutableArray<NSLayoutConstraint*>* const constraints = [NSMutableArray array];
        NSView* firstSpacer = nil;
        NSView* firstWide = nil;
        for (const auto& child : children_.nodes()) {
            NSLayoutDimension* const extent = extentOf(child->outer(), isRow_);
            if (child->isSpacer() && firstSpacer != nil) {
                [constraints addObject:[extent constraintEqualToAnchor:extentOf(firstSpacer, isRow_)]];
            } else if (child->isSpacer()) {
                firstSpacer = child->outer();
            } else if (child->expands(along()) && firstWide != nil) {
                [constraints
                    addObject:weakened([extent constraintEqualToAnchor:extentOf(firstWide, isRow_)], fairShare)];
            } else if (child->expands(along())) {
                firstWide = child->outer();
            }
            if (child->expands(across()) || child->stretchesAcross()) {
                NSLayoutDimension* const breadth = extentOf(child->outer(), !isRow_);
                [constraints
                    addObject:weakened([breadth constraintEqualToAnchor:extentOf(stackView(), !isRow_)], stretch)];
            }
        }
        return constraints;
    }

    [[nodiscard]] Orientation along() const
    {
        return isRow_ ? NSLayoutConstraintOrientationHorizontal : NSLayoutConstraintOrientationVertical;
    }
    [[nodiscard]] Orientation across() const
    {
        return isRow_ ? NSLayoutConstraintOrientationVertical : NSLayoutConstraintOrientationHorizontal;
    }
    [[nodiscard]] bool wantsAll(Orientation orientation) const override { return children_.anyExpands(orientation); }
    void eachChild(const std::function<void(DrawnNode&)>& visit) override { children_.each(visit); }
    void collectLabels(NSMutableArray<NSView*>* labels) const override
    {
        // In a row other views precede them.
        if (!isRow_) {
            children_.collectLabels(labels);
        }
    }

    bool isRow_ = false;
    DrawnChildren children_;
    Constraints sizes_;
};

/// Layers, the last in front; each centered, or filling the space.
class LayersNode final : public DrawnNode {
public:
    LayersNode() : DrawnNode([[NSView alloc] init])
    {
        for (NSLayoutDimension* const extent in @[ view().widthAnchor, view().heightAnchor ]) {
            weakened([extent constraintEqualToConstant:0.0], hugging).active = YES;
        }
    }

private:
    [[nodiscard]] bool suits(const ui::View& view) const override
    {
        return ui::elementOf<ui::Stack>(view)->axis == Axis::depth;
    }

    void show(const ui::View& view, const Surroundings& surroundings) override
    {
        Surroundings inner = surroundings;
        inner.isInForm = false;
        inner.isInRow = false;
        inner.isInCenteredColumn = true;
        const bool hasChanged = children_.show(view.children, inner);
        NSArray<NSView*>* const views = children_.views();
        NSView* const base = this->view();
        for (NSView* const shown in [base.subviews copy]) {
            if (![views containsObject:shown]) {
                [shown removeFromSuperview];
            }
        }
        NSView* below = nil;
        for (const auto& child : children_.nodes()) {
            putAbove(below, child->outer());
            below = child->outer();
        }
        if (hasChanged) {
            placements_ = std::vector<Placement>(children_.nodes().size());
            for (std::size_t index = 0; index < placements_.size(); ++index) {
                placements_[index].place(base, *children_.nodes()[index]);
            }
        }
    }

    /// Moves a layer only if its order is wrong, because it loses the keyboard.
    void putAbove(NSView* below, NSView* layer)
    {
        NSArray<NSView*>* const shown = view().subviews;
        const bool isInPlace =
            layer.superview == view() && (below == nil || [shown indexOfObject:below] < [shown indexOfObject:layer]);
        if (!isInPlace) {
            [view() addSubview:layer positioned:NSWindowAbove relativeTo:below];
        }
    }

    [[nodiscard]] bool wantsAll(Orientation orientation) const override { return children_.anyExpands(orientation); }
    void eachChild(const std::function<void(DrawnNode&)>& visit) override { children_.each(visit); }

    DrawnChildren children_;
    std::vector<Placement> placements_;
};

} // namespace

std::unique_ptr<DrawnNode> makeNode(const ui::Stack& stack)
{
    if (stack.axis == Axis::depth) {
        return std::make_unique<LayersNode>();
    }
    return std::make_unique<LineNode>();
}

} // namespace sentrel::mac
