#pragma once

#include "simulation/storm/Chronicle.hpp"
#include "simulation/storm/Sight.hpp"

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace sentrel::simulation {

/// Seconds in which a change shows everywhere.
inline constexpr double settling = 2.0;

/// Seconds without any fault after which nothing waits any more: some of the longest retries.
inline constexpr double calm = 1200.0;

/// Seconds from a trigger to its alert: each of the reasons may wait 30 s for a camera that hangs.
inline constexpr double longestWay = 160.0;

/// How an invariant is violated; none if it holds.
using Finding = std::optional<std::string>;

/// The input of an invariant: the past, and the state of the devices at the last look and now.
struct Instants {
    const Chronicle& past;
    const Sight& before;
    const Sight& now;
};

/// Something that always holds on a simulated MacBook, whatever fails around the product.
struct Invariant {
    /// When an invariant can come to be violated.
    enum class Pace {
        eachInstant, ///< when a deadline of seconds passes
        onChange     ///< when the devices change, or after minutes
    };

    std::string_view name;
    Finding (*violation)(const Instants& instants);
    Pace pace = Pace::eachInstant;
};

inline constexpr auto onChange = Invariant::Pace::onChange;

/// Those of alerts, on the Mac and in the cloud.
[[nodiscard]] std::span<const Invariant> alertInvariants();

/// All of them.
[[nodiscard]] const std::vector<Invariant>& invariants();

} // namespace sentrel::simulation
