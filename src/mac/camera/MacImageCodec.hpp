#pragma once

#include "ports/ImageCodec.hpp"

namespace sentrel::mac {

/// Image files through Core Image and Image I/O. Images passed in must come from here.
class MacImageCodec final : public ports::ImageCodec {
public:
    [[nodiscard]] std::optional<Rgba> areaAverage(BytesView data) override;
    [[nodiscard]] std::optional<ports::PixelSize> pixelSize(BytesView data) override;
    [[nodiscard]] std::unique_ptr<ports::Image> createThumbnail(BytesView data, std::uint32_t maxPixelSize,
                                                                bool transform) override;
    [[nodiscard]] std::optional<Bytes> encode(const ports::Image& image, const std::string& type,
                                              double quality) override;
    [[nodiscard]] std::optional<Bytes> jpegRepresentation(BytesView data) override;
};

} // namespace sentrel::mac
