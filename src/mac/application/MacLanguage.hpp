#pragma once

#include "ports/Language.hpp"

namespace sentrel::mac {

/// The main bundle's localisation tables and the user's locale.
class MacLanguage final : public ports::Language {
public:
    [[nodiscard]] std::string localized(std::string_view key) override;
    [[nodiscard]] bool containsIgnoringCase(std::string_view text, std::string_view part) override;
    [[nodiscard]] std::size_t characterCount(std::string_view text) override;
};

} // namespace sentrel::mac
