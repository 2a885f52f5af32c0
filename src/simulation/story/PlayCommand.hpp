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
    std::optional<std::filesystem::path> html; ///< receives the story as a page
    std::filesystem::path resources;
    std::filesystem::path web; ///< holds the style and the script of that page
    std::uint64_t seed = 1;
    bool isJson = false;
};

/// Plays the scenario; prints the story, or one JSON object, on `out`, and errors and progress on `err`. Returns the
/// exit status.
int run(const PlayCommand& command, std::ostream& out, std::ostream& err);

} // namespace sentrel::simulation
