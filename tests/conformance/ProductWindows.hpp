#pragma once

#include "conformance/Suite.hpp"

#include <utility>

namespace sentrel::conformance {

/// A window's content by a name for people.
using NamedTree = std::pair<std::string, ui::View>;

/// The content of every window of the product, in this language: the whole application runs on the platform, but its
/// windows, its settings, its keychain and its folder are its own.
[[nodiscard]] std::vector<NamedTree> productWindows(const Subject& subject, ports::Language& language);

} // namespace sentrel::conformance
