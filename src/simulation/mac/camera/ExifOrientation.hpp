#pragma once

#include "foundation/Bytes.hpp"

#include <optional>

namespace sentrel::simulation {

/// The orientation, 1 to 8, in the content of an APP1 segment of a JPEG file; 1 (upright) if it is missing or invalid.
/// None for a segment that isn't Exif.
[[nodiscard]] std::optional<int> exifOrientation(BytesView segment);

} // namespace sentrel::simulation
