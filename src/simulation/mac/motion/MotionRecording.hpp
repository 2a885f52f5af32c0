#pragma once

#include "runtime/Time.hpp"

#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace sentrel::simulation {

/// What an accelerometer measures, in g.
struct Acceleration {
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;

    friend bool operator==(const Acceleration&, const Acceleration&) = default;
};

/// A recording can't be used; the message names the file and, where there is one, the line.
class MotionRecordingError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The samples of an accelerometer over some time, from a CSV file: a line `t_seconds,x_g,y_g,z_g`, then a line a
/// sample, times not going back. Never empty.
class MotionRecording {
public:
    struct Sample {
        Duration at; ///< since the recording's start
        Acceleration acceleration;
    };

    /// No recording is read whose file is larger (bytes); an hour at 50 samples a second is some 7 MB.
    static constexpr std::size_t maximumSize = std::size_t{32} << 20;

    /// Reads a file. Throws `MotionRecordingError`.
    static MotionRecording load(const std::filesystem::path& file);

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
