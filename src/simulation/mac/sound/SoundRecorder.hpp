#pragma once

#include "runtime/Time.hpp"
#include "simulation/mac/sound/WavWriter.hpp"

#include <cstdint>
#include <filesystem>
#include <span>
#include <vector>

namespace sentrel::simulation {

/// One sound, as the recorder needs it.
struct AudibleSound {
    std::span<const float> samples; ///< at the recorder's sample rate; not empty
    Instant start;                  ///< when the first sample is heard
    bool isLooping = false;
    float gain = 0.0F; ///< from the samples to the ear
};

/// Records the audible sound from a start instant on into a WAV file. Frames are counted from the start, so that a
/// change falls exactly between two frames. Only the first ten minutes are recorded. One thread at a time.
class SoundRecorder {
public:
    static constexpr std::int64_t sampleRate = 44'100;

    /// The most frames that a recording holds.
    static constexpr std::int64_t maximumFrames = std::int64_t{10} * 60 * sampleRate;

    SoundRecorder(std::filesystem::path file, Instant start);

    /// Records the mix of these sounds, from the recording's current end up to this instant.
    void record(std::span<const AudibleSound> sounds, Instant until);

    /// Completes the file. False when it could not be written completely.
    bool finish() { return writer_.finish(); }

    [[nodiscard]] bool isGood() const { return writer_.isGood(); }

    /// The frame in which an instant lies, negative before the start.
    [[nodiscard]] std::int64_t frameAt(Instant instant) const;

private:
    struct Piece {
        std::int64_t end = 0;   // first frame of the next piece
        bool isAudible = false; // some sound has a gain
    };

    [[nodiscard]] Piece pieceFrom(std::int64_t frame, std::int64_t until, std::span<const AudibleSound> sounds) const;
    void mix(std::span<const AudibleSound> sounds, std::int64_t end);
    void mixBlock(std::span<const AudibleSound> sounds, std::int64_t frame, std::size_t count);
    void writeBlock(std::size_t count);

    Instant start_;
    WavWriter writer_;
    std::vector<float> mixed_;
    std::vector<std::int16_t> quantized_;
};

} // namespace sentrel::simulation
