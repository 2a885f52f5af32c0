#pragma once

#include "simulation/stage/ExitStatus.hpp"

#include <cstdint>
#include <filesystem>
#include <iosfwd>
#include <optional>
#include <string>

namespace sentrel::simulation {

/// The command `storm`.
struct StormCommand {
    double hours = 1000.0;
    std::uint64_t seed = 1;
    std::optional<std::size_t> world;         ///< this one alone; its whole play is saved, too
    unsigned jobs = 0;                        ///< 0: as many as there are cores
    std::filesystem::path keep = "out/storm"; ///< receives the scenarios of violations
    std::filesystem::path resources;
    bool isJson = false;
    bool showsProgress = false; ///< on `err`
};

/// Lets many simulated MacBooks live through made-up weather. Prints a summary, or one JSON object, on `out`; saves a
/// minimal scenario for each kind of violation. Returns the exit status: violations count as failed expectations.
int run(const StormCommand& command, std::ostream& out, std::ostream& err);

} // namespace sentrel::simulation
