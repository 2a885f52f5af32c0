#include "platform/macos/TreeRenderer.hpp"

#include "platform/macos/ElementViews.hpp"
#include "platform/macos/FoundationText.hpp"
#include "ui/Node.hpp"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace sentrel::macos {

/// One node as it is drawn.
struct TreeRenderer::Node {
    std::string step;
    SentrelNodeTarget* target = [[SentrelNodeTarget alloc] init];
    NSView* view = nil;
    NSView* outer = nil; ///< the same, or what gives it its padding
    NSArray<NSLayoutConstraint*>* sizes = @[];
    NSArray<NSLayoutConstraint*>* placing = @[];
    NSTextField* header = nil; ///< of a section
    std::vector<std::unique_ptr<Node>> children;
};

namespace {

bool isColumn(const ui::View& view)
{
    return ui::elementOf<ui::Stack>(view) != nullptr || ui::elementOf<ui::Form>(view) != nullptr ||
           ui::elementOf<ui::Section>(view) != nullptr;
}

/// Whether the AppKit view of one can show the other.
bool fits(const ui::View& before, const ui::View& now)
{
    if (before.element.index() != now.element.index() || before.traits.padding != now.traits.padding) {
        return false;
    }
    const auto* const stack = ui::elementOf<ui::Stack>(now);
    if (stack != nullptr) {
        const bool wasDepth = ui::elementOf<ui::Stack>(before)->axis == ui::Stack::Axis::depth;
        return wasDepth == (stack->axis == ui::Stack::Axis::depth);
    }
    const auto* const toggle = ui::elementOf<ui::Toggle>(now);
    return toggle == nullptr || toggle->style == ui::elementOf<ui::Toggle>(before)->style;
}

NSArray<NSLayoutConstraint*>* pin(NSView* inner, NSView* outer, double inset)
{
    NSArray<NSLayoutConstraint*>* const constraints = @[
        [inner.leadingAnchor constraintEqualToAnchor:outer.leadingAnchor constant:inset],
        [inner.trailingAnchor constraintEqualToAnchor:outer.trailingAnchor constant:-inset],
        [inner.topAnchor constraintEqualToAnchor:outer.topAnchor constant:inset],
        [inner.bottomAnchor constraintEqualToAnchor:outer.bottomAnchor constant:-inset],
    ];
    [NSLayoutConstraint activateConstraints:constraints];
    return constraints;
}

/// The view in another that keeps the distance, if it asks for one.
NSView* padded(NSView* view, double padding)
{
    if (padding <= 0.0) {
        return view;
    }
    NSView* const box = [[NSView alloc] init];
    box.translatesAutoresizingMaskIntoConstraints = NO;
    [box addSubview:view];
    pin(view, box, padding);
    return box;
}

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

void paint(NSView* view, const ui::Color& color)
{
    view.wantsLayer = YES;
    view.layer.backgroundColor = colorOf(color).CGColor;
    // Texts and controls upon it must be readable, whatever the system's appearance.
    const double lightness = 0.299 * color.red + 0.587 * color.green + 0.114 * color.blue;
    view.appearance = [NSAppearance appearanceNamed:lightness < 0.5 ? NSAppearanceNameDarkAqua : NSAppearanceNameAqua];
}

void giveKeyboard(NSView* view)
{
    NSTextField* const field = [view isKindOfClass:NSTextField.class] ? static_cast<NSTextField*>(view) : nil;
    const bool hasIt = field != nil && field.currentEditor != nil;
    if (!hasIt && view.window != nil && view.window.firstResponder != view) {
        [view.window makeFirstResponder:view];
    }
}

/// Puts the views into the stack in this order. A view that stays is never taken out, so that it keeps the keyboard.
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

/// Layers on each other: each as large as the view.
NSArray<NSLayoutConstraint*>* layer(NSView* base, NSArray<NSView*>* views)
{
    for (NSView* const shown in [base.subviews copy]) {
        if (![views containsObject:shown]) {
            [shown removeFromSuperview];
        }
    }
    NSMutableArray<NSLayoutConstraint*>* const constraints = [NSMutableArray array];
    for (NSView* const shown in views) {
        if (shown.superview != base) {
            [base addSubview:shown];
        }
        [constraints addObjectsFromArray:pin(shown, base, 0.0)];
    }
    return constraints;
}

/// Spacers of one stack share what is left over.
NSArray<NSLayoutConstraint*>* equalSpacers(const std::vector<NSView*>& spacers, bool isRow)
{
    NSMutableArray<NSLayoutConstraint*>* const constraints = [NSMutableArray array];
    for (std::size_t index = 1; index < spacers.size(); ++index) {
        NSLayoutDimension* const first = isRow ? spacers[0].widthAnchor : spacers[0].heightAnchor;
        NSLayoutDimension* const other = isRow ? spacers[index].widthAnchor : spacers[index].heightAnchor;
        [constraints addObject:[other constraintEqualToAnchor:first]];
    }
    [NSLayoutConstraint activateConstraints:constraints];
    return constraints;
}

/// Draws trees; the renderer's nodes are private to it.
template <class Node> class Drawing {
public:
    std::unique_ptr<Node> draw(std::unique_ptr<Node> node, const ui::View& view, std::string step, bool isEnabled)
    {
        if (node == nullptr || !fits(node->target->node, view)) {
            node = std::make_unique<Node>();
            node->view = makeElementView(view, node->target);
            node->outer = padded(node->view, view.traits.padding);
        }
        node->step = std::move(step);
        update(*node, view, isEnabled && !view.traits.isDisabled);
        return node;
    }

private:
    void update(Node& node, const ui::View& view, bool isEnabled)
    {
        const bool hasNewSize = node.target->node.traits.size != view.traits.size;
        node.target->node.element = view.element;
        node.target->node.traits = view.traits;
        updateElementView(node.view, view, isEnabled);
        if (hasNewSize) {
            [NSLayoutConstraint deactivateConstraints:node.sizes];
            node.sizes = constraintsFor(node.view, view.traits.size);
            [NSLayoutConstraint activateConstraints:node.sizes];
        }
        if (view.traits.background) {
            paint(node.outer, *view.traits.background);
        }
        node.view.toolTip = view.traits.help.empty() ? nil : stringObject(view.traits.help);
        if (!view.traits.accessibilityLabel.empty()) {
            node.view.accessibilityLabel = stringObject(view.traits.accessibilityLabel);
        }
        updateChildren(node, view, isEnabled);
    }

    void updateChildren(Node& node, const ui::View& view, bool isEnabled)
    {
        auto before = std::exchange(node.children, {});
        NSMutableArray<NSView*>* const views = [NSMutableArray array];
        addHeader(node, view, views);
        std::vector<NSView*> spacers;
        for (std::size_t index = 0; index < view.children.size(); ++index) {
            const ui::View& child = view.children[index];
            if (child.traits.isHidden) {
                continue;
            }
            const std::string step = ui::stepOf(child, index);
            const auto old =
                std::ranges::find_if(before, [&](const auto& drawn) { return drawn && drawn->step == step; });
            auto drawn = draw(old == before.end() ? nullptr : std::move(*old), child, step, isEnabled);
            if (ui::elementOf<ui::Spacer>(child) != nullptr) {
                spacers.push_back(drawn->outer);
            }
            [views addObject:drawn->outer];
            node.children.push_back(std::move(drawn));
        }
        place(node, view, views, spacers);
    }

    static void addHeader(Node& node, const ui::View& view, NSMutableArray<NSView*>* views)
    {
        const auto* const section = ui::elementOf<ui::Section>(view);
        if (section == nullptr || section->header.empty()) {
            return;
        }
        if (node.header == nil) {
            node.header = [NSTextField labelWithString:@""];
            node.header.font = [NSFont preferredFontForTextStyle:NSFontTextStyleHeadline options:@{}];
        }
        node.header.stringValue = stringObject(section->header);
        [views addObject:node.header];
    }

    static void place(Node& node, const ui::View& view, NSArray<NSView*>* views, const std::vector<NSView*>& spacers)
    {
        if (!isColumn(view)) {
            return;
        }
        [NSLayoutConstraint deactivateConstraints:node.placing];
        if (![node.view isKindOfClass:NSStackView.class]) {
            node.placing = layer(node.view, views);
            return;
        }
        arrange(static_cast<NSStackView*>(node.view), views);
        const auto* const stack = ui::elementOf<ui::Stack>(view);
        node.placing = equalSpacers(spacers, stack != nullptr && stack->axis == ui::Stack::Axis::horizontal);
    }
};

template <class Node> void focusIn(const Node& node)
{
    const auto& focus = node.target->node.traits.focus;
    if (focus && focus->value) {
        giveKeyboard(node.view);
    }
    for (const auto& child : node.children) {
        focusIn(*child);
    }
}

} // namespace

