#include "runtime/MainActor.hpp"
#include "runtime/SerialQueue.hpp"
#include "runtime/Sleep.hpp"
#include "runtime/VirtualScheduler.hpp"

#include <gtest/gtest.h>

#include <string>

namespace sentrel {
namespace {

using namespace std::chrono_literals;

Async<void> sayAfter(Duration span, std::string word, std::string& story)
{
    co_await sleepFor(span);
    story += word;
}

TEST(VirtualTime, AHeldQueueDelaysTheNextJobAndSyncWaitsItsTurn)
{
    VirtualClock clock;
    VirtualScheduler scheduler{clock};
    SerialQueue queue{scheduler, "test", QualityOfService::standard};
    std::string story;

    queue.async(sayAfter(2s, "slow ", story));
    queue.async([&] { story += "next "; });
    post(scheduler.mainExecutor(), [&] { queue.sync([&] { story += "sync"; }); });
    clock.runReady();

    EXPECT_EQ(story, "slow next sync");
    EXPECT_EQ(clock.now().time_since_epoch(), 2s);
}

} // namespace
} // namespace sentrel
