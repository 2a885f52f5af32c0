#include "cloud/CloudKitConnectionMonitor.hpp"
#include "cloud/PresenceMac.hpp"
#include "ports/ApplicationNotifications.hpp"
#include "runtime/Sleep.hpp"
#include "simulation/NotificationHub.hpp"
#include "simulation/icloud/CloudErrorNames.hpp"

#include <gtest/gtest.h>

#include <stdexcept>

namespace sentrel::test {
namespace {

using namespace std::chrono_literals;

/// A Mac whose dependents take a while to catch up.
class CloudKitConnectionMonitorTest : public testing::Test,
                                      public CloudDependents,
                                      public ports::ApplicationNotifications {
protected:
    CloudKitConnectionMonitorTest()
    {
        mac.icloud.account.onChange([this] { hub.post("CKAccountChangedNotification"); });
    }

    /// Starts everything, and waits until it is quiet.
    void start()
    {
        monitor->start();
        monitor->start(); // nothing more
        world.clock.advance(10s);
        EXPECT_EQ(passes(), 2U) << "one at the start, and one for the first path";
    }

    void setNetwork(bool isUp)
    {
        mac.icloud.network.setUp(isUp);
        world.clock.runReady();
    }

    std::unique_ptr<CloudKitConnectionMonitor> makeMonitor()
    {
        return std::make_unique<CloudKitConnectionMonitor>(
            MainActor{mac.process}, *mac.cloud, *this, mac.presence,
            CloudKitConnectionMonitor::Ports{mac.icloud.network, *this, world.log});
    }

    [[nodiscard]] std::size_t passes() const { return world.log.named("fanout").size(); }

    CloudWorld world;
    PresenceMac mac{world};
    Duration catchingUpTakes = 0s;
    int caughtUp = 0;
    bool failsToCatchUp = false;
    int refreshed = 0;
    int userChanges = 0;
    simulation::NotificationHub hub{mac.process.mainExecutor()};
    std::unique_ptr<CloudKitConnectionMonitor> monitor = makeMonitor();

private:
    void userDidChange() override { ++userChanges; }
    Async<void> catchUp() override
    {
        co_await sleepFor(catchingUpTakes);
        ++caughtUp;
        if (failsToCatchUp) {
            throw std::runtime_error{"a stray exception"};
        }
    }
    void refreshStatus() override { ++refreshed; }

    ports::RegistrationPtr observe(const std::string& name, std::function<void()> received) override
    {
        return hub.observe(name, std::move(received));
    }
};

TEST_F(CloudKitConnectionMonitorTest, AFlappingNetworkCausesOnePassTwoSecondsAfterItsLastChange)
{
    start();
    for (int change = 0; change < 10; ++change) {
        setNetwork(change % 2 != 0);
        EXPECT_EQ(mac.cloud->isReachable, change % 2 != 0) << "known at once";
        EXPECT_LE(mac.cloud->availabilityCacheExpiry()->secondsSince(mac.wallClock.now()), 20.0);
        world.clock.advance(100ms);
    }
    world.clock.advance(1899ms);
    EXPECT_EQ(passes(), 2U);
    world.clock.advance(1ms);
    EXPECT_EQ(passes(), 3U);
    world.clock.advance(1min);
    EXPECT_EQ(passes(), 3U);
    EXPECT_EQ(caughtUp, 3);
    EXPECT_EQ(refreshed, 3);
}

TEST_F(CloudKitConnectionMonitorTest, WhateverHappensDuringAPassCausesOneMore)
{
    start();
    catchingUpTakes = 30s;
    const auto owners = mac.icloud.link.requests(CloudOperation::userRecord);
    mac.icloud.account.signIn("owner");
    world.clock.advance(5s);
    EXPECT_EQ(passes(), 3U);
    for (int i = 0; i < 3; ++i) {
        mac.icloud.account.signIn("owner");
        setNetwork(true);
        world.clock.advance(3s);
    }
    EXPECT_EQ(passes(), 3U);
    EXPECT_EQ(mac.icloud.link.requests(CloudOperation::userRecord) - owners, 4U);
    world.clock.advance(5min);
    EXPECT_EQ(passes(), 4U);
    EXPECT_EQ(caughtUp, 4);

    // A change of the path doesn't break off the pass that the change before it caused.
    setNetwork(true);
    world.clock.advance(5s);
    setNetwork(true);
    world.clock.advance(5min);
    EXPECT_EQ(passes(), 6U);
    EXPECT_EQ(caughtUp, 6);
}

TEST_F(CloudKitConnectionMonitorTest, APassEndsWithAPollAndCatchesUpOnlyWithIcloud)
{
    mac.registerForPushes();
    mac.presence.start();
    start();
    const auto polls = mac.polls();
    mac.icloud.account.setStatus(ports::CloudAccountStatus::noAccount);
    world.clock.advance(10s);
    EXPECT_EQ(passes(), 3U);
    EXPECT_EQ(caughtUp, 2);
    EXPECT_EQ(refreshed, 3);
    EXPECT_EQ(mac.polls(), polls);
    mac.icloud.account.setStatus(ports::CloudAccountStatus::available);
    world.clock.advance(10s);
    EXPECT_EQ(caughtUp, 3);
    EXPECT_EQ(mac.polls(), polls + 1);
}

TEST_F(CloudKitConnectionMonitorTest, AnAccountThatHangsDoesNotEndAllCatchingUp)
{
    start();
    mac.icloud.link.setLatency(24h);
    mac.icloud.account.signIn("owner");
    world.clock.advance(29'999ms); // 15 s for the user, and 15 s for the account
    EXPECT_EQ(refreshed, 2);
    world.clock.advance(1ms);
    EXPECT_EQ(refreshed, 3);
    EXPECT_EQ(caughtUp, 2) << "whoever doesn't answer is not available";
    mac.icloud.link.setLatency(80ms);
    mac.icloud.account.signIn("owner");
    world.clock.advance(10s);
    EXPECT_EQ(passes(), 4U);
    EXPECT_EQ(refreshed, 4);
    EXPECT_EQ(caughtUp, 3);
}

TEST_F(CloudKitConnectionMonitorTest, AnUnansweredQuestionForTheOwnerIsAskedAgainAndAStrayExceptionEndsOnePassOnly)
{
    start();
    mac.icloud.link.faults().add({simulation::cloudError(4), CloudOperation::userRecord, "", 1});
    failsToCatchUp = true;
    mac.icloud.account.signIn("other");
    world.clock.advance(10s);
    EXPECT_EQ(world.log.named("cloud.userChanged").size(), 1U);
    EXPECT_EQ(userChanges, 1);
    EXPECT_EQ(refreshed, 3) << "the status is brought up to date all the same";
    failsToCatchUp = false;
    setNetwork(true);
    world.clock.advance(10s);
    EXPECT_EQ(refreshed, 4);
}

TEST_F(CloudKitConnectionMonitorTest, GoesInTheMiddleOfAPassAndOfAPause)
{
    for (const Duration moment : {0ms, 100ms, 500ms, 2100ms}) {
        catchingUpTakes = 200ms;
        monitor->start();
        world.clock.advance(moment);
        mac.icloud.network.setUp(true);
        monitor.reset();
        world.clock.advance(1min);
        monitor = makeMonitor();
    }
}

} // namespace
} // namespace sentrel::test
