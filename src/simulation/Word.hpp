#pragma once

#include <algorithm>
#include <iterator>
#include <string_view>

namespace sentrel::simulation {

/// A word and its meaning.
template <class Meaning> struct Word {
    std::string_view text;
    Meaning meaning;
};

/// The first word with that meaning.
template <class Words, class Meaning>
[[nodiscard]] constexpr std::string_view wordFor(const Words& words, const Meaning& meaning)
{
    const auto found = std::ranges::find_if(words, [&](const auto& word) { return word.meaning == meaning; });
    return found == std::end(words) ? std::string_view{"unknown"} : found->text;
}

} // namespace sentrel::simulation
