#include "cloud/CloudErrors.hpp"
#include "cloud/CloudKitServiceError.hpp"
#include "cloud/CloudMac.hpp"
#include "simulation/icloud/CloudErrorNames.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace sentrel::test {
namespace {

using namespace std::chrono_literals;
using ports::CloudAccountStatus;
using simulation::cloudError;
using testing::ElementsAre;

class CloudKitServiceTest : public testing::Test {
protected:
    bool check(bool force = false) { return mac.await(mac.cloud->refreshAvailability(force)); }
    [[nodiscard]] std::uint64_t asked() const { return mac.icloud.link.requests(CloudOperation::accountStatus); }
    void failAccount(int code) { mac.icloud.link.faults().add({cloudError(code), CloudOperation::accountStatus}); }
    void heal() { mac.icloud.link.faults().clear(); }

    /// Why an upload is refused, and after how many requests.
    std::string refusal()
    {
        const std::uint64_t before = mac.icloud.link.requests();
        std::string why = outcomeOf(mac, mac.cloud->uploadAlert(alertNumber(1), std::nullopt));
        EXPECT_EQ(mac.icloud.link.requests(), before);
        return why;
    }

    CloudWorld world;
    CloudMac mac{world, "MacBook"};
};

TEST_F(CloudKitServiceTest, AnAnswerLastsAMinuteAndAFailureTwentySeconds)
{
    EXPECT_TRUE(check());
    world.clock.advance(59s);
    EXPECT_TRUE(check());
    EXPECT_EQ(asked(), 1U);
    EXPECT_TRUE(check(true));
    EXPECT_EQ(asked(), 2U) << "asked by force";
    world.clock.advance(61s);
    failAccount(simulation::CKError::internalError);
    EXPECT_FALSE(check());
    EXPECT_FALSE(mac.cloud->lastAccountStatus());
    heal();
    world.clock.advance(19s);
    EXPECT_FALSE(check());
    EXPECT_EQ(asked(), 3U);
    world.clock.advance(1s);
    EXPECT_TRUE(check());
    EXPECT_EQ(asked(), 4U);
    mac.wallClock.offset = -86'400.0;
    EXPECT_TRUE(check());
    EXPECT_EQ(asked(), 5U) << "a clock that is turned back doesn't make an answer last a day";
}

TEST_F(CloudKitServiceTest, ObserversHearOfChangesOnly)
{
    int told = 0;
    const auto availability = mac.cloud->isAvailable.observe([&](bool /*is*/) { ++told; });
    const auto reachability = mac.cloud->isReachable.observe([&](bool /*is*/) { ++told; });
    check(true);
    check(true);
    EXPECT_EQ(told, 2);
    mac.icloud.link.setAccountStatus(CloudAccountStatus::restricted);
    EXPECT_FALSE(check(true));
    EXPECT_FALSE(check(true));
    EXPECT_EQ(told, 3);
    EXPECT_TRUE(mac.cloud->isReachable) << "the account says nothing of the network";
}

TEST_F(CloudKitServiceTest, NetworkErrorsShortenTheTrustAndThrottlingMakesRequestsWait)
{
    check();
    const Date now = mac.wallClock.now();
    mac.cloud->recordSyncFailure(cloudError(simulation::CKError::networkFailure));
    EXPECT_FALSE(mac.cloud->isReachable);
    EXPECT_EQ(mac.cloud->availabilityCacheExpiry(), now.addingSeconds(20));
    EXPECT_EQ(mac.cloud->requestBackoff(), CloudBackoffPolicy{});
    mac.cloud->networkPathChanged(true);
    EXPECT_TRUE(mac.cloud->isReachable);
    world.clock.advance(5s);
    mac.cloud->networkPathChanged(false);
    EXPECT_EQ(mac.cloud->availabilityCacheExpiry(), now.addingSeconds(20)) << "never later than it was";

    mac.cloud->recordSyncFailure(cloudError(CloudErrorCode::requestRateLimited, 17.0));
    mac.cloud->recordSyncFailure(cloudError(CloudErrorCode::zoneBusy));
    EXPECT_EQ(mac.cloud->lastSyncError.get(), "iCloud is temporarily unavailable. Try again shortly.");
    EXPECT_EQ(mac.cloud->requestBackoff().consecutiveFailures, 2);
    EXPECT_DOUBLE_EQ(mac.cloud->requestBackoff().remainingDelay(mac.wallClock.now()), 10.0);
    mac.cloud->recordSyncSuccess();
    EXPECT_EQ(mac.cloud->requestBackoff(), CloudBackoffPolicy{});
    EXPECT_FALSE(mac.cloud->lastSyncError.get());
    EXPECT_TRUE(mac.cloud->isReachable);
}

TEST_F(CloudKitServiceTest, AnUploadWithoutICloudSaysWhyWithoutARequest)
{
    using Kind = CloudKitServiceError::Kind;
    const std::string unreachable = CloudKitServiceError{Kind::networkUnavailable}.what();
    const std::string notSignedIn = CloudKitServiceError{Kind::notSignedIn}.what();
    EXPECT_EQ(refusal(), unreachable) << "nothing is known";
    mac.cloud->networkPathChanged(true);
    EXPECT_EQ(refusal(), notSignedIn) << "reachable";
    failAccount(simulation::CKError::networkUnavailable);
    check(true);
    EXPECT_EQ(refusal(), unreachable);
    heal();
    mac.icloud.link.setAccountStatus(CloudAccountStatus::noAccount);
    check(true);
    mac.cloud->networkPathChanged(false);
    EXPECT_EQ(refusal(), notSignedIn) << "a known status";
}

TEST_F(CloudKitServiceTest, AnotherUserSeesNothingOfTheFormerOne)
{
    check();
    EXPECT_FALSE(mac.await(mac.cloud->verifyCacheOwner())) << "the first user is no change";
    mac.await(mac.cloud->uploadAlert(alertNumber(1), std::nullopt));
    mac.await(mac.cloud->publishPresence({"device", "MacBook", Date{1}, true, false}));
    mac.await(mac.cloud->ensureSubscriptions());
    world.clock.advance(2s);
    ASSERT_TRUE(std::filesystem::exists(mac.cacheFile()));

    mac.icloud.link.faults().add({cloudError(simulation::CKError::networkFailure), CloudOperation::userRecord});
    EXPECT_FALSE(mac.await(mac.cloud->verifyCacheOwner())) << "who it is can't be asked";
    EXPECT_EQ(mac.cloud->cachedAlerts().size(), 1U);
    heal();

    mac.icloud.link.setUser("other");
    mac.defaults.onSet = [] { throw simulation::Raised{"user-defaults", "setText"}; };
    EXPECT_FALSE(mac.await(mac.cloud->verifyCacheOwner()));
    mac.defaults.onSet = [] {};
    EXPECT_TRUE(mac.cloud->isOwnerCheckOwed()) << "the answer could not be noted";
    EXPECT_TRUE(mac.await(mac.cloud->verifyCacheOwner()));
    EXPECT_TRUE(mac.cloud->cachedAlerts().empty());
    EXPECT_FALSE(mac.cloud->macCommandSubscriptionEnsured());
    mac.await(mac.cloud->publishPresence({"device", "MacBook", Date{1}, true, false}));
    mac.await(mac.cloud->ensureSubscriptions());
    mac.await(mac.cloud->refreshAlerts());
    EXPECT_EQ(world.server.count("other", deviceCatalogRecordType), 2U);
    EXPECT_EQ(world.server.count("other", "AlertEvent"), 0U);
    EXPECT_EQ(world.server.subscriptions("other").size(), 2U);
    EXPECT_FALSE(mac.await(mac.cloud->verifyCacheOwner()));

    // The file of the former user comes back, as if a write had been under way when the process died.
    mac.icloud.link.setUser("owner");
    EXPECT_TRUE(mac.await(mac.cloud->verifyCacheOwner()));
    mac.await(mac.cloud->refreshAlerts());
    world.clock.advance(2s);
    mac.defaults.setText(CloudKitService::cacheOwnerKey, "_other");
    mac.relaunch();
    EXPECT_TRUE(mac.cloud->cachedAlerts().empty());
}

TEST_F(CloudKitServiceTest, AnUploadThatOutlivesItsUserIsNotTheNextOnes)
{
    check();
    mac.await(mac.cloud->verifyCacheOwner());
    const auto upload = MainActor{mac.process}.spawn(mac.cloud->uploadAlert(alertNumber(1), std::nullopt));
    const auto refresh = MainActor{mac.process}.spawn(mac.cloud->refreshAlerts());
    MainActor{mac.process}.spawn(mac.cloud->verifyCacheOwner());
    world.clock.advance(50ms);
    mac.icloud.link.setUser("other");
    mac.icloud.link.setLatency(10ms);
    EXPECT_TRUE(mac.await(mac.cloud->verifyCacheOwner()));
    world.clock.advance(5s);
    EXPECT_TRUE(upload.isFinished() && refresh.isFinished());
    EXPECT_TRUE(mac.cloud->cachedAlerts().empty());
    EXPECT_EQ(world.server.count("other", "AlertCatalog"), 0U);
    EXPECT_FALSE(mac.await(mac.cloud->verifyCacheOwner())) << "the answer to an older question counts no more";
}

TEST_F(CloudKitServiceTest, TwoMacsListThemselvesInOneCatalogAndTakeTheirOwnCommands)
{
    CloudMac second{world, "second", 2};
    const DevicePresence first{"first", "MacBook", Date{1}, true, true};
    const auto one = MainActor{mac.process}.spawn(mac.cloud->publishPresence(first));
    const auto two =
        MainActor{second.process}.spawn(second.cloud->publishPresence({"second", "", Date{1}, true, false}));
    world.clock.advance(5s);
    ASSERT_TRUE(one.isFinished() && two.isFinished());
    const auto catalog = mac.await(mac.icloud.database.record(deviceCatalogRecordName));
    EXPECT_THAT(std::get<TextList>(catalog.fields.at(deviceIDsField)),
                testing::UnorderedElementsAre("first", "second"));
    EXPECT_EQ(mac.requestsOf(mac.cloud->publishPresence(first)), 1U) << "it is known to be listed";

    EXPECT_FALSE(mac.await(mac.cloud->fetchCommand("nobody")));
    EXPECT_FALSE(mac.await(mac.cloud->fetchCommand("first"))) << "no command yet";
    const RemoteCommand command{7, Date{8e8}, true};
    second.await(second.icloud.database.modify({commandRecord("first", command)}, {},
                                               ports::CloudSavePolicy::changedKeys, false));
    EXPECT_EQ(mac.await(mac.cloud->fetchCommand("first")), command);
    EXPECT_FALSE(second.await(second.cloud->fetchCommand("second")));
    EXPECT_EQ(presenceOf(mac.await(mac.icloud.database.record(deviceRecordName("first")))), first);

    mac.icloud.link.faults().add(
        {cloudError(CloudErrorCode::quotaExceeded), CloudOperation::modify, deviceRecordName("first")});
    EXPECT_EQ(outcomeOf(mac, mac.cloud->publishPresence(first)), "CloudKit 25");
}

TEST_F(CloudKitServiceTest, PatienceThatIsAskedForOfTheCatalogIsHeardThoughAllElseGoesWell)
{
    check();
    const auto waitsAfter = [this](CloudOperation operation, auto work) {
        mac.icloud.link.faults().add({cloudError(CloudErrorCode::zoneBusy, 40.0), operation, "", 1});
        static_cast<void>(mac.await(std::move(work)), 0);
        const double wait = mac.cloud->requestBackoff().remainingDelay(mac.wallClock.now());
        mac.cloud->recordSyncSuccess();
        return wait;
    };
    EXPECT_GT(waitsAfter(CloudOperation::fetchOne, mac.cloud->uploadAlert(alertNumber(1), std::nullopt)), 39.0);
    EXPECT_GT(waitsAfter(CloudOperation::save, mac.cloud->refreshAlerts()), 39.0);
    mac.await(mac.cloud->refreshAlerts());
    EXPECT_GT(waitsAfter(CloudOperation::save, mac.cloud->deleteAlerts({alertNumber(1).id})), 39.0);
    EXPECT_EQ(world.server.count("owner", "AlertEvent"), 0U);
}

TEST_F(CloudKitServiceTest, SubscriptionsAreSavedOnceAndRetriedAfterAWait)
{
    const auto ensure = [&] { return mac.requestsOf(mac.cloud->ensureSubscriptions()); };
    EXPECT_EQ(ensure(), 0U) << "not before the account is available";
    check();
    mac.icloud.link.setLatency(1h);
    EXPECT_EQ(ensure(), 2U) << "neither is answered";
    mac.icloud.link.setLatency(80ms);
    EXPECT_EQ(ensure(), 1U) << "the first one's 5 s are over";
    EXPECT_TRUE(mac.cloud->macCommandSubscriptionEnsured()) << "each has its own fate";
    world.clock.advance(5s);
    mac.icloud.link.faults().add(
        {cloudError(CloudErrorCode::requestRateLimited, 30.0), CloudOperation::saveSubscription, {}, 1});
    EXPECT_EQ(ensure(), 1U);
    EXPECT_EQ(mac.cloud->pushSubscriptionError(), "iCloud is temporarily unavailable. Try again shortly.");
    world.clock.advance(29s);
    EXPECT_EQ(ensure(), 0U);
    world.clock.advance(1s);
    EXPECT_EQ(ensure(), 1U);
    EXPECT_FALSE(mac.cloud->pushSubscriptionError());
    EXPECT_EQ(ensure(), 0U);

    const auto saved = world.server.subscriptions("owner");
    ASSERT_EQ(saved.size(), 2U);
    EXPECT_EQ(saved[0].identifier, "alert-event-subscription-v1");
    EXPECT_EQ(saved[0].options, 1U);
    EXPECT_FALSE(saved[0].alertLocalizationKey.empty());
    EXPECT_EQ(saved[1].identifier, "mac-device-command-subscription-v1");
    EXPECT_EQ(saved[1].predicate.format, "requestedArmState IN %@");
    EXPECT_EQ(saved[1].options, 3U);
    EXPECT_TRUE(saved[1].sendsContentAvailable && saved[1].alertLocalizationKey.empty());
}

} // namespace
} // namespace sentrel::test
