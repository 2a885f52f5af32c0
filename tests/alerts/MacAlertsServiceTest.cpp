#include "alerts/MacAlertsService.hpp"

#include "alerts/LocalAlertStore.hpp"
#include "cloud/CloudMac.hpp"
#include "platform/simulated/IcuCalendar.hpp"
#include "platform/simulated/icloud/CloudErrorNames.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

namespace sentrel::test {
namespace {

using namespace std::chrono_literals;
using platform::CloudAccountStatus;
using simulated::cloudError;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Optional;
using Outcome = AlertUploader::Outcome;

/// Alerts are known by their numbers; a higher one is newer.
class MacAlertsServiceTest : public testing::Test {
protected:
    MacAlertsServiceTest()
    {
        mac.await(mac.cloud->verifyCacheOwner());
        launch();
    }
    ~MacAlertsServiceTest() override { quit(); }

    void launch()
    {
        const MainActor actor{mac.process};
        store = std::make_unique<LocalAlertStore>(actor, mac.files, mac.host);
        uploader = std::make_unique<AlertUploader>(actor, *mac.cloud, world.log);
        service = std::make_unique<MacAlertsService>(
            actor, *mac.cloud, *store, *uploader, [this] { ++timesCaughtUp; },
            MacAlertsService::Ports{mac.defaults, mac.files, mac.wallClock, calendar, mac.language});
    }
    void quit()
    {
        service.reset();
        uploader.reset();
        store.reset();
    }
    void relaunch()
    {
        quit();
        mac.relaunch();
        launch();
    }

    void save(int number, bool isPending = true, const std::optional<Bytes>& photo = std::nullopt)
    {
        store->save(alert(number, photo.has_value()), photo, isPending);
        service->merge({alert(number, photo.has_value()), isPending});
    }
    static AlertEvent alert(int number, bool hasPhoto = false)
    {
        AlertEvent event = alertNumber(number);
        if (hasPhoto) {
            event.photoFileName = event.id.text() + ".jpg";
        }
        return event;
    }
    void putIntoCloud(std::initializer_list<int> numbers)
    {
        mac.await(mac.cloud->refreshAvailability(true));
        for (const int number : numbers) {
            mac.await(mac.cloud->uploadAlert(alert(number), std::nullopt));
        }
    }
    static std::unordered_set<UUID> ids(std::initializer_list<int> numbers)
    {
        std::unordered_set<UUID> all;
        for (const int number : numbers) {
            all.insert(alert(number).id);
        }
        return all;
    }
    static int numberOf(const AlertEvent& event)
    {
        return static_cast<int>(event.timestamp.secondsSinceReferenceDate - 8e8);
    }
    [[nodiscard]] std::string rows() const
    {
        std::string text;
        for (const AlertRow& row : *service->alerts.get()) {
            const char* const marks[] = {"c", "m", "w"}; // cloud, this Mac only, waiting
            text += std::to_string(numberOf(row.alert)) + marks[static_cast<int>(row.storageLocation)] + " ";
        }
        return text;
    }
    std::vector<int> here()
    {
        std::vector<int> numbers;
        for (const StoredAlert& stored : store->alerts()) {
            numbers.push_back(numberOf(stored.alert));
        }
        return numbers;
    }
    std::set<int> inCloud()
    {
        mac.await(mac.cloud->refreshAlerts());
        std::set<int> numbers;
        for (const AlertEvent& event : mac.cloud->cachedAlerts()) {
            numbers.insert(numberOf(event));
        }
        return numbers;
    }
    std::vector<int> uploadsInOrder() const
    {
        std::vector<int> numbers;
        for (const auto& event : world.log.named("alert.uploaded")) {
            numbers.push_back(UUID::parse(event.text("id"))->octets()[1]);
        }
        return numbers;
    }
    [[nodiscard]] std::uint64_t countInCloud() { return world.server.count("owner", "AlertEvent"); }
    [[nodiscard]] std::uint64_t saves() const { return mac.icloud.link.requests(CloudOperation::save); }
    void fail(int code, CloudOperation operation, int times = 1, std::string record = {})
    {
        mac.icloud.link.faults().add({cloudError(code), operation, std::move(record), times});
    }
    void refresh() { mac.await(service->refresh()); }
    void catchUp() { mac.await(service->catchUp()); }
    template <class T> Task<T> start(Async<T> work) { return MainActor{mac.process}.spawn(std::move(work)); }

