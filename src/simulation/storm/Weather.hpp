#pragma once

#include "simulation/storm/Plan.hpp"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace sentrel::simulation {

/// A port with the faults that its device can be given.
struct FaultyPort {
    std::string name;
    std::vector<std::string> faults;
};

/// A point at which a fault can strike, and when to look for it.
struct FaultPoint {
    /// An occasion (`Occasion.hpp`) on which the product makes such calls.
    struct Chance {
        std::size_t occasion = 0;
        std::uint32_t calls = 0;
    };

    std::string port;
    std::string operation; ///< of the call that is struck; empty for a fault of the device
    std::string fault;     ///< the call's fate, or the device's fault
    std::vector<Chance> chances;
};

/// The life of a MacBook for about that many hours, with its owner, thieves, phones and clouds, and faults at the
/// ports. It ends with a calm in which all faults cease. Each point has its turn in the course of the seeds. The same
/// arguments give the same plan everywhere.
[[nodiscard]] Plan weather(std::uint64_t seed, double hours, const std::vector<FaultyPort>& ports,
                           const std::vector<FaultPoint>& points);

} // namespace sentrel::simulation
