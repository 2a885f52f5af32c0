#include "mac/windows/Placing.hpp"

namespace sentrel::mac {

namespace {

/// The anchors that views and layout guides both have.
struct Edges {
    explicit Edges(NSView* view)
        : leading(view.leadingAnchor),
          trailing(view.trailingAnchor),
          top(view.topAnchor),
          bottom(view.bottomAnchor),
          middleX(view.centerXAnchor),
          middleY(view.centerYAnchor)
    {
    }
    explicit Edges(NSLayoutGuide* guide)
        : leading(guide.leadingAnchor),
          trailing(guide.trailingAnchor),
          top(guide.topAnchor),
          bottom(guide.bottomAnchor),
          middleX(guide.centerXAnchor),
          middleY(guide.centerYAnchor)
    {
    }
    static Edges of(id area)
    {
        return [area isKindOfClass:NSLayoutGuide.class] ? Edges{static_cast<NSLayoutGuide*>(area)}
                                                        : Edges{static_cast<NSView*>(area)};
    }

    NSLayoutXAxisAnchor* leading;
    NSLayoutXAxisAnchor* trailing;
    NSLayoutYAxisAnchor* top;
    NSLayoutYAxisAnchor* bottom;
    NSLayoutXAxisAnchor* middleX;
    NSLayoutYAxisAnchor* middleY;
};

NSArray<NSLayoutConstraint*>* across(const Edges& inner, const Edges& outer, bool fills)
{
    if (fills) {
        return @[
            [inner.leading constraintEqualToAnchor:outer.leading],
            [inner.trailing constraintEqualToAnchor:outer.trailing]
        ];
    }
    return @[
        [inner.middleX constraintEqualToAnchor:outer.middleX],
        [inner.leading constraintGreaterThanOrEqualToAnchor:outer.leading],
        [inner.trailing constraintLessThanOrEqualToAnchor:outer.trailing],
    ];
}

NSArray<NSLayoutConstraint*>* along(const Edges& inner, const Edges& outer, bool fills)
{
    if (fills) {
        return @[ [inner.top constraintEqualToAnchor:outer.top], [inner.bottom constraintEqualToAnchor:outer.bottom] ];
    }
    return @[
        [inner.middleY constraintEqualToAnchor:outer.middleY],
        [inner.top constraintGreaterThanOrEqualToAnchor:outer.top],
        [inner.bottom constraintLessThanOrEqualToAnchor:outer.bottom],
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

Standing standingOf(const DrawnNode& node)
{
    return {(__bridge const void*)node.outer(), node.isSpacer(), node.expands(NSLayoutConstraintOrientationHorizontal),
            node.expands(NSLayoutConstraintOrientationVertical), node.stretchesAcross()};
}

std::vector<Standing> standingsOf(const DrawnChildren& children)
{
    std::vector<Standing> standings;
    for (const auto& node : children.nodes()) {
        standings.push_back(standingOf(*node));
    }
    return standings;
}

void Placement::place(id area, const DrawnNode& node, bool fills)
{
    Standing standing = standingOf(node);
    standing.expandsX = standing.expandsX || fills;
    standing.expandsY = standing.expandsY || fills;
    if (area_ == area && standing == standing_) {
        return;
    }
    forget();
    area_ = area;
    standing_ = standing;
    const Edges outer = Edges::of(area);
    const Edges inner{node.outer()};
    constraints_ =
        [across(inner, outer, standing.expandsX) arrayByAddingObjectsFromArray:along(inner, outer, standing.expandsY)];
    [NSLayoutConstraint activateConstraints:constraints_];
}

void Placement::forget()
{
    [NSLayoutConstraint deactivateConstraints:constraints_];
    constraints_ = @[];
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
