#include "cloud/CloudBackoffPolicy.hpp"

#include <gtest/gtest.h>

namespace sentrel {
namespace {

constexpr Date now{1000.0};

TEST(CloudBackoffPolicy, DoublesUpToItsBoundAndForgetsOnSuccess)
{
    CloudBackoffPolicy policy;
    for (const double delay : {5.0, 10.0, 20.0, 40.0, 80.0, 160.0, 300.0, 300.0}) {
        EXPECT_EQ(policy.recordFailure(std::nullopt, now), delay);
    }
    EXPECT_EQ(policy.remainingDelay(now.addingSeconds(100)), 200.0);
    EXPECT_EQ(policy.remainingDelay(now.addingSeconds(301)), 0.0);
    policy.consecutiveFailures = 5000; // far beyond what a double's exponent holds
    EXPECT_EQ(policy.recordFailure(std::nullopt, now), 300.0);

    policy.resetOnSuccess();
    EXPECT_EQ(policy.remainingDelay(now), 0.0);
    EXPECT_EQ(policy, CloudBackoffPolicy{});
}

TEST(CloudBackoffPolicy, AServersWishReplacesTheDelayWithinTheBound)
{
    CloudBackoffPolicy policy;
    policy.consecutiveFailures = 4;
    EXPECT_EQ(policy.recordFailure(2.0, now), 2.0);
    EXPECT_EQ(policy.recordFailure(900.0, now), 300.0);
    EXPECT_EQ(policy.consecutiveFailures, 6);
}

} // namespace
} // namespace sentrel
