#include "conformance/mac/OffScreen.hpp"

#include "mac/foundation/FoundationValues.hpp"
#include "mac/windows/HostView.hpp"

#import <AppKit/AppKit.h>

#include <cmath>

namespace sentrel::conformance {

namespace {

using mac::stringObject;
using mac::textOf;

/// The smallest size of the settings' window.
const NSRect contentRectangle = NSMakeRect(0, 0, 720, 640);

void collectTexts(NSView* view, std::vector<std::string>& texts)
{
    if (view.hidden) {
        return;
    }
    if ([view isKindOfClass:NSTextField.class]) {
        NSTextField* const field = static_cast<NSTextField*>(view);
        texts.push_back(textOf(field.stringValue));
        if (field.placeholderString != nil) {
            texts.push_back(textOf(field.placeholderString));
        }
    } else if ([view isKindOfClass:NSButton.class]) {
        texts.push_back(textOf(static_cast<NSButton*>(view).title));
    }
    for (NSView* const inner in view.subviews) {
        collectTexts(inner, texts);
    }
}

bool hasKeyboard(NSView* control)
{
    if (control.window.firstResponder == control) {
        return true;
    }
    // A field is edited by its window's editor.
    return [control isKindOfClass:NSTextField.class] && static_cast<NSTextField*>(control).currentEditor != nil;
}

Drawn drawnOf(const std::string& identity, NSView* outer, NSView* control)
{
    Drawn drawn;
    drawn.identity = identity;
    collectTexts(outer, drawn.texts);
    if (control.accessibilityLabel != nil) {
        drawn.label = textOf(control.accessibilityLabel);
    }
    drawn.isEnabled = ![control isKindOfClass:NSControl.class] || static_cast<NSControl*>(control).enabled;
    drawn.hasFocus = hasKeyboard(control);
    return drawn;
}

/// The place of an anchor in the window; none for kinds that are not compared.
std::optional<double> valueOf(id item, NSLayoutAttribute attribute, NSView* root)
{
    NSView* const view = [item isKindOfClass:NSView.class] ? static_cast<NSView*>(item) : nil;
    if (view == nil) {
        return std::nullopt;
    }
    const NSRect frame = [root convertRect:[view alignmentRectForFrame:view.bounds] fromView:view];
    const NSRect size = [view alignmentRectForFrame:view.frame];
    switch (attribute) {
    case NSLayoutAttributeLeft:
    case NSLayoutAttributeLeading:
        return NSMinX(frame);
    case NSLayoutAttributeRight:
    case NSLayoutAttributeTrailing:
        return NSMaxX(frame);
    case NSLayoutAttributeCenterX:
        return NSMidX(frame);
    case NSLayoutAttributeWidth:
        return NSWidth(size);
    case NSLayoutAttributeHeight:
        return NSHeight(size);
    default:
        return std::nullopt; // upright places depend on which views are flipped
    }
}

/// Whether a required constraint holds after the layout. AppKit breaks one of several that exclude each other.
bool holds(NSLayoutConstraint* constraint, NSView* root)
{
    constexpr double tolerance = 1.0; // points: AppKit rounds to pixels
    if (constraint.priority < NSLayoutPriorityRequired || !constraint.active) {
        return true;
    }
    const auto first = valueOf(constraint.firstItem, constraint.firstAttribute, root);
    const auto second = constraint.secondItem == nil ? std::optional{0.0}
                                                     : valueOf(constraint.secondItem, constraint.secondAttribute, root);
    if (!first || !second) {
        return true;
    }
    const double wanted = *second * constraint.multiplier + constraint.constant;
    switch (constraint.relation) {
    case NSLayoutRelationEqual:
        return std::abs(*first - wanted) <= tolerance;
    case NSLayoutRelationLessThanOrEqual:
        return *first <= wanted + tolerance;
    case NSLayoutRelationGreaterThanOrEqual:
        return *first >= wanted - tolerance;
    }
    return true;
}

void checkConstraints(NSView* view, NSView* root, const std::string& name, Report& report)
{
    for (NSLayoutConstraint* const constraint in view.constraints) {
        if (!holds(constraint, root)) {
            report.expect(false, name + ": a required constraint is broken", textOf(constraint.description));
        }
    }
    for (NSView* const inner in view.subviews) {
        if (!inner.hidden) {
            checkConstraints(inner, root, name, report);
        }
    }
}

void keepPicture(NSView* view, const std::filesystem::path& file, Report& report)
{
    NSBitmapImageRep* const bitmap = [view bitmapImageRepForCachingDisplayInRect:view.bounds];
    [view cacheDisplayInRect:view.bounds toBitmapImageRep:bitmap];
    NSData* const data = [bitmap representationUsingType:NSBitmapImageFileTypePNG properties:@{}];
    report.expect([data writeToFile:stringObject(file.native()) atomically:YES], "a picture is kept", file.native());
}

std::vector<Drawn> draw(const ui::View& tree, const std::string& name, const std::filesystem::path& pictures,
                        Report& report)
{
    NSWindow* const window = [[NSWindow alloc] initWithContentRect:contentRectangle
                                                         styleMask:NSWindowStyleMaskTitled
                                                           backing:NSBackingStoreBuffered
                                                             defer:NO];
    window.releasedWhenClosed = NO;
    SentrelHostView* const host = [[SentrelHostView alloc] initWithFrame:contentRectangle];
    window.contentView = host;
    [host render:tree];
    for (const NSAppearanceName appearance in @[ NSAppearanceNameAqua, NSAppearanceNameDarkAqua ]) {
        const bool isDark = [appearance isEqualToString:NSAppearanceNameDarkAqua];
        window.appearance = [NSAppearance appearanceNamed:appearance];
        [host layoutSubtreeIfNeeded];
        keepPicture(host, pictures / (name + (isDark ? "-dark.png" : "-light.png")), report);
    }
    checkConstraints(host, host, name, report);
    std::vector<Drawn> drawn;
    [host visit:[&](const std::string& identity, NSView* outer, NSView* control) {
        drawn.push_back(drawnOf(identity, outer, control));
    }];
    [host endContent];
    return drawn;
}

} // namespace

Renderer offScreenRenderer(std::filesystem::path pictures)
{
    return {.draw =
                [folder = std::move(pictures)](const ui::View& tree, const std::string& name, Report& report) {
                    @autoreleasepool {
                        return draw(tree, name, folder, report);
                    }
                },
            .tellsFocus = true};
}

} // namespace sentrel::conformance
