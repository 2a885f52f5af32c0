#include "app/WindowScene.hpp"

#include "app/ShellWindows.hpp"
#include "ports/WindowConstants.hpp"

#include <utility>

namespace sentrel {

namespace {

// Not miniaturizable: closing hides it.
constexpr std::uint64_t windowStyle = ports::titledStyle | ports::closableStyle | ports::resizableStyle;
// A full screen would ignore the delegate's size limits.
constexpr std::uint64_t collectionBehavior = ports::fullScreenNone;
constexpr std::uint64_t resizesWithWindow = ports::widthSizable | ports::heightSizable;

ports::WindowDescription describe(ports::Size content, const std::vector<ports::Screen>& screens)
{
    ports::WindowDescription description;
    description.contentRectangle = {0.0, 0.0, content.width, content.height};
    description.styleMask = windowStyle;
    description.backing = ports::bufferedBacking;
    description.isDeferred = true;
    description.screenNumber = screens.empty() ? 0 : screens.front().number;
    description.canBecomeKey = true;
    description.canBecomeMain = true;
    return description;
}

} // namespace

WindowScene::WindowScene(MainActor actor, ports::Windows& windows, ShellWindows& shellWindows,
                         ShellWindowDelegate& delegate, std::string title, std::function<ui::View()> body)
    : windows_(windows),
      shellWindows_(shellWindows),
      delegate_(delegate),
      spec_(delegate.window()),
      title_(std::move(title)),
      body_(std::move(body)),
      redraw_(actor, [this] { draw(); })
{
}

void WindowScene::open()
{
    if (window_ == nullptr) {
        makeWindow();
    }
    if (!shellWindows_.isShown(spec_.identifier)) {
        window_->showContent(body_());
    }
    shellWindows_.show(spec_.identifier);
}

void WindowScene::makeWindow()
{
    window_ = windows_.makeWindow(describe({spec_.width, spec_.startHeight}, windows_.screens()));
    window_->setTitle(title_);
    window_->setReleasedWhenClosed(false);
    window_->setCollectionBehavior(collectionBehavior);
    window_->hostContent(window_->contentFrame(), resizesWithWindow);
    window_->setIdentifier(std::string{spec_.identifier});
    shellWindows_.add(spec_.identifier, *window_);
    delegate_.attachTo(*window_);
    window_->center();
}

void WindowScene::draw()
{
    // A hidden window isn't drawn; it gets the current content when it opens.
    if (window_ != nullptr && shellWindows_.isShown(spec_.identifier)) {
        window_->showContent(body_());
    }
}

} // namespace sentrel
