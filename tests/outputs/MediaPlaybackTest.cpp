#include "outputs/MediaPlayback.hpp"
#include "runtime/Detached.hpp"
#include "runtime/SerialQueue.hpp"
#include "runtime/VirtualScheduler.hpp"
#include "simulation/EventLog.hpp"
#include "simulation/mac/music/SimulatedInput.hpp"
#include "simulation/mac/music/SimulatedMusic.hpp"

#include <gtest/gtest.h>

#include <memory>

namespace sentrel {
namespace {

using namespace std::chrono_literals;
using Consent = simulation::SimulatedMusic::Consent;
using Playback = simulation::SimulatedMusic::Playback;

struct MusicalMac {
    VirtualClock clock;
    VirtualScheduler hardware{clock};
    simulation::EventLog log{hardware};
    simulation::SimulatedMusic music{log};
    simulation::SimulatedInput input{[this] { music.togglePlayback(); }};
    VirtualScheduler scheduler{clock}; // ends the tasks that ask the music, before the music goes
    std::unique_ptr<MediaPlayback> media = std::make_unique<MediaPlayback>(MainActor{scheduler}, music, music, input);
    SerialQueue queue{scheduler, "test", QualityOfService::standard};

    MusicalMac(Playback playback, Consent consent)
    {
        music.setPlayback(playback);
        music.setConsent(consent);
    }

    /// Pauses everything on a queue; returns how long that held the queue.
    Duration pauseAll()
    {
        const Instant start = clock.now();
        std::optional<Instant> end;
        queue.async(media->pauseAllAndWait());
        queue.async([&] { end = clock.now(); });
        clock.advance(10s);
        return end.value() - start;
    }
};

TEST(MediaPlayback, PausesMusicByScriptOrKeyButNeverWithoutConsent)
{
    struct Case {
        const char* what;
        Playback before;
        Consent consent;
        const char* fault;
        Playback after;
        Duration wait;
    };
    const std::vector<Case> cases{
        {"no Music", Playback::absent, Consent::granted, "", Playback::absent, 0ms},
        {"playing", Playback::playing, Consent::granted, "", Playback::paused, 0ms},
        {"paused", Playback::paused, Consent::granted, "", Playback::paused, 0ms},
        {"not found", Playback::playing, Consent::granted, "not-installed", Playback::playing, 0ms},
        {"refused", Playback::playing, Consent::denied, "", Playback::playing, 0ms},
        {"not asked yet", Playback::playing, Consent::undetermined, "", Playback::playing, 0ms},
        {"no descriptor", Playback::playing, Consent::granted, "descriptor", Playback::playing, 0ms},
        {"slow", Playback::playing, Consent::granted, "script-slow", Playback::paused, 500ms},
        {"hanging", Playback::playing, Consent::granted, "script-hangs", Playback::playing, 500ms},
        {"raising", Playback::playing, Consent::granted, "raises", Playback::playing, 0ms},
    };
    for (const Case& example : cases) {
        MusicalMac mac{example.before, example.consent};
        if (*example.fault != '\0') {
            ASSERT_TRUE(mac.music.faults().set(example.fault));
        }
        EXPECT_EQ(mac.pauseAll(), example.wait) << example.what;
        EXPECT_EQ(mac.music.playback(), example.after) << example.what;
        EXPECT_EQ(mac.input.posted().size(), 0U) << example.what;
        EXPECT_TRUE(mac.log.named("consent.asked").empty()) << example.what;
    }
}

TEST(MediaPlayback, PressesThePlayKeyOnceWhenTheScriptFailsAndMusicStillPlays)
{
    MusicalMac mac{Playback::playing, Consent::granted};
    mac.music.faults().set("script", 1);
    EXPECT_EQ(mac.pauseAll(), 0ms);
    EXPECT_EQ(mac.music.playback(), Playback::paused);
    const auto posted = mac.input.posted();
    ASSERT_EQ(posted.size(), 2U);
    for (const auto& [event, tap] : posted) {
        EXPECT_EQ(event.type, 14U);
        EXPECT_EQ(event.subtype, 8);
        EXPECT_EQ(event.data2, -1);
        EXPECT_EQ(tap, 0U);
    }
    EXPECT_EQ(posted[0].event.modifierFlags, 0xA00U);
    EXPECT_EQ(posted[0].event.data1, 0x100A00);
    EXPECT_EQ(posted[1].event.modifierFlags, 0xB00U);
    EXPECT_EQ(posted[1].event.data1, 0x100B00);

    mac.music.faults().set("script", 1);
    mac.pauseAll();
    EXPECT_EQ(mac.input.posted().size(), 2U) << "the key would start what is paused";
}

TEST(MediaPlayback, AScriptThatHangsCountsAsNotPausedAfterTwoSeconds)
{
    MusicalMac mac{Playback::playing, Consent::granted};
    mac.music.faults().set("script-hangs", 1);
    bool isOver = false;
    mac.media->pause({"com.apple.Music", "Music"}, [&] { isOver = true; });
    mac.clock.advance(1999ms);
    EXPECT_EQ(mac.music.playback(), Playback::playing);
    EXPECT_FALSE(isOver);
    mac.clock.advance(1ms);
    EXPECT_EQ(mac.music.playback(), Playback::paused) << "by the key";
    EXPECT_TRUE(isOver);
}

TEST(MediaPlayback, AsksForConsentAheadAndThenPauses)
{
    MusicalMac mac{Playback::playing, Consent::undetermined};
    mac.music.setConsentDelay(3s);
    const auto request = detached(mac.scheduler, QualityOfService::utility, mac.media->requestAutomationConsent());
    mac.clock.advance(2999ms);
    EXPECT_FALSE(request.isFinished());
    mac.clock.advance(1ms);
    EXPECT_TRUE(request.isFinished());
    EXPECT_EQ(mac.log.named("consent.asked").size(), 1U);
    EXPECT_EQ(mac.music.playback(), Playback::playing) << "asking stops nothing";
    mac.pauseAll();
    EXPECT_EQ(mac.music.playback(), Playback::paused);
}

TEST(MediaPlayback, MayDieWhileAPauseOrAQuestionIsUnderWay)
{
    for (const char* const fault : {"script-slow", "script-hangs"}) {
        MusicalMac mac{Playback::playing, Consent::granted};
        mac.music.faults().set(fault);
        bool isOver = false;
        mac.media->pause({"com.apple.Music", "Music"}, [&] { isOver = true; });
        mac.clock.advance(1s);
        mac.media.reset();
        mac.clock.advance(1min);
        EXPECT_FALSE(isOver);
        EXPECT_EQ(mac.music.playback(), Playback::playing) << "what died pauses nothing any more";
    }
    MusicalMac asking{Playback::playing, Consent::undetermined};
    asking.music.setConsentDelay(3s);
    const auto request =
        detached(asking.scheduler, QualityOfService::utility, asking.media->requestAutomationConsent());
    asking.clock.advance(1s);
    asking.media.reset();
    asking.clock.advance(1min);
    EXPECT_TRUE(request.isFinished());
}

} // namespace
} // namespace sentrel
