#pragma once

#include "simulation/storm/Chronicle.hpp"
#include "simulation/storm/Sight.hpp"

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace sentrel::simulation {

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
    /// How it is violated now; none if it holds.
    std::optional<std::string> (*violation)(const Instants& instants);
    Pace pace = Pace::eachInstant;
};

/// All of them.
[[nodiscard]] std::span<const Invariant> invariants();

} // namespace sentrel::simulation
