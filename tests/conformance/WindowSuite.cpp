#include "conformance/ProductWindows.hpp"
#include "ports/Language.hpp"
#include "ui/Node.hpp"

#include <algorithm>
#include <map>

namespace sentrel::conformance {

namespace {

constexpr const char* languages[] = {"en", "de", "es", "fr", "ja", "zh-Hans"};

/// The tree without toolbars, sheets and dialogs, which need a window on the screen, and without the rows of lists,
/// which are drawn when they scroll into view.
ui::View plain(const ui::View& tree)
{
    ui::View result = tree;
    result.attachments.clear();
    std::vector<ui::View> children;
    if (ui::elementOf<ui::List>(tree) == nullptr) {
        for (const ui::View& child : tree.children) {
            children.push_back(plain(child));
        }
    }
    result.children = children;
    return result;
}

void checkNode(const ui::Node& node, const Drawn& drawn, const std::string& where, bool tellsFocus, Report& report)
{
    const std::string& text = ui::visibleText(*node.view);
    const std::string& label = node.view->traits.accessibilityLabel;
    report.expect(text.empty() || std::ranges::find(drawn.texts, text) != drawn.texts.end(), where + " shows its text",
                  text);
    report.expect(label.empty() || drawn.label == label, where + " is named for screen readers", drawn.label);
    if (ui::isInteractive(*node.view) && ui::elementOf<ui::List>(*node.view) == nullptr) {
        report.expect(drawn.isEnabled == node.isEnabled, where + (node.isEnabled ? " is enabled" : " is disabled"));
    }
    const auto& focus = node.view->traits.focus;
    if (tellsFocus && focus && focus->value) {
        report.expect(drawn.hasFocus, where + " has the keyboard");
    }
}

void checkTree(const Renderer& renderer, const std::string& name, const ui::View& tree, Report& report)
{
    const ui::View drawable = plain(tree);
    std::map<std::string, Drawn> byIdentity;
    for (const Drawn& drawn : renderer.draw(drawable, name, report)) {
        report.expect(byIdentity.emplace(drawn.identity, drawn).second, name + ": an identity is drawn once",
                      drawn.identity);
    }
    const auto nodes = ui::nodesOf(drawable);
    for (const ui::Node& node : nodes) {
        const std::string where = name + ": '" + node.identity + "'";
        const auto found = byIdentity.find(node.identity);
        if (report.expect(found != byIdentity.end(), where + " is drawn")) {
            checkNode(node, found->second, where, renderer.tellsFocus, report);
        }
    }
    report.expect(byIdentity.size() == nodes.size(), name + ": nothing else is drawn",
                  std::to_string(byIdentity.size()) + " instead of " + std::to_string(nodes.size()));
}

} // namespace

void checkWindows(const Subject& subject, Report& report)
{
    for (const char* const identifier : languages) {
        const auto language = subject.language(identifier);
        if (!report.expect(language != nullptr, "the product speaks the language", identifier)) {
            continue;
        }
        const auto trees = productWindows(subject, *language);
        report.expect(trees.size() == 6, "all windows have been opened", std::to_string(trees.size()));
        for (const auto& [name, tree] : trees) {
            checkTree(subject.renderer, std::string{identifier} + "-" + name, tree, report);
        }
    }
}

} // namespace sentrel::conformance
