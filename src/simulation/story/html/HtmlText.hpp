#pragma once

#include <string>
#include <string_view>

namespace sentrel::simulation {

/// The text for HTML, as content or within a quoted attribute. Control characters become spaces.
[[nodiscard]] std::string htmlText(std::string_view text);

/// A number for HTML and SVG, with at most three decimals.
[[nodiscard]] std::string htmlNumber(double number);

} // namespace sentrel::simulation
