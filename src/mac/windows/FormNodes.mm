#include "mac/windows/Appearance.hpp"
#include "mac/windows/ElementNodes.hpp"
#include "mac/windows/Placing.hpp"
#include "ui/Node.hpp"

#import <QuartzCore/QuartzCore.h>

// Forms: sections of settings, each on a card, with aligned labels and controls.

using namespace sentrel;
using namespace sentrel::mac;

namespace {

constexpr double formSpacing = 18.0;
constexpr double sectionSpacing = 6.0;
constexpr double rowSpacing = 10.0;
constexpr double cardPadding = 12.0;
constexpr double cardRadius = 8.0;

/// A form takes its content's height unless another constraint decides.
constexpr NSLayoutPriority naturalHeight = 240.0F;

} // namespace

/// The background of a section.
@interface SentrelCard : NSView
@end

@implementation SentrelCard

- (BOOL)wantsUpdateLayer
{
    return YES;
}

- (void)updateLayer
{
    // Called again when the appearance changes, which changes these colors.
    self.layer.backgroundColor = NSColor.quaternarySystemFillColor.CGColor;
    self.layer.borderColor = NSColor.separatorColor.CGColor;
    self.layer.borderWidth = 0.5;
    self.layer.cornerRadius = cardRadius;
}

@end

/// Content that scrolls, from the top.
@interface SentrelDocumentView : NSView
@end

@implementation SentrelDocumentView

- (BOOL)isFlipped
{
    return YES;
}

@end

namespace {

using Orientation = NSLayoutConstraintOrientation;

/// The rows of a column; those that expand fill its width.
class Rows {
public:
    explicit Rows(double spacing) : column_(makeColumn(spacing)) {}

    [[nodiscard]] NSStackView* column() const { return column_; }
    [[nodiscard]] const DrawnChildren& children() const { return children_; }

    void show(const std::vector<ui::View>& views, const Surroundings& surroundings)
    {
        const bool hasChanged = children_.show(views, surroundings);
        arrange(column_, children_.views());
        if (!hasChanged) {
            return;
        }
        NSMutableArray<NSLayoutConstraint*>* const widths = [NSMutableArray array];
        for (const auto& child : children_.nodes()) {
            if (child->expands(NSLayoutConstraintOrientationHorizontal) || child->stretchesAcross()) {
                [widths addObject:fullWidth(child->outer(), column_)];
            }
        }
        widths_.replace(widths);
    }

    [[nodiscard]] static NSLayoutConstraint* fullWidth(NSView* view, NSView* column)
    {
        return weakened([view.widthAnchor constraintEqualToAnchor:column.widthAnchor], stretch);
    }

private:
    NSStackView* const column_;
    DrawnChildren children_;
    Constraints widths_;
};

class SectionNode final : public DrawnNode {
public:
    SectionNode() : DrawnNode(makeColumn(sectionSpacing))
    {
        header_.font = fontOf(ui::Text::Style::headline);
        footer_.font = fontOf(ui::Text::Style::caption);
        footer_.textColor = NSColor.secondaryLabelColor;
        card_.wantsLayer = YES;
        card_.translatesAutoresizingMaskIntoConstraints = NO;
        [card_ addSubview:rows_.column()];
        pin(rows_.column(), card_, cardPadding);
        [column() addArrangedSubview:card_];
        Rows::fullWidth(card_, column()).active = YES;
    }

private:
    [[nodiscard]] NSStackView* column() const { return static_cast<NSStackView*>(view()); }

    void show(const ui::View& view, const Surroundings& surroundings) override
    {
        const ui::Section& section = *ui::elementOf<ui::Section>(view);
        setLabel(header_, section.header);
        setLabel(footer_, section.footer);
        Surroundings inner = surroundings;
        inner.isInRow = false;
        inner.isInCenteredColumn = false;
        rows_.show(view.children, inner);
        arrangeParts(section);
    }

    void arrangeParts(const ui::Section& section)
    {
        NSMutableArray<NSView*>* const parts = [NSMutableArray arrayWithObject:card_];
        if (!section.header.empty()) {
            [parts insertObject:header_ atIndex:0];
        }
        if (!section.footer.empty()) {
            [parts addObject:footer_];
        }
        arrange(column(), parts);
    }

    [[nodiscard]] bool wantsAll(Orientation orientation) const override
    {
        return orientation == NSLayoutConstraintOrientationHorizontal || rows_.children().anyExpands(orientation);
    }
    void eachChild(const std::function<void(DrawnNode&)>& visit) override { rows_.children().each(visit); }
    void collectLabels(NSMutableArray<NSView*>* labels) const override { rows_.children().collectLabels(labels); }

    NSTextField* const header_ = makeLabel();
    NSTextField* const footer_ = makeLabel();
    Rows rows_{rowSpacing};
    SentrelCard* const card_ = [[SentrelCard alloc] init];
};

class FormNode final : public DrawnNode {
public:
    FormNode() : DrawnNode([[NSScrollView alloc] init])
    {
        NSScrollView* const scroll = static_cast<NSScrollView*>(view());
        scroll.drawsBackground = NO;
        scroll.hasVerticalScroller = YES;
        scroll.autohidesScrollers = YES;
        NSView* const document = [[SentrelDocumentView alloc] init];
        document.translatesAutoresizingMaskIntoConstraints = NO;
        [document addSubview:sections_.column()];
        pin(sections_.column(), document, 0.0);
        scroll.documentView = document;
        [NSLayoutConstraint activateConstraints:@[
            [document.topAnchor constraintEqualToAnchor:scroll.contentView.topAnchor],
            [document.leadingAnchor constraintEqualToAnchor:scroll.contentView.leadingAnchor],
            [document.trailingAnchor constraintEqualToAnchor:scroll.contentView.trailingAnchor],
            weakened([scroll.heightAnchor constraintEqualToAnchor:document.heightAnchor], naturalHeight),
        ]];
    }

private:
    void show(const ui::View& view, const Surroundings& surroundings) override
    {
        Surroundings inner = surroundings;
        inner.isInRow = false;
        inner.isInCenteredColumn = false;
        sections_.show(view.children, inner);
        alignLabels();
    }

    /// Makes the labels of all sections as wide as the widest, which aligns their controls.
    void alignLabels()
    {
        NSMutableArray<NSView*>* const labels = [NSMutableArray array];
        sections_.children().collectLabels(labels);
        if ([labels isEqualToArray:labels_]) {
            return;
        }
        labels_ = labels;
        NSMutableArray<NSLayoutConstraint*>* const equal = [NSMutableArray array];
        for (NSView* const label in labels) {
            if (label != labels.firstObject) {
                [equal addObject:[label.widthAnchor constraintEqualToAnchor:labels.firstObject.widthAnchor]];
            }
        }
        equalLabels_.replace(equal);
    }

    [[nodiscard]] bool wantsAll(Orientation /*orientation*/) const override { return true; }
    void eachChild(const std::function<void(DrawnNode&)>& visit) override { sections_.children().each(visit); }

    Rows sections_{formSpacing};
    NSArray<NSView*>* labels_ = @[];
    Constraints equalLabels_;
};

} // namespace

std::unique_ptr<DrawnNode> sentrel::mac::makeNode(const ui::Form& /*form*/)
{
    return std::make_unique<FormNode>();
}

std::unique_ptr<DrawnNode> sentrel::mac::makeNode(const ui::Section& /*section*/)
{
    return std::make_unique<SectionNode>();
}
