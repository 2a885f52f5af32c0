#include "simulation/stage/MacSession.hpp"
#include "support/TemporaryFolder.hpp"

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace sentrel::simulation {
namespace {

using namespace std::chrono_literals;

/// A timer that lives in an armed Mac at rest: due every `interval`, `phase` after a full one.
struct KnownTimer {
    const char* name;
    Duration interval;
    Duration phase;
};

TEST(ArmedIdle, AMacAtRestWakesOnlyForTheTimersListedHere)
{
    const TemporaryFolder disk;
    MacSession session{{}, disk.path(), SENTREL_SOURCE_DIR "/resources", 1};
    session.mac().iCloud.link.setLatency(Duration::zero()); // answers need timers of their own
    session.launch();
    session.clock().advance(10300ms);
    session.changeSettings([](AlarmSettings& settings) { settings.isArmed = true; });
    session.clock().advance(60s);
    const KnownTimer timers[] = {
        {"the lid's state", 2s, 300ms},
        {"the power sources", 5s, 300ms},
        {"the phone's commands", 5s, 2s},
        {"the Mac's heartbeat", 30s, 0ms},
    };

    std::map<std::string, int> wakes;
    const Instant end = session.clock().now() + 1h;
    for (auto next = session.clock().nextDeadline(); next && *next <= end; next = session.clock().nextDeadline()) {
        session.clock().runUntil(*next);
        bool isKnown = false;
        for (const KnownTimer& timer : timers) {
            if (next->time_since_epoch() % timer.interval == timer.phase % timer.interval) {
                ++wakes[timer.name];
                isKnown = true;
            }
        }
        ASSERT_TRUE(isKnown) << "an unknown timer at " << toSeconds(next->time_since_epoch()) << " s";
    }
    EXPECT_EQ(wakes, (std::map<std::string, int>{{"the lid's state", 1800},
                                                 {"the power sources", 720},
                                                 {"the phone's commands", 720},
                                                 {"the Mac's heartbeat", 120}}));
}

} // namespace
} // namespace sentrel::simulation
