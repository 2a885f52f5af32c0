#pragma once

#include "ports/Camera.hpp"
#include "ports/ImageCodec.hpp"

#include <memory>

// The cameras through AVFoundation, and image files.

namespace sentrel::mac {

[[nodiscard]] std::unique_ptr<ports::Camera> makeCamera();
[[nodiscard]] std::unique_ptr<ports::ImageCodec> makeImageCodec();

} // namespace sentrel::mac
