#pragma once

#include "platform/ImageCodec.hpp"

namespace sentrel::macos {

/// Image files through Core Image and Image I/O. Images that come in were made here.
class MacImageCodec final : public platform::ImageCodec {
public:
    [[nodiscard]] std::optional<Rgba> areaAverage(BytesView data) override;
    [[nodiscard]] std::optional<platform::PixelSize> pixelSize(BytesView data) override;
    [[nodiscard]] std::unique_ptr<platform::Image> createThumbnail(BytesView data, std::uint32_t maxPixelSize,
                                                                   bool transform) override;
    [[nodiscard]] std::optional<Bytes> encode(const platform::Image& image, const std::string& type,
                                              double quality) override;
    [[nodiscard]] std::optional<Bytes> jpegRepresentation(BytesView data) override;
};

} // namespace sentrel::macos
