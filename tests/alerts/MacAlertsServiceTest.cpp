#include "alerts/MacAlertsService.hpp"

#include "alerts/AlertMerge.hpp"
#include "alerts/AlertsMac.hpp"

#include <gmock/gmock.h>

#include <random>

namespace sentrel::test {
namespace {

using namespace std::chrono_literals;
using ports::CloudAccountStatus;
using testing::IsEmpty;
using testing::Optional;

class MacAlertsServiceTest : public AlertsMac {};

TEST_F(MacAlertsServiceTest, ShowsEachAlertOnceAndKeepsNoCopyOfWhatTheCloudHolds)
{
    putIntoCloud({1, 3});
    save(1, true, picture);
    save(2, false);
    save(4);
    EXPECT_EQ(rows(), "4w 2m 1w ");
    EXPECT_FALSE(service->hasLoadedInitialAlerts);
    refresh();
    EXPECT_EQ(rows(), "4w 3c 2m 1c ");
    EXPECT_TRUE(service->hasLoadedInitialAlerts);
    EXPECT_EQ(here(), (std::vector{4, 2}));
    EXPECT_FALSE(mac.files.exists(store->photoFile(alert(1).id)));
    EXPECT_EQ(timesCaughtUp, 1) << "a notice about the first alert may have been resolved";

    const auto before = service->alerts.get();
    refresh();
    EXPECT_EQ(service->alerts.get(), before) << "nothing new, nothing told";
    save(5);
    service->merge({alert(3), true});
    EXPECT_EQ(rows(), "5w 4w 3c 2m 1c ");
    EXPECT_EQ(service->sections().size(), 1U);
}

TEST_F(MacAlertsServiceTest, WithoutTheNetworkTheListShowsWhatIsRememberedAndWithoutAnAccountOnlyWhatIsHere)
{
    putIntoCloud({1, 2});
    refresh();
    save(3);
    store->save(alert(1), std::nullopt, true);
    world.clock.advance(2s);
    mac.icloud.network.setUp(false);
    relaunch();
    refresh();
    EXPECT_EQ(rows(), "3w 2c 1c ");
    EXPECT_EQ(here(), (std::vector{3, 1})) << "what is only remembered to be in the cloud costs no copy here";
    EXPECT_THAT(service->errorMessage.get(), Optional(testing::StartsWith("Could not reach iCloud.")));
    EXPECT_EQ(mac.cloud->lastSyncError.get(), service->errorMessage.get());

    mac.icloud.account.setStatus(CloudAccountStatus::noAccount);
    mac.await(mac.cloud->refreshAvailability(true));
    refresh();
    EXPECT_EQ(rows(), "3w 1w ");
    EXPECT_EQ(service->errorMessage.get(), std::nullopt) << "the notice tells that there is no account";
}

TEST_F(MacAlertsServiceTest, AListWithoutTheCloudsAnswerIsRefreshedByItself)
{
    putIntoCloud({1});
    refresh();
    mac.icloud.link.faults().add(
        {simulation::cloudError(simulation::CKError::unknownItem), CloudOperation::accountStatus, "", 1});
    mac.await(mac.cloud->refreshAvailability(true));
    refresh();
    EXPECT_EQ(rows(), "") << "nobody knows whether there is an account";
    world.clock.advance(40s);
    EXPECT_EQ(rows(), "1c ");

    relaunch();
    mac.files.faults().set("raises");
    refresh();
    mac.files.faults().clear();
    EXPECT_EQ(rows(), "") << "the alerts on this Mac could not be listed";
    world.clock.advance(40s);
    EXPECT_EQ(rows(), "1c ");

    mac.icloud.account.setStatus(CloudAccountStatus::noAccount);
    mac.await(mac.cloud->refreshAvailability(true));
    refresh();
    const auto requests = mac.icloud.link.requests(CloudOperation::accountStatus);
    world.clock.advance(1h);
    EXPECT_EQ(mac.icloud.link.requests(CloudOperation::accountStatus), requests) << "an account will be announced";
}

TEST_F(MacAlertsServiceTest, TheNoticeSaysWhereAlertsAreKept)
{
    const std::string full = "Your iCloud storage is full.\nNew alerts are saved on this Mac.";
    const std::string waiting = "Some alerts are waiting to upload to iCloud.";
    const std::string unreachable = "Showing alerts saved on this Mac until iCloud is reachable.";
    const std::string onlyHere = "Alerts are saved on this Mac only.";
    struct Case {
        bool isFull;
        bool isCloudRow;
        bool isHere;
        bool isAvailable;
        bool isReachable;
        std::optional<std::string> notice;
    };
    const Case cases[] = {
        {true, false, false, true, true, std::nullopt}, {true, true, false, true, true, full},
        {true, false, true, false, false, full},        {false, false, false, false, false, std::nullopt},
        {false, true, true, true, true, waiting},       {false, false, true, false, false, waiting},
        {false, true, false, true, false, unreachable}, {false, true, false, true, true, std::nullopt},
        {false, true, false, false, true, onlyHere},
    };
    putIntoCloud({1});
    for (const Case& each : cases) {
        store->remove(alert(2).id);
        refresh();
        if (!each.isCloudRow) {
            service->userDidChange();
        }
        if (each.isHere) {
            store->save(alert(2), std::nullopt, true);
        }
        service->iCloudStorageIsFull = each.isFull;
        service->refreshStorageNotice();
        mac.cloud->isReachable = each.isReachable; // the notice follows by itself
        mac.cloud->isAvailable = each.isAvailable;
        // Without a list there is a notice only when the storage is full.
        const bool hasRows = !service->alerts.get()->empty();
        EXPECT_EQ(service->infoMessage.get(), hasRows || each.isFull ? each.notice : std::nullopt) << (&each - cases);
        mac.cloud->isAvailable = true;
        mac.cloud->isReachable = true;
    }
}

/// Each refresh looks only at some of the alerts; the merge of all is the measure.
TEST_F(MacAlertsServiceTest, AListKeptUpToDateIsTheListMadeOfAllAlerts)
{
    CloudMac other{world, "other", 2};
    other.await(other.cloud->refreshAvailability(true));
    other.await(other.cloud->verifyCacheOwner());
    std::mt19937 random{11};
    std::unordered_set<UUID> deleted;
    for (int turn = 0; turn < 400; ++turn) {
        const int number = static_cast<int>(random() % 12);
        switch (random() % 8) {
        case 0:
        case 1:
            save(number, turn % 2 == 0);
            break;
        case 2:
            other.await(other.cloud->uploadAlert(alert(number), std::nullopt));
            break;
        case 3:
            other.await(other.cloud->deleteAlerts(idsOf({number})));
            break;
        case 4:
            deleted.insert(alert(number).id);
            service->deleteAlerts(idsOf({number}));
            break;
        case 5:
            mac.icloud.network.setUp(turn % 4 != 0);
            break;
        case 6:
            static_cast<void>(mac.await(service->photo(alert(number).id)));
            break;
        default:
            catchUp();
        }
        refresh();
        std::vector<AlertEvent> inCloud =
            mac.cloud->isAvailable ? mac.cloud->cachedAlerts() : std::vector<AlertEvent>{};
        std::erase_if(inCloud, [&](const AlertEvent& each) { return deleted.contains(each.id); });
        ASSERT_TRUE(*service->alerts.get() == mergedAlerts(inCloud, store->alerts()).rows) << turn << ": " << rows();
    }
}

TEST_F(MacAlertsServiceTest, AnOlderRefreshNeverOverwritesANewerOne)
{
    putIntoCloud({1});
    refresh();
    mac.icloud.link.setLatency(60s);
    const auto older = start(service->refresh());
    world.clock.advance(1s);
    mac.icloud.link.setLatency(80ms);
    const auto newer = start(service->refresh());
    world.clock.advance(1s);
    EXPECT_TRUE(newer.isFinished());
    EXPECT_TRUE(service->isLoading) << "one is still under way";
    const auto list = service->alerts.get();
    world.clock.advance(15s);
    EXPECT_TRUE(older.isFinished()) << "its time is up";
    EXPECT_FALSE(service->isLoading);
    EXPECT_EQ(service->errorMessage.get(), std::nullopt);
    EXPECT_EQ(service->alerts.get(), list);
}

TEST_F(MacAlertsServiceTest, ARefreshOfTheUsersReplacesTheOneBeforeWhichThenChangesNothing)
{
    putIntoCloud({1});
    mac.icloud.link.setLatency(10s);
    service->startRefresh();
    world.clock.advance(1s);
    mac.icloud.link.setLatency(80ms);
    service->startRefresh();
    world.clock.advance(1s);
    EXPECT_EQ(rows(), "1c ");
    EXPECT_FALSE(service->isLoading) << "the first one is not waited for";

    const auto cancelled = start(service->refresh());
    save(2);
    store->remove(alert(2).id);
    world.clock.advance(10ms);
    cancelled.cancel();
    world.clock.advance(1s);
    EXPECT_TRUE(cancelled.isFinished());
    EXPECT_EQ(rows(), "2w 1c ") << "a list made now would be without the second";
}

TEST_F(MacAlertsServiceTest, AListThatIsLongInComingIsGivenTime)
{
    putIntoCloud({1, 2});
    const std::filesystem::path cache = mac.cacheFile();
    quit();
    mac.crash();
    std::filesystem::remove(cache);
    mac.launch();
    launch();
    mac.icloud.link.setLatency(12s); // for each of several requests
    refresh();
    EXPECT_EQ(rows(), "2c 1c ");

    const Instant begun = world.clock.now();
    mac.icloud.link.setLatency(60s);
    refresh();
    EXPECT_LT(world.clock.now() - begun, 16s) << "but changes alone come within 15 s";
    EXPECT_EQ(rows(), "2c 1c ");
}

TEST_F(MacAlertsServiceTest, WhatTheUserDeletedStaysAwayUntilTheCloudHasDeletedItToo)
{
    putIntoCloud({1, 2});
    save(3);
    refresh();
    mac.icloud.network.setUp(false);
    service->deleteAlerts(idsOf({1, 3}));
    EXPECT_EQ(rows(), "2c ") << "at once";
    EXPECT_THAT(here(), IsEmpty());
    EXPECT_EQ(timesCaughtUp, 1);
    world.clock.advance(1s);
    EXPECT_THAT(service->errorMessage.get(), Optional(testing::StartsWith("Could not reach iCloud.")));

    relaunch();
    refresh();
    EXPECT_EQ(rows(), "2c ");
    EXPECT_EQ(service->pendingDeletions().ids(), idsOf({1, 3}));
    EXPECT_EQ(countInCloud(), 2U);
    mac.icloud.network.setUp(true);
    catchUp();
    EXPECT_THAT(service->pendingDeletions().ids(), IsEmpty());
    EXPECT_EQ(countInCloud(), 1U);
    EXPECT_EQ(service->errorMessage.get(), std::nullopt);
}

} // namespace
} // namespace sentrel::test
