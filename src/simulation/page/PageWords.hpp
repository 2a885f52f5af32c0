#pragma once

#include "simulation/mac/MacDescription.hpp"
#include "simulation/stage/ValueType.hpp"

#include <array>

// Words for states of the Mac that only the page says; the others are in MacWords.hpp.

namespace sentrel::simulation {

/// Whether the product runs.
inline constexpr std::array<Word<bool>, 2> processWords{{{"running", true}, {"ended", false}}};

/// Whether the camera sees the visitor's picture.
inline constexpr std::array<Word<bool>, 2> cameraSourceWords{{{"scene", false}, {"webcam", true}}};

inline constexpr std::array<Word<MacDescription::Accelerometer>, 3> sampleWords{{
    {"resting", MacDescription::Accelerometer::resting},
    {"silent", MacDescription::Accelerometer::present},
    {"absent", MacDescription::Accelerometer::absent},
}};

/// Whether the account's storage is full.
inline constexpr std::array<Word<bool>, 2> quotaWords{{{"ok", false}, {"full", true}}};

} // namespace sentrel::simulation
