#pragma once

#include "simulation/mac/MacDescription.hpp"
#include "simulation/stage/Action.hpp"

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace sentrel::simulation {

// The story's wording where it depends on plain values only.

/// 0.8333 as "83 %".
[[nodiscard]] std::string percent(double level);

/// The Mac's initial state, in a few sentences.
[[nodiscard]] std::string describe(const MacDescription& mac);

/// The action as seen from outside; none if the simulated MacBook notes it as an event, which is told instead.
[[nodiscard]] std::optional<std::string> describe(const Action& action,
                                                  const std::function<std::string(std::uint32_t)>& deviceName);

/// The English title of a trigger's raw value; the value itself for an unknown one.
[[nodiscard]] std::string reasonTitle(std::string_view rawValue);

} // namespace sentrel::simulation
