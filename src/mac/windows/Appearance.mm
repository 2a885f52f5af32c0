#include "mac/windows/Appearance.hpp"

#include "mac/foundation/FoundationValues.hpp"

namespace sentrel::mac {

// The tables have the order of their enumerations.

NSFont* fontOf(ui::Text::Style style)
{
    const NSFontTextStyle styles[] = {NSFontTextStyleLargeTitle, NSFontTextStyleTitle2,  NSFontTextStyleHeadline,
                                      NSFontTextStyleBody,       NSFontTextStyleCallout, NSFontTextStyleCaption1};
    return [NSFont preferredFontForTextStyle:styles[static_cast<std::size_t>(style)] options:@{}];
}

NSColor* colorOf(ui::Text::Color color)
{
    NSColor* const colors[] = {NSColor.labelColor, NSColor.secondaryLabelColor, NSColor.systemRedColor};
    return colors[static_cast<std::size_t>(color)];
}

NSColor* colorOf(const ui::Color& color)
{
    return [NSColor colorWithSRGBRed:color.red green:color.green blue:color.blue alpha:color.opacity];
}

NSImage* imageOf(const ui::Image& image, const std::string& description)
{
    if (image.source == ui::Image::Source::memory) {
        NSData* const data = image.data ? [NSData dataWithBytes:image.data->data() length:image.data->size()] : nil;
        return data == nil ? nil : [[NSImage alloc] initWithData:data];
    }
    return [NSImage imageWithSystemSymbolName:stringObject(image.name)
                     accessibilityDescription:description.empty() ? nil : stringObject(description)];
}

NSString* keyEquivalentOf(const std::optional<ui::Key>& key)
{
    NSString* const keys[] = {@"\r", @"\x7f", @"\x1b"};
    return key ? keys[static_cast<std::size_t>(*key)] : @"";
}

std::optional<ui::Key> keyOf(NSEvent* event)
{
    NSString* const characters = event.charactersIgnoringModifiers;
    switch (characters.length == 1 ? [characters characterAtIndex:0] : 0) {
    case NSCarriageReturnCharacter:
    case NSEnterCharacter:
        return ui::Key::returnKey;
    case NSDeleteCharacter:
    case NSDeleteFunctionKey:
        return ui::Key::deleteKey;
    case 0x1b:
        return ui::Key::escape;
    default:
        return std::nullopt;
    }
}

NSTextField* makeLabel()
{
    NSTextField* const label = [NSTextField wrappingLabelWithString:@""];
    label.selectable = NO;
    // It wraps rather than widens its window.
    [label setContentCompressionResistancePriority:NSLayoutPriorityDragThatCannotResizeWindow
                                    forOrientation:NSLayoutConstraintOrientationHorizontal];
    return label;
}

void setLabel(NSTextField* label, const std::string& text)
{
    NSString* const string = stringObject(text);
    if (![label.stringValue isEqualToString:string]) {
        label.stringValue = string;
    }
}

} // namespace sentrel::mac
