#include "cloud/AsyncTimeout.hpp"

#include "runtime/VirtualScheduler.hpp"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace sentrel {
namespace {

using namespace std::chrono_literals;

class AsyncTimeoutTest : public testing::Test {
protected:
    Async<int> answerAfter(Duration span)
    {
        try {
            co_await sleepFor(span);
        } catch (const CancellationError&) {
            story += "operation cancelled; ";
            throw;
        }
        co_return 42;
    }

    Async<int> failAfter(Duration span)
    {
        co_await sleepFor(span);
        throw std::runtime_error{"out of order"};
    }

    Async<void> tell(Async<int> operation, Duration timeout)
    {
        try {
            const MainActor mainActor{scheduler};
            const int answer = co_await AsyncTimeout::run(mainActor, timeout, std::move(operation));
            story += std::to_string(answer);
        } catch (const std::exception& error) {
            story += error.what();
        }
        story += " at " + std::to_string(clock.now().time_since_epoch() / 1ms) + " ms";
    }

    std::string run(Async<int> operation, Duration timeout)
    {
        story.clear();
        MainActor{scheduler}.spawn(tell(std::move(operation), timeout));
        clock.runUntilIdle();
        return story;
    }

    VirtualClock clock;
    VirtualScheduler scheduler{clock};
    std::string story;
};

TEST_F(AsyncTimeoutTest, WhicheverEndsFirstDecides)
{
    EXPECT_EQ(run(answerAfter(1s), 2s), "42 at 1000 ms");
    // The clock has run on to 1 s only: the deadline's sleep was cancelled with the answer.
    EXPECT_EQ(run(answerAfter(3s), 2s), "timed out at 3000 msoperation cancelled; ");
    EXPECT_EQ(run(failAfter(1s), 2s), "out of order at 4000 ms");
    EXPECT_EQ(run(answerAfter(2s), 2s), "42 at 6000 ms") << "of two equal deadlines the earlier one";
    EXPECT_EQ(run(answerAfter(1s), 0s), "timed out at 6000 msoperation cancelled; ");
}

TEST_F(AsyncTimeoutTest, ACancelledCallerGetsItsCancellationAtOnce)
{
    const Task<void> caller = MainActor{scheduler}.spawn(tell(answerAfter(10s), 20s));
    clock.advance(1s);
    caller.cancel();
    clock.runUntilIdle();
    EXPECT_EQ(story, "cancelled at 1000 msoperation cancelled; ");
    EXPECT_EQ(clock.now().time_since_epoch(), 1s) << "nothing waits any more";
}

} // namespace
} // namespace sentrel
