#pragma once

#include "core/Events.hpp"
#include "simulation/Event.hpp"
#include "simulation/Events.hpp"
#include "simulation/stage/Scenario.hpp"
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
/// actions. Repetitions are told once. Times are seconds since launch. One thread.
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
    struct Level {
        double volume = 0.0;
        bool muted = false;
    };

    /// Whether the event is of the teller's kind, and told.
    template <class Kind> bool tellAs(const Event& event, void (Story::*teller)(double at, const Kind& event));
    [[nodiscard]] bool tellByMemory(const Event& event);
    void tellUnknown(const Event& event);

    // Events whose sentence depends on earlier ones, each at its time.
    void tellLaunched(double at, const events::Launched& event);
    void tellCrashed(double at, const events::Crashed& event);
    void tellQuit(double at, const events::Quit& event);
    void tellArmed(double at, const events::Armed& event);
    void tellDisarmed(double at, const events::Disarmed& event);
    void tellAlarmStarted(double at, const events::AlarmStarted& event);
    void tellAlarmHeard(double at, const events::AlarmHeard& event);
    void tellAlarmStopped(double at, const events::AlarmStopped& event);
    void tellVolume(double at, const events::VolumeChanged& event);
    void tellVolumeEnforced(double at, const events::VolumeEnforced& event);
    void tellDefaultOutput(double at, const events::DefaultOutputChanged& event);
    void tellAssertionTaken(double at, const events::AssertionTaken& event);
    void tellAssertionReleased(double at, const events::AssertionReleased& event);
    void tellUploaded(double at, const events::AlertUploaded& event);
    void tellUploadFailed(double at, const events::AlertUploadFailed& event);
    void tellPresence(double at, const events::PresencePublished& event);
    void tellRequest(double at, const events::CloudRequest& event);

    void beginAlarm(double at, const std::string& text, std::optional<std::int64_t> device, double volume);
    void endProcess();
    [[nodiscard]] std::string deviceName(std::int64_t device) const;

    StoryPage page_;
    std::map<std::int64_t, std::string> names_; // of audio devices
    std::map<std::int64_t, Level> levels_;      // of audio devices
    std::map<std::int64_t, double> disturbed_;  // by device: since when it differs from the alarm's setting
    std::set<std::string> assertions_;
    std::map<std::string, std::string, std::less<>> alerts_; // titles by alert identifier
    std::string lastUploadFailure_;
    std::optional<std::int64_t> alarmDevice_;
    std::optional<double> soundingSince_;
    double alarmVolume_ = 0.0;
    bool isArmed_ = false;
    bool publishedArmed_ = false; // as the phone sees it; at first it sees no Mac
    bool isThrottled_ = false;
    int launches_ = 0;
};

} // namespace sentrel::simulation
