#include "simulation/page/PageRequests.hpp"

#include "foundation/Json.hpp"
#include "simulation/page/LiveMac.hpp"
#include "simulation/page/NodeJson.hpp"
#include "simulation/stage/ScenarioError.hpp"
#include "simulation/stage/ValueReader.hpp"
#include "simulation/stage/YamlValue.hpp"
#include "ui/Interaction.hpp"
#include "ui/Node.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>

namespace sentrel::simulation {

namespace {

/// Thrown for an invalid request.
struct BadRequest {
    std::string why;
};

PageAnswer refused(std::string why)
{
    return {409, std::move(why)};
}

const Json& member(const Json& body, const char* key)
{
    const auto found = body.find(key);
    if (found == body.end()) {
        throw BadRequest{std::string{"'"} + key + "' is missing"};
    }
    return *found;
}

std::string textMember(const Json& body, const char* key)
{
    const Json& value = member(body, key);
    if (!value.is_string()) {
        throw BadRequest{std::string{"'"} + key + "' must be a text"};
    }
    return value.get<std::string>();
}

double numberMember(const Json& body, const char* key)
{
    const Json& value = member(body, key);
    if (!value.is_number() || !std::isfinite(value.get<double>())) {
        throw BadRequest{std::string{"'"} + key + "' must be a number"};
    }
    return value.get<double>();
}

bool flagMember(const Json& body, const char* key)
{
    const Json& value = member(body, key);
    if (!value.is_boolean()) {
        throw BadRequest{std::string{"'"} + key + "' must be true or false"};
    }
    return value.get<bool>();
}

PageAnswer answerOf(ui::Interaction outcome)
{
    switch (outcome) {
    case ui::Interaction::done:
        return {};
    case ui::Interaction::notFound:
        return refused("The view is no longer visible.");
    case ui::Interaction::unreachable:
        return refused("The view is disabled or covered.");
    case ui::Interaction::unsuitable:
        break;
    }
    return {400, "The view does not support this action."};
}

/// Whether the request names a file anywhere: pages must not access the host's files.
bool namesFile(const Json& value)
{
    if (value.is_object()) {
        for (const auto& [key, item] : value.items()) {
            if (key == "file" || key == "photo" || key == "recording" || namesFile(item)) {
                return true;
            }
        }
    } else if (value.is_array()) {
        return std::ranges::any_of(value, namesFile);
    }
    return false;
}

PageAnswer doAction(LiveMac& mac, const Json& body, const std::string& text)
{
    if (namesFile(body)) {
        return {400, "A page can't name files."};
    }
    try {
        std::string why = mac.perform(readAction(parseYaml(text), {}));
        return why.empty() ? PageAnswer{} : refused(std::move(why));
    } catch (const SourceFault& fault) {
        return {400, fault.what()};
    }
}

/// Closes a sheet without one of its buttons.
ui::Interaction dismiss(const ui::View& tree, const std::string& node)
{
    const auto found = ui::nodeAt(tree, node);
    const auto* const sheet = found ? ui::elementOf<ui::Sheet>(*found->view) : nullptr;
    if (sheet == nullptr || !sheet->dismiss) {
        return ui::Interaction::notFound;
    }
    sheet->dismiss();
    return ui::Interaction::done;
}

/// Performs a user's action on a node of a tree.
ui::Interaction use(const ui::View& tree, const std::string& node, const std::string& how, const Json& body)
{
    if (how == "press") {
        return ui::press(tree, node);
    }
    if (how == "switch") {
        return ui::switchTo(tree, node, flagMember(body, "value"));
    }
    if (how == "slide") {
        return ui::slideTo(tree, node, numberMember(body, "value"));
    }
    if (how == "text") {
        return ui::setText(tree, node, textMember(body, "value"));
    }
    if (how == "select") {
        const Json& rows = member(body, "value");
        const auto isText = [](const Json& row) { return row.is_string(); };
        if (!rows.is_array() || !std::ranges::all_of(rows, isText)) {
            throw BadRequest{"'value' must be a list of rows"};
        }
        return ui::selectRows(tree, node, rows.get<std::set<std::string>>());
    }
    if (how == "submit") {
        return ui::pressKey(tree, ui::Key::returnKey, node);
    }
    if (how == "key") {
        const auto key = keyNamed(textMember(body, "value"));
        if (!key) {
            throw BadRequest{"unknown key"};
        }
        return ui::pressKey(tree, *key, node);
    }
    if (how == "dismiss") {
        return dismiss(tree, node);
    }
    throw BadRequest{"unknown word in 'do'"};
}

std::optional<std::size_t> coverOf(const std::string& place)
{
    constexpr std::string_view lead = "cover:";
    if (!place.starts_with(lead) || place.size() != lead.size() + 1 || place.back() < '0' || place.back() > '9') {
        return std::nullopt;
    }
    return static_cast<std::size_t>(place.back() - '0');
}

PageAnswer useTree(LiveMac& mac, const Json& body)
{
    const std::string place = textMember(body, "in");
    const std::string node = textMember(body, "node");
    const std::string how = textMember(body, "do");
    return mac.call([&](MacSession& session) -> PageAnswer {
        simulation::SimulatedMac& parts = session.mac();
        PageAnswer answer = refused("The view is no longer visible.");
        session.onMain([&](SentrelApp&) {
            if (place == "menu") {
                const auto item = parts.statusBar.item();
                if (item && item->isMenuOpen) {
                    answer = answerOf(use(item->menu, node, how, body));
                }
                return;
            }
            const auto hand = [&](simulation::WindowContent content) {
                if (how == "focus") {
                    content.focus(node);
                    return ui::Interaction::done;
                }
                return use(content.tree(), node, how, body);
            };
            const auto cover = coverOf(place);
            answer = answerOf(cover ? parts.displays.useCover(*cover, hand) : parts.displays.use(place, hand));
        });
        return answer;
    });
}

PageAnswer useWindow(LiveMac& mac, const Json& body)
{
    const std::string window = textMember(body, "window");
    const std::string how = textMember(body, "do");
    ports::Rectangle frame;
    if (how == "move" || how == "resize") {
        const Json& wanted = member(body, "frame");
        frame = {numberMember(wanted, "x"), numberMember(wanted, "y"), numberMember(wanted, "width"),
                 numberMember(wanted, "height")};
    }
    return mac.call([&](MacSession& session) -> PageAnswer {
        simulation::SimulatedDisplays& displays = session.mac().displays;
        bool isDone = false;
        session.onMain([&](SentrelApp&) {
            const auto state = displays.window(window);
            if (!state || !state->isVisible || !displays.covers().empty()) {
                return;
            }
            if (how == "close") {
                displays.closeWindow(window); // the product may hide it instead
                isDone = true;
            } else if (how == "zoom") {
                displays.zoomWindow(window);
                isDone = true;
            } else if (how == "front") {
                const auto nothing = [](simulation::WindowContent) { return ui::Interaction::done; };
                isDone = displays.use(window, nothing) == ui::Interaction::done;
            } else if (how == "move") {
                const auto screens = displays.screens();
                const double height = screens.empty() ? 1117.0 : screens.front().frame.height;
                displays.moveWindow(window, frame.x, height - frame.y - state->frame.height);
                isDone = true;
            } else if (how == "resize") {
                const auto content = simulation::contentOf(*state, {0.0, 0.0, frame.width, frame.height});
                displays.resizeWindow(window, {content.width, content.height});
                isDone = true;
            }
        });
        return isDone ? PageAnswer{} : refused("The window is closed, covered, or does not support this.");
    });
}

PageAnswer useMenu(LiveMac& mac, const Json& body)
{
    const bool opens = flagMember(body, "open");
    return mac.call([&](MacSession& session) -> PageAnswer {
        bool isDone = false;
        session.onMain([&](SentrelApp&) {
            if (!session.mac().displays.covers().empty()) {
                return;
            }
            if (opens) {
                isDone = session.mac().statusBar.openMenu();
            } else {
                session.mac().statusBar.closeMenu();
                isDone = true;
            }
        });
        return isDone ? PageAnswer{} : refused("The menu bar is covered or empty.");
    });
}

bool answerPanel(simulation::SimulatedMac& mac, const std::string& panel, const std::string& answer)
{
    using simulation::LoginAnswer;
    if (panel == "login") {
        const auto meaning = answer == "succeed" ? LoginAnswer::succeed
                             : answer == "fail"  ? LoginAnswer::fail
                                                 : LoginAnswer::cancel;
        return mac.login.answerPanel(meaning);
    }
    if (panel == "alert") {
        return mac.alerts.close();
    }
    if (panel == "preview") {
        return mac.previewPanel.close();
    }
    simulation::SimulatedSavePanels::Answer chosen;
    chosen.isCancelled = answer == "cancel";
    // Only a name, never a path to another folder.
    chosen.name = std::filesystem::path{answer}.filename().string();
    return mac.savePanels.answerPanel(chosen);
}

PageAnswer usePanel(LiveMac& mac, const Json& body)
{
    const std::string panel = textMember(body, "panel");
    const std::string answer = textMember(body, "answer");
    constexpr std::array panels{"login", "alert", "save", "preview"};
    if (std::ranges::find(panels, panel) == panels.end()) {
        throw BadRequest{"unknown panel"};
    }
    return mac.call([&](MacSession& session) -> PageAnswer {
        const bool isDone = answerPanel(session.mac(), panel, answer);
        session.clock().runReady();
        return isDone ? PageAnswer{} : refused("The panel is not open.");
    });
}

PageAnswer launch(LiveMac& mac)
{
    return mac.call([](MacSession& session) -> PageAnswer {
        if (session.app() != nullptr) {
            return refused("Sentrel is already running.");
        }
        session.launch();
        return {};
    });
}

} // namespace

PageAnswer answerPage(LiveMac& mac, const std::string& name, const std::string& body)
{
    const auto document = parseJson(bytesOf(body));
    if (!document) {
        return {400, "The request is not JSON."};
    }
    try {
        if (name == "action") {
            return doAction(mac, *document, body);
        }
        if (!document->is_object()) {
            throw BadRequest{"the body must be an object"};
        }
        if (name == "ui") {
            return useTree(mac, *document);
        }
        if (name == "window") {
            return useWindow(mac, *document);
        }
        if (name == "menu") {
            return useMenu(mac, *document);
        }
        if (name == "panel") {
            return usePanel(mac, *document);
        }
        if (name == "launch") {
            return launch(mac);
        }
        if (name == "replace") {
            std::string why = mac.replace();
            return why.empty() ? PageAnswer{} : refused(std::move(why));
        }
    } catch (const BadRequest& bad) {
        return {400, "The request can't be understood: " + bad.why + "."};
    }
    return {404, "The request is unknown."};
}

PageAnswer showWebcam(LiveMac& mac, const std::string& jpeg)
{
    const Bytes content{jpeg.begin(), jpeg.end()};
    return mac.call([&](MacSession& session) -> PageAnswer {
        if (content.empty()) {
            session.mac().camera.setPhotoFile(std::nullopt);
            return {};
        }
        if (!session.mac().imageCodec.pixelSize(content)) {
            return {400, "The picture is not a JPEG file."};
        }
        session.mac().camera.setPhotoFile(content);
        return {};
    });
}

} // namespace sentrel::simulation
