#include "lock/CoverWindow.hpp"

#include <utility>

namespace sentrel {

namespace {

constexpr std::uint64_t borderlessStyle = 0; // NSWindowStyleMaskBorderless
constexpr std::uint64_t bufferedBacking = 2; // NSBackingStoreBuffered

// Joins all spaces (1), stationary (16), ignores window cycling (64), auxiliary to full screens (256).
constexpr std::uint64_t collectionBehavior = 337;

// Width (2) and height (16) are sizable.
constexpr std::uint64_t resizesWithWindow = 18;

platform::WindowDescription describe(const platform::Screen& screen)
{
    platform::WindowDescription description;
    description.contentRectangle = screen.frame;
    description.styleMask = borderlessStyle;
    description.backing = bufferedBacking;
    description.isDeferred = false;
    description.screenNumber = screen.number;
    // A borderless window refuses the keyboard unless its class says otherwise, and nobody could type the passcode.
    description.canBecomeKey = true;
    description.canBecomeMain = true;
    return description;
}

} // namespace

CoverWindow::CoverWindow(platform::Windows& windows, const platform::Screen& screen, std::int64_t level,
                         std::unique_ptr<ScreenCoverView> view)
    : window_(windows.makeWindow(describe(screen))), view_(std::move(view))
{
    window_->setLevel(level);
    window_->setCollectionBehavior(collectionBehavior);
    window_->setOpaque(true);
    window_->setBackgroundColor(ui::black);
    window_->setHasShadow(false);
    window_->setReleasedWhenClosed(false);
    window_->hostContent(window_->contentFrame(), resizesWithWindow);
    window_->showContent(view_->body());
    view_->onChange = [this] { window_->showContent(view_->body()); };
    window_->setFrame(screen.frame, true);
    window_->orderFrontRegardless();
}

} // namespace sentrel