TreeRenderer::TreeRenderer(NSView* container) : container_(container)
{
}

TreeRenderer::~TreeRenderer()
{
    [root_ ? root_->outer : nil removeFromSuperview];
}

void TreeRenderer::render(ui::View content)
{
    content_ = std::move(content);
    NSView* const before = root_ ? root_->outer : nil;
    root_ = Drawing<Node>{}.draw(std::move(root_), content_, "", true);
    if (root_->outer != before) {
        [before removeFromSuperview];
        fill(*root_);
    }
    applyFocus();
}

void TreeRenderer::applyFocus()
{
    if (root_) {
        focusIn(*root_);
    }
}

void TreeRenderer::fill(Node& node)
{
    NSView* const container = container_;
    [container addSubview:node.outer];
    if (content_.traits.ignoresSafeAreas) {
        pin(node.outer, container, 0.0);
        return;
    }
    NSLayoutGuide* const safe = container.safeAreaLayoutGuide;
    [NSLayoutConstraint activateConstraints:@[
        [node.outer.leadingAnchor constraintEqualToAnchor:safe.leadingAnchor],
        [node.outer.trailingAnchor constraintEqualToAnchor:safe.trailingAnchor],
        [node.outer.topAnchor constraintEqualToAnchor:safe.topAnchor],
        [node.outer.bottomAnchor constraintEqualToAnchor:safe.bottomAnchor],
    ]];
}

} // namespace sentrel::macos
