#include "BesideFloor.hpp"

#include "outputs/PhotoProcessing.hpp"
#include "simulation/mac/camera/TurboImageCodec.hpp"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

#include <malloc.h>

#include <jpeglib.h>
#include <libyuv/scale_argb.h>

namespace sentrel {
namespace {

/// Pixels of an image, undefined at first. A bare decoder's floor keeps its buffer from turn to turn; a whole way of
/// doing things allocates its own, as the codec does.
class Pixels {
public:
    Pixels() = default;
    Pixels(int itsWidth, int itsHeight) { reserve(itsWidth, itsHeight); }
    void reserve(int itsWidth, int itsHeight)
    {
        const std::size_t size = static_cast<std::size_t>(itsWidth) * static_cast<std::size_t>(itsHeight) * 4;
        if (size > size_) {
            bytes_ = std::make_unique_for_overwrite<std::uint8_t[]>(size);
            size_ = size;
        }
    }
    [[nodiscard]] std::uint8_t* data() { return bytes_.get(); }
    [[nodiscard]] const std::uint8_t* data() const { return bytes_.get(); }

private:
    std::unique_ptr<std::uint8_t[]> bytes_;
    std::size_t size_ = 0;
};

constexpr int width = 1600;
constexpr int height = 1200;
constexpr int quality = 70;

/// A photo of 12 megapixels; empty, with the reason in the report, where it is missing.
const Bytes& photo(benchmark::State& state)
{
    static const Bytes bytes = [] {
        std::ifstream in{SENTREL_SOURCE_DIR "/../shared/data/photos/twelve_megapixel.jpg", std::ios::binary};
        return Bytes{std::istreambuf_iterator<char>{in}, {}};
    }();
    if (bytes.empty()) {
        state.SkipWithError("the photo of 12 megapixels is missing");
    }
    return bytes;
}

/// The library's decoder and nothing more, at so many eighths.
void decode(const Bytes& jpeg, unsigned eighths, Pixels& pixels)
{
    jpeg_error_mgr errors;
    jpeg_decompress_struct codec;
    codec.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&codec);
    jpeg_mem_src(&codec, jpeg.data(), jpeg.size());
    jpeg_read_header(&codec, TRUE);
    codec.scale_num = eighths;
    codec.scale_denom = 8;
    codec.out_color_space = JCS_EXT_RGBX;
    jpeg_start_decompress(&codec);
    pixels.reserve(static_cast<int>(codec.output_width), static_cast<int>(codec.output_height));
    while (codec.output_scanline < codec.output_height) {
        JSAMPROW row = pixels.data() + std::size_t{codec.output_scanline} * codec.output_width * 4;
        jpeg_read_scanlines(&codec, &row, 1);
    }
    jpeg_finish_decompress(&codec);
    jpeg_destroy_decompress(&codec);
}

/// The library's encoder and nothing more.
void encode(Pixels& pixels)
{
    jpeg_error_mgr errors;
    jpeg_compress_struct codec;
    codec.err = jpeg_std_error(&errors);
    jpeg_create_compress(&codec);
    unsigned char* file = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&codec, &file, &size);
    codec.image_width = width;
    codec.image_height = height;
    codec.input_components = 4;
    codec.in_color_space = JCS_EXT_RGBX;
    jpeg_set_defaults(&codec);
    jpeg_set_quality(&codec, quality, TRUE);
    jpeg_start_compress(&codec, TRUE);
    while (codec.next_scanline < codec.image_height) {
        JSAMPROW row = pixels.data() + std::size_t{codec.next_scanline} * width * 4;
        jpeg_write_scanlines(&codec, &row, 1);
    }
    jpeg_finish_compress(&codec);
    jpeg_destroy_compress(&codec);
    std::free(file);
}

void scale(const Pixels& from, int fromWidth, int fromHeight, Pixels& to)
{
    libyuv::ARGBScale(from.data(), fromWidth * 4, fromWidth, fromHeight, to.data(), width * 4, width, height,
                      libyuv::kFilterBox);
}

void reencodingBesideHalfDecodeAndEncode(benchmark::State& state)
{
    const Bytes& jpeg = photo(state);
    simulation::TurboImageCodec codec;
    Pixels decoded;
    Pixels scaled{width, height};
    if (!jpeg.empty()) {
        decode(jpeg, 4, decoded);
        scale(decoded, 2000, 1500, scaled); // the encoder gets the same picture in both
    }
    const auto floor = [&] {
        decode(jpeg, 4, decoded);
        encode(scaled);
    };
    const auto work = [&] { benchmark::DoNotOptimize(reencodedPhoto(codec, jpeg)); };
    measureBesideFloor(state, 1, 1.25, floor, work);
}

void reencodingBesideWholeDecode(benchmark::State& state)
{
    const Bytes& jpeg = photo(state);
    simulation::TurboImageCodec codec;
    const auto whole = [&] {
        Pixels decoded;
        Pixels scaled{width, height};
        decode(jpeg, 8, decoded);
        scale(decoded, 4000, 3000, scaled);
        encode(scaled);
    };
    const auto work = [&] { benchmark::DoNotOptimize(reencodedPhoto(codec, jpeg)); };
    measureBesideFloor(state, 1, 0.6, whole, work);
}

void brightnessBesideEighthDecode(benchmark::State& state)
{
    const Bytes& jpeg = photo(state);
    simulation::TurboImageCodec codec;
    Pixels decoded;
    const auto floor = [&] { decode(jpeg, 1, decoded); };
    const auto work = [&] { benchmark::DoNotOptimize(photoBrightness(codec, jpeg)); };
    measureBesideFloor(state, 1, 1.1, floor, work);
}

/// A line of this process's status, in kilobytes.
double statusKilobytes(const std::string& name)
{
    std::ifstream status{"/proc/self/status"};
    for (std::string word; status >> word;) {
        if (word == name + ":") {
            double value = 0;
            status >> value;
            return value;
        }
    }
    return 0;
}

/// How much memory re-encoding and measuring hold at most, beside what the process holds anyway.
void peakMemoryOfAPhoto(benchmark::State& state)
{
    const Bytes& jpeg = photo(state);
    simulation::TurboImageCodec codec;
    double peak = 0;
    for ([[maybe_unused]] auto turn : state) {
        malloc_trim(0);                                // what earlier turns freed but the library still holds
        std::ofstream{"/proc/self/clear_refs"} << "5"; // the high-water mark starts again from here
        const double before = statusKilobytes("VmRSS");
        benchmark::DoNotOptimize(photoBrightness(codec, jpeg));
        benchmark::DoNotOptimize(reencodedPhoto(codec, jpeg));
        peak = std::max(peak, statusKilobytes("VmHWM") - before);
    }
    state.counters["peak_mb"] = peak / 1000;
    state.counters["limit"] = 48;
}

BENCHMARK(reencodingBesideHalfDecodeAndEncode)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(reencodingBesideWholeDecode)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(brightnessBesideEighthDecode)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(peakMemoryOfAPhoto)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace sentrel
