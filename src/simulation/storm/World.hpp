#pragma once

#include "simulation/storm/Weather.hpp"
#include "simulation/storm/Witness.hpp"

#include <filesystem>
#include <optional>
#include <vector>

namespace sentrel::simulation {

/// The result of one world's life.
struct WorldReport {
    Experience experience;
    std::vector<Violation> violations;
};

/// Plays the plan under the eyes of a witness. An exception out of the play is a violation, too.
[[nodiscard]] WorldReport live(const Plan& plan, const std::filesystem::path& resources);

/// The same in a process of its own, whose end by a signal or beyond a limit of time is a violation without experience.
[[nodiscard]] WorldReport liveApart(const Plan& plan, const std::filesystem::path& resources);

/// The ports of the simulated MacBook with their faults.
[[nodiscard]] std::vector<FaultyPort> faultyPorts(const std::filesystem::path& resources);

/// How the end of a process is told as a violation; none for a good end. `status` is that of `waitpid`.
[[nodiscard]] std::optional<Violation> violationOfEnd(int status);

/// Ends the process when one world takes this many seconds.
void limitTime();

[[nodiscard]] Json jsonOf(const WorldReport& report);
[[nodiscard]] WorldReport reportOf(const Json& json);

} // namespace sentrel::simulation
