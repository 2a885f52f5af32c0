#include "simulation/mac/camera/ExifOrientation.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace sentrel::simulation {

namespace {

constexpr int upright = 1;
constexpr std::uint8_t markerPrefix = 0xFF;
constexpr std::uint8_t startOfImage = 0xD8;
constexpr std::uint8_t endOfImage = 0xD9;
constexpr std::uint8_t startOfScan = 0xDA;
constexpr std::uint8_t application1 = 0xE1;
constexpr std::string_view exifIdentifier{"Exif\0\0", 6};

/// A TIFF structure, read in its own byte order and never past its end.
class TiffReader {
public:
    explicit TiffReader(BytesView bytes) : bytes_(bytes), isLittleEndian_(!bytes.empty() && bytes[0] == 'I') {}

    [[nodiscard]] std::optional<std::uint32_t> read(std::size_t offset, std::size_t size) const
    {
        if (offset > bytes_.size() || bytes_.size() - offset < size) {
            return std::nullopt;
        }
        std::uint32_t value = 0;
        for (std::size_t i = 0; i < size; ++i) {
            value = value << 8 | bytes_[offset + (isLittleEndian_ ? size - 1 - i : i)];
        }
        return value;
    }

private:
    BytesView bytes_;
    bool isLittleEndian_;
};

int orientationOfTiff(BytesView tiff)
{
    constexpr std::uint32_t magic = 42;
    constexpr std::uint32_t orientationTag = 0x0112;
    constexpr std::uint32_t shortType = 3;
    constexpr std::size_t entrySize = 12;

    const TiffReader reader{tiff};
    const auto directory = reader.read(4, 4);
    if (reader.read(2, 2) != magic || !directory) {
        return upright;
    }
    const auto entries = reader.read(*directory, 2);
    for (std::size_t i = 0; i < entries.value_or(0); ++i) {
        const std::size_t entry = std::size_t{*directory} + 2 + i * entrySize;
        const auto tag = reader.read(entry, 2);
        if (!tag) {
            return upright;
        }
        if (tag == orientationTag && reader.read(entry + 2, 2) == shortType) {
            const auto value = reader.read(entry + 8, 2);
            return value && *value >= 1 && *value <= 8 ? static_cast<int>(*value) : upright;
        }
    }
    return upright;
}

/// The first marker at or after the offset, which moves behind it; none at the data's end.
std::optional<std::uint8_t> nextMarker(BytesView jpeg, std::size_t& offset)
{
    while (offset + 1 < jpeg.size()) {
        const std::uint8_t second = jpeg[offset + 1];
        const bool isMarker = jpeg[offset] == markerPrefix && second != 0 && second != markerPrefix;
        offset += isMarker ? 2 : 1; // junk and fill bytes before a marker are passed over
        if (isMarker) {
            return second;
        }
    }
    return std::nullopt;
}

bool standsAlone(std::uint8_t marker)
{
    return marker == startOfImage || marker == 0x01 || (marker >= 0xD0 && marker <= 0xD7);
}

} // namespace

int exifOrientation(BytesView jpeg)
{
    std::size_t offset = 0;
    while (const auto marker = nextMarker(jpeg, offset)) {
        if (standsAlone(*marker)) {
            continue;
        }
        if (*marker == startOfScan || *marker == endOfImage || jpeg.size() - offset < 2) {
            return upright;
        }
        const auto length = static_cast<std::size_t>(jpeg[offset] << 8 | jpeg[offset + 1]);
        if (length < 2 || jpeg.size() - offset < length) {
            return upright;
        }
        const BytesView content = jpeg.subspan(offset + 2, length - 2);
        if (*marker == application1 && textOf(content).starts_with(exifIdentifier)) {
            return orientationOfTiff(content.subspan(exifIdentifier.size()));
        }
        offset += length;
    }
    return upright;
}

} // namespace sentrel::simulation
