#include "platform/macos/ElementViews.hpp"

#include "foundation/Fatal.hpp"
#include "platform/macos/FoundationText.hpp"
#include "ui/Node.hpp"

#include <cmath>

namespace sentrel::macos {

namespace {

constexpr double sliderWidth = 180.0;
constexpr double formSpacing = 16.0;
constexpr double sectionSpacing = 8.0;
constexpr NSLayoutPriority givesWay = 1.0F;

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

NSString* keyEquivalentOf(const ui::Button& button)
{
    if (!button.shortcut) {
        return @"";
    }
    switch (*button.shortcut) {
    case ui::Key::returnKey:
        return @"\r";
    case ui::Key::deleteKey:
        return @"\x7f";
    case ui::Key::escape:
        break;
    }
    return @"\x1b";
}

NSImage* imageOf(const ui::Image& image)
{
    NSString* const name = stringObject(image.name);
    switch (image.source) {
    case ui::Image::Source::asset:
        return [NSImage imageNamed:name];
    case ui::Image::Source::file:
        return [[NSImage alloc] initWithContentsOfFile:name];
    case ui::Image::Source::memory:
        return image.data == nullptr
                   ? nil
                   : [[NSImage alloc] initWithData:[NSData dataWithBytes:image.data->data() length:image.data->size()]];
    case ui::Image::Source::systemSymbol:
        break;
    }
    return [NSImage imageWithSystemSymbolName:name accessibilityDescription:nil];
}

void setLabel(NSTextField* label, const std::string& text)
{
    NSString* const string = stringObject(text);
    if (![label.stringValue isEqualToString:string]) {
        label.stringValue = string;
    }
}

NSTextField* makeLabel()
{
    NSTextField* const label = [NSTextField wrappingLabelWithString:@""];
    label.selectable = NO;
    return label;
}

NSTextField* field(NSTextField* made, SentrelNodeTarget* target)
{
    made.delegate = target;
    made.target = target;
    made.action = @selector(submitted:);
    NSTextFieldCell* const cell = made.cell;
    cell.sendsActionOnEndEditing = NO;
    cell.scrollable = YES;
    return made;
}

/// A slider between its label and the text of its value.
NSStackView* makeSlider(SentrelNodeTarget* target)
{
    NSSlider* const slider = [NSSlider sliderWithTarget:target action:@selector(slid:)];
    slider.continuous = YES;
    [slider.widthAnchor constraintGreaterThanOrEqualToConstant:sliderWidth].active = YES;
    return [NSStackView stackViewWithViews:@[ makeLabel(), slider, makeLabel() ]];
}

NSStackView* makeSwitch(SentrelNodeTarget* target)
{
    NSSwitch* const control = [[NSSwitch alloc] init];
    control.target = target;
    control.action = @selector(toggled:);
    return [NSStackView stackViewWithViews:@[ makeLabel(), control ]];
}

NSStackView* makeColumn(double spacing)
{
    NSStackView* const column = [[NSStackView alloc] init];
    column.orientation = NSUserInterfaceLayoutOrientationVertical;
    column.alignment = NSLayoutAttributeLeading;
    column.spacing = spacing;
    return column;
}

NSView* makeSpacer()
{
    NSView* const spacer = [[NSView alloc] init];
    for (const auto orientation : {NSLayoutConstraintOrientationHorizontal, NSLayoutConstraintOrientationVertical}) {
        [spacer setContentHuggingPriority:givesWay forOrientation:orientation];
        [spacer setContentCompressionResistancePriority:givesWay forOrientation:orientation];
    }
    return spacer;
}

NSView* makeProgress()
{
    NSProgressIndicator* const indicator = [[NSProgressIndicator alloc] init];
    indicator.minValue = 0.0;
    indicator.maxValue = 1.0;
    return [NSStackView stackViewWithViews:@[ indicator, makeLabel() ]];
}

struct Make {
    NSView* operator()(const ui::Stack& stack) const
    {
        // Layers are pinned to a plain view by the renderer.
        return stack.axis == ui::Stack::Axis::depth ? [[NSView alloc] init] : [[NSStackView alloc] init];
    }
    NSView* operator()(const ui::Spacer& /*spacer*/) const { return makeSpacer(); }
    NSView* operator()(const ui::Divider& /*divider*/) const
    {
        NSBox* const box = [[NSBox alloc] init];
        box.boxType = NSBoxSeparator;
        return box;
    }
    NSView* operator()(const ui::Text& /*text*/) const { return makeLabel(); }
    NSView* operator()(const ui::Image& /*image*/) const { return [[NSImageView alloc] init]; }
    NSView* operator()(const ui::Button& /*button*/) const
    {
        return [NSButton buttonWithTitle:@"" target:target action:@selector(pressed:)];
    }
    NSView* operator()(const ui::Toggle& toggle) const
    {
        if (toggle.style == ui::Toggle::Style::onOffSwitch) {
            return makeSwitch(target);
        }
        return [NSButton checkboxWithTitle:@"" target:target action:@selector(toggled:)];
    }
    NSView* operator()(const ui::Slider& /*slider*/) const { return makeSlider(target); }
    NSView* operator()(const ui::TextField& /*plain*/) const { return field([[SentrelTextField alloc] init], target); }
    NSView* operator()(const ui::SecureField& /*secure*/) const
    {
        return field([[SentrelSecureField alloc] init], target);
    }
    NSView* operator()(const ui::Form& /*form*/) const { return makeColumn(formSpacing); }
    NSView* operator()(const ui::Section& /*section*/) const { return makeColumn(sectionSpacing); }
    NSView* operator()(const ui::Progress& /*progress*/) const { return makeProgress(); }
    template <class Other> NSView* operator()(const Other& /*other*/) const
    {
        fatalError("a window shows a kind of view that is not drawn on the Mac");
    }
    SentrelNodeTarget* target;
};

struct Update {
    void operator()(const ui::Stack& stack) const
    {
        if (stack.axis == ui::Stack::Axis::depth) {
            return;
        }
        NSStackView* const shownStack = static_cast<NSStackView*>(shown);
        const bool isRow = stack.axis == ui::Stack::Axis::horizontal;
        shownStack.orientation =
            isRow ? NSUserInterfaceLayoutOrientationHorizontal : NSUserInterfaceLayoutOrientationVertical;
        shownStack.spacing = stack.spacing;
        switch (stack.alignment) {
        case ui::Stack::Alignment::leading:
            shownStack.alignment = isRow ? NSLayoutAttributeTop : NSLayoutAttributeLeading;
            break;
        case ui::Stack::Alignment::center:
            shownStack.alignment = isRow ? NSLayoutAttributeCenterY : NSLayoutAttributeCenterX;
            break;
        case ui::Stack::Alignment::trailing:
            shownStack.alignment = isRow ? NSLayoutAttributeBottom : NSLayoutAttributeTrailing;
            break;
        }
    }
    void operator()(const ui::Text& text) const
    {
        NSTextField* const label = static_cast<NSTextField*>(shown);
        setLabel(label, text.text);
        label.font = fontOf(text.style);
        label.textColor = colorOf(text.color);
    }
    void operator()(const ui::Image& image) const { static_cast<NSImageView*>(shown).image = imageOf(image); }
    void operator()(const ui::Button& button) const
    {
        NSButton* const control = static_cast<NSButton*>(shown);
        control.title = stringObject(button.title);
        control.keyEquivalent = keyEquivalentOf(button);
        control.hasDestructiveAction = button.role == ui::Button::Role::destructive;
        control.bezelColor = button.role == ui::Button::Role::prominent ? NSColor.controlAccentColor : nil;
        control.image = button.image ? imageOf(*button.image) : nil;
        control.imagePosition = !button.image ? NSNoImage : button.title.empty() ? NSImageOnly : NSImageLeading;
        control.enabled = isEnabled;
    }
    void operator()(const ui::Toggle& toggle) const
    {
        const NSControlStateValue state = toggle.isOn.value ? NSControlStateValueOn : NSControlStateValueOff;
        if ([shown isKindOfClass:NSStackView.class]) {
            NSArray<NSView*>* const parts = static_cast<NSStackView*>(shown).arrangedSubviews;
            setLabel(static_cast<NSTextField*>(parts[0]), toggle.label);
            NSSwitch* const control = static_cast<NSSwitch*>(parts[1]);
            control.state = state;
            control.enabled = isEnabled;
            return;
        }
        NSButton* const control = static_cast<NSButton*>(shown);
        control.title = stringObject(toggle.label);
        control.state = state;
        control.enabled = isEnabled;
    }
    void operator()(const ui::Slider& slider) const
    {
        NSArray<NSView*>* const parts = static_cast<NSStackView*>(shown).arrangedSubviews;
        setLabel(static_cast<NSTextField*>(parts[0]), slider.label);
        setLabel(static_cast<NSTextField*>(parts[2]), slider.valueText);
        NSSlider* const control = static_cast<NSSlider*>(parts[1]);
        control.minValue = slider.lower;
        control.maxValue = slider.upper;
        const bool isStepped = slider.step && *slider.step > 0.0;
        control.numberOfTickMarks = isStepped ? std::lround((slider.upper - slider.lower) / *slider.step) + 1 : 0;
        control.allowsTickMarkValuesOnly = isStepped;
        control.doubleValue = slider.value.value;
        control.enabled = isEnabled;
    }
    void operator()(const ui::TextField& plain) const
    {
        NSTextField* const control = static_cast<NSTextField*>(shown);
        setText(control, stringObject(plain.text.value));
        control.placeholderString = stringObject(plain.prompt);
        control.enabled = isEnabled;
    }
    void operator()(const ui::SecureField& secure) const
    {
        NSTextField* const control = static_cast<NSTextField*>(shown);
        if (!(secretTextOf(control) == secure.text.value)) {
            const BytesView bytes = secure.text.value.view();
            setText(control, stringObject({reinterpret_cast<const char*>(bytes.data()), bytes.size()}));
        }
        control.placeholderString = stringObject(secure.prompt);
        control.enabled = isEnabled;
    }
    void operator()(const ui::Progress& progress) const
    {
        NSArray<NSView*>* const parts = static_cast<NSStackView*>(shown).arrangedSubviews;
        NSProgressIndicator* const indicator = static_cast<NSProgressIndicator*>(parts[0]);
        indicator.style = progress.fraction ? NSProgressIndicatorStyleBar : NSProgressIndicatorStyleSpinning;
        indicator.indeterminate = !progress.fraction;
        indicator.doubleValue = progress.fraction.value_or(0.0);
        if (!progress.fraction) {
            [indicator startAnimation:nil];
        }
        setLabel(static_cast<NSTextField*>(parts[1]), progress.label);
    }
    template <class Other> void operator()(const Other& /*other*/) const {}

    NSView* shown;
    bool isEnabled;
};

} // namespace

NSView* makeElementView(const ui::View& view, SentrelNodeTarget* target)
{
    NSView* const made = std::visit(Make{target}, view.element);
    made.translatesAutoresizingMaskIntoConstraints = NO;
    return made;
}

void updateElementView(NSView* shown, const ui::View& view, bool isEnabled)
{
    std::visit(Update{shown, isEnabled}, view.element);
}

NSColor* colorOf(const ui::Color& color)
{
    return [NSColor colorWithSRGBRed:color.red green:color.green blue:color.blue alpha:color.opacity];
}

} // namespace sentrel::macos
