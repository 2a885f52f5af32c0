#pragma once

#include "simulation/Event.hpp"
#include "simulation/stage/Scenario.hpp"
#include "simulation/story/CloudStory.hpp"
#include "simulation/story/StoryPage.hpp"

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace sentrel::simulation {

/// The summary under a story.
struct StorySummary {
    struct Artefact {
        std::string what; ///< for example "The alarm as it was heard"
        std::string where;
    };

    double endedAt = 0.0;             ///< seconds since launch
    std::string file;                 ///< the scenario
    std::size_t held = 0;             ///< expectations that held
    std::vector<Mismatch> mismatches; ///< those that failed
    std::vector<Artefact> artefacts;
};

/// Tells a play of a scenario in plain English while it runs, from the simulated MacBook's events and the scenario's
/// actions. Times are seconds since launch. One thread.
class Story {
public:
    Story(std::ostream& out, StoryStyle style, StoryListener told = {}) : page_(out, style, std::move(told)) {}

    /// Prints the title and the initial state.
    void open(const Scenario& scenario);

    /// Tells an event; an unknown one in a generic form.
    void tell(const Event& event);

    /// Tells an action about to be done, unless its event will be told.
    void perform(double at, const Action& action);

    /// Tells a sentence of the narrator (the note of a step).
    void remark(double at, std::string_view text);

    /// Tells something that happens to the Mac, in one sentence.
    void act(double at, std::string_view text);

    /// Tells the expectations that failed at this time.
    void differ(double at, const std::vector<Mismatch>& found);

    /// Prints the results of the expectations and the artefacts.
    void finish(const StorySummary& summary);

private:
    using Teller = void (Story::*)(const Event&);
    struct Row {
        std::string_view event;
        Teller tell;
    };
    struct Level {
        double volume = 0.0;
        bool muted = false;

        friend bool operator==(const Level&, const Level&) = default;
    };
    static const Row rows[];

    void tellSentence(double at, const StorySentence& sentence);
    void tellUnknown(const Event& event);
    void tellLaunched(const Event& event);
    void tellCrashed(const Event& event);
    void tellQuit(const Event& event);
    void tellArmed(const Event& event);
    void tellDisarmed(const Event& event);
    void tellAlarmStarted(const Event& event);
    void tellAlarmStopped(const Event& event);
    void tellVolume(const Event& event);
    void tellVolumeByUser(const Event& event, std::uint32_t device, Level level);
    void tellVolumeEnforced(const Event& event);
    void tellDefaultOutput(const Event& event);
    void tellAssertionTaken(const Event& event);
    void tellAssertionReleased(const Event& event);

    void tellSettledVolumes();
    void endProcess();
    [[nodiscard]] std::string deviceName(std::optional<std::uint32_t> device) const;

    StoryPage page_;
    CloudStory cloud_;
    std::map<std::uint32_t, std::string> names_;
    std::map<std::uint32_t, Level> levels_;     // levels by device
    std::map<std::uint32_t, double> disturbed_; // by device: since when it differs from the alarm's setting
    std::map<std::uint32_t, double> settling_;  // by device: time of the system's last change, not yet told
    std::set<std::string> assertions_;
    std::optional<std::uint32_t> alarmDevice_;
    std::optional<double> soundingSince_;
    double alarmVolume_ = 0.0;
    bool isArmed_ = false;
    int launches_ = 0;
};

} // namespace sentrel::simulation
