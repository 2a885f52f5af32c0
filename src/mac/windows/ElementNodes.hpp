#pragma once

#include "mac/windows/DrawnNode.hpp"

namespace sentrel::mac {

// One function for each kind of element: makes the node that draws it.

[[nodiscard]] std::unique_ptr<DrawnNode> makeNode(const ui::Stack& stack);
[[nodiscard]] std::unique_ptr<DrawnNode> makeNode(const ui::Spacer& spacer);
[[nodiscard]] std::unique_ptr<DrawnNode> makeNode(const ui::Divider& divider);
[[nodiscard]] std::unique_ptr<DrawnNode> makeNode(const ui::Text& text);
[[nodiscard]] std::unique_ptr<DrawnNode> makeNode(const ui::Image& image);
[[nodiscard]] std::unique_ptr<DrawnNode> makeNode(const ui::Button& button);
[[nodiscard]] std::unique_ptr<DrawnNode> makeNode(const ui::Toggle& toggle);
[[nodiscard]] std::unique_ptr<DrawnNode> makeNode(const ui::Slider& slider);
[[nodiscard]] std::unique_ptr<DrawnNode> makeNode(const ui::TextField& field);
[[nodiscard]] std::unique_ptr<DrawnNode> makeNode(const ui::SecureField& field);
[[nodiscard]] std::unique_ptr<DrawnNode> makeNode(const ui::List& list);
[[nodiscard]] std::unique_ptr<DrawnNode> makeNode(const ui::Form& form);
[[nodiscard]] std::unique_ptr<DrawnNode> makeNode(const ui::Section& section);
[[nodiscard]] std::unique_ptr<DrawnNode> makeNode(const ui::SplitView& split);
[[nodiscard]] std::unique_ptr<DrawnNode> makeNode(const ui::Progress& progress);

} // namespace sentrel::mac
