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
    // By default a borderless window can't become key, and nobody could type the passcode.
    description.canBecomeKey = true;
    description.canBecomeMain = true;
    // When the phone arms the Mac, another application may be active, and the system may leave it active.
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
