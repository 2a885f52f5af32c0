#pragma once

#include "foundation/Bytes.hpp"

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace sentrel::ports {

/// A decoded image (`CGImage`). Any thread.
class Image {
public:
    virtual ~Image() = default;
};

/// Width and height in pixels.
struct PixelSize {
    std::uint32_t width = 0;
    std::uint32_t height = 0;

    friend bool operator==(const PixelSize&, const PixelSize&) = default;
};

/// Reads and writes image files (Core Image, Image I/O). Incomplete or malformed data gives none. Any thread.
class ImageCodec {
public:
    virtual ~ImageCodec() = default;

    /// Red, green, blue, alpha.
    using Rgba = std::array<std::uint8_t, 4>;

    /// The average colour of the whole image ("CIAreaAverage" rendered to a bitmap of one pixel, without colour
    /// matching); none when the data isn't an image.
    [[nodiscard]] virtual std::optional<Rgba> areaAverage(BytesView data) = 0;

    /// The size of image 0 as it is stored, without its orientation (`CGImageSourceCopyPropertiesAtIndex`).
    [[nodiscard]] virtual std::optional<PixelSize> pixelSize(BytesView data) = 0;

    /// A thumbnail of image 0, always made from the image itself (`CGImageSourceCreateThumbnailAtIndex`): neither side
    /// longer than `maxPixelSize`, never larger than the image, and turned upright if `transform` is set. Null when it
    /// can't be made.
    [[nodiscard]] virtual std::unique_ptr<Image> createThumbnail(BytesView data, std::uint32_t maxPixelSize,
                                                                 bool transform) = 0;

    /// A file of this type (a uniform type identifier) with the one image, at a quality of 0 to 1
    /// (`CGImageDestination`); none when it can't be made. The image must come from this codec.
    [[nodiscard]] virtual std::optional<Bytes> encode(const Image& image, const std::string& type, double quality) = 0;

    /// The image file as a JPEG file, at the system's own quality: its TIFF representation, read into a bitmap image
    /// representation, and that as JPEG without further properties (`NSBitmapImageRep`). None when the data is no
    /// image. Slow.
    [[nodiscard]] virtual std::optional<Bytes> jpegRepresentation(BytesView data) = 0;
};

} // namespace sentrel::ports
