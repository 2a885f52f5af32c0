#pragma once

#include "ports/Automation.hpp"
#include "ports/Journal.hpp"
#include "runtime/Time.hpp"
#include "simulation/FaultSwitches.hpp"

#include <atomic>
#include <string_view>

namespace sentrel::simulation {

/// The Music app of the simulated MacBook, the only application that can be scripted there, and the user's consent to
/// that. Notes `music.paused` and `music.playing` {by: script, key or user} when playback really changes, `music.quit`,
/// `consent.asked` and `consent.answered` {granted}. Any thread. A caller that is cancelled while it waits gets a
/// `CancellationError`. It must outlive the tasks that call it.
class SimulatedMusic final : public ports::RunningApplications, public ports::Automation {
public:
    enum class Playback { absent, paused, playing };
    enum class Consent { undetermined, denied, granted };

    explicit SimulatedMusic(ports::Journal& journal) : journal_(journal) {}

    [[nodiscard]] bool isInstalled(const std::string& bundleIdentifier) override;
    [[nodiscard]] bool isRunning(const std::string& bundleIdentifier) override;

    /// `noErr`, `errAEEventNotPermitted`, `errAEEventWouldRequireUserConsent` or `procNotFound`. If the owner must be
    /// asked, the answer is yes by default.
    [[nodiscard]] Async<std::optional<std::int32_t>>
    determinePermission(std::uint32_t descriptorType, std::string bundleIdentifier, std::uint32_t eventClass,
                        std::uint32_t eventId, bool askUserIfNeeded) override;

    /// Understands two scripts for "Music": the playing test and the pause command. Others are syntax errors. Fails
    /// without consent and if the app isn't running, and after the limit.
    [[nodiscard]] Async<std::optional<bool>> runScript(std::string source, Duration limit) override;

    /// Actions of the user; `play` also opens the app.
    void play();
    void pause();
    void quit();

    /// The play/pause key is pressed. No effect if the app isn't running.
    void togglePlayback();

    [[nodiscard]] Playback playback() const { return playback_; }

    /// These set the initial state; nothing is noted.
    void setPlayback(Playback playback) { playback_ = playback; }
    void setConsent(Consent consent) { consent_ = consent; }
    [[nodiscard]] Consent consent() const { return consent_; }

    /// Time until the owner answers the question for consent; 0 at first.
    void setConsentDelay(Duration delay) { consentDelay_ = delay; }

    /// `not-installed`: the app isn't found. `descriptor`: no Apple Event target can be made. `consent`: the owner
    /// answers no. `script` fails without an effect, `script-slow` answers after 2 s, `script-hangs` gives no answer
    /// within any limit.
    [[nodiscard]] FaultSwitches& faults() { return faults_; }

private:
    Async<std::int32_t> askOwner();
    std::optional<bool> execute(const std::string& source);
    void change(std::string_view by, Playback (*next)(Playback now));

    FaultSwitches faults_{"not-installed", "descriptor", "consent", "script", "script-slow", "script-hangs"};
    ports::Journal& journal_;
    std::atomic<Playback> playback_ = Playback::absent;
    std::atomic<Consent> consent_ = Consent::undetermined;
    std::atomic<Duration> consentDelay_ = Duration::zero();
};

} // namespace sentrel::simulation
