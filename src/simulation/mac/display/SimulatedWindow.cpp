#include "simulation/mac/display/SimulatedWindow.hpp"

#include "ui/Node.hpp"

#include <algorithm>
#include <set>
#include <utility>

namespace sentrel::simulation {

namespace {

bool isField(const ui::View& view)
{
    return ui::elementOf<ui::TextField>(view) != nullptr || ui::elementOf<ui::SecureField>(view) != nullptr;
}

void tellFocus(const ui::View& content, const std::string& identity, bool isFocused)
{
    const auto node = identity.empty() ? std::nullopt : ui::nodeAt(content, identity);
    if (node && node->view->traits.focus && node->view->traits.focus->set) {
        // A copy: the call may bring a new tree.
        const auto set = node->view->traits.focus->set;
        set(isFocused);
    }
}

} // namespace

std::size_t firstCharacter(std::string_view text)
{
    std::size_t length = 1;
    while (length < text.size() && (static_cast<unsigned char>(text[length]) & 0xC0U) == 0x80U) {
        ++length;
    }
    return length;
}

void WindowContent::show(ui::View content)
{
    state_.content = std::move(content);
    ++state_.contentVersion;
    std::string kept;
    for (const ui::Node& node : ui::nodesOf(state_.content)) {
        const auto& focus = node.view->traits.focus;
        if (focus && focus->value) {
            state_.focusedIdentity = node.identity;
            return;
        }
        if (!focus && node.identity == state_.focusedIdentity) {
            kept = node.identity;
        }
    }
    state_.focusedIdentity = kept;
}

ui::Interaction WindowContent::click(std::string_view wanted)
{
    const ui::View content = state_.content;
    const auto node = ui::find(content, wanted);
    if (!node || !isField(*node->view)) {
        return ui::press(content, wanted);
    }
    if (!node->isEnabled || node->isBlocked) {
        return ui::Interaction::unreachable;
    }
    focus(node->identity);
    return ui::Interaction::done;
}

ui::Interaction WindowContent::fill(std::string_view field, std::string_view text)
{
    const ui::View content = state_.content;
    const auto node = ui::find(content, field);
    if (node && node->isEnabled && !node->isBlocked && isField(*node->view)) {
        focus(node->identity);
    }
    return ui::setText(content, field, text);
}

ui::Interaction WindowContent::slide(std::string_view wanted, double value)
{
    const ui::View content = state_.content;
    return ui::slideTo(content, wanted, value);
}

ui::Interaction WindowContent::select(const std::vector<std::size_t>& rows)
{
    const ui::View content = state_.content;
    const auto nodes = ui::nodesOf(content);
    const auto list = std::ranges::find_if(
        nodes, [](const ui::Node& node) { return ui::elementOf<ui::List>(*node.view) != nullptr; });
    if (list == nodes.end()) {
        return ui::Interaction::notFound;
    }
    std::vector<std::string> ids;
    for (const ui::View& section : list->view->children) {
        for (const ui::View& row : section.children) {
            if (!section.traits.isHidden && !row.traits.isHidden) {
                ids.push_back(row.traits.id);
            }
        }
    }
    std::set<std::string> selected;
    for (const std::size_t row : rows) {
        if (row >= ids.size()) {
            return ui::Interaction::notFound;
        }
        selected.insert(ids[row]);
    }
    return ui::selectRows(content, list->identity, selected);
}

bool WindowContent::type(std::string_view text)
{
    while (!text.empty()) {
        const std::size_t length = firstCharacter(text);
        const ui::View content = state_.content;
        const std::string identity = state_.focusedIdentity;
        if (identity.empty() || ui::typeText(content, identity, text.substr(0, length)) != ui::Interaction::done) {
            return false;
        }
        text.remove_prefix(length);
    }
    return true;
}

ui::Interaction WindowContent::pressKey(ui::Key key)
{
    const ui::View content = state_.content;
    const std::string identity = state_.focusedIdentity;
    return ui::pressKey(content, key, identity);
}

void WindowContent::focus(const std::string& identity)
{
    const std::string before = std::exchange(state_.focusedIdentity, identity);
    if (before == identity) {
        return;
    }
    tellFocus(ui::View{state_.content}, before, false);
    tellFocus(ui::View{state_.content}, identity, true);
    state_.focusedIdentity = identity;
}

} // namespace sentrel::simulation
