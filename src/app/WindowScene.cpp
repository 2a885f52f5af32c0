#include "app/WindowScene.hpp"

#include "app/ShellWindows.hpp"
#include "app/WindowConfigurator.hpp"
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
                         WindowConfigurator& configurator, std::string title, std::function<ui::View()> body)
    : windows_(windows),
      shellWindows_(shellWindows),
      configurator_(configurator),
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
    if (!shellWindows_.isShown(configurator_.identifier())) {
        window_->showContent(body_());
    }
    shellWindows_.show(configurator_.identifier());
}

void WindowScene::makeWindow()
{
    window_ = windows_.makeWindow(describe(configurator_.startSize(), windows_.screens()));
    window_->setTitle(title_);
    window_->setReleasedWhenClosed(false);
    window_->setCollectionBehavior(collectionBehavior);
    window_->hostContent(window_->contentFrame(), resizesWithWindow);
    configurator_.configure(*window_);
    window_->center();
}

void WindowScene::draw()
{
    // A hidden window isn't drawn; it gets the current content when it opens.
    if (window_ != nullptr && shellWindows_.isShown(configurator_.identifier())) {
        window_->showContent(body_());
    }
}

} // namespace sentrel
