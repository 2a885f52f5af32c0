#include "platform/simulated/SimulatedDisplays.hpp"

#include "platform/Journal.hpp"
#include "platform/simulated/SimulatedApplicationActivation.hpp"

#include <algorithm>
#include <utility>

namespace sentrel::simulated {

namespace {

constexpr const char* screenParametersChanged = "NSApplicationDidChangeScreenParametersNotification";

// What CGShieldingWindowLevel gives on today's systems.
constexpr std::int64_t shielding = 2147483628;

constexpr platform::Rectangle builtIn{0.0, 0.0, 1728.0, 1117.0};
constexpr platform::Rectangle external{0.0, 0.0, 1920.0, 1080.0};

// NSWindowStyleMaskTitled, and the height of its bar on today's systems.
constexpr std::uint64_t titled = 1;
constexpr double titleBar = 28.0;

double titleBarHeight(const WindowState& window)
{
    return (window.description.styleMask & titled) != 0 ? titleBar : 0.0;
}

bool contains(const platform::Rectangle& outer, const platform::Rectangle& inner)
{
    return outer.x <= inner.x && outer.y <= inner.y && outer.x + outer.width >= inner.x + inner.width &&
           outer.y + outer.height >= inner.y + inner.height;
}

} // namespace

/// The product's handle to a window, which is gone when this dies.
class SimulatedDisplays::Handle final : public platform::Window {
public:
    Handle(SimulatedDisplays& displays, std::shared_ptr<WindowState> state)
        : displays_(displays), state_(std::move(state))
    {
    }
    ~Handle() override { std::erase(displays_.windows_, state_); }

