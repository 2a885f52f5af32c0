#pragma once

#include <optional>
#include <string>
#include <sys/types.h>

namespace sentrel::simulation {

/// Shows a page in the user's browser, through `xdg-open`. One thread.
class Browser {
public:
    /// Starts the command, without waiting for it. False if it can't be started.
    [[nodiscard]] bool open(const std::string& address);

    /// Call after each SIGCHLD. True once the command has ended in failure, and only then.
    [[nodiscard]] bool hasFailed();

private:
    std::optional<pid_t> command_; // while it runs
};

} // namespace sentrel::simulation
