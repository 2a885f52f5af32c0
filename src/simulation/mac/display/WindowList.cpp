#include "simulation/mac/display/WindowList.hpp"

#include "ui/Node.hpp"

#include <algorithm>
#include <cmath>
#include <tuple>
#include <utility>

namespace sentrel::simulation {

namespace {

// NSWindowStyleMask
constexpr std::uint64_t titled = 1;
constexpr std::uint64_t closable = 2;
constexpr std::uint64_t resizable = 8;

// Height of the title bar on current systems, and how much of it stays reachable; points.
constexpr double titleBar = 28.0;
constexpr double reach = 60.0;

bool has(const WindowState& window, std::uint64_t style)
{
    return (window.description.styleMask & style) != 0;
}

double titleBarHeight(const WindowState& window)
{
    return has(window, titled) ? titleBar : 0.0;
}

/// Whether the frame is finite and not negative: AppKit refuses others.
bool isFrame(const ports::Rectangle& frame)
{
    return std::isfinite(frame.x) && std::isfinite(frame.y) && std::isfinite(frame.width) &&
           std::isfinite(frame.height) && frame.width >= 0.0 && frame.height >= 0.0;
}

/// Whether a sheet or a dialog is attached to the window.
bool isCovered(const ui::View& content)
{
    return std::ranges::any_of(ui::nodesOf(content), [](const ui::Node& node) {
        return ui::elementOf<ui::Sheet>(*node.view) != nullptr || ui::elementOf<ui::Dialog>(*node.view) != nullptr;
    });
}

bool setFrame(WindowState& window, const ports::Rectangle& frame)
{
    if (!isFrame(frame) || frame == window.frame) {
        return false;
    }
    window.frame = frame;
    return true;
}

} // namespace

ports::Rectangle contentOf(const WindowState& window, const ports::Rectangle& frame)
{
    return {frame.x, frame.y, frame.width, std::max(0.0, frame.height - titleBarHeight(window))};
}

ports::Rectangle frameAround(const WindowState& window, const ports::Rectangle& content)
{
    return {content.x, content.y, content.width, content.height + titleBarHeight(window)};
}

/// The product's handle to a window; its end removes the window.
class WindowList::Handle final : public ports::Window {
public:
    Handle(WindowList& list, WindowPtr state) : list_(list), state_(std::move(state)) {}
    ~Handle() override
    {
        // Other holders of the state must not reach into destroyed objects.
        state_->delegate = {};
        state_->content = {};
        list_.orderOut(*state_);
        std::erase(list_.windows_, state_);
    }

