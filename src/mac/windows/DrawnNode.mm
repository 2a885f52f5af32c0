#include "mac/windows/DrawnNode.hpp"

#include "foundation/Fatal.hpp"
#include "mac/foundation/FoundationValues.hpp"
#include "mac/windows/Appearance.hpp"
#include "mac/windows/ElementNodes.hpp"
#include "mac/windows/Placing.hpp"
#include "ui/Node.hpp"

#import <QuartzCore/QuartzCore.h>

#include <algorithm>
#include <utility>

namespace sentrel::mac {

namespace {

struct Make {
    template <class Element> std::unique_ptr<DrawnNode> operator()(const Element& element) const
    {
        return makeNode(element);
    }
    std::unique_ptr<DrawnNode> operator()(const ui::Toolbar& /*toolbar*/) const { return misplaced(); }
    std::unique_ptr<DrawnNode> operator()(const ui::Sheet& /*sheet*/) const { return misplaced(); }
    std::unique_ptr<DrawnNode> operator()(const ui::Dialog& /*dialog*/) const { return misplaced(); }
    [[noreturn]] static std::unique_ptr<DrawnNode> misplaced()
    {
        fatalError("a toolbar, a sheet or a dialog stands among the children of a view: attach it");
    }
};

NSArray<NSLayoutConstraint*>* constraintsFor(NSView* view, const ui::SizeWish& wish)
{
    NSMutableArray<NSLayoutConstraint*>* const constraints = [NSMutableArray array];
    if (wish.width) {
        [constraints addObject:[view.widthAnchor constraintEqualToConstant:*wish.width]];
    }
    if (wish.height) {
        [constraints addObject:[view.heightAnchor constraintEqualToConstant:*wish.height]];
    }
    if (wish.maximumWidth) {
        [constraints addObject:[view.widthAnchor constraintLessThanOrEqualToConstant:*wish.maximumWidth]];
    }
    return constraints;
}

/// Gives the view the keyboard, unless it has it already.
void giveKeyboard(NSView* view)
{
    NSTextField* const field = [view isKindOfClass:NSTextField.class] ? static_cast<NSTextField*>(view) : nil;
    const bool hasIt = field != nil && field.currentEditor != nil;
    if (!hasIt && view.window != nil && view.window.firstResponder != view) {
        [view.window makeFirstResponder:view];
    }
}

} // namespace

void Constraints::replace(NSArray<NSLayoutConstraint*>* others)
{
    [NSLayoutConstraint deactivateConstraints:active_];
    active_ = others;
    [NSLayoutConstraint activateConstraints:active_];
}

DrawnNode::DrawnNode(NSView* view) : view_(view), outer_(view)
{
    view_.translatesAutoresizingMaskIntoConstraints = NO;
}

std::unique_ptr<DrawnNode> DrawnNode::draw(std::unique_ptr<DrawnNode> before, const ui::View& view, std::string step,
                                           const Surroundings& surroundings)
{
    if (before == nullptr || !before->canShow(view)) {
        before = std::visit(Make{}, view.element);
        before->wrap(view.traits.padding);
    }
    before->update(view, std::move(step), surroundings);
    return before;
}

bool DrawnNode::drawIn(NSView* container, std::unique_ptr<DrawnNode>& node, const ui::View& view, std::string step,
                       const Surroundings& surroundings)
{
    NSView* const before = node ? node->outer() : nil;
    node = draw(std::move(node), view, std::move(step), surroundings);
    if (node->outer() == before) {
        return false;
    }
    [before removeFromSuperview];
    [container addSubview:node->outer()];
    return true;
}

bool DrawnNode::canShow(const ui::View& view) const
{
    const ui::View& now = target_->node;
    return now.element.index() == view.element.index() && now.traits.padding == view.traits.padding;
}

void DrawnNode::wrap(double padding)
{
    if (padding <= 0.0) {
        return;
    }
    outer_ = [[NSView alloc] init];
    outer_.translatesAutoresizingMaskIntoConstraints = NO;
    [outer_ addSubview:view_];
    pin(view_, outer_, padding);
}

void DrawnNode::update(const ui::View& view, std::string step, const Surroundings& surroundings)
{
    const ui::Traits before = std::exchange(target_->node.traits, view.traits);
    target_->node.element = view.element;
    step_ = std::move(step);
    Surroundings own = surroundings;
    own.isEnabled = own.isEnabled && !view.traits.isDisabled;
    own.isPane = false;
    isPane_ = surroundings.isPane;
    show(view, own);
    if (!isDrawn_ || before.size != view.traits.size) {
        updateSize(view.traits.size);
    }
    if (before.background != view.traits.background || !isDrawn_) {
        updateBackground(view.traits.background);
    }
    if (before.help != view.traits.help) {
        outer_.toolTip = view.traits.help.empty() ? nil : stringObject(view.traits.help);
    }
    std::string spoken = view.traits.accessibilityLabel.empty() ? spokenText(view) : view.traits.accessibilityLabel;
    if (spoken != spoken_) {
        spoken_ = std::move(spoken);
        control().accessibilityLabel = spoken_.empty() ? nil : stringObject(spoken_);
    }
    isDrawn_ = true;
}

void DrawnNode::updateSize(ui::SizeWish wish)
{
    if (isPane_) {
        wish.width.reset();
    }
    sizes_.replace(constraintsFor(view_, wish));
}

void DrawnNode::updateBackground(const std::optional<ui::Color>& color)
{
    if (!color) {
        if (isDrawn_) {
            outer_.layer.backgroundColor = nil;
            outer_.appearance = nil;
        }
        return;
    }
    outer_.wantsLayer = YES;
    outer_.layer.backgroundColor = colorOf(*color).CGColor;
    // Texts and controls upon it must be readable, whatever the system's appearance.
    const double lightness = 0.299 * color->red + 0.587 * color->green + 0.114 * color->blue;
    outer_.appearance =
        [NSAppearance appearanceNamed:lightness < 0.5 ? NSAppearanceNameDarkAqua : NSAppearanceNameAqua];
}

bool DrawnNode::expands(NSLayoutConstraintOrientation orientation) const
{
    const ui::SizeWish& size = target_->node.traits.size;
    const bool isAcross = orientation == NSLayoutConstraintOrientationHorizontal;
    const bool isFixed = isAcross ? size.width && !isPane_ : size.height.has_value();
    return !isFixed && wantsAll(orientation);
}

Standing DrawnNode::standing() const
{
    return {(__bridge const void*)outer(), isSpacer(), expands(NSLayoutConstraintOrientationHorizontal),
            expands(NSLayoutConstraintOrientationVertical), stretchesAcross()};
}

void DrawnNode::applyFocus()
{
    const auto& focus = target_->node.traits.focus;
    if (focus && focus->value) {
        giveKeyboard(control());
    }
    eachChild([](DrawnNode& child) { child.applyFocus(); });
}

void DrawnNode::visit(const std::string& identity, const Visit& visitor)
{
    visitor(identity, outer_, control());
    eachChild([&](DrawnNode& child) { child.visit(ui::identityInside(identity, child.step()), visitor); });
}

bool DrawnChildren::show(const std::vector<ui::View>& children, const Surroundings& surroundings)
{
    auto before = std::exchange(nodes_, {});
    const auto standings = std::exchange(standings_, {});
    for (std::size_t index = 0; index < children.size(); ++index) {
        const ui::View& child = children[index];
        if (child.traits.isHidden) {
            continue;
        }
        std::string step = ui::stepOf(child, index);
        const auto old =
            std::ranges::find_if(before, [&](const auto& drawn) { return drawn && drawn->step() == step; });
        auto kept = old == before.end() ? nullptr : std::move(*old);
        nodes_.push_back(DrawnNode::draw(std::move(kept), child, std::move(step), surroundings));
        standings_.push_back(nodes_.back()->standing());
    }
    return standings != standings_;
}

NSArray<NSView*>* DrawnChildren::views() const
{
    NSMutableArray<NSView*>* const views = [NSMutableArray arrayWithCapacity:nodes_.size()];
    for (const auto& node : nodes_) {
        [views addObject:node->outer()];
    }
    return views;
}

bool DrawnChildren::anyExpands(NSLayoutConstraintOrientation orientation) const
{
    return std::ranges::any_of(nodes_, [&](const auto& node) { return node->expands(orientation); });
}

void DrawnChildren::collectLabels(NSMutableArray<NSView*>* labels) const
{
    for (const auto& node : nodes_) {
        node->collectLabels(labels);
    }
}

void DrawnChildren::each(const std::function<void(DrawnNode&)>& visit) const
{
    for (const auto& node : nodes_) {
        visit(*node);
    }
}

} // namespace sentrel::mac
