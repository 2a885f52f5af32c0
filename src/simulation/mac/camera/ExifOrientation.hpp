#pragma once

#include "foundation/Bytes.hpp"

namespace sentrel::simulation {

/// The Exif orientation of a JPEG file, 1 to 8. 1 (upright) if it is missing, invalid or cut off.
[[nodiscard]] int exifOrientation(BytesView jpeg);

} // namespace sentrel::simulation
