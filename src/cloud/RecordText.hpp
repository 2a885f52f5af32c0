#pragma once

#include "ports/CloudRecord.hpp"

#include <cstddef>
#include <string>

namespace sentrel {

/// So many bytes of a device's name are kept: whoever wrote the record may have put a novel there.
inline constexpr std::size_t longestDeviceName = 255;

/// The name of a device in a record, cut at the end of a UTF-8 character where it is too long; "Mac" when there is
/// none or it is no text.
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
        // At most three bytes follow a character's first; more are no UTF-8, and cut anywhere.
        for (int steps = 0; steps < 3 && isInsideCharacter(); ++steps) {
            --length;
        }
    }
    return name->substr(0, length);
}

} // namespace sentrel
