#include "app/ShellWindowDelegate.hpp"

#include "app/ShellWindows.hpp"

#include <cmath>

namespace sentrel {

namespace {

constexpr ContentBounds mainWindowBounds{440.0, 480.0, 1200.0};
constexpr ContentBounds alertsWindowBounds{720.0, 360.0, 900.0};

} // namespace

MainWindowDelegate::MainWindowDelegate(ShellWindows& windows)
    : ShellWindowDelegate(windows, mainWindowIdentifier, mainWindowBounds)
{
}

AlertsWindowDelegate::AlertsWindowDelegate(ShellWindows& windows)
    : ShellWindowDelegate(windows, alertsWindowIdentifier, alertsWindowBounds)
{
}

bool ShellWindowDelegate::windowShouldClose()
{
    windows_.hide(identifier_);
    return false;
}

ports::Size ShellWindowDelegate::windowWillResize(ports::Size proposedFrameSize)
{
    ports::Window* const window = windows_.find(identifier_);
    if (window == nullptr) {
        return proposedFrameSize;
    }
    ports::Rectangle content = window->contentForFrame({0.0, 0.0, proposedFrameSize.width, proposedFrameSize.height});
    content.width = bounds_.width;
    // `fmax` and `fmin` turn NaN into a bound; `std::clamp` would not.
    content.height = std::fmin(std::fmax(content.height, bounds_.leastHeight), bounds_.mostHeight);
    const ports::Rectangle frame = window->frameForContent(content);
    return {frame.width, frame.height};
}

ports::Rectangle ShellWindowDelegate::windowWillUseStandardFrame(ports::Rectangle defaultFrame)
{
    ports::Window* const window = windows_.find(identifier_);
    return window == nullptr ? defaultFrame : window->frame();
}

void ShellWindowDelegate::attachTo(ports::Window& window)
{
    // Some ways of resizing a window don't ask its delegate.
    window.setContentMinSize({bounds_.width, bounds_.leastHeight});
    window.setContentMaxSize({bounds_.width, bounds_.mostHeight});
    window.setDelegate({
        .shouldClose = [this] { return windowShouldClose(); },
        .willResize = [this](ports::Size size) { return windowWillResize(size); },
        .willUseStandardFrame = [this](ports::Rectangle frame) { return windowWillUseStandardFrame(frame); },
    });
}

} // namespace sentrel
