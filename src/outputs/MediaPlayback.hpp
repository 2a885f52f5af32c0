#pragma once

#include "ports/Automation.hpp"
#include "runtime/MainActor.hpp"
#include "runtime/Weak.hpp"

#include <functional>
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
    MediaPlayback(MainActor mainActor, ports::RunningApplications& applications, ports::Automation& automation,
                  ports::EventPosting& eventPosting);
    MediaPlayback(const MediaPlayback&) = delete;

    /// The known players that run now. Any thread.
    [[nodiscard]] std::vector<MediaPlayer> listRunningPlayers() const;

    /// Asks for consent to automate the running players, so that the question comes while the user is at the Mac. It
    /// takes as long as the user does, and may be awaited off the main thread.
    [[nodiscard]] Async<void> requestAutomationConsent();

    /// Starts pausing a player and returns at once. The completion is called on the main actor when the attempt is
    /// over; never, when this object dies before. Any thread.
    void pause(MediaPlayer player, std::function<void()> completion = nullptr);

    /// Starts pausing all running players and returns at once. Any thread.
    void pauseAll();

    /// The same, and waits for them at most 500 ms in all, also for their listing. Awaited off the main actor.
    [[nodiscard]] Async<void> pauseAllAndWait();

    /// Whether the player runs, may be asked and says that it plays. Main actor.
    [[nodiscard]] Async<bool> isPlaying(MediaPlayer player);

private:
    using Completion = std::function<void()>;

    /// What coroutines off the main thread work with: the ports outlive this object, and the handle knows of its end.
    struct Helpers {
        MainActor mainActor;
        ports::RunningApplications& applications;
        ports::Automation& automation;
        Weak<MediaPlayback> weak;
    };

    [[nodiscard]] Helpers helpers() const;
    static Async<void> askForConsent(Helpers with);
    static Async<void> runPlayingTest(Weak<MediaPlayback> weak, MediaPlayer player);
    static Async<void> pauseEach(Helpers with, Completion allOver);
    static Async<void> testAndPause(Helpers with, MediaPlayer player, Completion completion);
    static Async<void> pauseIfAlive(Weak<MediaPlayback> weak, MediaPlayer player, bool isPermitted,
                                    Completion completion);
    Async<void> pauseOnMain(MediaPlayer player, bool isPermitted, Completion completion);
    Async<bool> runPauseScript(MediaPlayer player, bool isPermitted);
    Async<void> pressKeyIfPlaying(MediaPlayer player);
    Async<bool> isPermitted(std::string bundleIdentifier);
    void pressPlayPauseKey();

    MainActor mainActor_;
    ports::RunningApplications& applications_;
    ports::Automation& automation_;
    ports::EventPosting& eventPosting_;
    WeakAnchor<MediaPlayback> anchor_{*this};
    TaskBag tasks_; // of pauses under way
};

} // namespace sentrel
