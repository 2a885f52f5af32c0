#pragma once

#include "ports/Automation.hpp"
#include "ports/Journal.hpp"
#include "runtime/Semaphore.hpp"
#include "runtime/Time.hpp"
#include "simulation/FaultSwitches.hpp"

#include <mutex>
#include <string_view>

namespace sentrel::simulation {

/// The Music app of the simulated MacBook, the one application that others may script there, and the user's consent to
/// that. Notes `music.paused` and `music.playing` {by: script, key or user} when the music really stops or goes on,
/// `music.quit`, `consent.asked` and `consent.answered` {granted}. Any thread. A caller that is cancelled while it
/// waits gets a `CancellationError`. It outlives the tasks that ask it.
class SimulatedMusic final : public ports::RunningApplications, public ports::Automation {
public:
    enum class Playback { absent, paused, playing };
    enum class Consent { undetermined, denied, granted };

    explicit SimulatedMusic(ports::Journal& journal) : journal_(journal) {}

    [[nodiscard]] bool isInstalled(const std::string& bundleIdentifier) override;
    [[nodiscard]] bool isRunning(const std::string& bundleIdentifier) override;

    /// `noErr`, `errAEEventNotPermitted`, `errAEEventWouldRequireUserConsent` or `procNotFound`. When it has to ask,
    /// the owner, who is at the Mac, answers yes.
    [[nodiscard]] Async<std::optional<std::int32_t>>
    determinePermission(std::uint32_t descriptorType, std::string bundleIdentifier, std::uint32_t eventClass,
                        std::uint32_t eventId, bool askUserIfNeeded) override;

    /// Understands two scripts that name "Music": the question whether it plays, and the order to pause. Any other is
    /// a syntax error. Fails without consent and when the app isn't running.
    [[nodiscard]] Async<std::optional<bool>> runScript(std::string source) override;

    /// What the user does at the app: opens it and plays, pauses, quits.
    void play();
    void pause();
    void quit();

    /// The play/pause key is pressed. Without the app running nothing happens.
    void togglePlayback();

    [[nodiscard]] Playback playback() const;

    /// How things stand at first: nothing is noted.
    void setPlayback(Playback playback);
    void setConsent(Consent consent);
    [[nodiscard]] Consent consent() const;

    /// How long the owner takes to answer the question for consent; at first no time at all.
    void setConsentDelay(Duration delay);

    /// How long a script takes under the fault `script-slow`; 2 s at first.
    void setScriptDelay(Duration delay);

    /// `not-installed`: the app isn't found. `descriptor`: no Apple Event target can be made. `consent`: the owner
    /// answers no. `script` fails without an effect, `script-slow` answers late, `script-hangs` never answers.
    [[nodiscard]] FaultSwitches& faults() { return faults_; }

private:
    Async<std::int32_t> askOwner();
    std::optional<bool> execute(const std::string& source);
    void change(std::string_view by, Playback (*next)(Playback now));
    [[nodiscard]] Duration consentDelay() const;
    [[nodiscard]] Duration scriptDelay() const;

    FaultSwitches faults_{"not-installed", "descriptor", "consent", "script", "script-slow", "script-hangs"};
    ports::Journal& journal_;
    mutable std::mutex mutex_;
    Playback playback_ = Playback::absent;
    Consent consent_ = Consent::undetermined;
    Duration consentDelay_{};
    Duration scriptDelay_ = std::chrono::seconds{2};
    Semaphore never_; // nobody signals it: what waits here has no answer
};

} // namespace sentrel::simulation
