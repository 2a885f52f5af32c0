#include "lock/CoverWindow.hpp"

#include "ports/WindowConstants.hpp"

#include <utility>

namespace sentrel {

namespace {

constexpr std::uint64_t collectionBehavior =
    ports::joinsAllSpaces | ports::stationary | ports::ignoresWindowCycle | ports::fullScreenAuxiliary;
constexpr std::uint64_t resizesWithWindow = ports::widthSizable | ports::heightSizable;

ports::WindowDescription describe(const ports::Screen& screen)
{
    ports::WindowDescription description;
    description.contentRectangle = screen.frame;
    description.styleMask = ports::borderlessStyle;
    description.backing = ports::bufferedBacking;
    description.isDeferred = false;
    description.screenNumber = screen.number;
    // A borderless window refuses the keyboard unless its class says otherwise, and nobody could type the passcode.
    description.canBecomeKey = true;
    description.canBecomeMain = true;
    // The phone arms the Mac while the person in front of it works with another application, which the system may leave
    // active.
    description.keepsKeyboard = true;
    return description;
}

} // namespace

CoverWindow::CoverWindow(ports::Windows& windows, const ports::Screen& screen, std::int64_t level,
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
