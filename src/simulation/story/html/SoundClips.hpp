#pragma once

#include "foundation/Bytes.hpp"

#include <filesystem>
#include <vector>

namespace sentrel::simulation {

/// A stretch of a recording in which something is heard.
struct SoundClip {
    double start = 0.0;       ///< seconds since the recording's start
    double seconds = 0.0;     ///< its length
    std::vector<float> peaks; ///< its loudness from start to end in equal parts, 1 being full scale
    Bytes wav;                ///< its beginning as a WAV file of 8 bits at 11,025 Hz; empty if there was no room
    double kept = 0.0;        ///< seconds in `wav`
};

/// The stretches of a recording of the simulated speaker that are heard; pauses of less than two seconds don't divide
/// them. Their sound is kept up to `mostSeconds` in all. Empty for a file that can't be read.
[[nodiscard]] std::vector<SoundClip> soundClips(const std::filesystem::path& recording, double mostSeconds);

} // namespace sentrel::simulation
