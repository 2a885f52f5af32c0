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

/// Pauses music, so that it doesn't compete with the alarm. Pausing never asks for the user's consent;
/// `requestAutomationConsent` does so ahead of time. Failures are ignored. Lives on the main actor.
class MediaPlayback {
public:
    MediaPlayback(MainActor mainActor, ports::RunningApplications& applications, ports::Automation& automation,
                  ports::EventPosting& eventPosting);
    MediaPlayback(const MediaPlayback&) = delete;

    /// The known players that are running. Any thread.
    [[nodiscard]] std::vector<MediaPlayer> listRunningPlayers() const;

    /// Asks the user's consent to automate the running players, ahead of any alarm. Takes as long as the user takes to
    /// answer; may be awaited off the main thread.
    [[nodiscard]] Async<void> requestAutomationConsent();

    /// Starts pausing a player and returns at once. The completion is called on the main actor when the attempt is
    /// over, or never if this object is destroyed first. Any thread.
    void pause(MediaPlayer player, std::function<void()> completion = nullptr);

    /// Starts pausing all running players and returns at once. Any thread.
    void pauseAll();

    /// Pauses all running players and waits at most 500 ms, the listing included. Awaited off the main actor.
    [[nodiscard]] Async<void> pauseAllAndWait();

    /// True when the player runs, may be automated and reports that it plays. Main actor.
    [[nodiscard]] Async<bool> isPlaying(MediaPlayer player);

private:
    using Completion = std::function<void()>;

    /// For coroutines off the main thread: the ports outlive this object, and `weak` is null after its end.
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
