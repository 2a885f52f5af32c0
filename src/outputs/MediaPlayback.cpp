#include "outputs/MediaPlayback.hpp"

#include "platform/SystemConstants.hpp"
#include "runtime/Detached.hpp"
#include "runtime/Semaphore.hpp"

#include <memory>
#include <optional>
#include <utility>

namespace sentrel {

namespace {

using namespace std::chrono_literals;

constexpr Duration longestWait = 500ms;

constexpr std::uint32_t keyDown = 0x0A; // in bits 8 to 15 of the flags and of the data
constexpr std::uint32_t keyUp = 0x0B;

const std::vector<MediaPlayer>& knownPlayers()
{
    static const std::vector<MediaPlayer> players{{"com.apple.Music", "Music"}};
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

platform::SystemDefinedEvent playPauseEvent(std::uint32_t keyState)
{
    const std::int64_t data = platform::playPauseKey << 16 | static_cast<std::int64_t>(keyState) << 8;
    return {platform::systemDefinedEvent, keyState << 8, platform::auxiliaryControl, data, -1};
}

Async<std::optional<std::int32_t>> determinePermission(platform::Automation& automation, std::string bundleIdentifier,
                                                       bool askUserIfNeeded)
{
    return automation.determinePermission(platform::bundleIdentifierType, std::move(bundleIdentifier),
                                          platform::anyAppleEvent, platform::anyAppleEvent, askUserIfNeeded);
}

} // namespace

MediaPlayback::MediaPlayback(MainActor mainActor, platform::RunningApplications& applications,
                             platform::Automation& automation, platform::EventPosting& eventPosting)
    : mainActor_(mainActor), applications_(applications), automation_(automation), eventPosting_(eventPosting)
{
}

std::vector<MediaPlayer> MediaPlayback::listRunningPlayers() const
{
    auto players = knownPlayers();
    std::erase_if(players, [this](const MediaPlayer& player) {
        return !applications_.isInstalled(player.bundleIdentifier) || !applications_.isRunning(player.bundleIdentifier);
    });
    return players;
}

Async<void> MediaPlayback::requestAutomationConsent()
{
    return askForConsent(mainActor_, automation_, anchor_.weak(), listRunningPlayers());
}

Async<void> MediaPlayback::askForConsent(MainActor mainActor, platform::Automation& automation,
                                         Weak<MediaPlayback> weak, std::vector<MediaPlayer> players)
{
    for (const MediaPlayer& player : players) {
        // The answer isn't needed: what counts is that the user has been asked.
        co_await determinePermission(automation, player.bundleIdentifier, true);
        mainActor.spawn(runPlayingTest(weak, player));
    }
}

Async<void> MediaPlayback::runPlayingTest(Weak<MediaPlayback> weak, MediaPlayer player)
{
    MediaPlayback* const playback = weak.get();
    if (playback == nullptr) {
        co_return;
    }
    platform::Automation& automation = playback->automation_;
    co_await automation.runScript(playingTestScript(player));
}

void MediaPlayback::pause(MediaPlayer player, std::function<void()> completion)
{
    const std::lock_guard guard{tasksLock_};
    tasks_.add(mainActor_.spawn(pauseOnMain(std::move(player), std::move(completion))));
}

Async<void> MediaPlayback::pauseOnMain(MediaPlayer player, std::function<void()> completion)
{
    const bool isPaused = co_await runPauseScript(player);
    if (!isPaused) {
        const bool stillPlays = co_await isPlaying(player);
        if (stillPlays) {
            pressPlayPauseKey();
        }
    }
    if (completion) {
        completion();
    }
}

Async<bool> MediaPlayback::runPauseScript(MediaPlayer player)
{
    const bool permitted = co_await isPermitted(player.bundleIdentifier);
    if (!permitted) {
        co_return false;
    }
    const auto result = co_await automation_.runScript(pauseScript(player));
    co_return result.has_value();
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
    const auto result = co_await automation_.runScript(playingTestScript(player));
    co_return result.value_or(false);
}

Async<bool> MediaPlayback::isPermitted(std::string bundleIdentifier)
{
    // Off the main thread, which it might occupy for long.
    const auto test = detached(mainActor_.scheduler(), QualityOfService::userInteractive,
                               determinePermission(automation_, std::move(bundleIdentifier), false));
    const auto status = co_await test;
    co_return status && *status == 0;
}

void MediaPlayback::pressPlayPauseKey()
{
    eventPosting_.postSystemDefined(playPauseEvent(keyDown), platform::hidEventTap);
    eventPosting_.postSystemDefined(playPauseEvent(keyUp), platform::hidEventTap);
}

Async<void> MediaPlayback::pauseAllAndWait()
{
    const auto players = listRunningPlayers();
    if (players.empty()) {
        co_return;
    }
    // Shared: a pause may outlast the wait for it.
    const auto finished = std::make_shared<Semaphore>();
    for (const MediaPlayer& player : players) {
        pause(player, [finished] { finished->signal(); });
    }
    const Instant deadline = mainActor_.scheduler().now() + longestWait;
    for (std::size_t i = 0; i < players.size(); ++i) {
        const bool isOver = co_await finished->waitUntil(deadline);
        if (!isOver) {
            break;
        }
    }
}

} // namespace sentrel
