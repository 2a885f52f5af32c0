#pragma once

#include "foundation/Bytes.hpp"
#include "simulation/mac/camera/RgbxImage.hpp"

#include <optional>

namespace sentrel::simulation {

/// The image as a JPEG file at a quality of 1 to 100, with colour at half the resolution; none for an empty image or
/// one that is too large for the format. Any thread.
[[nodiscard]] std::optional<Bytes> encodeJpeg(const RgbxImage& image, int quality);

} // namespace sentrel::simulation
