#include "mac/windows/Appearance.hpp"

#include "mac/foundation/FoundationValues.hpp"

namespace sentrel::mac {

NSFont* fontOf(ui::Text::Style style)
{
    switch (style) {
    case ui::Text::Style::largeTitle:
        return [NSFont preferredFontForTextStyle:NSFontTextStyleLargeTitle options:@{}];
    case ui::Text::Style::title:
        return [NSFont preferredFontForTextStyle:NSFontTextStyleTitle2 options:@{}];
    case ui::Text::Style::headline:
        return [NSFont preferredFontForTextStyle:NSFontTextStyleHeadline options:@{}];
    case ui::Text::Style::callout:
        return [NSFont preferredFontForTextStyle:NSFontTextStyleCallout options:@{}];
    case ui::Text::Style::caption:
        return [NSFont preferredFontForTextStyle:NSFontTextStyleCaption1 options:@{}];
    case ui::Text::Style::body:
        break;
    }
    return [NSFont preferredFontForTextStyle:NSFontTextStyleBody options:@{}];
}

NSColor* colorOf(ui::Text::Color color)
{
    switch (color) {
    case ui::Text::Color::secondary:
        return NSColor.secondaryLabelColor;
    case ui::Text::Color::alarm:
        return NSColor.systemRedColor;
    case ui::Text::Color::primary:
        break;
    }
    return NSColor.labelColor;
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
    if (!key) {
        return @"";
    }
    switch (*key) {
    case ui::Key::returnKey:
        return @"\r";
    case ui::Key::deleteKey:
        return @"\x7f";
    case ui::Key::escape:
        break;
    }
    return @"\x1b";
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
