#pragma once

#include "foundation/Json.hpp"
#include "ui/View.hpp"

namespace sentrel::simulation {

class PageFiles;

/// A view tree as JSON for the page: hidden views are left out, secure texts given as their length. Images in memory
/// are added to `files`.
[[nodiscard]] Json nodeJson(const ui::View& root, PageFiles& files);

/// The page's name of a key, and the key of a name.
[[nodiscard]] std::string_view nameOf(ui::Key key);
[[nodiscard]] std::optional<ui::Key> keyNamed(std::string_view name);

} // namespace sentrel::simulation
