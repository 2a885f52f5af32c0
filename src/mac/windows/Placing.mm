#include "mac/windows/Placing.hpp"

namespace sentrel::mac {

namespace {

/// The anchors of a view or of a layout guide in one direction.
struct Anchors {
    NSLayoutAnchor* start;
    NSLayoutAnchor* end;
    NSLayoutAnchor* middle;
};

Anchors acrossOf(id area)
{
    return {[area leadingAnchor], [area trailingAnchor], [area centerXAnchor]};
}

Anchors downOf(id area)
{
    return {[area topAnchor], [area bottomAnchor], [area centerYAnchor]};
}

NSArray<NSLayoutConstraint*>* placed(const Anchors& inner, const Anchors& outer, bool fills)
{
    if (fills) {
        return @[ [inner.start constraintEqualToAnchor:outer.start], [inner.end constraintEqualToAnchor:outer.end] ];
    }
    return @[
        [inner.middle constraintEqualToAnchor:outer.middle],
        [inner.start constraintGreaterThanOrEqualToAnchor:outer.start],
        [inner.end constraintLessThanOrEqualToAnchor:outer.end],
    ];
}

} // namespace

void pin(NSView* inner, NSView* outer, double inset)
{
    [NSLayoutConstraint activateConstraints:@[
        [inner.leadingAnchor constraintEqualToAnchor:outer.leadingAnchor constant:inset],
        [inner.trailingAnchor constraintEqualToAnchor:outer.trailingAnchor constant:-inset],
        [inner.topAnchor constraintEqualToAnchor:outer.topAnchor constant:inset],
        [inner.bottomAnchor constraintEqualToAnchor:outer.bottomAnchor constant:-inset],
    ]];
}

NSLayoutConstraint* weakened(NSLayoutConstraint* constraint, NSLayoutPriority priority)
{
    constraint.priority = priority;
    return constraint;
}

void setPriorities(NSView* view, NSLayoutPriority priority)
{
    for (const auto orientation : {NSLayoutConstraintOrientationHorizontal, NSLayoutConstraintOrientationVertical}) {
        [view setContentHuggingPriority:priority forOrientation:orientation];
        [view setContentCompressionResistancePriority:priority forOrientation:orientation];
    }
}

void Placement::place(id area, const DrawnNode& node, bool fills)
{
    Standing standing = node.standing();
    standing.expandsX = standing.expandsX || fills;
    standing.expandsY = standing.expandsY || fills;
    if (area_ == area && standing == standing_) {
        return;
    }
    forget();
    area_ = area;
    standing_ = standing;
    NSView* const inner = node.outer();
    constraints_.replace([placed(acrossOf(inner), acrossOf(area), standing.expandsX)
        arrayByAddingObjectsFromArray:placed(downOf(inner), downOf(area), standing.expandsY)]);
}

void Placement::forget()
{
    constraints_.replace(@[]);
    area_ = nil;
}

void arrange(NSStackView* stack, NSArray<NSView*>* views)
{
    for (NSView* const shown in [stack.arrangedSubviews copy]) {
        if (![views containsObject:shown]) {
            [stack removeArrangedSubview:shown];
            [shown removeFromSuperview];
        }
    }
    for (NSUInteger index = 0; index < views.count; ++index) {
        if (index >= stack.arrangedSubviews.count || stack.arrangedSubviews[index] != views[index]) {
            [stack insertArrangedSubview:views[index] atIndex:static_cast<NSInteger>(index)];
        }
    }
}

NSStackView* makeColumn(double spacing)
{
    NSStackView* const column = [[NSStackView alloc] init];
    column.translatesAutoresizingMaskIntoConstraints = NO;
    column.orientation = NSUserInterfaceLayoutOrientationVertical;
    column.alignment = NSLayoutAttributeLeading;
    column.distribution = NSStackViewDistributionFill;
    column.spacing = spacing;
    return column;
}

} // namespace sentrel::mac
