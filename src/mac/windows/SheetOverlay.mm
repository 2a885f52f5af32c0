#include "mac/windows/HostView.hpp"
#include "mac/windows/Placing.hpp"
#include "mac/windows/WindowAttachments.hpp"
#include "ui/Node.hpp"

namespace sentrel::mac {

namespace {

/// Maximum width in points, unless the tree asks for more.
constexpr double widest = 520.0;

/// A sheet in a window of its own, which draws the tree inside the sheet.
class SheetOverlay final : public Overlay {
public:
    SheetOverlay()
    {
        // A sheet is drawn without its title bar; with one its window takes the keyboard.
        window_.contentView = host_;
        weakened([host_.widthAnchor constraintLessThanOrEqualToConstant:widest],
                 NSLayoutPriorityDragThatCannotResizeWindow + 1.0F)
            .active = YES;
        window_.releasedWhenClosed = NO;
    }

    ~SheetOverlay() override
    {
        [window_.sheetParent endSheet:window_];
        [window_ orderOut:nil];
    }

    [[nodiscard]] bool suits(const ui::View& attachment) const override
    {
        return ui::elementOf<ui::Sheet>(attachment) != nullptr;
    }

    void show(NSWindow* window, const ui::View& attachment) override
    {
        host_->escaped = ui::elementOf<ui::Sheet>(attachment)->dismiss;
        if (!attachment.children.empty()) {
            [host_ render:attachment.children.front()];
        }
        fit();
        if (!hasBegun_ && window != nil) {
            hasBegun_ = true;
            [window beginSheet:window_ completionHandler:nil];
            [host_ windowDidAppear];
        }
    }

private:
    /// Fits the sheet to its content, whose long texts wrap.
    void fit()
    {
        [host_ layoutSubtreeIfNeeded];
        const NSSize size = host_.fittingSize;
        if (!NSEqualSizes(size, host_.frame.size)) {
            [window_ setContentSize:size];
        }
    }

    SentrelHostView* const host_ = [[SentrelHostView alloc] initWithFrame:NSMakeRect(0.0, 0.0, widest, widest)];
    NSWindow* const window_ = [[NSWindow alloc] initWithContentRect:NSMakeRect(0.0, 0.0, widest, widest)
                                                          styleMask:NSWindowStyleMaskTitled
                                                            backing:NSBackingStoreBuffered
                                                              defer:YES];
    bool hasBegun_ = false;
};

} // namespace

std::unique_ptr<Overlay> makeSheet()
{
    return std::make_unique<SheetOverlay>();
}

} // namespace sentrel::mac
