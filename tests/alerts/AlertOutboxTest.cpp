#include "alerts/AlertOutbox.hpp"

#include "alerts/AlertsMac.hpp"

#include <gmock/gmock.h>

namespace sentrel::test {
namespace {

using namespace std::chrono_literals;
using testing::IsEmpty;
using testing::Optional;
using Outcome = AlertUploader::Outcome;

class AlertOutboxTest : public AlertsMac {};

TEST_F(AlertOutboxTest, CatchesUpOldestFirstWithPhotosAndOneAtATime)
{
    refresh();
    save(3, true, picture);
    save(1, false);
    save(2);
    service->iCloudStorageIsFull = true;
    catchUp();
    EXPECT_EQ(uploadsInOrder(), (std::vector{1, 2, 3}));
    EXPECT_EQ(mac.icloud.link.mostAtATime(CloudOperation::save), 1U);
    EXPECT_EQ(rows(), "3c 2c 1c ");
    EXPECT_THAT(here(), IsEmpty());
    EXPECT_FALSE(service->iCloudStorageIsFull);
    EXPECT_EQ(service->infoMessage.get(), std::nullopt);
    EXPECT_EQ(timesCaughtUp, 1);
    EXPECT_THAT(mac.await(service->photo(alert(3).id)), Optional(picture)) << "from the cloud";
    EXPECT_EQ(mac.await(service->photo(alert(2).id)), std::nullopt);
    save(4, true, picture);
    mac.icloud.network.setUp(false);
    EXPECT_THAT(mac.await(service->photo(alert(4).id)), Optional(picture)) << "from this Mac";
    EXPECT_EQ(mac.await(service->photo(alert(3).id)), std::nullopt);
}

TEST_F(AlertOutboxTest, StopsForWhatConcernsAllAlertsAndGoesOnPastWhatConcernsOne)
{
    struct Case {
        int code;
        std::uint64_t attempts;
        bool isFull;
        const char* why;
    };
    const Case cases[] = {
        {25, 1, true, "full"},  {3, 1, false, "no network"}, {4, 1, false, "network"},   {7, 1, false, "throttled"},
        {23, 1, false, "busy"}, {1, 3, false, "internal"},   {12, 3, false, "argument"}, {15, 3, false, "rejected"},
    };
    for (const Case& each : cases) {
        mac.await(mac.cloud->refreshAvailability(true));
        refresh();
        for (const int number : {1, 2, 3}) {
            save(number);
        }
        mac.fail(each.code, CloudOperation::save, -1);
        const std::uint64_t before = saves();
        catchUp();
        EXPECT_EQ(saves() - before, each.attempts) << each.why;
        EXPECT_EQ(service->iCloudStorageIsFull, each.isFull) << each.why;
        EXPECT_EQ(here(), (std::vector{3, 2, 1})) << each.why;
        const auto failure = world.log.named("alert.uploadFailed").back();
        EXPECT_EQ(*failure.find("code"), simulation::Event::Value{std::int64_t{each.code}}) << each.why;

        mac.icloud.link.faults().clear();
        world.clock.advance(301s); // whatever patience was asked for
        catchUp();
        EXPECT_THAT(here(), IsEmpty()) << each.why;
        service->deleteAlerts(idsOf({1, 2, 3}));
        world.clock.advance(1s);
        relaunch();
    }
}

TEST_F(AlertOutboxTest, AnAlertThatIsRefusedHoldsUpNoOtherAndIsTriedAgainEverLessOften)
{
    refresh();
    for (const int number : {1, 2, 3}) {
        save(number, false);
    }
    mac.fail(15, CloudOperation::save);
    catchUp();
    const auto failures = [this] { return world.log.named("alert.uploadFailed").size(); };
    for (const Duration pause : {30s, 60s, 120s, 240s, 300s, 300s}) {
        EXPECT_EQ(rows(), "3c 2c 1w ");
        mac.fail(15, CloudOperation::save);
        const auto before = failures();
        world.clock.advance(pause - 10s);
        EXPECT_EQ(failures(), before) << toSeconds(pause);
        world.clock.advance(11s);
        EXPECT_EQ(failures(), before + 1) << toSeconds(pause);
    }
    EXPECT_EQ(service->infoMessage.get(), "Some alerts are waiting to upload to iCloud.");
    save(4);
    mac.fail(15, CloudOperation::save);
    catchUp();
    EXPECT_EQ(rows(), "4c 3c 2c 1w ");
    world.clock.advance(31s);
    EXPECT_EQ(rows(), "4c 3c 2c 1c ") << "since something has worked, soon again";
    const auto requests = mac.icloud.link.requests();
    world.clock.advance(1h);
    EXPECT_EQ(mac.icloud.link.requests(), requests) << "nothing waits any more";

    mac.fail(4, CloudOperation::modify);
    service->deleteAlerts(idsOf({1}));
    world.clock.advance(31s);
    EXPECT_EQ(countInCloud(), 3U) << "deletions are owed in the same way";
}

TEST_F(AlertOutboxTest, ACatalogThatHangsMakesNoFailureOfAnUploadThatIsConfirmed)
{
    refresh();
    save(1);
    mac.icloud.link.setLatency(CloudOperation::fetchOne, 60s);
    const auto pass = start(service->catchUp());
    world.clock.advance(16s);
    EXPECT_EQ(rows(), "1c ");
    EXPECT_THAT(here(), IsEmpty());
    EXPECT_EQ(mac.cloud->lastSyncError.get(), std::nullopt);
    mac.icloud.link.setLatency(CloudOperation::fetchOne, std::nullopt);
    relaunch();
    EXPECT_EQ(mac.refreshed(), (std::set{1})) << "what the catalog is owed was on the disk";
}

TEST_F(AlertOutboxTest, AnOwnerCheckThatFailedIsRepeatedUntilTheEarlierUsersRowsAreGone)
{
    putIntoCloud({1, 2});
    refresh();
    mac.icloud.link.setUser("other");
    mac.icloud.network.setUp(false);
    mac.await(mac.cloud->verifyCacheOwner());
    catchUp();
    mac.icloud.network.setUp(true);
    EXPECT_EQ(rows(), "2c 1c ") << "nobody knows yet who is signed in";
    world.clock.advance(3min);
    EXPECT_EQ(rows(), "");
    const auto requests = mac.icloud.link.requests();
    world.clock.advance(1h);
    EXPECT_EQ(mac.icloud.link.requests(), requests) << "the question is answered";
}

TEST_F(AlertOutboxTest, ADeletionIsOwedInTheDatabaseThatHeldTheAlert)
{
    const auto signIn = [this](const char* user) {
        mac.icloud.link.setUser(user);
        mac.await(mac.cloud->verifyCacheOwner());
        service->userDidChange();
    };
    putIntoCloud({1, 2});
    refresh();
    save(3);
    mac.icloud.link.setLatency(CloudOperation::modify, 4s);
    service->deleteAlerts(idsOf({1}));
    world.clock.advance(1s);
    signIn("other");
    EXPECT_EQ(rows(), "3w ") << "nothing of the former user's";
    world.clock.advance(5s);
    EXPECT_EQ(service->pendingDeletions().ids(), idsOf({1})) << "this user's database never held it";
    mac.icloud.link.setLatency(CloudOperation::modify, std::nullopt);
    catchUp();
    EXPECT_EQ(rows(), "3c ");
    const auto requests = mac.icloud.link.requests();
    world.clock.advance(1h);
    EXPECT_EQ(mac.icloud.link.requests(), requests) << "this database owes nothing";
    EXPECT_EQ(service->pendingDeletions().ids(), idsOf({1}));

    relaunch();
    signIn("owner");
    catchUp();
    EXPECT_EQ(rows(), "2c ");
    EXPECT_EQ(countInCloud(), 1U);
    EXPECT_THAT(service->pendingDeletions().ids(), IsEmpty());

    mac.fail(1, CloudOperation::userRecord);
    mac.await(mac.cloud->verifyCacheOwner());
    service->deleteAlerts(idsOf({2}));
    world.clock.advance(29s);
    EXPECT_EQ(service->pendingDeletions().ids(), idsOf({2})) << "nobody knows whose database answers";
    world.clock.advance(2s);
    EXPECT_THAT(service->pendingDeletions().ids(), IsEmpty()) << "the retry asks first who is signed in";
}

TEST_F(AlertOutboxTest, AnAlertThatTakesTooLongHoldsUpNoOtherButTwoInARowEndThePass)
{
    refresh();
    for (const int number : {1, 2, 3}) {
        save(number);
    }
    mac.icloud.link.setLatency(CloudOperation::save, 60s);
    const auto pass = start(service->catchUp());
    world.clock.advance(2s);
    mac.icloud.link.setLatency(CloudOperation::save, std::nullopt);
    world.clock.advance(20s);
    EXPECT_TRUE(pass.isFinished());
    EXPECT_EQ(rows(), "3c 2c 1w ");

    save(4);
    save(5);
    mac.icloud.link.setLatency(CloudOperation::save, 60s);
    const auto failures = world.log.named("alert.uploadFailed").size();
    const auto slowPass = start(service->catchUp());
    world.clock.advance(40s);
    EXPECT_TRUE(slowPass.isFinished());
    EXPECT_EQ(world.log.named("alert.uploadFailed").size(), failures + 2) << "that is the network's fault";
    EXPECT_EQ(rows(), "5w 4w 3c 2c 1w ");
    save(6);
    mac.icloud.link.setLatency(CloudOperation::save, std::nullopt);
    world.clock.advance(10min);
    EXPECT_EQ(uploadsInOrder(), (std::vector{2, 3, 6, 1, 4, 5})) << "those that took too long come last";
}

TEST_F(AlertOutboxTest, PassesNeverOverlapAndACallDuringOneMeansOneMore)
{
    refresh();
    save(1);
    const auto first = start(service->catchUp());
    const auto second = start(service->catchUp());
    world.clock.advance(50ms);
    save(2);
    const auto third = start(service->catchUp());
    const auto fourth = start(service->catchUp());
    world.clock.advance(5s);
    EXPECT_TRUE(first.isFinished() && second.isFinished() && third.isFinished() && fourth.isFinished());
    EXPECT_EQ(uploadsInOrder(), (std::vector{1, 2}));
    EXPECT_EQ(timesCaughtUp, 2);
}

TEST_F(AlertOutboxTest, WhatWasLeftUndoneIsDoneOnceICloudAnswersAgain)
{
    putIntoCloud({7});
    refresh();
    save(1);
    mac.icloud.link.setLatency(20s);
    catchUp();
    EXPECT_EQ(world.log.named("alert.uploadFailed").back().text("message"),
              "Could not reach iCloud.\nCheck your connection and try again.");
    EXPECT_EQ(here(), (std::vector{1}));
    mac.icloud.link.setLatency(80ms);
    mac.await(mac.cloud->publishPresence({})); // the heartbeat
    world.clock.advance(5s);
    EXPECT_EQ(rows(), "7c 1c ");
    EXPECT_EQ(countInCloud(), 2U);
}

TEST_F(AlertOutboxTest, AnAlertIsUploadedOnceAtATimeAndEverybodyLearnsTheOutcome)
{
    refresh();
    save(1);
    mac.icloud.link.setLatency(20s);
    const auto first = start(uploader->upload(alert(1), std::nullopt));
    const auto second = start(uploader->upload(alert(1), std::nullopt));
    world.clock.advance(1s);
    first.cancel();
    world.clock.advance(1s);
    EXPECT_TRUE(first.isFinished());
    EXPECT_TRUE(uploader->isUploading(alert(1).id)) << "whoever waits may leave; the attempt goes on";
    world.clock.advance(14s);
    EXPECT_FALSE(uploader->isUploading(alert(1).id));
    EXPECT_TRUE(second.isFinished());
    EXPECT_EQ(saves(), 1U);
    EXPECT_EQ(world.log.named("alert.uploadFailed").size(), 1U);
}

TEST_F(AlertOutboxTest, ARecordThatCannotBeDeletedIsTriedAgainByLaterRefreshes)
{
    putIntoCloud({1, 2});
    refresh();
    mac.fail(1, CloudOperation::modify, 1, alert(1).id.text());
    service->deleteAlerts(idsOf({1, 2}));
    world.clock.advance(1s);
    EXPECT_EQ(service->pendingDeletions().ids(), idsOf({1}));
    EXPECT_EQ(service->errorMessage.get(), "iCloud is temporarily unavailable. Try again shortly.");
    refresh();
    EXPECT_EQ(rows(), "");
    world.clock.advance(1s);
    EXPECT_THAT(service->pendingDeletions().ids(), IsEmpty());
    EXPECT_EQ(countInCloud(), 0U);
}

TEST_F(AlertOutboxTest, ThousandsAreDeletedInPortionsThatAreEachRemembered)
{
    std::unordered_set<UUID> many;
    for (int number = 0; number < 700; ++number) {
        many.insert(alert(number).id);
    }
    refresh();
    mac.icloud.link.setLatency(6s); // the whole would take longer than any one deadline
    service->deleteAlerts(many);
    world.clock.advance(90s);
    EXPECT_THAT(service->pendingDeletions().ids(), IsEmpty());
}

TEST_F(AlertOutboxTest, AnAlertThatIsDeletedOnItsWayIntoTheCloudDoesNotComeBack)
{
    refresh();
    save(1);
    mac.icloud.link.setLatency(4s);
    const auto upload = start(uploader->upload(alert(1), std::nullopt));
    world.clock.advance(1s);
    service->deleteAlerts(idsOf({1}));
    world.clock.advance(9s);
    EXPECT_TRUE(upload.isFinished());
    EXPECT_EQ(countInCloud(), 1U) << "it arrived all the same";
    mac.icloud.link.setLatency(80ms);
    refresh(); // as whoever uploads does in the end
    EXPECT_EQ(rows(), "");
    world.clock.advance(1s);
    EXPECT_EQ(countInCloud(), 0U);
    EXPECT_THAT(service->pendingDeletions().ids(), IsEmpty());

    service->merge({alert(1), true});
    EXPECT_EQ(mac.await(uploader->upload(alert(1), std::nullopt)), Outcome::deleted);
    EXPECT_EQ(rows(), "");
    EXPECT_EQ(uploadsInOrder(), (std::vector{1}));
}

TEST_F(AlertOutboxTest, AnAlertThatReachesTheServerAfterItsDeletionIsDeletedAgain)
{
    refresh();
    save(1);
    service->deleteAlerts(idsOf({1}));
    world.clock.advance(1s);
    EXPECT_THAT(service->pendingDeletions().ids(), IsEmpty());
    putIntoCloud({1}); // an attempt that had been given up
    refresh();
    EXPECT_EQ(rows(), "");
    world.clock.advance(1s);
    EXPECT_EQ(countInCloud(), 0U);

    // One that nobody lists, since it arrives after everybody has given it up.
    save(2);
    mac.icloud.link.setLatency(60s);
    const auto upload = start(uploader->upload(alert(2), std::nullopt));
    world.clock.advance(16s);
    ASSERT_TRUE(upload.isFinished());
    mac.icloud.link.setLatency(80ms);
    service->deleteAlerts(idsOf({2}));
    world.clock.advance(20s);
    EXPECT_EQ(countInCloud(), 1U);
    world.clock.advance(20s);
    EXPECT_EQ(countInCloud(), 0U);
    world.clock.advance(2min);
    EXPECT_THAT(service->pendingDeletions().ids(), IsEmpty());
}

TEST_F(AlertOutboxTest, APhotoThatCannotBeReadNowIsNotGivenUp)
{
    refresh();
    save(1, true, picture);
    ASSERT_TRUE(mac.files.faults().set("read", 1));
    catchUp();
    EXPECT_EQ(saves(), 0U);
    EXPECT_EQ(here(), (std::vector{1}));
    catchUp();
    EXPECT_THAT(mac.await(service->photo(alert(1).id)), Optional(picture));
}

} // namespace
} // namespace sentrel::test
