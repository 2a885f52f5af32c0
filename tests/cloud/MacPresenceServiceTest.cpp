#include "cloud/CloudErrors.hpp"
#include "cloud/PresenceMac.hpp"
#include "simulation/icloud/CloudErrorNames.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace sentrel::test {
namespace {

using namespace std::chrono_literals;
using ports::CloudAccountStatus;
using simulation::cloudError;
using testing::ElementsAre;

constexpr const char* signIn = "Sign in to iCloud on both devices with the same Apple ID.";
constexpr const char* offline = "Could not reach iCloud.\nCheck your connection and try again.";

class MacPresenceServiceTest : public testing::Test {
protected:
    void failFetching(int times, std::optional<double> retryAfter = std::nullopt)
    {
        const int code = retryAfter ? CloudErrorCode::requestRateLimited : simulation::CKError::internalError;
        mac.icloud.link.faults().add({cloudError(code, retryAfter), CloudOperation::fetch, "", times});
    }

    /// How long the service waits from now until it polls.
    Duration untilNextPoll()
    {
        const Instant start = world.clock.now();
        const auto polls = mac.polls();
        while (mac.polls() == polls && world.clock.now() - start < 1h) {
            world.clock.advance(100ms);
        }
        return world.clock.now() - start;
    }

    static void commandWithoutDate(PresenceMac& itsMac, std::int64_t sequence)
    {
        simulation::ServerBatch batch;
        simulation::ServerRecord& record = batch.save.emplace_back();
        record.type = deviceCatalogRecordType;
        record.name = commandRecordName(itsMac.presence.deviceID());
        record.fields = {{"commandSequence", sequence}, {"requestedArmState", std::int64_t{1}}};
        static_cast<void>(itsMac.world.server.modify({"owner", "phone"}, batch));
    }

