#include "core/LocalizedText.hpp"

#include "foundation/Quietly.hpp"
#include "ports/Language.hpp"

namespace sentrel {

std::string localizedInAnyCase(ports::Language& language, std::string_view text)
{
    const std::string translated = quietly([&] { return language.localized(text); });
    return translated.empty() ? std::string{text} : translated;
}

} // namespace sentrel
