#pragma once

#include <span>
#include <string>
#include <string_view>

namespace sentrel::simulation {

/// The word that takes the fewest changed, missing, added or swapped letters to get from `word`, letter case counting
/// little; the first of equals. Empty when there are no words.
[[nodiscard]] std::string_view nearestWord(std::string_view word, std::span<const std::string_view> words);

/// Whether `word` looks like a slip of `meant`: the same but for letter case and for at most every fourth letter.
[[nodiscard]] bool isNearly(std::string_view word, std::string_view meant);

/// Text between single quotes for a message: on one line, shortened when it is long, control characters replaced.
[[nodiscard]] std::string inQuotes(std::string_view text);

/// "unknown WHAT 'WORD'; did you mean 'NEAREST'?"
[[nodiscard]] std::string unknownWord(std::string_view what, std::string_view word,
                                      std::span<const std::string_view> words);

} // namespace sentrel::simulation
