#include "simulation/mac/music/SimulatedMusic.hpp"
#include "foundation/FourCharCode.hpp"
#include "runtime/MainActor.hpp"
#include "runtime/VirtualScheduler.hpp"
#include "simulation/EventLog.hpp"
#include "simulation/mac/music/SimulatedInput.hpp"

#include <gtest/gtest.h>

#include <memory>

namespace sentrel::simulation {
namespace {

using namespace std::chrono_literals;
using Consent = SimulatedMusic::Consent;
using Playback = SimulatedMusic::Playback;

constexpr auto pauseScript = "tell application \"Music\" to pause";
constexpr auto playingTest = "tell application \"Music\"\n    player state is playing\nend tell";
constexpr auto anyEvent = fourCharCode("****");
const std::string music = "com.apple.Music";

/// What is asked may be answered after whoever asked has gone on.
template <class Answer> using Kept = std::shared_ptr<std::optional<Answer>>;

template <class Answer> Async<void> keep(Async<Answer> question, Kept<Answer> kept)
{
    *kept = co_await std::move(question);
}

struct MusicTest : testing::Test {
    VirtualClock clock;
    VirtualScheduler hardware{clock};
    EventLog events{hardware};
    SimulatedMusic app{events};
    SimulatedInput input{[this] { app.togglePlayback(); }};
    VirtualScheduler scheduler{clock};
    MainActor mainActor{scheduler};

    template <class Answer> Kept<Answer> start(Async<Answer> question)
    {
        const auto kept = std::make_shared<std::optional<Answer>>();
        mainActor.spawn(keep(std::move(question), kept));
        clock.runReady();
        return kept;
    }

    Kept<std::optional<std::int32_t>> startPermission()
    {
        return start(app.determinePermission(fourCharCode("bund"), music, anyEvent, anyEvent, true));
    }

    /// What the script answers at once.
    std::string script(std::string source)
    {
        const auto answer = start(app.runScript(std::move(source), 5s));
        if (!*answer) {
            return "no answer";
        }
        return !**answer ? "failure" : ***answer ? "true" : "false";
    }

    void pressPlayPause(std::int64_t key = 16, std::uint32_t tap = 0)
    {
        input.postSystemDefined({14, 0xA00, 8, key << 16 | 0x0A00, -1}, tap);
        input.postSystemDefined({14, 0xB00, 8, key << 16 | 0x0B00, -1}, tap);
    }

    std::string story()
    {
        std::string told;
        for (const Event& event : events.events()) {
            told += event.name + (event.text("by").empty() ? " " : ":" + std::string{event.text("by")} + " ");
        }
        return told;
    }
};

TEST_F(MusicTest, TheOwnerAnswersTheQuestionInHisOwnTime)
{
    app.setPlayback(Playback::playing);
    app.setConsentDelay(4s);
    const auto answer = startPermission();
    clock.advance(3999ms);
    EXPECT_FALSE(*answer);
    EXPECT_EQ(script(playingTest), "failure") << "no consent yet";
    clock.advance(1ms);
    EXPECT_EQ(**answer, 0);
    EXPECT_EQ(script(playingTest), "true");
    EXPECT_EQ(story(), "consent.asked consent.answered ");
}

TEST_F(MusicTest, OnlyARealTransitionIsNoted)
{
    app.setConsent(Consent::granted);
    EXPECT_EQ(script(pauseScript), "failure") << "a script doesn't open the app here";
    app.play();
    EXPECT_EQ(script(pauseScript), "false");
    EXPECT_EQ(script(pauseScript), "false") << "paused already";
    EXPECT_EQ(script(playingTest), "false");
    pressPlayPause();
    pressPlayPause();
    app.pause();
    app.quit();
    pressPlayPause();
    EXPECT_EQ(story(), "music.playing:user music.paused:script music.playing:key music.paused:key music.quit ");
    EXPECT_EQ(app.playback(), Playback::absent);
}

TEST_F(MusicTest, AScriptMayFailOrBeLateOrNeverAnswer)
{
    app.setConsent(Consent::granted);
    app.setPlayback(Playback::playing);
    app.faults().set("script", 1);
    EXPECT_EQ(script(pauseScript), "failure");

    app.faults().set("script-slow", 1);
    EXPECT_EQ(script(pauseScript), "no answer");
    clock.advance(1999ms);
    EXPECT_EQ(app.playback(), Playback::playing);
    clock.advance(1ms);
    EXPECT_EQ(app.playback(), Playback::paused);

    app.play();
    app.faults().set("script-hangs", 1);
    EXPECT_EQ(script(pauseScript), "no answer");
    clock.advance(24h);
    EXPECT_EQ(app.playback(), Playback::playing);
}

TEST_F(MusicTest, OnlyThePlayPauseKeyAtTheHardwareTapIsHeard)
{
    app.setPlayback(Playback::playing);
    pressPlayPause(17);
    pressPlayPause(16, 1);
    input.postSystemDefined({14, 0xA00, 7, 0x100A00, -1}, 0);
    EXPECT_EQ(app.playback(), Playback::playing);
    input.faults().set("event", 1);
    EXPECT_FALSE(input.postSystemDefined({14, 0xA00, 8, 0x100A00, -1}, 0));
    EXPECT_EQ(app.playback(), Playback::playing);
    EXPECT_EQ(input.posted().size(), 5U);
    pressPlayPause();
    EXPECT_EQ(app.playback(), Playback::paused);
}

} // namespace
} // namespace sentrel::simulation
