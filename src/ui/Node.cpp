#include "ui/Node.hpp"

#include <algorithm>
#include <ranges>
#include <utility>

namespace sentrel::ui {

namespace {

bool isModal(const View& view)
{
    return elementOf<Sheet>(view) != nullptr || elementOf<Dialog>(view) != nullptr;
}

bool isInside(std::string_view identity, std::string_view outer)
{
    return identity == outer || (identity.starts_with(outer) && identity.substr(outer.size()).starts_with('/'));
}

void walk(const View& view, Node node, std::vector<Node>& found)
{
    if (view.traits.isHidden) {
        return;
    }
    node.view = &view;
    node.isEnabled = node.isEnabled && !view.traits.isDisabled;
    found.push_back(node);
    const auto enter = [&](const View& inner, const std::string& step) {
        Node next;
        next.identity = identityInside(node.identity, step);
        next.depth = node.depth + 1;
        next.isEnabled = node.isEnabled;
        walk(inner, std::move(next), found);
    };
    const auto* const split = elementOf<SplitView>(view);
    const bool hasHiddenSidebar = split != nullptr && !split->isSidebarShown.value;
    for (std::size_t index = hasHiddenSidebar ? 1 : 0; index < view.children.size(); ++index) {
        enter(view.children[index], stepOf(view.children[index], index));
    }
    for (const View& attachment : view.attachments) {
        enter(attachment, stepOfAttachment(attachment));
    }
}

/// Whether the identity ends with these whole steps.
bool endsWithSteps(std::string_view identity, std::string_view steps)
{
    if (steps.empty() || !identity.ends_with(steps)) {
        return false;
    }
    return identity.size() == steps.size() || identity[identity.size() - steps.size() - 1] == '/';
}

template <class Matches> std::optional<Node> bestOf(const std::vector<Node>& nodes, Matches matches)
{
    const Node* best = nullptr;
    const auto rank = [](const Node& node) {
        return isInteractive(*node.view) ? 1 + static_cast<int>(node.isEnabled) + static_cast<int>(!node.isBlocked) : 0;
    };
    for (const Node& node : nodes) {
        if (matches(node) && (best == nullptr || rank(node) > rank(*best))) {
            best = &node;
        }
    }
    return best == nullptr ? std::nullopt : std::optional{*best};
}

struct VisibleText {
    const std::string& operator()(const Text& text) const { return text.text; }
    const std::string& operator()(const Button& button) const { return button.title; }
    const std::string& operator()(const Toggle& toggle) const { return toggle.label; }
    const std::string& operator()(const Slider& slider) const { return slider.label; }
    const std::string& operator()(const TextField& field) const { return field.prompt; }
    const std::string& operator()(const SecureField& field) const { return field.prompt; }
    const std::string& operator()(const Section& section) const { return section.header; }
    const std::string& operator()(const Progress& progress) const { return progress.label; }
    const std::string& operator()(const Dialog& dialog) const { return dialog.title; }
    template <class Other> const std::string& operator()(const Other& /*other*/) const
    {
        static const std::string nothing;
        return nothing;
    }
};

} // namespace

std::vector<Node> nodesOf(const View& root)
{
    std::vector<Node> found;
    walk(root, Node{}, found);
    const auto modal =
        std::ranges::find_if(std::views::reverse(found), [](const Node& node) { return isModal(*node.view); });
    if (modal != found.rend()) {
        const std::string front = modal->identity;
        for (Node& node : found) {
            node.isBlocked = !isInside(node.identity, front);
        }
    }
    return found;
}

std::string stepOf(const View& child, std::size_t index)
{
    return child.traits.id.empty() ? std::to_string(index) : child.traits.id;
}

std::string stepOfAttachment(const View& attachment)
{
    if (!attachment.traits.id.empty()) {
        return attachment.traits.id;
    }
    if (elementOf<Toolbar>(attachment) != nullptr) {
        return "toolbar";
    }
    return elementOf<Sheet>(attachment) != nullptr ? "sheet" : "dialog";
}

std::string identityInside(const std::string& identity, const std::string& step)
{
    return identity.empty() ? step : identity + "/" + step;
}

const std::string& visibleText(const View& view)
{
    return std::visit(VisibleText{}, view.element);
}

bool isInteractive(const View& view)
{
    return elementOf<Button>(view) != nullptr || elementOf<Toggle>(view) != nullptr ||
           elementOf<Slider>(view) != nullptr || elementOf<TextField>(view) != nullptr ||
           elementOf<SecureField>(view) != nullptr || elementOf<List>(view) != nullptr;
}

std::optional<Node> find(const View& root, std::string_view wanted)
{
    const std::vector<Node> nodes = nodesOf(root);
    if (auto exact = bestOf(nodes, [&](const Node& node) { return node.identity == wanted; })) {
        return exact;
    }
    if (wanted.empty()) {
        return std::nullopt;
    }
    if (auto tail = bestOf(nodes, [&](const Node& node) { return endsWithSteps(node.identity, wanted); })) {
        return tail;
    }
    return bestOf(nodes, [&](const Node& node) {
        return visibleText(*node.view) == wanted || node.view->traits.accessibilityLabel == wanted;
    });
}

std::optional<Node> nodeAt(const View& root, std::string_view identity)
{
    return bestOf(nodesOf(root), [&](const Node& node) { return node.identity == identity; });
}

} // namespace sentrel::ui
