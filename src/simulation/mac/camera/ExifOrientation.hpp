#pragma once

#include "foundation/Bytes.hpp"

namespace sentrel::simulation {

/// How a JPEG file says that it must be turned to stand upright: 1 to 8 as Exif numbers them. 1, upright already, also
/// for whatever says nothing, lies or is cut.
[[nodiscard]] int exifOrientation(BytesView jpeg);

} // namespace sentrel::simulation
