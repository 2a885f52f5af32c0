#pragma once

#include "simulation/storm/World.hpp"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <vector>

namespace sentrel::simulation {

struct StormOptions {
    double hours = 0.0; ///< of the simulated MacBooks together
    std::uint64_t seed = 1;
    unsigned jobs = 1; ///< processes at a time
    std::filesystem::path resources;
};

/// A violation and the world in which it happened.
struct StormViolation {
    std::size_t world = 0;
    Violation violation;
};

/// The sum of all worlds.
struct StormReport {
    std::size_t worlds = 0;
    Experience experience;
    std::vector<StormViolation> violations; ///< by world
    bool isInterrupted = false;
};

/// Many worlds, in several processes. The same options give the same worlds.
class Storm {
public:
    /// Called when a world has come to its end, with the sum so far.
    using Progress = std::function<void(const StormReport& soFar)>;

    explicit Storm(StormOptions options);

    /// Ends early, with what there is, on SIGINT or SIGTERM.
    [[nodiscard]] StormReport run(const Progress& progress);

    [[nodiscard]] std::size_t worlds() const { return hours_.size(); }
    [[nodiscard]] Plan plan(std::size_t world) const;
    [[nodiscard]] const std::vector<FaultyPort>& ports() const { return ports_; }
    [[nodiscard]] const std::vector<FaultPoint>& points() const { return points_; }

private:
    class Workers;

    const StormOptions options_;
    const std::vector<FaultyPort> ports_;
    const std::vector<FaultPoint> points_;
    std::vector<double> hours_; ///< of each world
};

/// Adds one world to the sum.
void add(const WorldReport& report, std::size_t world, StormReport& sum);

} // namespace sentrel::simulation
