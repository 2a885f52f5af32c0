#pragma once

#include "foundation/Bytes.hpp"
#include "ports/ImageCodec.hpp"
#include "simulation/mac/camera/JpegErrors.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>

namespace sentrel::simulation {

/// Decodes one JPEG row by row, at full or reduced scale, from any bytes whatsoever: what is broken, cut short or
/// beyond the limits fails. Used once, by one thread; the data outlives it.
class JpegReader {
public:
    /// Images of more pixels are refused: more than any camera takes.
    static constexpr std::uint64_t mostPixels = 100'000'000;

    /// More scans than this only slow a decoder down; photos have about ten.
    static constexpr int mostScans = 100;

    explicit JpegReader(BytesView data);
    ~JpegReader();
    JpegReader(const JpegReader&) = delete;
    JpegReader& operator=(const JpegReader&) = delete;

    /// Reads up to the first scan; none for what is no JPEG or exceeds the limits. First of all calls.
    [[nodiscard]] std::optional<ports::PixelSize> readHeader();

    /// The size at so many eighths of the full scale.
    [[nodiscard]] std::optional<ports::PixelSize> sizeAt(unsigned eighths);

    /// Starts decoding at so many eighths of the full scale, keeping no more than so many bytes of coefficients.
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
