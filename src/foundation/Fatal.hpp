#pragma once

#include <string_view>

namespace sentrel {

/// Ends the program because of a programming error: prints the reason to standard error and aborts.
[[noreturn]] void fatalError(std::string_view reason);

} // namespace sentrel
