#include "mac/foundation/FoundationValues.hpp"
#include "mac/windows/Appearance.hpp"
#include "mac/windows/ElementNodes.hpp"
#include "mac/windows/Placing.hpp"
#include "ui/Node.hpp"

#include <cmath>

// Controls that the user operates.

namespace sentrel::mac {

namespace {

constexpr double sliderWidth = 100.0; // points, at least: some languages have long labels
constexpr double valueWidth = 44.0;
constexpr double fieldWidth = 120.0;

class ButtonNode final : public DrawnNode {
public:
    ButtonNode() : DrawnNode([NSButton buttonWithTitle:@"" target:nil action:nil])
    {
        button().target = target();
        button().action = @selector(pressed:);
    }

private:
    [[nodiscard]] NSButton* button() const { return static_cast<NSButton*>(view()); }

    void show(const ui::View& view, const Surroundings& surroundings) override
    {
        const ui::Button& now = *ui::elementOf<ui::Button>(view);
        const bool isDestructive = now.role == ui::Button::Role::destructive;
        button().title = stringObject(now.title);
        button().keyEquivalent = keyEquivalentOf(now.shortcut);
        button().hasDestructiveAction = isDestructive;
        button().contentTintColor = isDestructive ? NSColor.systemRedColor : nil;
        button().bezelColor = now.role == ui::Button::Role::prominent ? NSColor.controlAccentColor : nil;
        if (image_ != now.image) {
            image_ = now.image;
            button().image = now.image ? imageOf(*now.image, view.traits.accessibilityLabel) : nil;
        }
        button().imagePosition = !now.image ? NSNoImage : now.title.empty() ? NSImageOnly : NSImageLeading;
        button().enabled = surroundings.isEnabled;
    }

    std::optional<ui::Image> image_;
};

class CheckboxNode final : public DrawnNode {
public:
    CheckboxNode() : DrawnNode([NSButton checkboxWithTitle:@"" target:nil action:nil])
    {
        checkbox().target = target();
        checkbox().action = @selector(toggled:);
    }

private:
    [[nodiscard]] NSButton* checkbox() const { return static_cast<NSButton*>(view()); }

    void show(const ui::View& view, const Surroundings& surroundings) override
    {
        const ui::Toggle& toggle = *ui::elementOf<ui::Toggle>(view);
        checkbox().title = stringObject(toggle.label);
        checkbox().state = toggle.isOn.value ? NSControlStateValueOn : NSControlStateValueOff;
        checkbox().enabled = surroundings.isEnabled;
    }
};

/// A slider between its label and the text of its value.
class SliderNode final : public DrawnNode {
public:
    SliderNode() : DrawnNode([[NSStackView alloc] init])
    {
        NSStackView* const row = static_cast<NSStackView*>(view());
        row.distribution = NSStackViewDistributionFill;
        slider_.continuous = YES;
        slider_.target = target();
        slider_.action = @selector(slid:);
        [slider_.widthAnchor constraintGreaterThanOrEqualToConstant:sliderWidth].active = YES;
        [slider_ setContentHuggingPriority:givesWay forOrientation:NSLayoutConstraintOrientationHorizontal];
        // Digits of equal width, so that only the knob moves.
        value_.font = [NSFont monospacedDigitSystemFontOfSize:NSFont.systemFontSize weight:NSFontWeightRegular];
        value_.textColor = NSColor.secondaryLabelColor;
        [value_.widthAnchor constraintGreaterThanOrEqualToConstant:valueWidth].active = YES;
        for (NSView* const part in @[ label_, slider_, value_ ]) {
            [row addArrangedSubview:part];
        }
    }

private:
    void show(const ui::View& view, const Surroundings& surroundings) override
    {
        const ui::Slider& now = *ui::elementOf<ui::Slider>(view);
        setLabel(label_, now.label);
        label_.hidden = now.label.empty();
        label_.textColor = surroundings.isEnabled ? NSColor.labelColor : NSColor.disabledControlTextColor;
        setLabel(value_, now.valueText);
        value_.hidden = now.valueText.empty();
        const bool isStepped = now.step && *now.step > 0.0;
        slider_.minValue = now.lower;
        slider_.maxValue = now.upper;
        slider_.numberOfTickMarks = isStepped ? std::lround((now.upper - now.lower) / *now.step) + 1 : 0;
        slider_.allowsTickMarkValuesOnly = isStepped;
        slider_.doubleValue = now.value.value;
        slider_.enabled = surroundings.isEnabled;
        slider_.accessibilityValueDescription = now.valueText.empty() ? nil : stringObject(now.valueText);
    }
    [[nodiscard]] NSView* control() const override { return slider_; }
    void collectLabels(NSMutableArray<NSView*>* labels) const override
    {
        if (!label_.hidden) {
            [labels addObject:label_];
        }
    }
    [[nodiscard]] std::string spokenText(const ui::View& view) const override
    {
        return ui::elementOf<ui::Slider>(view)->label;
    }
    [[nodiscard]] bool wantsAll(NSLayoutConstraintOrientation orientation) const override
    {
        return orientation == NSLayoutConstraintOrientationHorizontal;
    }

