#pragma once

#include "platform/Automation.hpp"
#include "runtime/MainActor.hpp"
#include "runtime/Weak.hpp"

#include <functional>
#include <mutex>
#include <string>
#include <vector>

namespace sentrel {

/// An application that plays media.
struct MediaPlayer {
    std::string bundleIdentifier;
    std::string name; ///< as scripts call it
};

/// Pauses music, so that it doesn't compete with the alarm. It never asks the user's consent while it pauses: that is
/// done ahead of time. Every failure only means that nothing is paused. Lives on the main actor.
class MediaPlayback {
public:
    MediaPlayback(MainActor mainActor, platform::RunningApplications& applications, platform::Automation& automation,
                  platform::EventPosting& eventPosting);
    MediaPlayback(const MediaPlayback&) = delete;

    /// The known players that run now. Any thread.
    [[nodiscard]] std::vector<MediaPlayer> listRunningPlayers() const;

    /// Asks for consent to automate the running players, so that the question comes while the user is at the Mac. It
    /// takes as long as the user does, and may be awaited off the main thread.
    [[nodiscard]] Async<void> requestAutomationConsent();

    /// Starts pausing a player and returns at once. The completion is called on the main actor when the attempt is
    /// over; never, when this object dies before. Any thread.
    void pause(MediaPlayer player, std::function<void()> completion = nullptr);

    /// Pauses all running players and waits for them at most 500 ms in all. Awaited off the main actor.
    [[nodiscard]] Async<void> pauseAllAndWait();

    /// Whether the player runs, may be asked and says that it plays. Main actor.
    [[nodiscard]] Async<bool> isPlaying(MediaPlayer player);

private:
    static Async<void> askForConsent(MainActor mainActor, platform::Automation& automation, Weak<MediaPlayback> weak,
                                     std::vector<MediaPlayer> players);
    static Async<void> runPlayingTest(Weak<MediaPlayback> weak, MediaPlayer player);
    Async<void> pauseOnMain(MediaPlayer player, std::function<void()> completion);
    Async<bool> runPauseScript(MediaPlayer player);
    Async<bool> isPermitted(std::string bundleIdentifier);
    void pressPlayPauseKey();

    MainActor mainActor_;
    platform::RunningApplications& applications_;
    platform::Automation& automation_;
    platform::EventPosting& eventPosting_;
    WeakAnchor<MediaPlayback> anchor_{*this};
    std::mutex tasksLock_;
    TaskBag tasks_; // of pauses under way; under the lock
};

} // namespace sentrel
