#pragma once

#include <cstdint>
#include <filesystem>
#include <iosfwd>
#include <optional>
#include <string>

namespace sentrel::simulation {

/// The command `serve`.
struct ServeCommand {
    std::string scenario; ///< describes the MacBook
    std::filesystem::path resources;
    std::filesystem::path web;
    std::optional<std::filesystem::path> disk; ///< kept for later runs; none: a temporary one
    std::optional<std::string> language;       ///< none: the scenario's
    std::uint64_t seed = 1;
    bool opensBrowser = false;
    int port = 0;
    std::optional<std::string> token; ///< none: a random one
};

/// Serves the page until the program is interrupted. Prints the page's address on `out` and errors on `err`. Returns
/// the exit status.
int run(const ServeCommand& command, std::ostream& out, std::ostream& err);

} // namespace sentrel::simulation