    void setLevel(std::int64_t level) override { state_->level = level; }
    void setCollectionBehavior(std::uint64_t behavior) override { state_->collectionBehavior = behavior; }
    void setOpaque(bool isOpaque) override { state_->isOpaque = isOpaque; }
    void setBackgroundColor(const ui::Color& color) override { state_->background = color; }
    void setHasShadow(bool hasShadow) override { state_->hasShadow = hasShadow; }
    void setReleasedWhenClosed(bool isReleased) override { state_->isReleasedWhenClosed = isReleased; }
    void setTitle(const std::string& title) override { state_->title = title; }
    void setIdentifier(const std::string& identifier) override { state_->identifier = identifier; }
    void setDelegate(platform::WindowDelegate delegate) override { state_->delegate = std::move(delegate); }
    void setFrame(const platform::Rectangle& frame, bool /*display*/) override { state_->frame = frame; }
    void center() override
    {
        // As the system does it: horizontally in the middle, vertically somewhat above it.
        state_->frame.x = (builtIn.width - state_->frame.width) / 2.0;
        state_->frame.y = (builtIn.height - state_->frame.height) * 2.0 / 3.0;
    }
    [[nodiscard]] platform::Rectangle frame() override { return state_->frame; }
    [[nodiscard]] bool isVisible() override { return state_->isVisible; }
    [[nodiscard]] platform::Rectangle frameForContent(const platform::Rectangle& content) override
    {
        return {content.x, content.y, content.width, content.height + titleBarHeight(*state_)};
    }
    [[nodiscard]] platform::Rectangle contentForFrame(const platform::Rectangle& frame) override
    {
        return {frame.x, frame.y, frame.width, std::max(0.0, frame.height - titleBarHeight(*state_))};
    }
    [[nodiscard]] platform::Rectangle contentFrame() override
    {
        const platform::Rectangle content = contentForFrame(state_->frame);
        return {0.0, 0.0, content.width, content.height};
    }
    void hostContent(const platform::Rectangle& frame, std::uint64_t autoresizingMask) override
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
    void orderFrontRegardless() override { state_->isVisible = true; }
    void makeKey() override { displays_.makeKey(*state_); }
    void makeKeyAndOrderFront() override
    {
        state_->isVisible = true;
        displays_.makeKey(*state_);
    }
    void orderOut() override
    {
        state_->isVisible = false;
        state_->isKey = false;
    }

private:
    SimulatedDisplays& displays_;
    std::shared_ptr<WindowState> state_;
};

SimulatedDisplays::SimulatedDisplays(Scheduler& process, platform::Journal& journal,
                                     const SimulatedApplicationActivation& activation, std::size_t count)
    : journal_(journal), activation_(activation), count_(count), notifications_(process.mainExecutor())
{
}

SimulatedDisplays::~SimulatedDisplays() = default;

std::vector<platform::Screen> SimulatedDisplays::screens()
{
    std::vector<platform::Screen> screens;
    if (faults_.strikes("no-screens")) {
        return screens;
    }
    for (std::size_t index = 0; index < count_; ++index) {
        screens.push_back(screenAt(index));
    }
    return screens;
}

std::int64_t SimulatedDisplays::shieldingLevel()
{
    return shielding;
}

std::unique_ptr<platform::Window> SimulatedDisplays::makeWindow(const platform::WindowDescription& description)
{
    auto state = std::make_shared<WindowState>();
    state->description = description;
    state->frame = description.contentRectangle;
    state->frame.height += titleBarHeight(*state);
    windows_.push_back(state);
    return std::make_unique<Handle>(*this, std::move(state));
}

platform::RegistrationPtr SimulatedDisplays::observe(const std::string& name, std::function<void()> received)
{
    return notifications_.observe(name, std::move(received));
}

void SimulatedDisplays::setCount(std::size_t count)
{
    if (count == count_) {
        return;
    }
    count_ = count;
    journal_.note("displays.changed", {{"count", static_cast<std::int64_t>(count)}});
    if (!faults_.strikes("notification")) {
        notifications_.post(screenParametersChanged);
    }
}

std::vector<WindowState> SimulatedDisplays::covers() const
{
    std::vector<WindowState> covers;
    for (const auto& window : visibleCovers()) {
        covers.push_back(*window);
    }
    return covers;
}

bool SimulatedDisplays::isCovered(std::size_t display) const
{
    return std::ranges::any_of(visibleCovers(), [&](const auto& window) {
        return window->isOpaque && window->background.opacity >= 1.0 &&
               contains(window->frame, screenAt(display).frame);
    });
}

bool SimulatedDisplays::type(std::string_view text)
{
    const auto window = keyWindow();
    return window != nullptr && WindowContent{*window}.type(text);
}

ui::Interaction SimulatedDisplays::pressKey(ui::Key key)
{
    const auto window = keyWindow();
    return window == nullptr ? ui::Interaction::notFound : WindowContent{*window}.pressKey(key);
}

ui::Interaction SimulatedDisplays::click(std::size_t cover, std::string_view wanted)
{
    const auto windows = visibleCovers();
    if (cover >= windows.size()) {
        return ui::Interaction::notFound;
    }
    makeKey(*windows[cover]);
    return WindowContent{*windows[cover]}.click(wanted);
}

platform::Screen SimulatedDisplays::screenAt(std::size_t index)
{
    platform::Screen screen{static_cast<std::uint32_t>(index + 1), index == 0 ? builtIn : external};
    if (index > 0) {
        screen.frame.x = builtIn.width + static_cast<double>(index - 1) * external.width;
    }
    return screen;
}

void SimulatedDisplays::makeKey(WindowState& window)
{
    if (!window.isVisible || !window.description.canBecomeKey) {
        return;
    }
    for (const auto& other : windows_) {
        other->isKey = false;
    }
    window.isKey = true;
}

std::shared_ptr<WindowState> SimulatedDisplays::keyWindow() const
{
    if (!activation_.isActive()) {
        return nullptr;
    }
    const auto key = std::ranges::find_if(windows_, [](const auto& window) { return window->isKey; });
    return key == windows_.end() ? nullptr : *key;
}

std::vector<std::shared_ptr<WindowState>> SimulatedDisplays::visibleCovers() const
{
    std::vector<std::shared_ptr<WindowState>> covers;
    std::ranges::copy_if(windows_, std::back_inserter(covers),
                         [](const auto& window) { return window->isVisible && window->level >= shielding; });
    return covers;
}

} // namespace sentrel::simulated
