#pragma once

#include "ui/View.hpp"

#include <string>
#include <vector>

namespace sentrel::ui {

/// What the view shows, as text for tests and the terminal: one line for each visible node, indented by its depth, with
/// what distinguishes it and, for what the user can act on, its identity in brackets. Secure texts are dots.
[[nodiscard]] std::string describe(const View& root);

/// Everything there is to read, from top to bottom: each node's visible text and a slider's value; not what is typed
/// into fields, nor their prompts.
[[nodiscard]] std::vector<std::string> visibleTexts(const View& root);

} // namespace sentrel::ui
