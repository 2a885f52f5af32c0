#pragma once

#include "runtime/Time.hpp"

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace sentrel::simulation {

/// An accelerometer's measurement, in g.
struct Acceleration {
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;

    friend bool operator==(const Acceleration&, const Acceleration&) = default;
};

/// Thrown for an unusable recording; the message names the file and, if known, the line.
class MotionRecordingError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A recorded series of accelerometer samples, from a CSV file: a line `t_seconds,x_g,y_g,z_g`, then one line for each
/// sample, in order of time. Never empty.
class MotionRecording {
public:
    struct Sample {
        Duration at; ///< since the recording's start
        Acceleration acceleration;
    };

    /// Largest text that is read, in bytes; an hour at 50 samples a second is some 7 MB.
    static constexpr std::size_t maximumSize = std::size_t{32} << 20;

    /// Reads a text; `name` stands for the file in messages. Throws `MotionRecordingError`.
    static MotionRecording parse(std::string_view text, std::string_view name);

    [[nodiscard]] const std::vector<Sample>& samples() const { return samples_; }

    /// Time of the last sample.
    [[nodiscard]] Duration length() const { return samples_.back().at; }

private:
    explicit MotionRecording(std::vector<Sample> samples) : samples_(std::move(samples)) {}

    std::vector<Sample> samples_;
};

} // namespace sentrel::simulation
