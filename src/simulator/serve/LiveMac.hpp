#pragma once

#include "sensors/MotionDetector.hpp"
#include "simulator/MacSession.hpp"
#include "simulator/Scenario.hpp"
#include "simulator/WorldThread.hpp"
#include "simulator/serve/EventHub.hpp"
#include "simulator/serve/PageFiles.hpp"
#include "simulator/serve/PageState.hpp"
#include "simulator/serve/StoryLines.hpp"

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace sentrel::simulator {

/// A simulated MacBook that lives in real time, and tells every page what changes.
class LiveMac {
public:
    /// The Mac of the scenario; its steps are not played. The disk is an existing folder.
    LiveMac(const Scenario& scenario, const std::filesystem::path& disk, const std::filesystem::path& resources,
            std::uint64_t seed, Date date);
    ~LiveMac();
    LiveMac(const LiveMac&) = delete;

    void start();
    void stop();

    /// Does something with the Mac on its own thread; see `WorldThread::call`.
    template <class Function> auto call(Function function)
    {
        return world_.call([this, &function] {
            isTouched_ = true;
            return function(session_);
        });
    }

    /// Does an action of the scenario language; gives why it can't be done, or nothing.
    [[nodiscard]] std::string perform(const Action& action);

    [[nodiscard]] EventHub& hub() { return hub_; }
    [[nodiscard]] PageFiles& files() { return files_; }

    /// A stream for a page: everything that there is, and then what changes. Null when there are too many.
    [[nodiscard]] std::shared_ptr<EventHub::Subscriber> listen();

private:
    void happened();
    void tellStory();
    [[nodiscard]] double departureOf(const simulated::Acceleration& sample);
    void tellMotion(double now);
    void tellChanges();
    [[nodiscard]] bool mayHaveChanged();
    [[nodiscard]] std::map<std::string, PageState::Text> rooms(bool withPhone);
    [[nodiscard]] std::string untimedRun() const;
    [[nodiscard]] std::string goneContents(const std::map<std::string, PageState::Text>& rooms);

    PageFiles files_;
    EventHub hub_;
    MacSession session_;
    PageState state_;
    StoryLines story_;
    std::map<std::string, PageState::Text> told_; // room: what the pages were told last
    std::size_t eventsSeen_ = 0;
    std::size_t storyTold_ = 0;
    std::uint64_t screenVersion_ = 0;
    double lastMotion_ = -1.0;
    bool isTouched_ = true;
    bool isLogRead_ = false;
    double meterThreshold_ = 0.0;
    std::optional<MotionDetector> meter_; // the product's own measure, on an instrument of ours
    std::vector<double> departures_;      // of the samples since the last motion event
    WorldThread world_;                   // last: its end comes before that of what it uses
};

} // namespace sentrel::simulator
