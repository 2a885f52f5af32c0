#include "mac/windows/ElementNodes.hpp"
#include "mac/windows/Placing.hpp"
#include "ui/Node.hpp"

#include <utility>

// Rows and columns.

namespace sentrel::mac {

namespace {

/// Several views share the remaining space equally, unless another constraint prevents it.
constexpr NSLayoutPriority fairShare = 150.0F;

using Orientation = NSLayoutConstraintOrientation;
using Axis = ui::Stack::Axis;

NSLayoutAttribute alignmentOf(const ui::Stack& stack)
{
    // In the order of `Alignment`.
    constexpr NSLayoutAttribute inRow[] = {NSLayoutAttributeTop, NSLayoutAttributeCenterY, NSLayoutAttributeBottom};
    constexpr NSLayoutAttribute inColumn[] = {NSLayoutAttributeLeading, NSLayoutAttributeCenterX,
                                              NSLayoutAttributeTrailing};
    return (stack.axis == Axis::horizontal ? inRow : inColumn)[static_cast<std::size_t>(stack.alignment)];
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

    void show(const ui::View& view, const Surroundings& surroundings) override
    {
        const ui::Stack& stack = *ui::elementOf<ui::Stack>(view);
        const bool wasRow = std::exchange(isRow_, stack.axis == Axis::horizontal);
        stackView().orientation =
            isRow_ ? NSUserInterfaceLayoutOrientationHorizontal : NSUserInterfaceLayoutOrientationVertical;
        stackView().spacing = stack.spacing;
        stackView().alignment = alignmentOf(stack);
        Surroundings inner = surroundings;
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

} // namespace

std::unique_ptr<DrawnNode> makeNode(const ui::Stack& /*stack*/)
{
    return std::make_unique<LineNode>();
}

} // namespace sentrel::mac
