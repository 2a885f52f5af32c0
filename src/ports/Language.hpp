#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace sentrel::ports {

/// Texts in the user's language and locale. Any thread.
class Language {
public:
    virtual ~Language() = default;

    /// The text of the localisation table under this key; the key itself, an English text, when there is none.
    [[nodiscard]] virtual std::string localized(std::string_view key) = 0;

    /// Whether the text contains the other, ignoring case by the locale's rules (`localizedCaseInsensitiveContains`).
    [[nodiscard]] virtual bool containsIgnoringCase(std::string_view text, std::string_view part) = 0;

    /// Number of characters as perceived by users: a letter with its accents is one, and so is an emoji made of
    /// several. Avoids leaving copies of the text in memory.
    [[nodiscard]] virtual std::size_t characterCount(std::string_view text) = 0;
};

} // namespace sentrel::ports
