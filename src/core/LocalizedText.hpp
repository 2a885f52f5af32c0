#pragma once

#include <string>
#include <string_view>

namespace sentrel {

namespace ports {
class Language;
}

/// The text in the user's language, or the English text itself if the port raises. For texts that must be there. Any
/// thread.
[[nodiscard]] std::string localizedInAnyCase(ports::Language& language, std::string_view text);

} // namespace sentrel
