#include "sensors/PowerAssertion.hpp"
#include "runtime/VirtualScheduler.hpp"
#include "simulation/EventLog.hpp"
#include "simulation/mac/power/SimulatedAssertions.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace sentrel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(PowerAssertion, IsHeldOnceHoweverOftenItIsAcquiredAndAskedForAgainAfterARefusal)
{
    VirtualClock clock;
    VirtualScheduler scheduler{clock};
    simulation::EventLog log{scheduler};
    simulation::SimulatedAssertions assertions{log};
    {
        PowerAssertion assertion{assertions};
        assertion.release();
        EXPECT_EQ(log.size(), 0U) << "nothing is released that isn't held";

        assertions.faults().set("create", 1);
        assertion.acquire("watching");
        EXPECT_FALSE(assertion.isActive());
        assertion.acquire("watching");
        assertion.acquire("another reason");
        EXPECT_TRUE(assertion.isActive());
        EXPECT_THAT(assertions.held(), ElementsAre("watching"));

        assertion.release();
        EXPECT_FALSE(assertion.isActive());
        EXPECT_THAT(assertions.held(), IsEmpty());
        assertion.acquire("again");
    }
    EXPECT_THAT(assertions.held(), ElementsAre("again")) << "its end releases nothing";
}

} // namespace
} // namespace sentrel
