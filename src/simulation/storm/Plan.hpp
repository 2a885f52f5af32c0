#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace sentrel::simulation {

// Milliseconds, for the times of steps.
inline constexpr std::int64_t second = 1000;
inline constexpr std::int64_t minute = 60 * second;
inline constexpr std::int64_t hour = 60 * minute;

/// One step of a play that was made up.
struct PlannedStep {
    std::int64_t at = 0; ///< milliseconds since launch
    std::string action;  ///< as it stands after `do:`
};

/// A play that was made up: the parts that can be left out.
struct Plan {
    std::string title;
    std::vector<std::pair<std::string, std::string>> mac;      ///< keys and values
    std::vector<std::pair<std::string, std::string>> settings; ///< likewise
    std::vector<PlannedStep> steps;                            ///< by time
};

/// The scenario of the plan, which is watched.
[[nodiscard]] std::string documentOf(const Plan& plan);

} // namespace sentrel::simulation
