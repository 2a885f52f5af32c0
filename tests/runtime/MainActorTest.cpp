#include "core/SettingsStore.hpp"
#include "runtime/SerialQueue.hpp"
#include "runtime/ThreadScheduler.hpp"
#include "support/MemoryDefaults.hpp"
#include "support/VirtualMachine.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <vector>

namespace sentrel {
namespace {

/// Whether the main actor is current outside any job, on a queue, in detached work, and in a main job, in this order.
std::vector<bool> answers(Scheduler& scheduler, const std::function<void()>& run, const std::function<void()>& end)
{
    const MainActor actor{scheduler};
    std::vector<bool> answers{actor.isCurrent()};
    SerialQueue queue{scheduler, "elsewhere", QualityOfService::standard};
    queue.async([&] {
        answers.push_back(actor.isCurrent());
        post(scheduler.globalExecutor(QualityOfService::utility), [&] {
            answers.push_back(actor.isCurrent());
            post(scheduler.mainExecutor(), [&] {
                answers.push_back(actor.isCurrent());
                end();
            });
        });
    });
    run();
    return answers;
}

TEST(ThreadsMainActor, IsCurrentInItsOwnJobsAndWhereNoJobRunsOnEitherScheduler)
{
    const auto expected = testing::ElementsAre(true, false, false, true);
    test::VirtualMachine machine;
    EXPECT_THAT(answers(machine.scheduler, [&] { machine.clock.runUntilIdle(); }, [] {}), expected);
    ThreadScheduler scheduler;
    EXPECT_THAT(answers(scheduler, [&] { scheduler.runMain(); }, [&] { scheduler.stopMain(); }), expected);
}

TEST(MainActor, EndsADebugBuildThatCallsItsServicesFromElsewhere)
{
    test::VirtualMachine machine;
    test::MemoryDefaults defaults;
    SettingsStore settings{machine.mainActor, defaults};
    SerialQueue queue{machine.scheduler, "elsewhere", QualityOfService::standard};
    queue.async([&] { settings.setSettings({}); });
    EXPECT_DEBUG_DEATH(machine.clock.runUntilIdle(), "off the main actor");
}

} // namespace
} // namespace sentrel
