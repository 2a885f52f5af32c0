#pragma once

#include "ports/ImageCodec.hpp"
#include "simulation/FaultSwitches.hpp"

#include <cstddef>

namespace sentrel::simulation {

/// JPEG files through libjpeg-turbo, decoded no larger than needed and scaled by libyuv. For any data, an operation
/// holds at most `mostMemory` bytes beside it.
class TurboImageCodec final : public ports::ImageCodec {
public:
    static constexpr std::size_t mostMemory = 64'000'000;

    [[nodiscard]] std::optional<Rgba> areaAverage(BytesView data) override;
    [[nodiscard]] std::optional<ports::PixelSize> pixelSize(BytesView data) override;
    [[nodiscard]] std::unique_ptr<ports::Image> createThumbnail(BytesView data, std::uint32_t maxPixelSize,
                                                                bool transform) override;

    /// Supports the type "public.jpeg" only.
    [[nodiscard]] std::optional<Bytes> encode(const ports::Image& image, const std::string& type,
                                              double quality) override;

    /// The result is turned upright, since it carries no Exif orientation.
    [[nodiscard]] std::optional<Bytes> jpegRepresentation(BytesView data) override;

    [[nodiscard]] FaultSwitches& faults() { return faults_; }

private:
    FaultSwitches faults_{};
};

} // namespace sentrel::simulation
