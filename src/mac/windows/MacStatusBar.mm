#include "mac/Adapters.hpp"

#include "mac/foundation/FoundationValues.hpp"
#include "mac/windows/MenuPanel.hpp"
#include "mac/windows/Windows.hpp"

#include <functional>
#include <utility>

/// Opens and closes the menu when the user clicks the item.
@interface SentrelStatusItemTarget : NSObject {
@public
    SentrelMenuPanel* panel;
    std::function<void()> opened;
}
- (void)clicked:(id)sender;
@end

@implementation SentrelStatusItemTarget

- (void)clicked:(id)sender
{
    // The keyboard reaches the menu bar behind a shield, too.
    if (sentrel::mac::isScreenShielded()) {
        return;
    }
    if (panel.isVisible) {
        [panel dismiss];
        return;
    }
    // The system draws status items in another process: a click on ours also counts as one elsewhere.
    if ([panel wasJustDismissed]) {
        return;
    }
    // First, so that the menu opens with current content.
    if (const auto told = opened) {
        told();
    }
    [panel open];
}

@end

namespace sentrel::mac {

namespace {

/// The asset, or a system symbol: an item without an image is invisible and can't be clicked.
NSImage* imageOf(NSString* asset)
{
    if (NSImage* const image = [NSImage imageNamed:asset]) {
        return image;
    }
    NSString* const symbol = [asset hasSuffix:@"Armed"] ? @"checkmark.shield" : @"shield";
    return [NSImage imageWithSystemSymbolName:symbol accessibilityDescription:nil];
}

class MacStatusItem final : public ports::StatusItem {
public:
    MacStatusItem()
    {
        NSStatusBarButton* const button = item_.button;
        target_->panel = [[SentrelMenuPanel alloc] initForButton:button];
        button.target = target_;
        button.action = @selector(clicked:);
        // A menu opens when the button goes down.
        [button sendActionOn:NSEventMaskLeftMouseDown | NSEventMaskRightMouseDown];
    }
    ~MacStatusItem() override
    {
        [target_->panel dismiss];
        [target_->panel->host endContent];
        item_.button.target = nil;
        [NSStatusBar.systemStatusBar removeStatusItem:item_];
    }
    MacStatusItem(const MacStatusItem&) = delete;
    MacStatusItem& operator=(const MacStatusItem&) = delete;

    void setImage(const std::string& asset, const std::string& accessibilityLabel) override
    {
        NSImage* const image = imageOf(stringObject(asset));
        // In the color of the menu bar, light or dark.
        [image setTemplate:YES];
        item_.button.image = image;
        item_.button.accessibilityLabel = stringObject(accessibilityLabel);
    }
    void showContent(ui::View content) override
    {
        target_->panel->host->renderer->render(std::move(content));
        if (target_->panel.isVisible) {
            [target_->panel fit];
        }
    }
    void setOpened(std::function<void()> opened) override { target_->opened = std::move(opened); }
    void dismiss() override { [target_->panel dismiss]; }

private:
    NSStatusItem* const item_ = [NSStatusBar.systemStatusBar statusItemWithLength:NSVariableStatusItemLength];
    SentrelStatusItemTarget* const target_ = [[SentrelStatusItemTarget alloc] init];
};

/// The system's menu bar.
class MacStatusBar final : public ports::StatusBar {
public:
    [[nodiscard]] std::unique_ptr<ports::StatusItem> makeStatusItem() override
    {
        return std::make_unique<MacStatusItem>();
    }
};

} // namespace

std::unique_ptr<ports::StatusBar> makeStatusBar()
{
    return std::make_unique<MacStatusBar>();
}

} // namespace sentrel::mac
