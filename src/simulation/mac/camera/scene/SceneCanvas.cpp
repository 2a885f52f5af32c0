#include "simulation/mac/camera/scene/SceneCanvas.hpp"

#include <cstdint>

namespace sentrel::simulation {

namespace {

std::uint8_t byteOf(float value)
{
    return static_cast<std::uint8_t>(std::clamp(value * 255 + 0.5F, 0.0F, 255.0F));
}

} // namespace

void SceneCanvas::finish(RgbxImage& picture) const
{
    constexpr float vignette = 0.30F;
    constexpr float grain = 0.012F;

    const Rgb* pixel = pixels_.data();
    for (int y = firstRow_; y < firstRow_ + rows_; ++y) {
        std::uint8_t* out = picture.row(y);
        const float v = static_cast<float>(2 * y - picture.height()) / static_cast<float>(picture.height());
        // Seeded by row, so that the result doesn't depend on the strips' height.
        std::uint32_t noise = (static_cast<std::uint32_t>(y) + 1) * 0x9E3779B9;
        for (int x = 0; x < columns_; ++x, ++pixel, out += RgbxImage::pixelBytes) {
            const float u = static_cast<float>(2 * x - columns_) / static_cast<float>(columns_);
            const float away = (u * u + v * v) / 2;
            const float shade = 1 - vignette * away * away;
            noise = noise * 1664525 + 1013904223;
            const float speck = (static_cast<float>(noise >> 16) / 65536 - 0.5F) * grain;
            out[0] = byteOf(pixel->red * shade + speck);
            out[1] = byteOf(pixel->green * shade + speck);
            out[2] = byteOf(pixel->blue * shade + speck);
            out[3] = 255;
        }
    }
}

} // namespace sentrel::simulation
