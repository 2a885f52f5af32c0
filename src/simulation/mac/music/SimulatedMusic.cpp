#include "simulation/mac/music/SimulatedMusic.hpp"

#include "foundation/FourCharCode.hpp"
#include "runtime/Sleep.hpp"
#include "simulation/Events.hpp"

#include <algorithm>

namespace sentrel::simulation {

namespace {

constexpr std::string_view musicIdentifier = "com.apple.Music";

// Carbon Core's MacErrors.h.
constexpr std::int32_t noErr = 0;
constexpr std::int32_t procNotFound = -600;
constexpr std::int32_t errAEEventNotPermitted = -1743;
constexpr std::int32_t errAEEventWouldRequireUserConsent = -1744;

// The only scripts that compile here.
constexpr std::string_view playingTestScript = "tell application \"Music\"\n"
                                               "    player state is playing\n"
                                               "end tell";
constexpr std::string_view pauseScript = "tell application \"Music\" to pause";

constexpr Duration slowScript = std::chrono::seconds{2};

// Pausing affects only a playing app.
SimulatedMusic::Playback paused(SimulatedMusic::Playback now)
{
    return now == SimulatedMusic::Playback::playing ? SimulatedMusic::Playback::paused : now;
}

} // namespace

bool SimulatedMusic::isInstalled(const std::string& bundleIdentifier)
{
    faults_.call("isInstalled");
    return bundleIdentifier == musicIdentifier && !faults_.strikes("not-installed");
}

bool SimulatedMusic::isRunning(const std::string& bundleIdentifier)
{
    faults_.call("isRunning");
    return bundleIdentifier == musicIdentifier && playback() != Playback::absent;
}

Async<std::optional<std::int32_t>> SimulatedMusic::determinePermission(std::uint32_t descriptorType,
                                                                       std::string bundleIdentifier, std::uint32_t,
                                                                       std::uint32_t, bool askUserIfNeeded)
{
    co_await faults_.awaitedCall("determinePermission");
    if (faults_.strikes("descriptor")) {
        co_return std::nullopt;
    }
    if (descriptorType != fourCharCode("bund") || bundleIdentifier != musicIdentifier ||
        playback() == Playback::absent) {
        co_return procNotFound;
    }
    const Consent known = consent();
    if (known != Consent::undetermined) {
        co_return known == Consent::granted ? noErr : errAEEventNotPermitted;
    }
    if (!askUserIfNeeded) {
        co_return errAEEventWouldRequireUserConsent;
    }
    const std::int32_t answer = co_await askOwner();
    co_return answer;
}

Async<std::int32_t> SimulatedMusic::askOwner()
{
    journal_.note(events::ConsentAsked{musicIdentifier});
    const Duration delay = consentDelay_;
    if (delay > Duration::zero()) {
        co_await sleepFor(delay);
    }
    // The owner answers concurrent questions once.
    if (consent() == Consent::undetermined) {
        const bool isGranted = !faults_.strikes("consent");
        setConsent(isGranted ? Consent::granted : Consent::denied);
        journal_.note(events::ConsentAnswered{isGranted});
    }
    co_return consent() == Consent::granted ? noErr : errAEEventNotPermitted;
}

Async<std::optional<bool>> SimulatedMusic::runScript(std::string source, Duration limit)
{
    co_await faults_.awaitedCall("runScript");
    Duration delay{};
    if (faults_.strikes("script-hangs")) {
        delay = Duration::max();
    } else if (faults_.strikes("script-slow")) {
        delay = slowScript;
    }
    if (delay > Duration::zero()) {
        co_await sleepFor(std::min(delay, limit));
    }
    if (delay > limit) {
        co_return std::nullopt;
    }
    if (faults_.strikes("script")) {
        co_return std::nullopt;
    }
    co_return execute(source);
}

std::optional<bool> SimulatedMusic::execute(const std::string& source)
{
    const bool isPause = source == pauseScript;
    const bool isUnderstood = isPause || source == playingTestScript;
    const Playback now = playback();
    if (!isUnderstood || now == Playback::absent || consent() != Consent::granted) {
        return std::nullopt;
    }
    if (!isPause) {
        return now == Playback::playing;
    }
    change("script", paused);
    return false; // a command has no result, which counts as false
}

void SimulatedMusic::play()
{
    change("user", [](Playback) { return Playback::playing; });
}

void SimulatedMusic::pause()
{
    change("user", paused);
}

void SimulatedMusic::quit()
{
    change("user", [](Playback) { return Playback::absent; });
}

void SimulatedMusic::togglePlayback()
{
    change("key", [](Playback now) { return now == Playback::paused ? Playback::playing : paused(now); });
}

void SimulatedMusic::change(std::string_view by, Playback (*next)(Playback now))
{
    Playback before = playback_;
    while (!playback_.compare_exchange_weak(before, next(before))) {
    }
    const Playback after = next(before);
    if (before == after) {
        return;
    }
    switch (after) {
    case Playback::absent:
        return journal_.note(events::MusicQuit{});
    case Playback::paused:
        return journal_.note(events::MusicPaused{by});
    case Playback::playing:
        return journal_.note(events::MusicPlaying{by});
    }
}

} // namespace sentrel::simulation
