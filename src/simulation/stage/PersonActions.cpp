#include "simulation/stage/Action.hpp"
#include "simulation/stage/MacSession.hpp"
#include "simulation/stage/MacWords.hpp"
#include "simulation/stage/MenuUse.hpp"
#include "simulation/stage/Wording.hpp"

#include <array>
#include <memory>
#include <utility>

// Actions of the person in front of the MacBook, who uses the menu, the windows and the panels that are reachable: the
// lock screen covers everything. Views are named by their text or their identity.

namespace sentrel::simulation {

namespace {

/// Identities of the menu's buttons.
constexpr std::string_view settingsButton = "settings";
constexpr std::string_view alertsButton = "alertList";

std::string windowName(std::string_view identifier)
{
    return identifier == mainWindow.identifier ? "the control panel" : "the list of alerts";
}

std::string complaint(ui::Interaction outcome, std::string_view wanted)
{
    switch (outcome) {
    case ui::Interaction::done:
        return {};
    case ui::Interaction::notFound:
        return inQuotes(wanted) + " is not visible";
    case ui::Interaction::unreachable:
        return inQuotes(wanted) + " is disabled or covered";
    case ui::Interaction::unsuitable:
        break;
    }
    return inQuotes(wanted) + " does not support this action";
}

/// Lets the person act on the product's main thread. `act` refers to nothing here: a busy thread takes it later.
template <class Act> std::string onMain(MacSession& session, Act act)
{
    const auto why = std::make_shared<std::string>("Sentrel is not running");
    session.onMain([why, act = std::move(act), &mac = session.mac()](SentrelApp&) { *why = act(mac); });
    return *why;
}

/// Uses the content of the front: the lock screen, or the window used last.
template <class Use> std::string useFront(MacSession& session, std::string wanted, Use use)
{
    return onMain(session, [use = std::move(use), wanted = std::move(wanted)](SimulatedMac& mac) {
        return complaint(mac.displays.useFront(use), wanted);
    });
}

std::string openMenu(MacSession& session)
{
    return onMain(session, [](SimulatedMac& mac) -> std::string {
        if (!mac.displays.covers().empty()) {
            return "the lock screen covers the menu bar";
        }
        return mac.statusBar.openMenu() ? "" : "the menu bar does not show Sentrel's item";
    });
}

std::string closeMenu(MacSession& session)
{
    return onMain(session, [](SimulatedMac& mac) {
        mac.statusBar.closeMenu();
        return std::string{};
    });
}

std::string pressInMenu(MacSession& session, std::string_view wanted)
{
    std::string why = openMenu(session);
    if (!why.empty()) {
        return why;
    }
    // Clicks a turn later: opening the menu may change its content.
    return onMain(session, [wanted = std::string{wanted}](SimulatedMac& mac) {
        return complaint(mac.statusBar.click(wanted), wanted);
    });
}

ValueType<MenuUse> menuType()
{
    return {[](auto& value, auto, auto&) -> MenuUse {
                if (value.kind == YamlValue::Kind::plain && (value.text == "open" || value.text == "close")) {
                    return {value.text == "open" ? MenuUse::Kind::open : MenuUse::Kind::close, {}};
                }
                return {MenuUse::Kind::press, readText(value, "what to press in the menu")};
            },
            type::text().schema};
}

std::string useMenu(MacSession& session, const MenuUse& use)
{
    switch (use.kind) {
    case MenuUse::Kind::open:
        return openMenu(session);
    case MenuUse::Kind::close:
        return closeMenu(session);
    case MenuUse::Kind::press:
        break;
    }
    return pressInMenu(session, use.wanted);
}

std::string tellMenu(const MenuUse& use)
{
    switch (use.kind) {
    case MenuUse::Kind::open:
        return "Somebody opens the menu.";
    case MenuUse::Kind::close:
        return "Somebody closes the menu.";
    case MenuUse::Kind::press:
        break;
    }
    return "In the menu somebody presses " + quotation(use.wanted) + ".";
}

std::string click(MacSession& session, const std::string& wanted)
{
    return onMain(session, [wanted](SimulatedMac& mac) -> std::string {
        mac.statusBar.closeMenu();
        if (mac.alerts.open()) {
            // Alerts have one button; its text depends on the language.
            mac.alerts.close();
            return {};
        }
        return complaint(mac.displays.useFront([&](WindowContent content) { return content.click(wanted); }), wanted);
    });
}

/// A view's name and what is done with it; no name where the keyboard focus is meant.
template <class Value> struct Named {
    std::optional<std::string> name;
    Value value{};
};

/// A map of one key, which names a view.
template <class T> ValueType<Named<T>> namedType(ValueType<T> type, std::string example)
{
    Json schema{{"type", "object"}, {"additionalProperties", type.schema}, {"minProperties", 1}, {"maxProperties", 1}};
    return {[read = std::move(type.read), example = std::move(example)](auto& value, auto what, auto& context) {
                if (!value.isMap() || value.keys.size() != 1) {
                    throw SourceFault(value.line, std::string{what} + " takes one key, as in " + example);
                }
                return Named<T>{value.keys.front().text, read(value.items.front(), what, context)};
            },
            std::move(schema)};
}

ValueType<Named<std::string>> typedType()
{
    const auto text = type::called("what to type", type::anyText());
    auto bare = type::made(text, [](std::string typed) { return Named<std::string>{{}, std::move(typed)}; });
    return type::either(namedType(text, "{type: {Passcode: \"2468\"}}"), std::move(bare));
}

std::string typeText(MacSession& session, const Named<std::string>& typed)
{
    if (typed.name) {
        return useFront(session, *typed.name,
                        [typed](WindowContent content) { return content.fill(*typed.name, typed.value); });
    }
    // One character at a time: each one may change the windows.
    std::string_view rest = typed.value;
    std::string why;
    while (!rest.empty() && why.empty()) {
        const std::size_t length = firstCharacter(rest);
        why = onMain(session, [character = std::string{rest.substr(0, length)}](SimulatedMac& mac) -> std::string {
            return mac.displays.type(character) ? "" : "no field has the keyboard focus";
        });
        rest.remove_prefix(length);
    }
    return why;
}

std::string tellTyped(const Named<std::string>& typed)
{
    // The text may be a secret; it is shown because the reader may see the scenario.
    return "Somebody types " + quotation(typed.value) + (typed.name ? " into " + quotation(*typed.name) : "") + ".";
}

std::string pressKey(MacSession& session, ui::Key key)
{
    return onMain(session, [key](SimulatedMac& mac) -> std::string {
        const auto outcome = mac.statusBar.isMenuOpen() ? mac.statusBar.pressKey(key) : mac.displays.pressKey(key);
        return outcome == ui::Interaction::done ? "" : "no view takes this key";
    });
}

std::string slide(MacSession& session, const Named<double>& slider)
{
    return useFront(session, *slider.name,
                    [slider](WindowContent content) { return content.slide(*slider.name, slider.value); });
}

std::string tellSlide(const Named<double>& slider)
{
    return "Somebody moves " + quotation(*slider.name) + " to " + plainNumber(slider.value) + ".";
}

std::string selectRows(MacSession& session, const std::vector<std::uint32_t>& rows)
{
    return useFront(session, "such a row", [rows](WindowContent content) {
        return content.select(std::vector<std::size_t>{rows.begin(), rows.end()});
    });
}

std::string tellSelection(const std::vector<std::uint32_t>& rows)
{
    if (rows.empty()) {
        return "Nothing is selected any more.";
    }
    return rows.size() == 1 ? "Somebody selects an alert."
                            : "Somebody selects " + std::to_string(rows.size()) + " alerts.";
}

std::string closeWindow(MacSession& session, std::string_view window)
{
    return onMain(session, [window = std::string{window}](SimulatedMac& mac) -> std::string {
        return mac.displays.closeWindow(window) ? "" : "the window is not open, or covered";
    });
}

/// A window's edges are dragged, its title bar, or both.
struct Drag {
    std::string_view window;
    std::optional<ports::Size> size; ///< size of the content
    std::optional<ports::Size> to;   ///< lower left corner, from that of the built-in display
};

ValueType<ports::Size> pairType(std::string example)
{
    return {[example = std::move(example)](auto& value, auto what, auto&) -> ports::Size {
                if (!value.isList() || value.items.size() != 2) {
                    throw SourceFault(value.line, std::string{what} + " has two numbers, as in " + example);
                }
                const double first = readNumber(value.items[0], what);
                const double second = readNumber(value.items[1], what);
                return {first, second};
            },
            Json{{"type", "array"}, {"items", {{"type", "number"}}}, {"minItems", 2}, {"maxItems", 2}}};
}

ValueType<Drag> dragType()
{
    auto type = type::map(Fields<Drag>{
        required(field("window", &Drag::window, type::word("window", windowWords))),
        field("size", &Drag::size, pairType("[440, 600]")),
        field("to", &Drag::to, pairType("[100, 80]")),
    });
    return {[read = std::move(type.read)](auto& value, auto what, auto& context) {
                Drag drag = read(value, what, context);
                if (!drag.size && !drag.to) {
                    throw SourceFault(value.line, "'drag' needs 'size', 'to' or both");
                }
                return drag;
            },
            std::move(type.schema)};
}

std::string dragWindow(MacSession& session, const Drag& drag)
{
    return onMain(session, [drag](SimulatedMac& mac) -> std::string {
        const auto window = mac.displays.window(drag.window);
        if (!window || !window->isVisible || !mac.displays.covers().empty()) {
            return "the window is not open, or covered";
        }
        // An unchanged window may have reached its limits, so failure to resize isn't reported.
        if (drag.size) {
            mac.displays.resizeWindow(drag.window, *drag.size);
        }
        if (drag.to) {
            mac.displays.moveWindow(drag.window, drag.to->width, drag.to->height);
        }
        return {};
    });
}

std::string tellDrag(const Drag& drag)
{
    std::string text = "Somebody drags " + windowName(drag.window);
    if (drag.size) {
        text += " to " + plainNumber(drag.size->width) + " by " + plainNumber(drag.size->height) + " points";
    }
    return text + (drag.to ? " across the display." : ".");
}

} // namespace

std::vector<ActionRow> personActions()
{
    constexpr std::uint32_t mostRows = 100'000;
    static constexpr std::array<Word<ui::Key>, 3> keys{
        {{"return", ui::Key::returnKey}, {"delete", ui::Key::deleteKey}, {"escape", ui::Key::escape}}};
    return {
        ActionRow::with("menu", "{menu: Armed}", "a view in the menu is pressed, or the menu opened or closed",
                        menuType(), useMenu, tellMenu),
        ActionRow::with("click", "{click: Delete}", "a view in the front is clicked",
                        type::called("what to click on", type::text()), click,
                        [](const std::string& wanted) { return "Somebody clicks on " + quotation(wanted) + "."; }),
        ActionRow::with("type", "{type: \"2468\"}", "text is typed at the keyboard focus or into a field", typedType(),
                        typeText, tellTyped),
        ActionRow::with("press", "{press: delete}", "a key is pressed", type::word("key", keys), pressKey,
                        [](ui::Key key) { return "Somebody presses " + std::string{wordFor(keys, key)} + "."; }),
        ActionRow::with(
            "slide", "{slide: {Alarm volume: 0.5}}", "a slider is moved",
            namedType(type::called("where the slider goes", type::number()), "{slide: {Alarm volume: 0.5}}"), slide,
            tellSlide),
        ActionRow::with("select", "{select: [0, 1]}", "rows of the list are selected, counted from 0, and no others",
                        type::listOf(type::called("the place of a row", type::whole(0, mostRows))), selectRows,
                        tellSelection),
        ActionRow::with(
            "open", "{open: main}", "a window is opened by its button in the menu", type::word("window", windowWords),
            [](MacSession& session, std::string_view window) {
                return pressInMenu(session, window == mainWindow.identifier ? settingsButton : alertsButton);
            },
            [](std::string_view window) { return "Somebody wants to open " + windowName(window) + "."; }),
        ActionRow::with("close", "{close: main}", "a window is closed by its title bar",
                        type::word("window", windowWords), closeWindow,
                        [](std::string_view window) { return "Somebody closes " + windowName(window) + "."; }),
        ActionRow::with("drag", "{drag: {window: main, size: [440, 600]}}", "a window is resized or moved", dragType(),
                        dragWindow, tellDrag),
        ActionRow::with(
            "type-passcode", "{type-passcode: \"1234\"}", "a passcode is typed on the lock screen",
            type::called("a passcode", type::text()),
            [](MacSession& session, const std::string& passcode) { session.typePasscode(passcode); },
            [](const std::string& passcode) {
                return "Somebody types " + quotation(passcode) + " on the lock screen.";
            }),
    };
}

} // namespace sentrel::simulation
