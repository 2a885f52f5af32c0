#pragma once

#include <cstdint>

namespace sentrel {

/// A four-character code as Apple's frameworks number them: the first character in the highest byte.
consteval std::uint32_t fourCharCode(const char (&text)[5])
{
    std::uint32_t code = 0;
    for (int i = 0; i < 4; ++i) {
        code = code << 8 | static_cast<std::uint8_t>(text[i]);
    }
    return code;
}

} // namespace sentrel
