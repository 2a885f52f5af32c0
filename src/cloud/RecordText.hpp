#pragma once

#include "ports/CloudRecord.hpp"

#include <cstddef>
#include <string>

namespace sentrel {

/// Bytes kept of a device's name: another device may have written any length.
inline constexpr std::size_t longestDeviceName = 255;

/// The name of a device in a record, cut at a UTF-8 character boundary when too long; "Mac" when it is missing or no
/// text.
[[nodiscard]] inline std::string deviceNameOf(const ports::CloudRecord& record, const std::string& field)
{
    const auto* const name = ports::fieldOf<std::string>(record, field);
    if (name == nullptr) {
        return "Mac";
    }
    std::size_t length = name->size();
    if (length > longestDeviceName) {
        length = longestDeviceName;
        const auto isInsideCharacter = [&] { return (static_cast<unsigned char>((*name)[length]) & 0xC0U) == 0x80U; };
        // A UTF-8 character has at most three continuation bytes; longer runs are cut anywhere.
        for (int steps = 0; steps < 3 && isInsideCharacter(); ++steps) {
            --length;
        }
    }
    return name->substr(0, length);
}

} // namespace sentrel