    NSTextField* const label_ = makeLabel();
    NSSlider* const slider_ = [[NSSlider alloc] init];
    NSTextField* const value_ = makeLabel();
};

/// The base of plain and secure fields.
class FieldNode : public DrawnNode {
protected:
    explicit FieldNode(NSTextField* field) : DrawnNode(field)
    {
        field.delegate = target();
        field.target = target();
        field.action = @selector(submitted:);
        [field.widthAnchor constraintGreaterThanOrEqualToConstant:fieldWidth].active = YES;
        NSTextFieldCell* const cell = field.cell;
        cell.sendsActionOnEndEditing = NO;
        cell.scrollable = YES;
    }

    [[nodiscard]] NSTextField* field() const { return static_cast<NSTextField*>(view()); }
    void showPrompt(const std::string& prompt, bool isEnabled)
    {
        field().placeholderString = stringObject(prompt);
        field().enabled = isEnabled;
    }

private:
    [[nodiscard]] std::string spokenText(const ui::View& view) const override { return ui::visibleText(view); }
    [[nodiscard]] bool wantsAll(NSLayoutConstraintOrientation orientation) const override
    {
        return orientation == NSLayoutConstraintOrientationHorizontal;
    }
};

class PlainFieldNode final : public FieldNode {
public:
    PlainFieldNode() : FieldNode([[SentrelTextField alloc] init]) {}

private:
    void show(const ui::View& view, const Surroundings& surroundings) override
    {
        const ui::TextField& now = *ui::elementOf<ui::TextField>(view);
        setText(field(), stringObject(now.text.value));
        showPrompt(now.prompt, surroundings.isEnabled);
    }
};

class SecureFieldNode final : public FieldNode {
public:
    SecureFieldNode() : FieldNode([[SentrelSecureField alloc] init]) {}

private:
    void show(const ui::View& view, const Surroundings& surroundings) override
    {
        const ui::SecureField& now = *ui::elementOf<ui::SecureField>(view);
        if (!(secretTextOf(field()) == now.text.value)) {
            const BytesView bytes = now.text.value.view();
            setText(field(), stringObject({reinterpret_cast<const char*>(bytes.data()), bytes.size()}));
        }
        showPrompt(now.prompt, surroundings.isEnabled);
    }
};

} // namespace

std::unique_ptr<DrawnNode> makeNode(const ui::Button& /*button*/)
{
    return std::make_unique<ButtonNode>();
}

std::unique_ptr<DrawnNode> makeNode(const ui::Toggle& /*toggle*/)
{
    return std::make_unique<CheckboxNode>();
}

std::unique_ptr<DrawnNode> makeNode(const ui::Slider& /*slider*/)
{
    return std::make_unique<SliderNode>();
}

std::unique_ptr<DrawnNode> makeNode(const ui::TextField& /*field*/)
{
    return std::make_unique<PlainFieldNode>();
}

std::unique_ptr<DrawnNode> makeNode(const ui::SecureField& /*field*/)
{
    return std::make_unique<SecureFieldNode>();
}

} // namespace sentrel::mac
