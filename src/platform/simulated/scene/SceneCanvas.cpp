#include "platform/simulated/scene/SceneCanvas.hpp"

#include <cstdint>

namespace sentrel::simulated {

namespace {

std::uint8_t byteOf(float value)
{
    return static_cast<std::uint8_t>(std::clamp(value, 0.0F, 1.0F) * 255 + 0.5F);
}

} // namespace

RgbxImage SceneCanvas::finished() const
{
    constexpr float vignette = 0.30F;
    constexpr float grain = 0.012F;

    RgbxImage image{width_, height_};
    std::uint32_t noise = 0x9E3779B9;
    const Rgb* pixel = pixels_.data();
    for (int y = 0; y < height_; ++y) {
        std::uint8_t* out = image.row(y);
        const float v = static_cast<float>(2 * y - height_) / static_cast<float>(height_);
        for (int x = 0; x < width_; ++x, ++pixel, out += RgbxImage::pixelBytes) {
            const float u = static_cast<float>(2 * x - width_) / static_cast<float>(width_);
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
    return image;
}

} // namespace sentrel::simulated
