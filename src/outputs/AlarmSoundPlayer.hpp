#pragma once

#include "outputs/AlarmSoundWorker.hpp"
#include "runtime/MainActor.hpp"
#include "runtime/Weak.hpp"

#include <functional>
#include <string>

namespace sentrel {

/// The alarm sound for the main actor: each call but `stopAndWait` only posts to the worker and returns at once.
class AlarmSoundPlayer {
public:
    AlarmSoundPlayer(MainActor mainActor, const AlarmSoundServices& services);
    AlarmSoundPlayer(const AlarmSoundPlayer&) = delete;

    /// Called on the main actor with a localised message when the alarm falls back to the system's beep.
    std::function<void(const std::string& message)> onPlaybackDegraded;

    /// Starts the alarm at a volume setting of 0 to 1, unless it sounds already.
    void play(float volume) { worker_.play(volume); }

    /// Stops the alarm and restores the user's audio output.
    void stop() { worker_.stop(); }

    /// Like `stop`, but blocks until it is done, at most 2 s: for the end of the application. Main actor.
    void stopAndWait() { worker_.stopAndWait(); }

    /// Restores the audio output after a crash that left it taken over. Call once, at launch.
    void restoreLeftoverState() { worker_.restoreLeftoverState(); }

private:
    void report(std::string message);

    // Declared before the worker, which holds a weak handle: the worker is destroyed before the handles are cut.
    WeakAnchor<AlarmSoundPlayer> anchor_{*this};
    AlarmSoundWorker worker_;
};

} // namespace sentrel
