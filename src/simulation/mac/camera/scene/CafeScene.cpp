#include "simulation/mac/camera/scene/CafeScene.hpp"

#include "simulation/mac/camera/JpegWriter.hpp"
#include "simulation/mac/camera/scene/CafeFigure.hpp"
#include "simulation/mac/camera/scene/CafeRoom.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

namespace sentrel::simulation {

namespace {

constexpr int minutesOfDay = 24 * 60;
constexpr int cameraQuality = 92;
constexpr int previewQuality = 80;
constexpr int previewShare = 4; // divisor of width and height
constexpr int stripRows = 72;

int minuteOfDay(Date date)
{
    const double minutes = std::floor(date.secondsSinceReferenceDate / 60);
    const double inDay = minutes - std::floor(minutes / minutesOfDay) * minutesOfDay;
    return inDay >= 0 && inDay < minutesOfDay ? static_cast<int>(inDay) : 0; // 0 for a date that is NaN
}

double meanLuma(const RgbxImage& image)
{
    std::array<std::uint64_t, 3> sums{};
    const auto bytes = image.bytes();
    for (std::size_t i = 0; i < bytes.size(); i += RgbxImage::pixelBytes) {
        sums[0] += bytes[i];
        sums[1] += bytes[i + 1];
        sums[2] += bytes[i + 2];
    }
    const double weighted = 0.2126 * static_cast<double>(sums[0]) + 0.7152 * static_cast<double>(sums[1]) +
                            0.0722 * static_cast<double>(sums[2]);
    return weighted * RgbxImage::pixelBytes / (255.0 * static_cast<double>(bytes.size()));
}

} // namespace

Bytes CafeScene::photograph(Date date, std::optional<double> brightness, int share)
{
    const std::lock_guard guard{mutex_};
    const int minute = minuteOfDay(date);
    if (minute == photoMinute_ && brightness == photoBrightness_ && share == photoShare_) {
        return photo_;
    }
    RgbxImage drawn = drawCafe(minute, share);
    if (brightness) {
        expose(drawn, *brightness);
    }
    photo_ = *encodeJpeg(drawn, cameraQuality);
    photoMinute_ = minute;
    photoBrightness_ = brightness;
    photoShare_ = share;
    return photo_;
}

CafePreview CafeScene::preview(Date date, std::optional<double> brightness)
{
    const std::lock_guard guard{mutex_};
    const int minute = minuteOfDay(date);
    if (preview_.jpeg && minute == previewMinute_ && brightness == previewBrightness_) {
        return preview_;
    }
    RgbxImage small = drawCafe(minute, previewShare);
    if (brightness) {
        expose(small, *brightness);
    }
    preview_ = {std::make_shared<const Bytes>(*encodeJpeg(small, previewQuality)), meanLuma(small)};
    previewMinute_ = minute;
    previewBrightness_ = brightness;
    return preview_;
}

RgbxImage drawCafe(int minuteOfDay, int share)
{
    const SceneLight light = SceneLight::at(static_cast<float>(minuteOfDay) / 60);
    RgbxImage picture{CafeScene::width / share, CafeScene::height / share};
    for (int row = 0; row < picture.height(); row += stripRows) {
        const int rows = std::min(stripRows, picture.height() - row);
        SceneCanvas canvas{{CafeScene::width, CafeScene::height, share, row, rows}};
        drawRoom(canvas, light, minuteOfDay);
        drawFigure(canvas, light);
        canvas.finish(picture);
    }
    return picture;
}

void expose(RgbxImage& image, double brightness)
{
    // A linear map that keeps black, or white: it maps the mean of all pixels in the same way.
    const double mean = meanLuma(image);
    const double target = std::clamp(brightness, 0.0, 1.0);
    const bool darkens = target <= mean;
    const double slope = darkens ? target / std::max(mean, 1e-9) : (1 - target) / std::max(1 - mean, 1e-9);
    std::array<std::uint8_t, 256> curve{};
    for (std::size_t value = 0; value < curve.size(); ++value) {
        const auto level = static_cast<double>(value);
        curve[value] = static_cast<std::uint8_t>(std::lround(darkens ? level * slope : 255 - (255 - level) * slope));
    }
    for (std::uint8_t& byte : image.bytes()) {
        byte = curve[byte];
    }
}

} // namespace sentrel::simulation