    void setLevel(std::int64_t level) override { state_->level = level; }
    void setCollectionBehavior(std::uint64_t behavior) override { state_->collectionBehavior = behavior; }
    void setOpaque(bool isOpaque) override { state_->isOpaque = isOpaque; }
    void setBackgroundColor(const ui::Color& color) override { state_->background = color; }
    void setHasShadow(bool hasShadow) override { state_->hasShadow = hasShadow; }
    void setReleasedWhenClosed(bool isReleased) override { state_->isReleasedWhenClosed = isReleased; }
    void setTitle(const std::string& title) override { state_->title = title; }
    void setIdentifier(const std::string& identifier) override { state_->identifier = identifier; }
    void setDelegate(ports::WindowDelegate delegate) override { state_->delegate = std::move(delegate); }
    void setFrame(const ports::Rectangle& frame, bool /*display*/) override { simulation::setFrame(*state_, frame); }
    void setContentMinSize(const ports::Size& size) override { state_->contentMinSize = size; }
    void setContentMaxSize(const ports::Size& size) override { state_->contentMaxSize = size; }
    void center() override
    {
        // Like the system: centred horizontally, somewhat above the centre vertically.
        state_->frame.x = (builtInScreen.width - state_->frame.width) / 2.0;
        state_->frame.y = (builtInScreen.height - state_->frame.height) * 2.0 / 3.0;
    }
    [[nodiscard]] ports::Rectangle frame() override { return state_->frame; }
    [[nodiscard]] bool isVisible() override { return state_->isVisible; }
    [[nodiscard]] ports::Rectangle frameForContent(const ports::Rectangle& content) override
    {
        return frameAround(*state_, content);
    }
    [[nodiscard]] ports::Rectangle contentForFrame(const ports::Rectangle& frame) override
    {
        return contentOf(*state_, frame);
    }
    [[nodiscard]] ports::Rectangle contentFrame() override
    {
        const ports::Rectangle content = contentOf(*state_, state_->frame);
        return {0.0, 0.0, content.width, content.height};
    }
    void hostContent(const ports::Rectangle& frame, std::uint64_t autoresizingMask) override
    {
        state_->hostFrame = frame;
        state_->hostAutoresizing = autoresizingMask;
        state_->isHosting = true;
    }
    void showContent(ui::View content) override
    {
        if (state_->isHosting) {
            WindowContent{*state_}.show(std::move(content));
        }
    }
    void orderFrontRegardless() override { list_.orderFront(*state_); }
    void makeKey() override { list_.makeKey(*state_); }
    void makeKeyAndOrderFront() override
    {
        list_.orderFront(*state_);
        list_.makeKey(*state_);
    }
    void orderOut() override { list_.orderOut(*state_); }

private:
    WindowList& list_;
    WindowPtr state_;
};

std::unique_ptr<ports::Window> WindowList::open(const ports::WindowDescription& description)
{
    auto state = std::make_shared<WindowState>();
    state->number = ++opened_;
    state->description = description;
    state->frame = frameAround(*state, description.contentRectangle);
    windows_.push_back(state);
    return std::make_unique<Handle>(*this, std::move(state));
}

std::vector<WindowList::WindowPtr> WindowList::frontToBack() const
{
    std::vector<WindowPtr> visible;
    std::ranges::copy_if(windows_, std::back_inserter(visible), [](const auto& window) { return window->isVisible; });
    std::ranges::sort(visible, [](const auto& left, const auto& right) {
        return std::tie(left->level, left->order) > std::tie(right->level, right->order);
    });
    return visible;
}

WindowList::WindowPtr WindowList::find(std::string_view identifier) const
{
    const auto found =
        std::ranges::find_if(windows_, [&](const auto& window) { return window->identifier == identifier; });
    return found == windows_.end() ? nullptr : *found;
}

WindowList::WindowPtr WindowList::key() const
{
    const auto found = std::ranges::find_if(windows_, [](const auto& window) { return window->isKey; });
    return found == windows_.end() ? nullptr : *found;
}

void WindowList::makeKey(WindowState& window)
{
    if (!window.isVisible || !window.description.canBecomeKey) {
        return;
    }
    for (const auto& other : windows_) {
        other->isKey = false;
    }
    window.isKey = true;
    if (onKey) {
        onKey();
    }
}

void WindowList::orderFront(WindowState& window)
{
    window.isVisible = true;
    window.order = ++ordered_;
}

void WindowList::orderOut(WindowState& window)
{
    window.isVisible = false;
    if (!std::exchange(window.isKey, false)) {
        return;
    }
    for (const auto& next : frontToBack()) {
        if (next->description.canBecomeKey) {
            next->isKey = true;
            return;
        }
    }
}

bool WindowList::close(const WindowPtr& window)
{
    // A sheet or dialog blocks the window.
    if (!has(*window, closable) || isCovered(window->content)) {
        return false;
    }
    const auto shouldClose = window->delegate.shouldClose;
    if (!shouldClose || shouldClose()) {
        orderOut(*window);
    }
    return !window->isVisible;
}

bool WindowList::resize(const WindowPtr& window, ports::Size content)
{
    if (!has(*window, resizable)) {
        return false;
    }
    const ports::Rectangle wanted = frameAround(*window, {0.0, 0.0, content.width, content.height});
    const auto willResize = window->delegate.willResize;
    const ports::Size size =
        willResize ? willResize({wanted.width, wanted.height}) : ports::Size{wanted.width, wanted.height};
    // The title bar stays where it is.
    const double top = window->frame.y + window->frame.height;
    return setFrame(*window, {window->frame.x, top - size.height, size.width, size.height});
}

bool WindowList::zoom(const WindowPtr& window, const ports::Rectangle& screen)
{
    if (!has(*window, resizable)) {
        return false;
    }
    const auto standardFrame = window->delegate.willUseStandardFrame;
    return setFrame(*window, standardFrame ? standardFrame(screen) : screen);
}

bool WindowList::move(const WindowPtr& window, double x, double y, const std::vector<ports::Screen>& screens)
{
    if (!has(*window, titled) || screens.empty() || !std::isfinite(x) || !std::isfinite(y)) {
        return false;
    }
    double left = screens.front().frame.x;
    double right = left;
    double top = screens.front().frame.y;
    for (const ports::Screen& screen : screens) {
        left = std::min(left, screen.frame.x);
        right = std::max(right, screen.frame.x + screen.frame.width);
        top = std::max(top, screen.frame.y + screen.frame.height);
    }
    ports::Rectangle frame = window->frame;
    frame.x = std::clamp(x, left + reach - frame.width, std::max(left + reach - frame.width, right - reach));
    frame.y = std::clamp(y, screens.front().frame.y + titleBar - frame.height, top - frame.height);
    return setFrame(*window, frame);
}

} // namespace sentrel::simulation
