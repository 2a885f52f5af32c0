#pragma once

#include "foundation/Bytes.hpp"
#include "ports/ImageCodec.hpp"

namespace sentrel {

/// Luma (ITU-R BT.709) of the photo's average colour, 0 to 1. Data that isn't an image gives 1. Any thread.
[[nodiscard]] double photoBrightness(ports::ImageCodec& codec, BytesView photo);

/// The photo as a JPEG for an alert: upright, no side longer than 1600 pixels. Returns the original when that fails or
/// the result isn't smaller. Any thread.
[[nodiscard]] Bytes reencodedPhoto(ports::ImageCodec& codec, Bytes photo);

} // namespace sentrel
