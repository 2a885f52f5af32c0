#include "platform/simulated/SimulatedDisplays.hpp"
#include "simulator/MacSession.hpp"
#include "simulator/serve/NodeJson.hpp"
#include "simulator/serve/PageFiles.hpp"
#include "simulator/serve/PageState.hpp"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <string_view>
#include <utility>
#include <vector>

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

/// The text of an object that has members, with one more, whose value is JSON already.
std::string withMember(std::string object, std::string_view name, const std::string& value)
{
    object.reserve(object.size() + name.size() + value.size() + 8);
    object.back() = ',';
    object.append("\"").append(name).append("\":").append(value).append("}");
    return object;
}

std::string listOf(const std::vector<std::string>& values)
{
    std::string list = "[";
    for (const std::string& value : values) {
        list += (list.size() == 1 ? "" : ",") + value;
    }
    return list + "]";
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

std::string PageState::screen()
{
    simulated::SimulatedMac& mac = session_.mac();
    const auto screens = mac.displays.screens();
    const double height = screens.empty() ? 1117.0 : screens.front().frame.height;
    Json displays = Json::array();
    for (const platform::Screen& screen : screens) {
        displays.push_back(rectangleJson(screen.frame, height));
    }
    const auto windows = mac.displays.seenWindows();
    const auto covers = mac.displays.seenCovers();
    std::erase_if(drawn_, [&](const auto& entry) {
        const auto isIt = [&](const auto& window) { return window->number == entry.first; };
        return std::none_of(windows.begin(), windows.end(), isIt) && std::none_of(covers.begin(), covers.end(), isIt);
    });
    std::vector<std::string> windowTexts;
    for (auto window = windows.rbegin(); window != windows.rend(); ++window) {
        const simulated::WindowState& seen = **window;
        const Json json{{"id", seen.identifier},
                        {"title", seen.title},
                        {"frame", rectangleJson(seen.frame, height)},
                        {"isKey", seen.isKey},
                        {"isResizable", (seen.description.styleMask & resizable) != 0},
                        {"focus", seen.focusedIdentity}};
        windowTexts.push_back(withMember(textOf(json), "content", contentOf(seen)));
    }
    std::vector<std::string> coverTexts;
    for (const auto& cover : covers) {
        const Json json{{"display", displayOf(cover->frame, screens)}, {"focus", cover->focusedIdentity}};
        coverTexts.push_back(withMember(textOf(json), "content", contentOf(*cover)));
    }
    const Json rest{
        {"displays", std::move(displays)}, {"isActive", mac.activation.isActive()}, {"isAsleep", session_.isAsleep()}};
    return withMember(withMember(textOf(rest), "windows", listOf(windowTexts)), "covers", listOf(coverTexts));
}

const std::string& PageState::contentOf(const simulated::WindowState& window)
{
    const auto [drawn, isNew] = drawn_.try_emplace(window.number);
    if (isNew || drawn->second.version != window.contentVersion) {
        drawn->second = {window.contentVersion, textOf(nodeJson(window.content, files_))};
    }
    return drawn->second.content;
}

std::string PageState::textOf(const Json& value)
{
    return value.dump(-1, ' ', false, Json::error_handler_t::replace);
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
