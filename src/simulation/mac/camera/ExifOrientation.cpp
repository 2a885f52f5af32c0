#include "simulation/mac/camera/ExifOrientation.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace sentrel::simulation {

namespace {

constexpr int upright = 1;
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

} // namespace

std::optional<int> exifOrientation(BytesView segment)
{
    return textOf(segment).starts_with(exifIdentifier)
               ? std::optional{orientationOfTiff(segment.subspan(exifIdentifier.size()))}
               : std::nullopt;
}

} // namespace sentrel::simulation
