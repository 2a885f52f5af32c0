#pragma once

#include "simulation/stage/Player.hpp"

#include <chrono>
#include <functional>
#include <iosfwd>

namespace sentrel::simulation {

/// One line on a terminal that shows how far a play has come, from two seconds of real time on. It is gone after the
/// play and with this object.
class ProgressLine final : public Audience {
public:
    using Clock = std::function<std::chrono::steady_clock::time_point()>;

    /// `seconds` is the play's length in virtual time. With `isShared` the story appears on the same terminal: the line
    /// makes room for each part of it.
    ProgressLine(std::ostream& terminal, double seconds, bool isShared, Clock clock = std::chrono::steady_clock::now);
    ~ProgressLine() override;
    ProgressLine(const ProgressLine&) = delete;

    /// Whether standard error is a terminal that can erase a line.
    [[nodiscard]] static bool isWatched();

    void reached(double at) override;
    void happened(const Event& event) override;
    void willPerform(double at, const Step& step, const Action& action) override;
    void checked(double at, const Step& step, const std::vector<Mismatch>& mismatches) override;
    void ends(MacSession& session, const std::filesystem::path& sound) override;

private:
    void makeRoom();
    void erase();

    std::ostream& terminal_;
    const double seconds_;
    const bool isShared_;
    const Clock clock_;
    std::chrono::steady_clock::time_point next_; // earliest time of the next line
    bool isShown_ = false;
};

} // namespace sentrel::simulation
