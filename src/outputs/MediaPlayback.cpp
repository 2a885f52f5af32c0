#include "outputs/MediaPlayback.hpp"

#include "foundation/Quietly.hpp"
#include "ports/SystemConstants.hpp"
#include "runtime/Detached.hpp"
#include "runtime/Semaphore.hpp"

#include <atomic>
#include <memory>
#include <optional>
#include <utility>

namespace sentrel {

namespace {

using namespace std::chrono_literals;

constexpr Duration longestWait = 500ms;
constexpr Duration scriptLimit = 2s; // the script blocks the main thread meanwhile
constexpr std::int32_t noError = 0;

constexpr std::uint32_t keyDown = 0x0A; // NX_KEYDOWN, in bits 8 to 15 of the flags and of the data
constexpr std::uint32_t keyUp = 0x0B;   // NX_KEYUP

std::vector<MediaPlayer> runningPlayers(ports::RunningApplications& applications)
{
    // No static object: this runs on a queue, also while the process exits.
    std::vector<MediaPlayer> players{{"com.apple.Music", "Music"}};
    std::erase_if(players, [&applications](const MediaPlayer& player) {
        return !applications.isInstalled(player.bundleIdentifier) || !applications.isRunning(player.bundleIdentifier);
    });
    return players;
}

std::string playingTestScript(const MediaPlayer& player)
{
    return "tell application \"" + player.name + "\"\n    player state is playing\nend tell";
}

std::string pauseScript(const MediaPlayer& player)
{
    return "tell application \"" + player.name + "\" to pause";
}

ports::SystemDefinedEvent playPauseEvent(std::uint32_t keyState)
{
    const std::int64_t data = ports::playPauseKey << 16 | static_cast<std::int64_t>(keyState) << 8;
    return {ports::systemDefinedEvent, keyState << 8, ports::auxiliaryControl, data, -1};
}

Async<std::optional<std::int32_t>> determinePermission(ports::Automation& automation, std::string bundleIdentifier,
                                                       bool askUserIfNeeded)
{
    return automation.determinePermission(ports::bundleIdentifierType, std::move(bundleIdentifier),
                                          ports::anyAppleEvent, ports::anyAppleEvent, askUserIfNeeded);
}

} // namespace

MediaPlayback::MediaPlayback(MainActor mainActor, ports::RunningApplications& applications,
                             ports::Automation& automation, ports::EventPosting& eventPosting)
    : mainActor_(mainActor), applications_(applications), automation_(automation), eventPosting_(eventPosting)
{
}

std::vector<MediaPlayer> MediaPlayback::listRunningPlayers() const
{
    return runningPlayers(applications_);
}

MediaPlayback::Helpers MediaPlayback::helpers() const
{
    return {mainActor_, applications_, automation_, anchor_.weak()};
}

Async<void> MediaPlayback::requestAutomationConsent()
{
    return askForConsent(helpers());
}

Async<void> MediaPlayback::askForConsent(Helpers with)
{
    const auto players = runningPlayers(with.applications);
    for (const MediaPlayer& player : players) {
        // The answer is ignored: the call only makes the system ask the user.
        co_await determinePermission(with.automation, player.bundleIdentifier, true);
        with.mainActor.spawn(runPlayingTest(with.weak, player));
    }
}

Async<void> MediaPlayback::runPlayingTest(Weak<MediaPlayback> weak, MediaPlayer player)
{
    MediaPlayback* const playback = weak.get();
    if (playback == nullptr) {
        co_return;
    }
    ports::Automation& automation = playback->automation_;
    co_await automation.runScript(playingTestScript(player), scriptLimit);
}

void MediaPlayback::pause(MediaPlayer player, std::function<void()> completion)
{
    detached(mainActor_.scheduler(), QualityOfService::userInteractive,
             testAndPause(helpers(), std::move(player), std::move(completion)));
}

/// The permission test may take arbitrarily long, so it runs off the main thread; the rest runs on it.
Async<void> MediaPlayback::testAndPause(Helpers with, MediaPlayer player, Completion completion)
{
    bool isPermitted = false;
    try {
        const auto status = co_await determinePermission(with.automation, player.bundleIdentifier, false);
        isPermitted = status && *status == noError;
    } catch (...) {
        // An exception counts as a refusal.
    }
    with.mainActor.spawn(pauseIfAlive(with.weak, std::move(player), isPermitted, std::move(completion)));
}

Async<void> MediaPlayback::pauseIfAlive(Weak<MediaPlayback> weak, MediaPlayer player, bool isPermitted,
                                        Completion completion)
{
    if (MediaPlayback* const self = weak.get()) {
        self->tasks_.add(
            self->mainActor_.spawn(self->pauseOnMain(std::move(player), isPermitted, std::move(completion))));
    }
    co_return;
}

Async<void> MediaPlayback::pauseOnMain(MediaPlayer player, bool isPermitted, Completion completion)
{
    bool isPaused = false;
    try {
        isPaused = co_await runPauseScript(player, isPermitted);
    } catch (...) {
        // An exception counts as a failure.
    }
    try {
        if (!isPaused) {
            co_await pressKeyIfPlaying(player);
        }
    } catch (...) {
        // The attempt is over in any case.
    }
    if (completion) {
        completion();
    }
}

Async<bool> MediaPlayback::runPauseScript(MediaPlayer player, bool isPermitted)
{
    if (!isPermitted) {
        co_return false;
    }
    const auto result = co_await automation_.runScript(pauseScript(player), scriptLimit);
    co_return result.has_value();
}

Async<void> MediaPlayback::pressKeyIfPlaying(MediaPlayer player)
{
    const bool stillPlays = co_await isPlaying(std::move(player));
    if (stillPlays) {
        pressPlayPauseKey();
    }
}

Async<bool> MediaPlayback::isPlaying(MediaPlayer player)
{
    if (!applications_.isRunning(player.bundleIdentifier)) {
        co_return false;
    }
    const bool permitted = co_await isPermitted(player.bundleIdentifier);
    if (!permitted) {
        co_return false;
    }
    const auto result = co_await automation_.runScript(playingTestScript(player), scriptLimit);
    co_return result.value_or(false);
}

Async<bool> MediaPlayback::isPermitted(std::string bundleIdentifier)
{
    // Off the main thread, which the test might block for long.
    const auto test = detached(mainActor_.scheduler(), QualityOfService::userInteractive,
                               determinePermission(automation_, std::move(bundleIdentifier), false));
    const auto status = co_await test;
    co_return status && *status == noError;
}

void MediaPlayback::pressPlayPauseKey()
{
    eventPosting_.postSystemDefined(playPauseEvent(keyDown), ports::hidEventTap);
    eventPosting_.postSystemDefined(playPauseEvent(keyUp), ports::hidEventTap);
}

void MediaPlayback::pauseAll()
{
    detached(mainActor_.scheduler(), QualityOfService::userInteractive, pauseEach(helpers(), nullptr));
}

Async<void> MediaPlayback::pauseAllAndWait()
{
    // Shared, because a pause may outlast the wait for it.
    const auto finished = std::make_shared<Semaphore>();
    // Listing the players is detached, too: a launch service that hangs must not hold up the alarm.
    detached(mainActor_.scheduler(), QualityOfService::userInteractive,
             pauseEach(helpers(), [finished] { finished->signal(); }));
    co_await finished->waitUntil(mainActor_.scheduler().now() + longestWait);
}

/// Starts a pause for each running player. Calls `allOver` when the last one is over, or at once if there is none.
Async<void> MediaPlayback::pauseEach(Helpers with, Completion allOver)
{
    const auto players = quietly([&with] { return runningPlayers(with.applications); });
    if (players.empty() && allOver) {
        allOver();
    }
    const auto left = std::make_shared<std::atomic<std::size_t>>(players.size());
    for (const MediaPlayer& player : players) {
        Completion isOver = [left, allOver] {
            if (left->fetch_sub(1) == 1 && allOver) {
                allOver();
            }
        };
        detached(with.mainActor.scheduler(), QualityOfService::userInteractive,
                 testAndPause(with, player, std::move(isOver)));
    }
    co_return;
}

} // namespace sentrel
