#include "platform/simulated/SimulatedDisplays.hpp"
#include "simulator/MacSession.hpp"
#include "simulator/serve/NodeJson.hpp"
#include "simulator/serve/PageFiles.hpp"
#include "simulator/serve/PageState.hpp"

#include <algorithm>
#include <nlohmann/json.hpp>

// The Mac's screen: what the product and the system show on it.

namespace sentrel::simulator {

namespace {

constexpr std::uint64_t resizable = 8; // NSWindowStyleMaskResizable

/// From the system's coordinates, whose origin is at the bottom left of the built-in display, to the page's.
Json rectangleJson(const platform::Rectangle& rectangle, double displayHeight)
{
    return {{"x", rectangle.x},
            {"y", displayHeight - rectangle.y - rectangle.height},
            {"width", rectangle.width},
            {"height", rectangle.height}};
}

std::size_t displayOf(const platform::Rectangle& frame, const std::vector<platform::Screen>& screens)
{
    const auto found = std::find_if(screens.begin(), screens.end(),
                                    [&](const platform::Screen& screen) { return screen.frame.x == frame.x; });
    return found == screens.end() ? 0 : static_cast<std::size_t>(found - screens.begin());
}

} // namespace

Json PageState::menuBar()
{
    const auto item = session_.mac().statusBar.item();
    if (!item) {
        return nullptr;
    }
    return {{"icon", item->image},
            {"label", item->accessibilityLabel},
            {"menu", item->isMenuOpen ? nodeJson(item->menu, files_) : Json(nullptr)}};
}

Json PageState::screen()
{
    simulated::SimulatedMac& mac = session_.mac();
    const auto screens = mac.displays.screens();
    const double height = screens.empty() ? 1117.0 : screens.front().frame.height;
    Json displays = Json::array();
    for (const platform::Screen& screen : screens) {
        displays.push_back(rectangleJson(screen.frame, height));
    }
    Json windows = Json::array();
    const auto frontToBack = mac.displays.windows();
    for (auto window = frontToBack.rbegin(); window != frontToBack.rend(); ++window) {
        windows.push_back({{"id", window->identifier},
                           {"title", window->title},
                           {"frame", rectangleJson(window->frame, height)},
                           {"isKey", window->isKey},
                           {"isResizable", (window->description.styleMask & resizable) != 0},
                           {"content", nodeJson(window->content, files_)},
                           {"focus", window->focusedIdentity}});
    }
    Json covers = Json::array();
    for (const simulated::WindowState& cover : mac.displays.covers()) {
        covers.push_back({{"display", displayOf(cover.frame, screens)},
                          {"content", nodeJson(cover.content, files_)},
                          {"focus", cover.focusedIdentity}});
    }
    return {{"displays", std::move(displays)},
            {"isActive", mac.activation.isActive()},
            {"isAsleep", session_.isAsleep()},
            {"windows", std::move(windows)},
            {"covers", std::move(covers)}};
}

Json PageState::panels()
{
    simulated::SimulatedMac& mac = session_.mac();
    Json panels{{"login", nullptr}, {"alert", nullptr}, {"save", nullptr}, {"preview", nullptr}};
    if (const auto reason = mac.login.panelReason()) {
        panels["login"] = {{"reason", *reason}};
    }
    if (const auto alert = mac.alerts.open()) {
        panels["alert"] = {{"message", alert->content.messageText}, {"informative", alert->content.informativeText}};
    }
    if (const auto save = mac.savePanels.open()) {
        panels["save"] = {{"title", save->title}, {"name", save->nameFieldStringValue}, {"folder", "Downloads"}};
    }
    const auto items = mac.previewPanel.items();
    if (mac.previewPanel.isVisible() && !items.empty()) {
        if (auto content = mac.files.read(items.front())) {
            panels["preview"] = {{"image", files_.addImage(std::make_shared<const Bytes>(*std::move(content)))},
                                 {"name", items.front().filename().string()}};
        }
    }
    return panels;
}

} // namespace sentrel::simulator
