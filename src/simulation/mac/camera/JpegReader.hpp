#pragma once

#include "foundation/Bytes.hpp"
#include "ports/ImageCodec.hpp"
#include "simulation/mac/camera/JpegErrors.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>

namespace sentrel::simulation {

/// Decodes one JPEG row by row, at full or reduced scale. Safe for any bytes: broken, truncated and oversized files
/// fail. Used once, by one thread; the data must outlive it.
class JpegReader {
public:
    /// Images of more pixels are refused; no camera takes as many.
    static constexpr std::uint64_t mostPixels = 100'000'000;

    /// More scans than this only slow a decoder down; photos have about ten.
    static constexpr int mostScans = 100;

    explicit JpegReader(BytesView data);
    ~JpegReader();
    JpegReader(const JpegReader&) = delete;
    JpegReader& operator=(const JpegReader&) = delete;

    /// Reads up to the first scan; none if the data is no JPEG or exceeds the limits. Must be the first call.
    [[nodiscard]] std::optional<ports::PixelSize> readHeader();

    /// The Exif orientation, 1 to 8; 1 (upright) if it is missing or invalid. Between `readHeader` and `finish`.
    [[nodiscard]] int orientation() const;

    /// The size at `eighths`/8 of the full scale.
    [[nodiscard]] std::optional<ports::PixelSize> sizeAt(unsigned eighths);

    /// Starts decoding at `eighths`/8 of the full scale. Fails rather than keep more bytes of coefficients than given.
    [[nodiscard]] bool start(unsigned eighths, std::size_t mostCoefficientBytes);

    /// Decodes the next row into width x 4 bytes (red, green, blue, unused).
    [[nodiscard]] bool readRow(std::uint8_t* rgbx);

    /// True when the file was whole to its end. After the last row.
    [[nodiscard]] bool finish();

private:
    static void limitScans(j_common_ptr codec);

    BytesView data_;
    JpegErrors errors_;
    jpeg_progress_mgr progress_{};
    jpeg_decompress_struct codec_{};
};

} // namespace sentrel::simulation