    CloudWorld world;
    PresenceMac mac{world};
};

TEST_F(MacPresenceServiceTest, AnIdleHourCostsFewRequestsAndNeverTwoOfAKindAtATime)
{
    PresenceMac other{world, "another Mac", true, 2};
    other.registerForPushes();
    other.presence.start();
    world.clock.advance(1s);
    other.command(1, true);
    for (const bool hasPushes : {false, true}) {
        if (hasPushes) {
            mac.registerForPushes();
        }
        mac.presence.start();
        mac.presence.start(); // nothing more
        world.clock.advance(1min);
        const auto polls = mac.polls();
        const auto publications = mac.publications();
        world.clock.advance(1h);
        EXPECT_LE(mac.polls() - polls, hasPushes ? 12U : 720U);
        EXPECT_GE(mac.polls() - polls, hasPushes ? 11U : 690U);
        EXPECT_LE(mac.publications() - publications, 120U);
        EXPECT_GE(mac.publications() - publications, 118U);
    }
    for (const CloudOperation kind :
         {CloudOperation::fetch, CloudOperation::modify, CloudOperation::saveSubscription}) {
        EXPECT_EQ(mac.icloud.link.mostAtATime(kind), 1U);
    }
    EXPECT_TRUE(other.isArmed);
    EXPECT_EQ(mac.pushes + other.pushes, 1) << "heartbeats push nothing, or the system would delay the next command";
}

TEST_F(MacPresenceServiceTest, APushedCommandIsObeyedAtOnceAndAnyOtherWithinOnePoll)
{
    mac.presence.start();
    world.clock.advance(1min);
    mac.command(1, true);
    world.clock.advance(5200ms);
    EXPECT_TRUE(mac.isArmed);

    mac.registerForPushes();
    world.clock.advance(1min);
    mac.command(2, false);
    world.clock.advance(1s);
    EXPECT_FALSE(mac.isArmed);
    EXPECT_EQ(mac.publishedArmedState(), false) << "and the phone has been told";

    // A command that comes when the server has just read the record for a poll.
    mac.icloud.link.setLatency(10s);
    mac.presence.wakePoll();
    world.clock.advance(6s);
    mac.icloud.link.setLatency(80ms);
    mac.command(3, true);
    mac.presence.receive({std::string{CloudSubscriptions::alertIdentifier}, std::nullopt}); // none of its business
    world.clock.advance(5s);
    EXPECT_TRUE(mac.isArmed);

    // And one whose push comes, but whose poll fails.
    failFetching(2);
    mac.command(4, false);
    world.clock.advance(11s);
    EXPECT_FALSE(mac.isArmed);
    EXPECT_GE(untilNextPoll(), 290s) << "then pushes are trusted again";
    world.clock.advance(1min);
    mac.presence.setPushTokenRegistered(false);
    EXPECT_LT(untilNextPoll(), 6s) << "which announce nothing any more";
}

TEST_F(MacPresenceServiceTest, ASubscriptionThatHangsDelaysNoCommand)
{
    mac.presence.start();
    world.clock.advance(120ms);
    mac.icloud.link.setLatency(1h);
    world.clock.advance(120ms);
    mac.icloud.link.setLatency(80ms);
    mac.command(1, true);
    world.clock.advance(10s);
    EXPECT_TRUE(mac.isArmed);
    EXPECT_FALSE(mac.cloud->macCommandSubscriptionEnsured());
    world.clock.advance(20s);
    EXPECT_TRUE(mac.cloud->macCommandSubscriptionEnsured()) << "tried again";
}

TEST_F(MacPresenceServiceTest, ObeysEachFreshCommandOnceAndNotesOnceWhyNot)
{
    struct Case {
        std::int64_t last;
        std::int64_t sequence;
        std::optional<double> secondsAgo;
        const char* why;
    };
    constexpr auto largest = std::numeric_limits<std::int64_t>::max();
    const std::vector<Case> cases{{0, 7, 0.0, "arm"},       {7, 7, 0.0, "repeated"},   {9, 7, 0.0, "arm"},
                                  {0, 7, 120.0, "arm"},     {0, 7, 121.0, "stale"},    {0, 7, -86'400.0, "arm"},
                                  {0, 7, {}, "undated"},    {7, 7, 121.0, "repeated"}, {largest, -largest, 0.0, "arm"},
                                  {0, largest, 1.0, "arm"}, {0, 0, 0.0, "repeated"}};
    for (const Case& example : cases) {
        CloudWorld ownWorld;
        PresenceMac ownMac{ownWorld};
        ownMac.icloud.link.setLatency(0s);
        ownMac.defaults.setInteger("sentrel.macLastAppliedCommandSequence", example.last);
        if (example.secondsAgo) {
            ownMac.command(example.sequence, true, *example.secondsAgo);
        } else {
            commandWithoutDate(ownMac, example.sequence);
        }
        ownMac.presence.start();
        ownWorld.clock.advance(11s);
        const bool isApplied = example.why == std::string{"arm"};
        const std::string told = std::to_string(example.sequence) + " " + example.why;
        EXPECT_THAT(ownMac.outcomes(), ElementsAre(told));
        EXPECT_EQ(ownMac.isArmed, isApplied) << told;
        EXPECT_EQ(ownMac.settings.settings().isArmed, isApplied) << told;
        ownMac.settings.set(&AlarmSettings::isArmed, false); // the user disarms
        ownMac.isArmed = false;
        ownWorld.clock.advance(10s);
        ownMac.defaults.setInteger("sentrel.macLastAppliedCommandSequence", example.last);
        ownWorld.clock.advance(10s);
        EXPECT_FALSE(ownMac.isArmed) << told << " came to life although its number was not stored";
        ownMac.wallClock.offset = -3600.0;
        ownWorld.clock.advance(10s);
        EXPECT_FALSE(ownMac.isArmed) << told << " came to life when the clock was turned back";
    }
}

TEST_F(MacPresenceServiceTest, WaitsBetweenPollsAsLongAsPushesAndTheServerAllow)
{
    struct Case {
        bool hasPushes;
        std::optional<double> retryAfter; ///< of the poll before; none when it went well
        Duration wait;
    };
    for (const Case& example : {Case{false, std::nullopt, 5s}, Case{false, 2.0, 5s}, Case{false, 40.0, 40s},
                                Case{false, 300.0, 60s}, Case{true, std::nullopt, 300s}, Case{true, 40.0, 300s}}) {
        CloudWorld ownWorld;
        PresenceMac ownMac{ownWorld};
        if (example.hasPushes) {
            ownMac.registerForPushes();
        }
        ownWorld.clock.advance(1s);
        ownMac.presence.start();
        ownWorld.clock.advance(1s);
        ownMac.presence.stopHeartbeat(); // whose success would end the server's wish
        if (example.retryAfter) {
            ownMac.icloud.link.faults().add({cloudError(7, example.retryAfter), CloudOperation::fetch, "", 1});
        }
        ownMac.presence.wakePoll();
        ownWorld.clock.runReady();
        const auto polls = ownMac.polls();
        EXPECT_EQ(polls, 2U);
        ownWorld.clock.advance(example.wait - 100ms);
        EXPECT_EQ(ownMac.polls(), polls) << toSeconds(example.wait);
        ownWorld.clock.advance(300ms);
        EXPECT_EQ(ownMac.polls(), polls + 1) << toSeconds(example.wait);
    }
}

TEST_F(MacPresenceServiceTest, APublicationThatBeganBeforeACallIsNotItsAnswer)
{
    const MainActor actor{mac.process};
    const Task<void> first = actor.spawn(mac.presence.publishState());
    world.clock.advance(120ms); // the account has answered, the record is on its way
    EXPECT_EQ(mac.publications(), 1U);
    mac.isArmed = true;
    const Task<void> second = actor.spawn(mac.presence.publishState());
    const Task<void> third = actor.spawn(mac.presence.publishState());
    second.cancel(); // its caller lost interest
    while (!first.isFinished()) {
        world.clock.advance(10ms);
    }
    EXPECT_FALSE(third.isFinished());
    EXPECT_EQ(mac.publishedArmedState(), false);
    world.clock.runUntilIdle();
    EXPECT_TRUE(third.isFinished());
    EXPECT_EQ(mac.publishedArmedState(), true);
    EXPECT_EQ(mac.publications(), 2U) << "one for both calls";
    EXPECT_EQ(mac.caughtUp, 2);
}

TEST_F(MacPresenceServiceTest, APublicationThatHangsHoldsNewsUpForASecondAndTheLastOneSaysDisarmed)
{
    const auto publish = [this] { MainActor{mac.process}.spawn(mac.presence.publishState()); };
    mac.await(mac.presence.publishState());
    mac.icloud.link.setLatency(1h);
    publish();
    world.clock.advance(5s);
    mac.icloud.link.setLatency(80ms);
    mac.isArmed = true;
    publish();
    world.clock.advance(999ms);
    EXPECT_EQ(mac.publications(), 2U);
    world.clock.advance(200ms);
    EXPECT_EQ(mac.publishedArmedState(), true);
    world.clock.advance(20s);
    EXPECT_TRUE(mac.cloud->isReachable) << "the one that hung is withdrawn";
    EXPECT_EQ(mac.presence.syncError.get(), std::nullopt);

    publish();
    world.clock.advance(10ms);
    mac.await(mac.presence.publishLastState());
    EXPECT_EQ(mac.publishedArmedState(), false) << "as the process leaves the Mac, which is armed until then";
    mac.await(mac.presence.publishState());
    EXPECT_EQ(mac.publishedArmedState(), true);
}

TEST_F(MacPresenceServiceTest, TheHeartbeatRespectsTheServersWishButAChangeOfStateGoesAtOnce)
{
    mac.failsToCatchUp = true; // which ends neither the heartbeat nor later publications
    mac.presence.start();
    world.clock.advance(20s);
    mac.failsToCatchUp = false;
    mac.icloud.link.faults().add({cloudError(7, 100.0), CloudOperation::modify, "", 1});
    world.clock.advance(15s);
    EXPECT_EQ(mac.publications(), 2U);
    EXPECT_EQ(mac.presence.syncError.get(), "iCloud is temporarily unavailable. Try again shortly.");
    world.clock.advance(90s);
    EXPECT_EQ(mac.publications(), 2U);
    mac.await(mac.presence.publishState());
    EXPECT_EQ(mac.publications(), 3U);
    EXPECT_EQ(mac.presence.syncError.get(), std::nullopt);
    world.clock.advance(10s);
    EXPECT_EQ(mac.publications(), 4U);

    // A clock that is set back makes nobody wait for days.
    failFetching(1, 100.0);
    mac.presence.wakePoll();
    world.clock.advance(1s);
    mac.wallClock.offset = -86'400.0;
    mac.icloud.link.faults().add({cloudError(1), CloudOperation::modify, "", 1});
    world.clock.advance(31s);
    const auto before = mac.publications();
    world.clock.advance(301s);
    EXPECT_GT(mac.publications(), before);

    mac.presence.stopHeartbeat();
    mac.presence.stopHeartbeat();
    const auto stopped = mac.publications();
    world.clock.advance(10min);
    EXPECT_EQ(mac.publications(), stopped);
    mac.presence.systemDidWake();
    EXPECT_LT(untilNextPoll(), 200ms);
    EXPECT_EQ(mac.publications(), stopped + 1);
}

TEST_F(MacPresenceServiceTest, TellsWhyThePhoneDoesNotSeeTheMac)
{
    mac.icloud.link.setAccountStatus(CloudAccountStatus::noAccount);
    mac.presence.start();
    world.clock.advance(1min);
    EXPECT_EQ(mac.presence.syncError.get(), signIn);
    EXPECT_EQ(mac.polls() + mac.publications(), 0U) << "nothing is asked of nobody";

    mac.icloud.link.setAccountStatus(CloudAccountStatus::restricted);
    world.clock.advance(2min);
    EXPECT_EQ(mac.presence.syncError.get(), "iCloud access is restricted on this device.");

    mac.icloud.link.setAccountStatus(CloudAccountStatus::available);
    world.clock.advance(2min);
    EXPECT_EQ(mac.presence.syncError.get(), std::nullopt);
    EXPECT_EQ(mac.publishedArmedState(), false);

    mac.icloud.link.setLatency(1h); // hangs
    world.clock.advance(2min);
    EXPECT_EQ(mac.presence.syncError.get(), offline);
    EXPECT_FALSE(mac.cloud->isReachable);
}

TEST_F(MacPresenceServiceTest, OnAnotherComputerACommandChangesTheSettingAndNothingElse)
{
    PresenceMac desktop{world, "Mac mini", false, 3};
    desktop.presence.start();
    world.clock.advance(1s);
    const auto publications = desktop.publications();
    desktop.command(1, true);
    world.clock.advance(6s);
    EXPECT_TRUE(desktop.settings.settings().isArmed);
    EXPECT_FALSE(desktop.isArmed);
    EXPECT_EQ(desktop.publishedArmedState(), false);
    EXPECT_EQ(desktop.publications(), publications + 1) << "the phone learns at once that it was heard";
}

TEST_F(MacPresenceServiceTest, TheIdentifierIsMadeOnceAndAgainWhenItIsDamaged)
{
    const std::string made = mac.presence.deviceID();
    EXPECT_TRUE(UUID::parse(made));
    EXPECT_EQ(mac.presence.deviceID(), made);
    mac.defaults.setText("sentrel.macDeviceID", "mac");
    const std::string again = mac.presence.deviceID();
    EXPECT_TRUE(UUID::parse(again));
    EXPECT_NE(again, made);
    EXPECT_EQ(mac.defaults.text("sentrel.macDeviceID"), again);
}

} // namespace
} // namespace sentrel::test
