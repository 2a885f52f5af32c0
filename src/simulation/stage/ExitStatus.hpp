#pragma once

namespace sentrel::simulation {

// Exit statuses of the program.
inline constexpr int exitAllHeld = 0;    ///< also for commands without expectations
inline constexpr int exitSomeFailed = 1; ///< a scenario's expectation did not hold
inline constexpr int exitUnreadable = 2; ///< the command line, a scenario or a folder can't be used

} // namespace sentrel::simulation
