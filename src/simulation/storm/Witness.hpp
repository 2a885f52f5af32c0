#pragma once

#include "simulation/stage/Player.hpp"
#include "simulation/storm/Chronicle.hpp"
#include "simulation/storm/Lookout.hpp"

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace sentrel::simulation {

/// An invariant that did not hold.
struct Violation {
    double at = 0.0; ///< seconds since launch
    std::string invariant;
    std::string what;
};

/// The events of a play that the summary counts.
struct Experience {
    double hours = 0.0;
    double armedHours = 0.0;
    std::uint64_t triggers = 0;
    std::uint64_t alerts = 0;
    std::uint64_t crashes = 0;                   ///< survived
    std::map<std::string, std::uint64_t> faults; ///< injected, as "PORT OPERATION FATE" or "PORT FAULT"
    std::map<std::string, std::uint64_t> calls;  ///< of the product, as "PORT OPERATION"
    std::set<std::string> pairs;                 ///< states that were seen at the same time
};

/// Checks the invariants all along a play. Nothing is checked any more after the first violation.
class Witness final : public Audience {
public:
    void begins(MacSession& session) override;
    [[nodiscard]] bool wantsEachInstant() const override { return true; }
    void settled(MacSession& session) override;
    void leaves(MacSession& session) override;
    void died(double at, const Raised& raised) override;
    void happened(const Event& event) override;
    void willPerform(double at, const Step& step, const Action& action) override;
    void checked(double /*at*/, const Step& /*step*/, const std::vector<Mismatch>& /*mismatches*/) override {}

    [[nodiscard]] const std::vector<Violation>& violations() const { return violations_; }

    /// The counts of the play, once it is over.
    [[nodiscard]] const Experience& experience() const { return experience_; }

private:
    void check(bool isThorough);
    void notePairs();

    std::unique_ptr<Lookout> lookout_;
    std::unique_ptr<Chronicle> chronicle_;
    Sight before_;
    double readAt_ = 0.0; ///< when all invariants were checked last
    double awaitsUntil_ = 0.0;
    bool isAwaiting_ = true;
    std::array<bool, 17> held_{};
    std::vector<Violation> violations_;
    Experience experience_;
};

/// The names of the states whose pairs are counted.
[[nodiscard]] std::vector<std::string_view> stateNames();

} // namespace sentrel::simulation
