#pragma once

#include "foundation/Bytes.hpp"

#include <optional>
#include <string>
#include <string_view>

namespace sentrel::simulation {

/// Bytes as base64 text with padding (RFC 4648, section 4).
[[nodiscard]] std::string base64Text(BytesView bytes);

/// The bytes of such a text. None unless it is exactly what `base64Text` would write.
[[nodiscard]] std::optional<Bytes> bytesOfBase64(std::string_view text);

} // namespace sentrel::simulation
