#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <span>

namespace sentrel::simulation {

/// Writes a WAV file of 16-bit mono sound as it comes. Silence costs neither time nor, on a file system that knows
/// holes, space. One thread at a time.
class WavWriter {
public:
    /// More frames than this the format's 32-bit sizes can't hold.
    static constexpr std::int64_t maximumFrames = (0xFFFFFFFFLL - 36) / 2;

    /// Makes or empties the file; `isGood` tells whether that worked.
    WavWriter(std::filesystem::path file, std::uint32_t sampleRate);

    /// Appends frames. All that is appended stays within `maximumFrames`.
    void append(std::span<const std::int16_t> frames);

    /// Appends so many silent frames.
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
