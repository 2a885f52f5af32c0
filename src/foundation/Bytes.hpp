#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace sentrel {

/// Bytes that somebody owns.
using Bytes = std::vector<std::uint8_t>;

/// Bytes that somebody else owns.
using BytesView = std::span<const std::uint8_t>;

/// The bytes of a text, as they are.
Bytes bytesOf(std::string_view text);

/// Bytes read as text, unchecked; valid as long as the bytes.
std::string_view textOf(BytesView bytes);

} // namespace sentrel
