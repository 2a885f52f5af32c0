#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <span>

namespace sentrel::simulation {

/// Writes a WAV file of 16-bit mono sound incrementally. Silence costs no time and, on a file system with holes, no
/// space. One thread at a time.
class WavWriter {
public:
    /// Limit of the format's 32-bit sizes.
    static constexpr std::int64_t maximumFrames = (0xFFFFFFFFLL - 36) / 2;

    /// Creates or empties the file; `isGood` reports whether that worked.
    WavWriter(std::filesystem::path file, std::uint32_t sampleRate);

    /// Appends frames. The total must stay within `maximumFrames`.
    void append(std::span<const std::int16_t> frames);

    /// Appends `frames` silent frames.
    void appendSilence(std::int64_t frames) { frames_ += frames; }

    /// Completes the header and closes the file. True when every byte was written.
    bool finish();

    [[nodiscard]] std::int64_t frames() const { return frames_; }
    [[nodiscard]] bool isGood() const { return file_.good(); }

private:
    void writeHeader();

    std::filesystem::path path_;
    std::uint32_t sampleRate_;
    std::ofstream file_;
    std::int64_t frames_ = 0;
    std::int64_t filePlace_ = 0; // the frame behind the last one written
};

} // namespace sentrel::simulation