    CloudWorld world;
    CloudMac mac{world, "MacBook"};
    simulated::IcuCalendar calendar;
    int timesCaughtUp = 0;
    std::unique_ptr<LocalAlertStore> store;
    std::unique_ptr<AlertUploader> uploader;
    std::unique_ptr<MacAlertsService> service;
    const Bytes picture = bytesOf("a photo");
};

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
        each.isHere ? save(2) : store->remove(alert(2).id);
        refresh();
        service->iCloudStorageIsFull = each.isFull;
        if (!each.isCloudRow) {
            service->alerts = std::make_shared<const std::vector<AlertRow>>();
        }
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

TEST_F(MacAlertsServiceTest, CatchesUpOldestFirstWithPhotosAndOneAtATime)
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

TEST_F(MacAlertsServiceTest, StopsForWhatConcernsAllAlertsAndGoesOnPastWhatConcernsOne)
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
        fail(each.code, CloudOperation::save, -1);
        const std::uint64_t before = saves();
        catchUp();
        EXPECT_EQ(saves() - before, each.attempts) << each.why;
        EXPECT_EQ(service->iCloudStorageIsFull, each.isFull) << each.why;
        EXPECT_EQ(here(), (std::vector{3, 2, 1})) << each.why;
        const auto failure = world.log.named("alert.uploadFailed").back();
        EXPECT_EQ(*failure.find("code"), simulated::Event::Value{std::int64_t{each.code}}) << each.why;

        mac.icloud.link.faults().clear();
        world.clock.advance(301s); // whatever patience was asked for
        catchUp();
        EXPECT_THAT(here(), IsEmpty()) << each.why;
        service->deleteAlerts(ids({1, 2, 3}));
        world.clock.advance(1s);
        relaunch();
    }
}

TEST_F(MacAlertsServiceTest, AnAlertThatIsRefusedHoldsUpNoOtherAndIsTriedAgainEverLessOften)
{
    refresh();
    for (const int number : {1, 2, 3}) {
        save(number, false);
    }
    fail(15, CloudOperation::save);
    catchUp();
    const auto failures = [this] { return world.log.named("alert.uploadFailed").size(); };
    for (const Duration pause : {30s, 60s, 120s, 240s, 300s, 300s}) {
        EXPECT_EQ(rows(), "3c 2c 1w ");
        fail(15, CloudOperation::save);
        const auto before = failures();
        world.clock.advance(pause - 10s);
        EXPECT_EQ(failures(), before) << toSeconds(pause);
        world.clock.advance(11s);
        EXPECT_EQ(failures(), before + 1) << toSeconds(pause);
    }
    EXPECT_EQ(service->infoMessage.get(), "Some alerts are waiting to upload to iCloud.");
    save(4);
    fail(15, CloudOperation::save);
    catchUp();
    EXPECT_EQ(rows(), "4c 3c 2c 1w ");
    world.clock.advance(31s);
    EXPECT_EQ(rows(), "4c 3c 2c 1c ") << "since something has worked, soon again";
    const auto requests = mac.icloud.link.requests();
    world.clock.advance(1h);
    EXPECT_EQ(mac.icloud.link.requests(), requests) << "nothing waits any more";

    fail(4, CloudOperation::modify);
    service->deleteAlerts(ids({1}));
    world.clock.advance(31s);
    EXPECT_EQ(countInCloud(), 3U) << "deletions are owed in the same way";
}

TEST_F(MacAlertsServiceTest, ACatalogThatHangsMakesNoFailureOfAnUploadThatIsConfirmed)
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
    EXPECT_EQ(inCloud(), (std::set{1})) << "what the catalog is owed was on the disk";
}

