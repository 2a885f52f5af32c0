#pragma once

#include "foundation/Json.hpp"
#include "simulation/storm/Storm.hpp"

#include <iosfwd>
#include <string>
#include <vector>

namespace sentrel::simulation {

/// A violation that was cut down to its essence.
struct SavedViolation {
    StormViolation found;
    std::string file; ///< the scenario
    std::size_t steps = 0;
};

/// The faults and pairs of states that never, or hardly ever, occurred in a storm.
struct Unreached {
    std::vector<std::string> faults; ///< "PORT FAULT", and "PORT OPERATION FATE" of calls that the product made
    std::vector<std::string> rare;   ///< likewise, that struck fewer than 100 times
    std::vector<std::string> pairs;  ///< states that were never seen at the same time
};

[[nodiscard]] Unreached unreachedBy(const Experience& experience, const std::vector<FaultyPort>& ports);

/// The storm in plain words, without times of the real clock.
void print(const StormReport& report, const Unreached& unreached, const std::vector<SavedViolation>& saved,
           std::ostream& out);

[[nodiscard]] Json jsonOf(const StormReport& report, const Unreached& unreached,
                          const std::vector<SavedViolation>& saved);

} // namespace sentrel::simulation
