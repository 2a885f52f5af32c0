#pragma once

#include "simulation/page/EventHub.hpp"
#include "simulation/page/PageFiles.hpp"
#include "simulation/page/PageState.hpp"
#include "simulation/page/StoryLines.hpp"
#include "simulation/stage/MacSession.hpp"
#include "simulation/stage/MotionMeter.hpp"
#include "simulation/stage/Scenario.hpp"
#include "simulation/stage/WorldThread.hpp"

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <shared_mutex>
#include <string>
#include <vector>

namespace sentrel::simulation {

/// A simulated MacBook that runs in real time, and sends its changes to all pages.
class LiveMac {
public:
    /// The Mac of the scenario; its steps are not played. `disk` is an existing folder; with `mayBeReplaced`, each
    /// replacement gets its own folder in it.
    LiveMac(Scenario scenario, std::filesystem::path disk, std::filesystem::path resources, std::uint64_t seed,
            Date date, bool mayBeReplaced = false);
    ~LiveMac();
    LiveMac(const LiveMac&) = delete;

    void start();
    void stop();

    /// Runs a function with the Mac on its own thread; see `WorldThread::call`.
    template <class Function> auto call(Function function)
    {
        const std::shared_lock guard{mutex_};
        return life_->world.call([this, &function] {
            life_->isTouched = true;
            return function(life_->session);
        });
    }

    /// Performs an action of the scenario language; returns why it can't be done, empty if done.
    [[nodiscard]] std::string perform(const Action& action);

    /// Replaces the Mac by a new one of the same scenario, and tells all pages; returns why not, empty if done. Don't
    /// call on the world's thread.
    [[nodiscard]] std::string replace();

    [[nodiscard]] EventHub& hub() { return hub_; }
    [[nodiscard]] PageFiles& files() { return files_; }

    /// A stream for a page: the whole state, then changes. Null if there are too many.
    [[nodiscard]] std::shared_ptr<EventHub::Subscriber> listen();

private:
    /// One MacBook from its first launch on, and how much of it has been sent.
    struct Life {
        Life(const Scenario& scenario, const std::filesystem::path& disk, const std::filesystem::path& resources,
             std::uint64_t seed, Date date, PageFiles& files);

        MacSession session;
        PageState state;
        StoryLines story;
        std::size_t eventsSeen = 0;
        std::size_t storyTold = 0;
        std::uint64_t screenVersion = 0;
        double lastMotion = -1.0;
        bool isTouched = true;
        bool isLogRead = false;
        std::optional<double> threshold; // of motion, in g; a sample's callback may not ask the product
        MotionMeter meter;
        std::vector<double> departures; // of samples since the last motion event, in g
        WorldThread world;              // last: must end before the members that it uses
    };

    void begin();
    void happened();
    void tellStory();
    void tellMotion(double now);
    void tellChanges();
    [[nodiscard]] bool mayHaveChanged();
    [[nodiscard]] std::map<std::string, PageState::Text> rooms(bool withPhone);
    [[nodiscard]] std::string untimedRun() const;
    [[nodiscard]] std::string goneContents(const std::map<std::string, PageState::Text>& rooms);

    const Scenario scenario_;
    const std::filesystem::path disk_;
    const std::filesystem::path resources_;
    const std::uint64_t seed_;
    const bool mayBeReplaced_;
    std::uint64_t replacements_ = 0;
    PageFiles files_;
    EventHub hub_;
    std::map<std::string, PageState::Text> told_; // by room: the text last sent
    std::shared_mutex mutex_;                     // exclusive while `life_` is replaced
    std::unique_ptr<Life> life_;
};

} // namespace sentrel::simulation
