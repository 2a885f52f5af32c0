#pragma once

#include "simulation/stage/MotionMeter.hpp"
#include "simulation/story/StoryAudience.hpp"
#include "simulation/story/html/StoryRecord.hpp"

#include <sstream>

namespace sentrel::simulation {

/// Follows a play and records its story, and the devices' part in it: the speaker, the accelerometer, the disk with its
/// photos, and the owner's phone.
class StoryRecorder final : public Audience {
public:
    explicit StoryRecorder(const Scenario& scenario);

    void begins(MacSession& session) override;
    void reached(double at) override;
    void happened(const Event& event) override;
    void willPerform(double at, const Step& step, const Action& action) override;
    void checked(double at, const Step& step, const std::vector<Mismatch>& mismatches) override;
    void ends(MacSession& session, const std::filesystem::path& sound) override;

    /// Takes the summary as well, after the play. Further calls are not allowed.
    [[nodiscard]] StoryRecord finish(const StorySummary& summary);

private:
    void keepPhoto(double at, const events::AlertSaved& saved);
    void noteThreshold(double at);
    void readPhone();

    StoryRecord record_;
    std::ostringstream unseen_;
    Story story_;
    StoryAudience audience_;
    MotionMeter meter_;
    MacSession* session_ = nullptr; // while the play lasts
    Date launch_{};
};

} // namespace sentrel::simulation
