#pragma once

#include "outputs/AlarmSoundWorker.hpp"
#include "runtime/MainActor.hpp"
#include "runtime/Weak.hpp"

#include <functional>
#include <string>

namespace sentrel {

/// The alarm sound as the main actor sees it: each call only asks the worker and returns at once.
class AlarmSoundPlayer {
public:
    AlarmSoundPlayer(MainActor mainActor, const AlarmSoundServices& services);
    AlarmSoundPlayer(const AlarmSoundPlayer&) = delete;

    /// Called on the main actor with a localised message when the alarm has had to fall back to the system's beep.
    std::function<void(const std::string& message)> onPlaybackDegraded;

    /// Starts the alarm at a volume setting of 0 to 1, unless it sounds already.
    void play(float volume) { worker_.play(volume); }

    /// Stops the alarm and puts the user's audio output back.
    void stop() { worker_.stop(); }

    /// The same, but returns when it is done: for the end of the application. Main actor.
    void stopAndWait() { worker_.stopAndWait(); }

    /// Puts the audio output back that a crash has left behind. Once, at launch.
    void restoreLeftoverState() { worker_.restoreLeftoverState(); }

private:
    static Async<void> deliver(Weak<AlarmSoundPlayer> weak, std::string message);

    // Before the worker, which holds a weak handle from the start and is gone when the handles are cut.
    WeakAnchor<AlarmSoundPlayer> anchor_{*this};
    AlarmSoundWorker worker_;
};

} // namespace sentrel
