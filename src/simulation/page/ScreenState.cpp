#include "posix/PosixFileSystem.hpp"
#include "simulation/page/NodeJson.hpp"
#include "simulation/page/PageFiles.hpp"
#include "simulation/page/PageState.hpp"
#include "simulation/stage/MacSession.hpp"
#include "simulation/stage/MacState.hpp"

#include <algorithm>
#include <iterator>
#include <nlohmann/json.hpp>
#include <ranges>
#include <string_view>
#include <utility>
#include <vector>

// The state of the Mac's screen.

namespace sentrel::simulation {

namespace {

constexpr std::uint64_t resizable = 8; // NSWindowStyleMaskResizable

/// Converts from the system's coordinates, with the origin at the built-in display's bottom left, to the page's.
Json rectangleJson(const ports::Rectangle& rectangle, double displayHeight)
{
    return {{"x", rectangle.x},
            {"y", displayHeight - rectangle.y - rectangle.height},
            {"width", rectangle.width},
            {"height", rectangle.height}};
}

std::size_t displayOf(const ports::Rectangle& frame, const std::vector<ports::Screen>& screens)
{
    const auto found =
        std::ranges::find_if(screens, [&](const ports::Screen& screen) { return screen.frame.x == frame.x; });
    return found == screens.end() ? 0 : static_cast<std::size_t>(found - screens.begin());
}

/// The room of a window's content.
std::string contentRoom(const WindowState& window)
{
    return std::string{PageState::contentPrefix} + std::to_string(window.number);
}

} // namespace

double PageState::displayHeight(MacSession& session)
{
    constexpr double heightWithoutDisplay = 1117.0; // points, of the built-in one
    const auto displays = MacState{session}.displays();
    return displays.empty() ? heightWithoutDisplay : displays.front().frame.height;
}

Json PageState::menuBar()
{
    const auto item = MacState{session_}.menuBarItem();
    if (!item) {
        return nullptr;
    }
    return {{"icon", item->image},
            {"label", item->accessibilityLabel},
            {"menu", item->isMenuOpen ? nodeJson(item->menu, files_) : Json(nullptr)}};
}

Json PageState::screen()
{
    const MacState state{session_};
    const auto screens = state.displays();
    const double height = displayHeight(session_);
    Json displays = Json::array();
    for (const ports::Screen& screen : screens) {
        displays.push_back(rectangleJson(screen.frame, height));
    }
    Json windows = Json::array();
    const auto seenWindows = state.windows();
    for (const auto& window : std::views::reverse(seenWindows)) {
        const WindowState& seen = *window;
        windows.push_back({{"id", seen.identifier},
                           {"title", seen.title},
                           {"frame", rectangleJson(seen.frame, height)},
                           {"isKey", seen.isKey},
                           {"isResizable", (seen.description.styleMask & resizable) != 0},
                           {"content", contentRoom(seen)},
                           {"focus", seen.focusedIdentity}});
    }
    Json covers = Json::array();
    for (const auto& cover : state.covers()) {
        covers.push_back({{"display", displayOf(cover->frame, screens)},
                          {"content", contentRoom(*cover)},
                          {"focus", cover->focusedIdentity}});
    }
    return {{"displays", std::move(displays)},
            {"isActive", session_.mac().activation.isActive()},
            {"isAsleep", session_.isAsleep()},
            {"windows", std::move(windows)},
            {"covers", std::move(covers)}};
}

std::map<std::string, PageState::Text> PageState::contents()
{
    const MacState state{session_};
    auto seen = state.windows();
    std::ranges::copy(state.covers(), std::back_inserter(seen));
    std::map<std::uint64_t, Drawn> drawn;
    std::map<std::string, Text> contents;
    for (const auto& window : seen) {
        Drawn& now = drawn[window->number];
        if (const auto before = drawn_.find(window->number); before != drawn_.end()) {
            now = std::move(before->second);
        }
        if (now.content == nullptr || now.version != window->contentVersion) {
            now = {window->contentVersion,
                   std::make_shared<const std::string>(textOf(nodeJson(window->content, files_)))};
        }
        contents[contentRoom(*window)] = now.content;
    }
    drawn_ = std::move(drawn);
    return contents;
}

std::string PageState::textOf(const Json& value)
{
    return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

Json PageState::panels()
{
    SimulatedMac& mac = session_.mac();
    Json panels{{"login", nullptr}, {"alert", nullptr}, {"save", nullptr}, {"preview", nullptr}};
    if (const auto reason = mac.login.panelReason()) {
        panels["login"] = {{"reason", *reason}};
    }
    if (const auto alert = MacState{session_}.systemAlert()) {
        panels["alert"] = {{"message", alert->content.messageText}, {"informative", alert->content.informativeText}};
    }
    if (const auto save = mac.savePanels.open()) {
        panels["save"] = {{"title", save->title}, {"name", save->nameFieldStringValue}, {"folder", "Downloads"}};
    }
    const auto items = mac.previewPanel.items();
    if (mac.previewPanel.isVisible() && !items.empty()) {
        // Not through the product's port, whose faults are for the product.
        if (auto content = posix::PosixFileSystem{}.read(items.front())) {
            panels["preview"] = {{"image", files_.addImage(std::make_shared<const Bytes>(*std::move(content)))},
                                 {"name", items.front().filename().string()}};
        }
    }
    return panels;
}

} // namespace sentrel::simulation
