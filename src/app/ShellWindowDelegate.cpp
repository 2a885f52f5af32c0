#include "app/ShellWindowDelegate.hpp"

#include "app/ShellWindows.hpp"

#include <cmath>

namespace sentrel {

bool ShellWindowDelegate::windowShouldClose()
{
    windows_.hide(window_.identifier);
    return false;
}

ports::Size ShellWindowDelegate::windowWillResize(ports::Size proposedFrameSize)
{
    ports::Window* const window = windows_.find(window_.identifier);
    if (window == nullptr) {
        return proposedFrameSize;
    }
    ports::Rectangle content = window->contentForFrame({0.0, 0.0, proposedFrameSize.width, proposedFrameSize.height});
    content.width = window_.width;
    // `fmax` and `fmin` turn NaN into a bound; `std::clamp` would not.
    content.height = std::fmin(std::fmax(content.height, window_.leastHeight), window_.mostHeight);
    const ports::Rectangle frame = window->frameForContent(content);
    return {frame.width, frame.height};
}

ports::Rectangle ShellWindowDelegate::windowWillUseStandardFrame(ports::Rectangle defaultFrame)
{
    ports::Window* const window = windows_.find(window_.identifier);
    return window == nullptr ? defaultFrame : window->frame();
}

void ShellWindowDelegate::attachTo(ports::Window& window)
{
    // Some ways of resizing a window don't ask its delegate.
    window.setContentMinSize({window_.width, window_.leastHeight});
    window.setContentMaxSize({window_.width, window_.mostHeight});
    window.setDelegate({
        .shouldClose = [this] { return windowShouldClose(); },
        .willResize = [this](ports::Size size) { return windowWillResize(size); },
        .willUseStandardFrame = [this](ports::Rectangle frame) { return windowWillUseStandardFrame(frame); },
    });
}

} // namespace sentrel
