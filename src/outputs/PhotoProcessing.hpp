#pragma once

#include "foundation/Bytes.hpp"
#include "ports/ImageCodec.hpp"

namespace sentrel {

/// How bright a photo is, 0 to 1: its average colour weighted as the eye sees it. Data that is no image counts as 1.
/// Any thread.
[[nodiscard]] double photoBrightness(ports::ImageCodec& codec, BytesView photo);

/// The photo as a JPEG for an alert: upright, no side longer than 1600 pixels. The original comes back unchanged when
/// that fails or isn't smaller. Any thread.
[[nodiscard]] Bytes reencodedPhoto(ports::ImageCodec& codec, Bytes photo);

} // namespace sentrel
