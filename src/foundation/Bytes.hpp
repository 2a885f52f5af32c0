#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace sentrel {

/// Owned bytes.
using Bytes = std::vector<std::uint8_t>;

/// A view of bytes that are owned elsewhere.
using BytesView = std::span<const std::uint8_t>;

/// A copy of the text's bytes, unchanged.
Bytes bytesOf(std::string_view text);

/// The bytes as text, without a UTF-8 check; valid as long as the bytes.
std::string_view textOf(BytesView bytes);

} // namespace sentrel
