#pragma once

#include "ui/View.hpp"

#include <string>
#include <vector>

namespace sentrel::ui {

/// The view as text for tests and the terminal: one line for each visible node, indented by its depth, with its
/// properties and, if the user can act on it, its identity in brackets. Secure texts are dots.
[[nodiscard]] std::string describe(const View& root);

/// All readable texts, from top to bottom: visible texts, slider values, footers and messages; no field's content or
/// prompt.
[[nodiscard]] std::vector<std::string> visibleTexts(const View& root);

} // namespace sentrel::ui
