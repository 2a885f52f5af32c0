#pragma once

#include "simulation/mac/motion/MotionRecording.hpp"

#include <string>
#include <variant>

namespace sentrel::simulation {

/// A recording that the accelerometer delivers.
struct PlayedRecording {
    MotionRecording content;
    std::string name; ///< the file's name in the scenario
};

/// The accelerometer delivers one sample or a recording, or begins (true) or ends to deliver a machine at rest.
using MotionChange = std::variant<Acceleration, PlayedRecording, bool>;

} // namespace sentrel::simulation
