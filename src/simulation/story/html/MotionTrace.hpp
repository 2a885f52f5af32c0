#pragma once

#include <cstddef>
#include <optional>
#include <vector>

namespace sentrel::simulation {

/// The course of a measurement over time, as the greatest value within each of some hundred equal spans, however long
/// it takes. Grows no further.
class MotionTrace {
public:
    static constexpr std::size_t mostSpans = 800;

    /// Takes a value at a time in seconds, which must not be before 0.
    void add(double at, double value);

    /// Length of a span, in seconds.
    [[nodiscard]] double span() const { return span_; }

    /// The greatest value of each span from 0 on; none for one without values.
    [[nodiscard]] const std::vector<std::optional<double>>& peaks() const { return peaks_; }

    /// The greatest of all, and its time; none without values.
    [[nodiscard]] std::optional<double> highest() const { return highest_; }
    [[nodiscard]] double highestAt() const { return highestAt_; }

private:
    void halve();

    double span_ = 0.02; // the accelerometer's usual interval
    std::vector<std::optional<double>> peaks_;
    std::optional<double> highest_;
    double highestAt_ = 0.0;
};

} // namespace sentrel::simulation
