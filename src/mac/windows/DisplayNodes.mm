#include "mac/windows/Appearance.hpp"
#include "mac/windows/ElementNodes.hpp"
#include "mac/windows/Placing.hpp"
#include "ui/Node.hpp"

#include <algorithm>

// Display-only elements.

namespace sentrel::mac {

namespace {

constexpr double barWidth = 160.0;

/// `NSTextAlignmentCenter`, whose value depends on the processor.
#ifdef __x86_64__
constexpr auto centered = static_cast<NSTextAlignment>(2);
#else
constexpr auto centered = static_cast<NSTextAlignment>(1);
#endif

/// Size in points of a symbol alone in the middle.
constexpr double emblemSize = 36.0;

/// A symbol's points per point of its shorter side.
constexpr double symbolShare = 0.8;

class TextNode final : public DrawnNode {
public:
    TextNode() : DrawnNode(makeLabel()) {}

private:
    void show(const ui::View& view, const Surroundings& surroundings) override
    {
        const ui::Text& text = *ui::elementOf<ui::Text>(view);
        NSTextField* const label = static_cast<NSTextField*>(this->view());
        setLabel(label, text.text);
        label.font = fontOf(text.style);
        label.textColor = surroundings.isEnabled ? colorOf(text.color) : NSColor.disabledControlTextColor;
        label.alignment = surroundings.isInCenteredColumn ? centered : NSTextAlignmentNatural;
    }
};

class ImageNode final : public DrawnNode {
public:
    ImageNode() : DrawnNode([[NSImageView alloc] init]) {}

private:
    [[nodiscard]] NSImageView* imageView() const { return static_cast<NSImageView*>(view()); }

    void show(const ui::View& view, const Surroundings& surroundings) override
    {
        const ui::Image& image = *ui::elementOf<ui::Image>(view);
        if (!(shown_ == image) || imageView().image == nil) {
            shown_ = image;
            imageView().image = imageOf(image, view.traits.accessibilityLabel);
            fit();
        }
        // A symbol above centered texts is their emblem.
        scale(view.traits.size, surroundings.isInCenteredColumn);
        // Screen readers skip an image without a label.
        imageView().accessibilityElement = !view.traits.accessibilityLabel.empty();
    }

    /// A photo takes the available width and keeps its proportions; other images have a natural size.
    void fit()
    {
        setPriorities(imageView(), isPicture() ? givesWay : NSLayoutPriorityDefaultHigh);
        imageView().imageScaling = NSImageScaleProportionallyUpOrDown;
        proportion_.active = NO;
        const NSSize size = imageView().image.size;
        if (isPicture() && size.width > 0.0 && size.height > 0.0) {
            proportion_ = weakened([imageView().heightAnchor constraintEqualToAnchor:imageView().widthAnchor
                                                                          multiplier:size.height / size.width],
                                   NSLayoutPriorityDefaultLow);
            proportion_.active = YES;
        }
    }

    void scale(const ui::SizeWish& wish, bool isEmblem)
    {
        if (isPicture()) {
            return;
        }
        const double larger = std::max(wish.width.value_or(0.0), wish.height.value_or(0.0));
        const double smaller = std::min(wish.width.value_or(larger), wish.height.value_or(larger));
        const double points = smaller > 0.0 ? symbolShare * smaller : isEmblem ? emblemSize : 0.0;
        if (points_ == points) {
            return;
        }
        points_ = points;
        imageView().symbolConfiguration =
            points > 0.0 ? [NSImageSymbolConfiguration configurationWithPointSize:points weight:NSFontWeightRegular]
                         : [NSImageSymbolConfiguration configurationWithTextStyle:NSFontTextStyleBody];
        imageView().contentTintColor = isEmblem ? NSColor.secondaryLabelColor : nil;
    }

    [[nodiscard]] bool isPicture() const { return shown_.source == ui::Image::Source::memory; }
    [[nodiscard]] bool wantsAll(NSLayoutConstraintOrientation orientation) const override
    {
        return isPicture() && orientation == NSLayoutConstraintOrientationHorizontal;
    }

