#include "simulation/mac/display/SimulatedDisplays.hpp"

#include "ports/Journal.hpp"
#include "simulation/Events.hpp"
#include "simulation/mac/display/SimulatedApplicationActivation.hpp"

#include <algorithm>
#include <bit>
#include <functional>
#include <utility>

namespace sentrel::simulation {

namespace {

constexpr const char* screenParametersChanged = "NSApplicationDidChangeScreenParametersNotification";

// CGShieldingWindowLevel() on current systems.
constexpr std::int64_t shielding = 2147483628;

constexpr ports::Rectangle external{0.0, 0.0, 1920.0, 1080.0};

bool contains(const ports::Rectangle& outer, const ports::Rectangle& inner)
{
    return outer.x <= inner.x && outer.y <= inner.y && outer.x + outer.width >= inner.x + inner.width &&
           outer.y + outer.height >= inner.y + inner.height;
}

} // namespace

SimulatedDisplays::SimulatedDisplays(Scheduler& process, ports::Journal& journal,
                                     SimulatedApplicationActivation& activation, std::size_t count)
    : journal_(journal), activation_(activation), count_(count), notifications_(process.mainExecutor())
{
    windows_.onKey = [this] {
        keyGivenAfter_ = activation_.losses();
        if (keyGiven_) {
            keyGiven_();
        }
    };
}

SimulatedDisplays::~SimulatedDisplays() = default;

std::vector<ports::Screen> SimulatedDisplays::screens()
{
    faults_.call("screens");
    return faults_.strikes("no-screens") ? std::vector<ports::Screen>{} : connected();
}

std::int64_t SimulatedDisplays::shieldingLevel()
{
    faults_.call("shieldingLevel");
    return shielding;
}

std::unique_ptr<ports::Window> SimulatedDisplays::makeWindow(const ports::WindowDescription& description)
{
    faults_.call("makeWindow");
    return windows_.open(description);
}

ports::RegistrationPtr SimulatedDisplays::observe(const std::string& name, std::function<void()> received)
{
    faults_.call("observe");
    return notifications_.observe(name, std::move(received));
}

void SimulatedDisplays::setCount(std::size_t count)
{
    if (count == count_) {
        return;
    }
    count_ = count;
    journal_.note(events::DisplaysChanged{static_cast<std::int64_t>(count)});
    if (!faults_.strikes("notification")) {
        notifications_.post(screenParametersChanged);
    }
    if (faults_.strikes("notification-twice")) {
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

std::vector<SimulatedDisplays::SeenWindow> SimulatedDisplays::seenCovers() const
{
    const auto covers = visibleCovers();
    return {covers.begin(), covers.end()};
}

std::vector<SimulatedDisplays::SeenWindow> SimulatedDisplays::seenWindows() const
{
    std::vector<SeenWindow> windows;
    std::ranges::copy_if(windows_.frontToBack(), std::back_inserter(windows),
                         [](const WindowPtr& window) { return window->level < shielding; });
    return windows;
}

bool SimulatedDisplays::isCovered(std::size_t display) const
{
    return std::ranges::any_of(visibleCovers(), [&](const auto& window) {
        return window->isOpaque && window->background.opacity >= 1.0 &&
               contains(window->frame, screenAt(display).frame);
    });
}

std::vector<WindowState> SimulatedDisplays::windows() const
{
    std::vector<WindowState> windows;
    for (const SeenWindow& window : seenWindows()) {
        windows.push_back(*window);
    }
    return windows;
}

std::optional<WindowState> SimulatedDisplays::window(std::string_view identifier) const
{
    const WindowPtr found = windows_.find(identifier);
    return found == nullptr ? std::nullopt : std::optional{*found};
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
    return useCover(cover, [wanted](WindowContent content) { return content.click(wanted); });
}

ui::Interaction SimulatedDisplays::useCover(std::size_t cover, const Use& use)
{
    const auto windows = visibleCovers();
    return cover < windows.size() ? useWindow(windows[cover], use) : ui::Interaction::notFound;
}

std::uint64_t SimulatedDisplays::version() const
{
    std::uint64_t version = count_;
    const auto add = [&version](std::uint64_t part) { version = version * 1099511628211ULL + part; };
    for (const WindowPtr& window : windows_.all()) {
        add(window->contentVersion);
        add(window->order);
        add(static_cast<std::uint64_t>(window->isVisible) * 2 + static_cast<std::uint64_t>(window->isKey));
        add(std::hash<std::string>{}(window->focusedIdentity));
        for (const double length : {window->frame.x, window->frame.y, window->frame.width, window->frame.height}) {
            add(std::bit_cast<std::uint64_t>(length));
        }
    }
    return version;
}

ui::Interaction SimulatedDisplays::use(std::string_view identifier, const Use& use)
{
    const WindowPtr window = reachable(identifier);
    return window == nullptr ? ui::Interaction::notFound : useWindow(window, use);
}

ui::Interaction SimulatedDisplays::useFront(const Use& use)
{
    const auto visible = windows_.frontToBack();
    if (visible.empty()) {
        return ui::Interaction::notFound;
    }
    const WindowPtr key = windows_.key();
    const bool isKeyInFront = key != nullptr && key->level == visible.front()->level;
    return useWindow(isKeyInFront ? key : visible.front(), use);
}

bool SimulatedDisplays::closeWindow(std::string_view identifier)
{
    const WindowPtr window = reachable(identifier);
    return window != nullptr && windows_.close(window);
}

bool SimulatedDisplays::resizeWindow(std::string_view identifier, ports::Size content)
{
    const WindowPtr window = reachable(identifier);
    return window != nullptr && windows_.resize(window, content);
}

bool SimulatedDisplays::moveWindow(std::string_view identifier, double x, double y)
{
    const WindowPtr window = reachable(identifier);
    return window != nullptr && windows_.move(window, x, y, connected());
}

bool SimulatedDisplays::zoomWindow(std::string_view identifier)
{
    const WindowPtr window = reachable(identifier);
    return window != nullptr && windows_.zoom(window, builtInScreen);
}

ports::Screen SimulatedDisplays::screenAt(std::size_t index)
{
    ports::Screen screen{static_cast<std::uint32_t>(index + 1), index == 0 ? builtInScreen : external};
    if (index > 0) {
        screen.frame.x = builtInScreen.width + static_cast<double>(index - 1) * external.width;
    }
    return screen;
}

std::vector<ports::Screen> SimulatedDisplays::connected() const
{
    std::vector<ports::Screen> screens;
    for (std::size_t index = 0; index < count_; ++index) {
        screens.push_back(screenAt(index));
    }
    return screens;
}

std::vector<SimulatedDisplays::WindowPtr> SimulatedDisplays::visibleCovers() const
{
    std::vector<WindowPtr> covers;
    std::ranges::copy_if(windows_.all(), std::back_inserter(covers),
                         [](const WindowPtr& window) { return window->isVisible && window->level >= shielding; });
    return covers;
}

SimulatedDisplays::WindowPtr SimulatedDisplays::keyWindow() const
{
    const WindowPtr window = windows_.key();
    const bool hasKeyboard = activation_.isActive() || (window != nullptr && window->description.keepsKeyboard &&
                                                        keyGivenAfter_ == activation_.losses());
    return hasKeyboard ? window : nullptr;
}

/// The window, or null if it can't be reached: covers lie over every other window.
SimulatedDisplays::WindowPtr SimulatedDisplays::reachable(std::string_view identifier) const
{
    const WindowPtr window = windows_.find(identifier);
    const bool isReachable = window != nullptr && window->isVisible && visibleCovers().empty();
    return isReachable ? window : nullptr;
}

ui::Interaction SimulatedDisplays::useWindow(const WindowPtr& window, const Use& use)
{
    activation_.activate(true);
    windows_.orderFront(*window);
    windows_.makeKey(*window);
    return use(WindowContent{*window});
}

} // namespace sentrel::simulation
