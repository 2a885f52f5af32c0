#include "simulation/page/PageControls.hpp"

#include "simulation/page/LiveMac.hpp"
#include "simulation/page/NodeJson.hpp"
#include "simulation/page/PageState.hpp"
#include "simulation/page/RequestBody.hpp"
#include "ui/Interaction.hpp"
#include "ui/Node.hpp"

#include <algorithm>
#include <array>
#include <filesystem>
#include <iterator>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <string>
#include <utility>

namespace sentrel::simulation {

namespace {

PageAnswer impossible(std::string why)
{
    return {409, std::move(why)};
}

PageAnswer answerOf(ui::Interaction outcome)
{
    switch (outcome) {
    case ui::Interaction::done:
        return {};
    case ui::Interaction::notFound:
        return impossible("The view is no longer visible.");
    case ui::Interaction::unreachable:
        return impossible("The view is disabled or covered.");
    case ui::Interaction::unsuitable:
        break;
    }
    return {400, "The view does not support this action."};
}

ui::Interaction select(const ui::View& tree, const std::string& node, const Json& body)
{
    const Json& rows = requiredMember(body, "value");
    const auto isText = [](const Json& row) { return row.is_string(); };
    if (!rows.is_array() || !std::ranges::all_of(rows, isText)) {
        throw BadRequest{"'value' must be a list of rows"};
    }
    return ui::selectRows(tree, node, rows.get<std::set<std::string>>());
}

ui::Interaction pressKey(const ui::View& tree, const std::string& node, const Json& body)
{
    const auto key = keyNamed(requiredText(body, "value"));
    if (!key) {
        throw BadRequest{"unknown key"};
    }
    return ui::pressKey(tree, *key, node);
}

/// Closes a sheet without one of its buttons.
ui::Interaction dismiss(const ui::View& tree, const std::string& node, const Json& /*body*/)
{
    const auto found = ui::nodeAt(tree, node);
    const auto* const sheet = found ? ui::elementOf<ui::Sheet>(*found->view) : nullptr;
    if (sheet == nullptr || !sheet->dismiss) {
        return ui::Interaction::notFound;
    }
    sheet->dismiss();
    return ui::Interaction::done;
}

/// A user's action on a node of a tree.
struct TreeUse {
    std::string_view word;
    ui::Interaction (*use)(const ui::View& tree, const std::string& node, const Json& body);
};

constexpr std::string_view focusUse = "focus"; // a window's own: its tree does not know where the keyboard is

constexpr std::array<TreeUse, 9> treeUses{{
    {"press", [](auto& tree, auto& node, auto&) { return ui::press(tree, node); }},
    {"switch",
     [](auto& tree, auto& node, auto& body) { return ui::switchTo(tree, node, requiredFlag(body, "value")); }},
    {"slide",
     [](auto& tree, auto& node, auto& body) { return ui::slideTo(tree, node, requiredNumber(body, "value")); }},
    {"text", [](auto& tree, auto& node, auto& body) { return ui::setText(tree, node, requiredText(body, "value")); }},
    {"select", select},
    {focusUse, [](auto&, auto&, auto&) { return ui::Interaction::unsuitable; }},
    {"key", pressKey},
    {"submit", [](auto& tree, auto& node, auto&) { return ui::pressKey(tree, ui::Key::returnKey, node); }},
    {"dismiss", dismiss},
}};

std::optional<std::size_t> coverOf(const std::string& place)
{
    constexpr std::string_view lead = "cover:";
    if (!place.starts_with(lead) || place.size() != lead.size() + 1 || place.back() < '0' || place.back() > '9') {
        return std::nullopt;
    }
    return static_cast<std::size_t>(place.back() - '0');
}

/// An action of a person at a window. `frame` is set for those that need one.
struct WindowUse {
    std::string_view word;
    bool needsFrame;
    bool (*use)(MacSession& session, const WindowState& window, const ports::Rectangle& frame);
};

constexpr std::array<WindowUse, 5> windowUses{{
    {"close", false,
     [](MacSession& session, const WindowState& window, auto&) {
         session.mac().displays.closeWindow(window.identifier); // the product may hide it instead
         return true;
     }},
    {"move", true,
     [](MacSession& session, const WindowState& window, const ports::Rectangle& frame) {
         const double height = PageState::displayHeight(session);
         session.mac().displays.moveWindow(window.identifier, frame.x, height - frame.y - window.frame.height);
         return true;
     }},
    {"resize", true,
     [](MacSession& session, const WindowState& window, const ports::Rectangle& frame) {
         const auto content = contentOf(window, {0.0, 0.0, frame.width, frame.height});
         session.mac().displays.resizeWindow(window.identifier, {content.width, content.height});
         return true;
     }},
    {"zoom", false,
     [](MacSession& session, const WindowState& window, auto&) {
         session.mac().displays.zoomWindow(window.identifier);
         return true;
     }},
    {"front", false,
     [](MacSession& session, const WindowState& window, auto&) {
         const auto nothing = [](WindowContent) { return ui::Interaction::done; };
         return session.mac().displays.use(window.identifier, nothing) == ui::Interaction::done;
     }},
}};

constexpr std::string_view cancelAnswer = "cancel";
constexpr std::string_view closeAnswer = "close";

struct LoginUse {
    std::string_view word;
    LoginAnswer answer;
};

constexpr std::array<LoginUse, 3> loginAnswers{{
    {"succeed", LoginAnswer::succeed},
    {"fail", LoginAnswer::fail},
    {cancelAnswer, LoginAnswer::cancel},
}};

void requireClose(const std::string& answer)
{
    if (answer != closeAnswer) {
        throw BadRequest{"'answer' must be: " + std::string{closeAnswer}};
    }
}

bool answerLogin(SimulatedMac& mac, const Json& body)
{
    return mac.login.answerPanel(requiredRow(body, "answer", loginAnswers).answer);
}

bool answerSave(SimulatedMac& mac, const Json& body)
{
    const std::string answer = requiredText(body, "answer");
    SimulatedSavePanels::Answer chosen;
    chosen.isCancelled = answer == cancelAnswer;
    // Only a name, never a path to another folder.
    chosen.name = std::filesystem::path{answer}.filename().string();
    return mac.savePanels.answerPanel(chosen);
}

/// A panel of the system. The answer is false if the panel isn't open.
struct PanelUse {
    std::string_view word;
    bool (*answer)(SimulatedMac& mac, const Json& body);
};

constexpr std::array<PanelUse, 4> panelUses{{
    {"login", answerLogin},
    {"alert",
     [](SimulatedMac& mac, const Json& body) {
         requireClose(requiredText(body, "answer"));
         return mac.alerts.close();
     }},
    {"save", answerSave},
    {"preview",
     [](SimulatedMac& mac, const Json& body) {
         requireClose(requiredText(body, "answer"));
         return mac.previewPanel.close();
     }},
}};

template <class Rows> std::vector<std::string_view> wordsOf(const Rows& rows)
{
    std::vector<std::string_view> words;
    std::ranges::transform(rows, std::back_inserter(words), [](const auto& row) { return row.word; });
    return words;
}

} // namespace

PageAnswer useTree(LiveMac& mac, const Json& body)
{
    const std::string place = requiredText(body, "in");
    const std::string node = requiredText(body, "node");
    const TreeUse& how = requiredRow(body, "do", treeUses);
    return mac.call([&](MacSession& session) -> PageAnswer {
        const auto answer = std::make_shared<PageAnswer>(impossible("The view is no longer visible."));
        session.onMain([answer, place, node, body, &how, &parts = session.mac()](SentrelApp&) {
            if (place == "menu") {
                const auto item = parts.statusBar.item();
                if (item && item->isMenuOpen) {
                    *answer = answerOf(how.use(item->menu, node, body));
                }
                return;
            }
            const auto hand = [&](WindowContent content) {
                if (how.word == focusUse) {
                    content.focus(node);
                    return ui::Interaction::done;
                }
                return how.use(content.tree(), node, body);
            };
            const auto cover = coverOf(place);
            *answer = answerOf(cover ? parts.displays.useCover(*cover, hand) : parts.displays.use(place, hand));
        });
        return *answer;
    });
}

PageAnswer useWindow(LiveMac& mac, const Json& body)
{
    const std::string identifier = requiredText(body, "window");
    const WindowUse& how = requiredRow(body, "do", windowUses);
    ports::Rectangle frame;
    if (how.needsFrame) {
        const Json& wanted = requiredMember(body, "frame");
        frame = {requiredNumber(wanted, "x"), requiredNumber(wanted, "y"), requiredNumber(wanted, "width"),
                 requiredNumber(wanted, "height")};
    }
    return mac.call([&](MacSession& session) -> PageAnswer {
        const auto isDone = std::make_shared<bool>(false);
        session.onMain([isDone, identifier, frame, &how, &session](SentrelApp&) {
            const SimulatedDisplays& displays = session.mac().displays;
            const auto window = displays.window(identifier);
            *isDone = window && window->isVisible && displays.covers().empty() && how.use(session, *window, frame);
        });
        return *isDone ? PageAnswer{} : impossible("The window is closed or covered.");
    });
}

PageAnswer useMenu(LiveMac& mac, const Json& body)
{
    const bool opens = requiredFlag(body, "open");
    return mac.call([&](MacSession& session) -> PageAnswer {
        const auto isDone = std::make_shared<bool>(false);
        session.onMain([isDone, opens, &session](SentrelApp&) {
            if (!session.mac().displays.covers().empty()) {
                return;
            }
            if (opens) {
                *isDone = session.mac().statusBar.openMenu();
            } else {
                session.mac().statusBar.closeMenu();
                *isDone = true;
            }
        });
        return *isDone ? PageAnswer{} : impossible("The menu bar is covered or empty.");
    });
}

PageAnswer usePanel(LiveMac& mac, const Json& body)
{
    const PanelUse& panel = requiredRow(body, "panel", panelUses);
    return mac.call([&](MacSession& session) -> PageAnswer {
        const bool isDone = panel.answer(session.mac(), body);
        session.clock().runReady();
        return isDone ? PageAnswer{} : impossible("The panel is not open.");
    });
}

ControlWords controlWords()
{
    std::vector<std::string_view> answers = wordsOf(loginAnswers);
    answers.push_back(closeAnswer);
    return {wordsOf(treeUses), wordsOf(windowUses), wordsOf(panelUses), std::move(answers)};
}

} // namespace sentrel::simulation
