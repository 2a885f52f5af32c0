#pragma once

#include "foundation/Bytes.hpp"

#include <optional>
#include <string>
#include <string_view>

namespace sentrel::simulation {

/// Bytes as base64 text with padding (RFC 4648, section 4).
[[nodiscard]] std::string base64Text(BytesView bytes);

/// The bytes of a base64 text. None unless `base64Text` would write exactly this text.
[[nodiscard]] std::optional<Bytes> bytesOfBase64(std::string_view text);

} // namespace sentrel::simulation
