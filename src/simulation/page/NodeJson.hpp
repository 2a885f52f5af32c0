#pragma once

#include "foundation/Json.hpp"
#include "ui/View.hpp"

namespace sentrel::simulation {

class PageFiles;

/// A view tree as the page reads it: hidden views left out, secure texts as their length. Images in memory go to the
/// page's files.
[[nodiscard]] Json nodeJson(const ui::View& root, PageFiles& files);

/// The name by which the page knows a key, and the other way round.
[[nodiscard]] std::string_view nameOf(ui::Key key);
[[nodiscard]] std::optional<ui::Key> keyNamed(std::string_view name);

} // namespace sentrel::simulation
