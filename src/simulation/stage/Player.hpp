#pragma once

#include "simulation/Event.hpp"
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

/// Follows a play as it unfolds. All calls come on the playing thread, in the order of what happens.
class Audience {
public:
    virtual ~Audience() = default;

    /// Everything is set up: the play begins. Not called for a play that can't.
    virtual void begins() {}

    /// Something happened on the MacBook.
    virtual void happened(const simulation::Event& event) = 0;

    /// A step is about to be carried out, at its time in seconds.
    virtual void willPerform(double at, const Step& step, const Action& action) = 0;

    /// An expectation was looked at; no mismatches mean that it holds.
    virtual void checked(double at, const Step& step, const std::vector<Mismatch>& mismatches) = 0;
};

/// How a play is set up.
struct PlayOptions {
    std::optional<std::filesystem::path> out; ///< keeps the disk, the events and the sound; none: nothing is kept
    std::filesystem::path resources;          ///< the localisation tables
    std::uint64_t seed = 1;
};

/// How a play went.
struct PlayResult {
    std::size_t expectationsHeld = 0;
    std::vector<Mismatch> mismatches; ///< what didn't hold, in the order of the play
    double seconds = 0.0;             ///< virtual time played
};

/// The play can't begin or can't be kept; the message says why.
class PlayError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Plays the scenario from its launch to its last step, in virtual time. Throws `PlayError` before the first step when
/// a step can't be carried out on this MacBook (the message names file and line) or the folder can't be used.
[[nodiscard]] PlayResult play(const Scenario& scenario, const PlayOptions& options, Audience& audience);

} // namespace sentrel::simulation
