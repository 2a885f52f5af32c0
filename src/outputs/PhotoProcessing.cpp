#include "outputs/PhotoProcessing.hpp"

#include "foundation/Quietly.hpp"

#include <cstdint>
#include <utility>

namespace sentrel {

namespace {

// Luma weights of ITU-R BT.709.
constexpr double redWeight = 0.2126;
constexpr double greenWeight = 0.7152;
constexpr double blueWeight = 0.0722;

constexpr std::uint32_t alertPhotoMaxPixelSize = 1600;
constexpr double alertPhotoQuality = 0.7; // JPEG quality, 0 to 1
constexpr auto jpegType = "public.jpeg";

} // namespace

double photoBrightness(ports::ImageCodec& codec, BytesView photo)
{
    const auto average = quietly([&] { return codec.areaAverage(photo); });
    if (!average) {
        return 1.0;
    }
    const auto [red, green, blue, alpha] = *average;
    return redWeight * red / 255 + greenWeight * green / 255 + blueWeight * blue / 255;
}

Bytes reencodedPhoto(ports::ImageCodec& codec, Bytes photo)
{
    constexpr bool upright = true;
    const auto thumbnail = quietly([&] { return codec.createThumbnail(photo, alertPhotoMaxPixelSize, upright); });
    if (!thumbnail) {
        return photo;
    }
    auto encoded = quietly([&] { return codec.encode(*thumbnail, jpegType, alertPhotoQuality); });
    if (!encoded || encoded->size() >= photo.size()) {
        return photo;
    }
    return *std::move(encoded);
}

} // namespace sentrel
