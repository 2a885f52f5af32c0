#pragma once

#include "ui/View.hpp"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sentrel::ui {

/// A view at its place in a tree.
struct Node {
    const View* view = nullptr; ///< in the tree that was walked
    /// The path from the root: for each step the explicit id or, without one, the index among the siblings (for an
    /// attachment "toolbar", "sheet" or "dialog"), with slashes between them. The root's is empty.
    std::string identity;
    std::size_t depth = 0;
    bool isEnabled = true;  ///< neither it nor a view around it is disabled
    bool isBlocked = false; ///< a sheet or a dialog lies over it
};

/// All views that are not hidden, each before its children, and these before its attachments. Omits a sidebar that the
/// user has hidden.
[[nodiscard]] std::vector<Node> nodesOf(const View& root);

/// The step of a child or an attachment, see `Node::identity`.
[[nodiscard]] std::string stepOf(const View& child, std::size_t index);
[[nodiscard]] std::string stepOfAttachment(const View& attachment);

/// The identity one step inside `identity`.
[[nodiscard]] std::string identityInside(const std::string& identity, const std::string& step);

/// The view's own readable text: text, title, label, heading or prompt. Empty when there is none.
[[nodiscard]] const std::string& visibleText(const View& view);

/// Whether the user can act on the view.
[[nodiscard]] bool isInteractive(const View& view);

/// The element of one kind in the view, or null.
template <class Kind> [[nodiscard]] const Kind* elementOf(const View& view)
{
    return std::get_if<Kind>(&view.element);
}

/// The node that a person would mean: by its whole identity, else by its last steps, else by its visible text or
/// accessibility label. Prefers nodes that the user can act on at present, then the first.
[[nodiscard]] std::optional<Node> find(const View& root, std::string_view wanted);

/// The node of exactly this identity.
[[nodiscard]] std::optional<Node> nodeAt(const View& root, std::string_view identity);

} // namespace sentrel::ui
