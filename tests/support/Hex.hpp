#pragma once

#include "foundation/Bytes.hpp"

#include <stdexcept>
#include <string>
#include <string_view>

namespace sentrel {

/// The bytes that hexadecimal digits stand for.
inline Bytes bytesOfHex(std::string_view digits)
{
    if (digits.size() % 2 != 0) {
        throw std::invalid_argument{"half a byte"};
    }
    Bytes bytes;
    for (std::size_t i = 0; i < digits.size(); i += 2) {
        bytes.push_back(static_cast<std::uint8_t>(std::stoul(std::string{digits.substr(i, 2)}, nullptr, 16)));
    }
    return bytes;
}

} // namespace sentrel
