#pragma once

#include <span>
#include <string>
#include <string_view>

namespace sentrel::simulation {

/// The word with the fewest changed, missing, added or swapped letters from `word`; case counts little. The first of
/// equals; empty if `words` is.
[[nodiscard]] std::string_view nearestWord(std::string_view word, std::span<const std::string_view> words);

/// Whether `word` looks like a typing error for `meant`: equal but for case and at most one slip in four letters.
[[nodiscard]] bool isNearly(std::string_view word, std::string_view meant);

/// Text between single quotes for a message: on one line, shortened if long, control characters replaced.
[[nodiscard]] std::string inQuotes(std::string_view text);

/// "unknown WHAT 'WORD'; did you mean 'NEAREST'?"
[[nodiscard]] std::string unknownWord(std::string_view what, std::string_view word,
                                      std::span<const std::string_view> words);

} // namespace sentrel::simulation
