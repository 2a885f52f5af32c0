#pragma once

#include "simulation/stage/ExitStatus.hpp"

#include <cstdint>
#include <filesystem>
#include <iosfwd>
#include <optional>
#include <string>

namespace sentrel::simulation {

/// The command `play`.
struct PlayCommand {
    std::filesystem::path scenario;
    std::optional<std::filesystem::path> out;
    std::filesystem::path resources;
    std::uint64_t seed = 1;
    bool isJson = false;
};

/// Plays the scenario; prints the story, or one JSON object, on `out`, and errors on `err`. Returns the exit status.
int run(const PlayCommand& command, std::ostream& out, std::ostream& err);

} // namespace sentrel::simulation
