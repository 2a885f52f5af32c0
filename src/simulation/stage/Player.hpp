#pragma once

#include "simulation/Event.hpp"
#include "simulation/PortCalls.hpp"
#include "simulation/stage/Expectation.hpp"
#include "simulation/stage/Scenario.hpp"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace sentrel::simulation {

class MacSession;

/// Follows a play as it unfolds. Called on the playing thread, in the order of events.
class Audience {
public:
    virtual ~Audience() = default;

    /// The play begins; everything is set up, the product not yet launched. Not called if the setup fails.
    virtual void begins(MacSession& /*session*/) {}

    /// Virtual time has moved on to `at` seconds. Called before and after each step, and once a minute.
    virtual void reached(double /*at*/) {}

    /// The MacBook is about to go, also after a play that could not go on. Must not throw.
    virtual void leaves(MacSession& /*session*/) {}

    /// True to be called for each instant between the steps, too.
    [[nodiscard]] virtual bool wantsEachInstant() const { return false; }

    /// Everything due at this instant has run; called after each step.
    virtual void settled(MacSession& /*session*/) {}

    /// A call that raised has ended the process: nothing in the product took the exception.
    virtual void died(double /*at*/, const Raised& /*raised*/) {}

    /// Something happened on the MacBook.
    virtual void happened(const Event& event) = 0;

    /// A step is about to be carried out, at `at` seconds.
    virtual void willPerform(double at, const Step& step, const Action& action) = 0;

    /// An expectation was checked; it holds if there are no mismatches.
    virtual void checked(double at, const Step& step, const std::vector<Mismatch>& mismatches) = 0;

    /// The last step is done. `sound` is the finished recording of what was heard, a WAV file; empty if none was asked
    /// for. Both end with this call.
    virtual void ends(MacSession& /*session*/, const std::filesystem::path& /*sound*/) {}
};

/// Setup of a play.
struct PlayOptions {
    std::optional<std::filesystem::path> out; ///< receives the disk, the events and the sound; none keeps nothing
    std::filesystem::path resources;          ///< the localisation tables
    std::uint64_t seed = 1;
    bool recordsSound = false; ///< also without `out`
};

/// Result of a play.
struct PlayResult {
    std::size_t expectationsHeld = 0;
    std::vector<Mismatch> mismatches; ///< failed expectations, in the order of the play
    double seconds = 0.0;             ///< virtual time played
};

/// Thrown if a play can't begin or its output can't be kept; the message says why.
class PlayError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Stores the settings and the unlock passcode that the scenario gives from an earlier run. Call before the launch.
/// False if the keychain refuses the passcode.
[[nodiscard]] bool leaveFromEarlierRun(MacSession& session, const Scenario& scenario);

/// Plays the scenario from its launch to its last step, in virtual time. Throws `PlayError` before the first step if a
/// step can't be carried out on this MacBook (the message names file and line) or the folder can't be used.
[[nodiscard]] PlayResult play(const Scenario& scenario, const PlayOptions& options, Audience& audience);

} // namespace sentrel::simulation