    NSLayoutConstraint* proportion_ = nil;
    double points_ = -1.0; // of the symbol
    ui::Image shown_;
};

class SpacerNode final : public DrawnNode {
public:
    SpacerNode() : DrawnNode([[NSView alloc] init]) { setPriorities(view(), givesWay); }

private:
    [[nodiscard]] bool isSpacer() const override { return true; }
    void show(const ui::View& /*view*/, const Surroundings& surroundings) override { isInRow_ = surroundings.isInRow; }
    [[nodiscard]] bool wantsAll(NSLayoutConstraintOrientation orientation) const override
    {
        return isInRow_ == (orientation == NSLayoutConstraintOrientationHorizontal);
    }

    bool isInRow_ = false;
};

class DividerNode final : public DrawnNode {
public:
    DividerNode() : DrawnNode([[NSBox alloc] init]) { static_cast<NSBox*>(view()).boxType = NSBoxSeparator; }

private:
    [[nodiscard]] bool stretchesAcross() const override { return true; }
    void show(const ui::View& /*view*/, const Surroundings& surroundings) override
    {
        if (thickness_ != nil && isInRow_ == surroundings.isInRow) {
            return;
        }
        isInRow_ = surroundings.isInRow;
        thickness_.active = NO;
        thickness_ = [(isInRow_ ? view().widthAnchor : view().heightAnchor) constraintEqualToConstant:1.0];
        thickness_.active = YES;
    }

    bool isInRow_ = false;
    NSLayoutConstraint* thickness_ = nil;
};

class ProgressNode final : public DrawnNode {
public:
    ProgressNode() : DrawnNode([[NSStackView alloc] init])
    {
        NSStackView* const row = static_cast<NSStackView*>(view());
        indicator_.translatesAutoresizingMaskIntoConstraints = NO;
        indicator_.minValue = 0.0;
        indicator_.maxValue = 1.0;
        indicator_.controlSize = NSControlSizeSmall;
        barWidth_ = [indicator_.widthAnchor constraintGreaterThanOrEqualToConstant:barWidth];
        label_.textColor = NSColor.secondaryLabelColor;
        [row addArrangedSubview:indicator_];
        [row addArrangedSubview:label_];
    }

private:
    void show(const ui::View& view, const Surroundings& /*surroundings*/) override
    {
        const ui::Progress& progress = *ui::elementOf<ui::Progress>(view);
        const bool isBar = progress.fraction.has_value();
        indicator_.style = isBar ? NSProgressIndicatorStyleBar : NSProgressIndicatorStyleSpinning;
        indicator_.indeterminate = !isBar;
        indicator_.doubleValue = progress.fraction.value_or(0.0);
        barWidth_.active = isBar;
        if (isBar) {
            [indicator_ stopAnimation:nil];
        } else {
            [indicator_ startAnimation:nil];
        }
        setLabel(label_, progress.label);
        label_.hidden = progress.label.empty();
    }
    [[nodiscard]] NSView* control() const override { return indicator_; }
    [[nodiscard]] std::string spokenText(const ui::View& view) const override
    {
        return ui::elementOf<ui::Progress>(view)->label;
    }

    NSProgressIndicator* const indicator_ = [[NSProgressIndicator alloc] init];
    NSTextField* const label_ = makeLabel();
    NSLayoutConstraint* barWidth_ = nil;
};

} // namespace

std::unique_ptr<DrawnNode> makeNode(const ui::Text& /*text*/)
{
    return std::make_unique<TextNode>();
}

std::unique_ptr<DrawnNode> makeNode(const ui::Image& /*image*/)
{
    return std::make_unique<ImageNode>();
}

std::unique_ptr<DrawnNode> makeNode(const ui::Spacer& /*spacer*/)
{
    return std::make_unique<SpacerNode>();
}

std::unique_ptr<DrawnNode> makeNode(const ui::Divider& /*divider*/)
{
    return std::make_unique<DividerNode>();
}

std::unique_ptr<DrawnNode> makeNode(const ui::Progress& /*progress*/)
{
    return std::make_unique<ProgressNode>();
}

} // namespace sentrel::mac