TEST_F(MacAlertsServiceTest, ADeletionIsOwedInTheDatabaseThatHeldTheAlert)
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
    service->deleteAlerts(ids({1}));
    world.clock.advance(1s);
    signIn("other");
    EXPECT_EQ(rows(), "3w ") << "nothing of the former user's";
    world.clock.advance(5s);
    EXPECT_EQ(service->pendingDeletions().ids(), ids({1})) << "this user's database never held it";
    mac.icloud.link.setLatency(CloudOperation::modify, std::nullopt);
    catchUp();
    EXPECT_EQ(rows(), "3c ");
    const auto requests = mac.icloud.link.requests();
    world.clock.advance(1h);
    EXPECT_EQ(mac.icloud.link.requests(), requests) << "this database owes nothing";
    EXPECT_EQ(service->pendingDeletions().ids(), ids({1}));

    relaunch();
    signIn("owner");
    catchUp();
    EXPECT_EQ(rows(), "2c ");
    EXPECT_EQ(countInCloud(), 1U);
    EXPECT_THAT(service->pendingDeletions().ids(), IsEmpty());

    fail(1, CloudOperation::userRecord);
    mac.await(mac.cloud->verifyCacheOwner());
    service->deleteAlerts(ids({2}));
    world.clock.advance(29s);
    EXPECT_EQ(service->pendingDeletions().ids(), ids({2})) << "nobody knows whose database answers";
    world.clock.advance(2s);
    EXPECT_THAT(service->pendingDeletions().ids(), IsEmpty()) << "the retry asks first who is signed in";
}

TEST_F(MacAlertsServiceTest, AnAlertThatTakesTooLongHoldsUpNoOtherButTwoInARowEndThePass)
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

TEST_F(MacAlertsServiceTest, PassesNeverOverlapAndACallDuringOneMeansOneMore)
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

TEST_F(MacAlertsServiceTest, WhatWasLeftUndoneIsDoneOnceICloudAnswersAgain)
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

TEST_F(MacAlertsServiceTest, ALostAnswerMakesOneRecordAndNotTwo)
{
    refresh();
    save(1);
    mac.icloud.link.faults().loseAnswers(1, CloudOperation::save);
    EXPECT_EQ(mac.await(uploader->upload(alert(1), std::nullopt)), Outcome::unreachable);
    EXPECT_EQ(countInCloud(), 1U);
    EXPECT_EQ(here(), (std::vector{1}));
    catchUp();
    EXPECT_EQ(countInCloud(), 1U);
    EXPECT_THAT(here(), IsEmpty());
    EXPECT_EQ(rows(), "1c ");
}

TEST_F(MacAlertsServiceTest, AnAlertIsUploadedOnceAtATimeAndEverybodyLearnsTheOutcome)
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

TEST_F(MacAlertsServiceTest, WhatTheUserDeletedStaysAwayUntilTheCloudHasDeletedItToo)
{
    putIntoCloud({1, 2});
    save(3);
    refresh();
    mac.icloud.network.setUp(false);
    service->deleteAlerts(ids({1, 3}));
    EXPECT_EQ(rows(), "2c ") << "at once";
    EXPECT_THAT(here(), IsEmpty());
    EXPECT_EQ(timesCaughtUp, 1);
    world.clock.advance(1s);
    EXPECT_THAT(service->errorMessage.get(), Optional(testing::StartsWith("Could not reach iCloud.")));

    relaunch();
    refresh();
    EXPECT_EQ(rows(), "2c ");
    EXPECT_EQ(service->pendingDeletions().ids(), ids({1, 3}));
    EXPECT_EQ(countInCloud(), 2U);
    mac.icloud.network.setUp(true);
    catchUp();
    EXPECT_THAT(service->pendingDeletions().ids(), IsEmpty());
    EXPECT_EQ(countInCloud(), 1U);
    EXPECT_EQ(service->errorMessage.get(), std::nullopt);
}

