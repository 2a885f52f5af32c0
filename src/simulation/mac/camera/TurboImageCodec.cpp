#include "simulation/mac/camera/TurboImageCodec.hpp"

#include "simulation/mac/camera/JpegReader.hpp"
#include "simulation/mac/camera/JpegWriter.hpp"
#include "simulation/mac/camera/RgbxImage.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>
#include <span>
#include <utility>
#include <vector>

#include <libyuv/planar_functions.h>
#include <libyuv/rotate_argb.h>
#include <libyuv/scale_argb.h>

namespace sentrel::simulation {

namespace {

using ports::PixelSize;

// Bytes the library needs beside pixels and coefficients: tables, and some rows of the widest image.
constexpr std::size_t libraryBytes = 8'000'000;

// Quality of files for which none is given.
constexpr double ownQuality = 0.75;

/// Whether the value is in 0...1; false for NaN.
bool isShare(double value)
{
    return value >= 0 && value <= 1;
}

class TurboImage final : public ports::Image {
public:
    explicit TurboImage(RgbxImage pixels) : pixels_(std::move(pixels)) {}
    [[nodiscard]] const RgbxImage& pixels() const { return pixels_; }

private:
    RgbxImage pixels_;
};

/// The smallest scale, in eighths, at which the longer side has at least `longerSide` pixels. Only scales that the
/// library decodes with vector instructions.
unsigned scaleFor(PixelSize size, std::uint32_t longerSide)
{
    const std::uint64_t longest = std::max(size.width, size.height);
    for (const unsigned eighths : {1U, 2U, 4U}) {
        if (longest * eighths >= std::uint64_t{longerSide} * 8) {
            return eighths;
        }
    }
    return 8;
}

std::size_t pixelBytes(PixelSize size)
{
    return std::size_t{size.width} * size.height * RgbxImage::pixelBytes;
}

RgbxImage makeImage(PixelSize size)
{
    return {static_cast<int>(size.width), static_cast<int>(size.height)};
}

/// The size that fits into a square without changing the proportions; never larger.
PixelSize fitted(PixelSize size, std::uint32_t maxPixelSize)
{
    const std::uint32_t longest = std::max(size.width, size.height);
    if (longest <= maxPixelSize) {
        return size;
    }
    const auto scaled = [&](std::uint32_t side) {
        const std::uint64_t rounded = (std::uint64_t{side} * maxPixelSize + longest / 2) / longest;
        return std::max(static_cast<std::uint32_t>(rounded), 1U);
    };
    return {scaled(size.width), scaled(size.height)};
}

bool readRows(JpegReader& reader, RgbxImage& image, int rows)
{
    for (int y = 0; y < rows; ++y) {
        if (!reader.readRow(image.row(y))) {
            return false;
        }
    }
    return true;
}

/// Reads an image of this size and scales it into the smaller one, band by band, since the whole would be the most
/// memory that a play needs. Each band becomes a whole number of the result's rows, so that no row needs two bands.
bool readScaled(JpegReader& reader, PixelSize size, RgbxImage& smaller)
{
    constexpr int enoughRows = 64;
    const int height = static_cast<int>(size.height);
    const int parts = std::gcd(height, smaller.height());
    const int leastRows = height / parts;
    RgbxImage band{static_cast<int>(size.width), std::min(std::max(enoughRows / leastRows, 1) * leastRows, height)};
    int made = 0; // rows of the result
    for (int read = 0; read < height;) {
        const int rows = std::min(band.height(), height - read);
        const int scaled = rows / leastRows * (smaller.height() / parts);
        if (!readRows(reader, band, rows)) {
            return false;
        }
        libyuv::ARGBScale(band.data(), band.stride(), band.width(), rows, smaller.row(made), smaller.stride(),
                          smaller.width(), scaled, libyuv::kFilterBox);
        read += rows;
        made += scaled;
    }
    return true;
}

/// Decodes a whole file, whose header has been read, at a scale that gives `size`, and scales it down to `target`.
std::optional<RgbxImage> decode(JpegReader& reader, unsigned eighths, PixelSize size, PixelSize target,
                                std::size_t mostCoefficientBytes)
{
    if (!reader.start(eighths, mostCoefficientBytes)) {
        return std::nullopt;
    }
    RgbxImage image = makeImage(target);
    const bool isRead = size == target ? readRows(reader, image, image.height()) : readScaled(reader, size, image);
    if (!isRead || !reader.finish()) {
        return std::nullopt;
    }
    return image;
}

RgbxImage mirrored(const RgbxImage& image)
{
    RgbxImage result{image.width(), image.height()};
    libyuv::ARGBMirror(image.data(), image.stride(), result.data(), result.stride(), image.width(), image.height());
    return result;
}

RgbxImage rotated(const RgbxImage& image, libyuv::RotationMode rotation)
{
    const bool isUpended = rotation != libyuv::kRotate180;
    RgbxImage result{isUpended ? image.height() : image.width(), isUpended ? image.width() : image.height()};
    libyuv::ARGBRotate(image.data(), image.stride(), result.data(), result.stride(), image.width(), image.height(),
                       rotation);
    return result;
}

/// Turns the image upright from its Exif orientation: mirrors left to right if needed, then rotates clockwise.
RgbxImage turnedUpright(RgbxImage image, int orientation)
{
    if (orientation == 2 || orientation == 4 || orientation == 5 || orientation == 7) {
        image = mirrored(image);
    }
    switch (orientation) {
    case 3:
    case 4:
        return rotated(image, libyuv::kRotate180);
    case 6:
    case 7:
        return rotated(image, libyuv::kRotate90);
    case 5:
    case 8:
        return rotated(image, libyuv::kRotate270);
    default:
        return image;
    }
}

using ChannelSums = std::array<std::uint64_t, RgbxImage::pixelBytes>;

void addRow(std::span<const std::uint8_t> row, ChannelSums& sums)
{
    // All four bytes are summed alike, in 32 bits, which no row overflows: compilers vectorise this loop.
    std::array<std::uint32_t, RgbxImage::pixelBytes> rowSums{};
    for (std::size_t i = 0; i < row.size(); i += rowSums.size()) {
        for (std::size_t channel = 0; channel < rowSums.size(); ++channel) {
            rowSums[channel] += row[i + channel];
        }
    }
    for (std::size_t channel = 0; channel < sums.size(); ++channel) {
        sums[channel] += rowSums[channel];
    }
}

} // namespace

std::optional<TurboImageCodec::Rgba> TurboImageCodec::areaAverage(BytesView data)
{
    faults_.call("areaAverage");
    // Large enough that partial blocks at the edges don't affect the mean.
    constexpr std::uint32_t sampledSide = 480;

    JpegReader reader{data};
    const auto full = reader.readHeader();
    if (!full) {
        return std::nullopt;
    }
    const unsigned eighths = scaleFor(*full, sampledSide);
    const auto size = reader.sizeAt(eighths);
    if (!size || !reader.start(eighths, mostMemory - libraryBytes)) {
        return std::nullopt;
    }
    ChannelSums sums{};
    std::vector<std::uint8_t> row(pixelBytes({size->width, 1}));
    for (std::uint32_t y = 0; y < size->height; ++y) {
        if (!reader.readRow(row.data())) {
            return std::nullopt;
        }
        addRow(row, sums);
    }
    if (!reader.finish()) {
        return std::nullopt;
    }
    const std::uint64_t count = std::max<std::uint64_t>(std::uint64_t{size->width} * size->height, 1);
    const auto mean = [&](std::uint64_t sum) { return static_cast<std::uint8_t>((sum + count / 2) / count); };
    return Rgba{mean(sums[0]), mean(sums[1]), mean(sums[2]), 255};
}

std::optional<PixelSize> TurboImageCodec::pixelSize(BytesView data)
{
    faults_.call("pixelSize");
    return JpegReader{data}.readHeader();
}

std::unique_ptr<ports::Image> TurboImageCodec::createThumbnail(BytesView data, std::uint32_t maxPixelSize,
                                                               bool transform)
{
    faults_.call("createThumbnail");
    JpegReader reader{data};
    const auto full = reader.readHeader();
    if (!full || maxPixelSize == 0) {
        return nullptr;
    }
    const PixelSize target = fitted(*full, maxPixelSize);
    const unsigned eighths = scaleFor(*full, std::max(target.width, target.height));
    const auto size = reader.sizeAt(eighths);
    if (!size) {
        return nullptr;
    }
    const std::size_t needed = pixelBytes(*size) + pixelBytes(target) + libraryBytes;
    if (needed >= mostMemory) {
        return nullptr;
    }
    const int orientation = transform ? reader.orientation() : 1;
    auto image = decode(reader, eighths, *size, target, mostMemory - needed);
    if (!image) {
        return nullptr;
    }
    return std::make_unique<TurboImage>(turnedUpright(*std::move(image), orientation));
}

std::optional<Bytes> TurboImageCodec::encode(const ports::Image& image, const std::string& type, double quality)
{
    faults_.call("encode");
    if (type != "public.jpeg" || !isShare(quality)) {
        return std::nullopt;
    }
    const auto& pixels = static_cast<const TurboImage&>(image).pixels();
    return encodeJpeg(pixels, std::max(static_cast<int>(std::lround(quality * 100)), 1));
}

std::optional<Bytes> TurboImageCodec::jpegRepresentation(BytesView data)
{
    faults_.call("jpegRepresentation");
    const auto size = pixelSize(data);
    const auto image = size ? createThumbnail(data, std::max(size->width, size->height), true) : nullptr;
    return image == nullptr ? std::nullopt : encode(*image, "public.jpeg", ownQuality);
}

} // namespace sentrel::simulation
