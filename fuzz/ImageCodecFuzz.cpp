#include "foundation/Fatal.hpp"
#include "outputs/PhotoProcessing.hpp"
#include "simulation/mac/camera/ExifOrientation.hpp"
#include "simulation/mac/camera/TurboImageCodec.hpp"

#include <cstddef>
#include <cstdint>

namespace {

void require(bool condition, const char* reason)
{
    if (!condition) {
        sentrel::fatalError(reason);
    }
}

} // namespace

/// Everything that happens to a photo, on any bytes.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace sentrel;
    const BytesView bytes{data, size};
    simulation::TurboImageCodec codec;

    const double brightness = photoBrightness(codec, bytes);
    require(brightness >= 0 && brightness <= 1, "a brightness beyond its range");
    const auto orientation = simulation::exifOrientation(bytes);
    require(!orientation || (*orientation >= 1 && *orientation <= 8), "an orientation that is none");
    const auto small = codec.createThumbnail(bytes, 5, true);
    require(!small || codec.pixelSize(bytes), "a thumbnail of what has no size");

    const Bytes photo{bytes.begin(), bytes.end()};
    const Bytes reencoded = reencodedPhoto(codec, photo);
    if (reencoded != photo) {
        require(reencoded.size() < photo.size(), "a photo that grew");
        require(codec.areaAverage(reencoded).has_value(), "a photo that can't be read again");
    }
    return 0;
}