TEST_F(MacAlertsServiceTest, ARecordThatCannotBeDeletedIsTriedAgainByLaterRefreshes)
{
    putIntoCloud({1, 2});
    refresh();
    fail(1, CloudOperation::modify, 1, alert(1).id.text());
    service->deleteAlerts(ids({1, 2}));
    world.clock.advance(1s);
    EXPECT_EQ(service->pendingDeletions().ids(), ids({1}));
    EXPECT_EQ(service->errorMessage.get(), "iCloud is temporarily unavailable. Try again shortly.");
    refresh();
    EXPECT_EQ(rows(), "");
    world.clock.advance(1s);
    EXPECT_THAT(service->pendingDeletions().ids(), IsEmpty());
    EXPECT_EQ(countInCloud(), 0U);
}

TEST_F(MacAlertsServiceTest, ThousandsAreDeletedInPortionsThatAreEachRemembered)
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

TEST_F(MacAlertsServiceTest, AnAlertThatIsDeletedOnItsWayIntoTheCloudDoesNotComeBack)
{
    refresh();
    save(1);
    mac.icloud.link.setLatency(4s);
    const auto upload = start(uploader->upload(alert(1), std::nullopt));
    world.clock.advance(1s);
    service->deleteAlerts(ids({1}));
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

TEST_F(MacAlertsServiceTest, ADeletionDuringItsCatchUpWinsToo)
{
    refresh();
    save(1);
    save(2);
    mac.icloud.link.setLatency(4s);
    const auto pass = start(service->catchUp());
    world.clock.advance(3s);
    ASSERT_TRUE(uploader->isUploading(alert(1).id));
    service->deleteAlerts(ids({1, 2}));
    mac.icloud.link.setLatency(80ms);
    world.clock.advance(30s);
    EXPECT_TRUE(pass.isFinished());
    EXPECT_EQ(countInCloud(), 0U);
    EXPECT_EQ(rows(), "");
    EXPECT_THAT(service->pendingDeletions().ids(), IsEmpty());
}

TEST_F(MacAlertsServiceTest, AnAlertThatReachesTheServerAfterItsDeletionIsDeletedAgain)
{
    refresh();
    save(1);
    service->deleteAlerts(ids({1}));
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
    service->deleteAlerts(ids({2}));
    world.clock.advance(20s);
    EXPECT_EQ(countInCloud(), 1U);
    world.clock.advance(20s);
    EXPECT_EQ(countInCloud(), 0U);
    world.clock.advance(2min);
    EXPECT_THAT(service->pendingDeletions().ids(), IsEmpty());
}

TEST_F(MacAlertsServiceTest, WhereverTheProcessDiesAnAlertIsHereOrInTheCloudAndAtLastThereOnce)
{
    int crashes = 0;
    for (int phases = 1;; ++phases) {
        refresh();
        save(1, true, picture);
        save(2);
        int left = phases;
        mac.icloud.link.onRequest([&left](CloudOperation, simulated::CloudRequestPhase) { --left; });
        const auto pass = start(service->catchUp());
        while (left > 0 && !pass.isFinished()) {
            world.clock.advance(1ms);
        }
        mac.icloud.link.onRequest(nullptr);
        const bool wasThrough = pass.isFinished();
        crashes += wasThrough ? 0 : 1;
        relaunch();
        const std::vector<int> kept = here();
        std::set<int> anywhere = inCloud();
        anywhere.insert(kept.begin(), kept.end());
        EXPECT_EQ(anywhere, (std::set{1, 2})) << "after " << phases << " phases";
        catchUp();
        EXPECT_EQ(countInCloud(), 2U) << "after " << phases << " phases";
        EXPECT_THAT(here(), IsEmpty());
        EXPECT_THAT(mac.await(service->photo(alert(1).id)), Optional(picture));
        if (wasThrough) {
            break;
        }
        mac.await(mac.cloud->deleteAlerts(ids({1, 2})));
    }
    EXPECT_GE(crashes, 8);
}

TEST_F(MacAlertsServiceTest, APhotoThatCannotBeReadNowIsNotGivenUp)
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
