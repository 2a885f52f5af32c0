#include "cloud/AlertRecord.hpp"
#include "cloud/CatalogMirror.hpp"
#include "cloud/CloudErrors.hpp"
#include "cloud/CloudMac.hpp"
#include "simulation/icloud/CloudErrorNames.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <set>

namespace sentrel::test {
namespace {

using namespace std::chrono_literals;
using ports::CloudRecord;
using simulation::cloudError;
using simulation::CloudRequestPhase;
using testing::ElementsAre;
using testing::IsEmpty;

class CloudAlertsTest : public testing::Test {
protected:
    CloudAlertsTest() { online(mac); }

    static void online(CloudMac& which)
    {
        which.await(which.cloud->refreshAvailability(true));
        which.await(which.cloud->verifyCacheOwner());
    }
    static std::string upload(CloudMac& which, int number, std::optional<Bytes> photo = std::nullopt)
    {
        return outcomeOf(which, which.cloud->uploadAlert(alertNumber(number), std::move(photo)));
    }
    std::size_t deleteAlerts(std::initializer_list<int> numbers)
    {
        return mac.await(mac.cloud->deleteAlerts(idsOf(numbers))).size();
    }
    std::vector<std::string> catalog()
    {
        const auto record = mac.await(mac.icloud.database.record("alert-catalog"));
        const auto& texts = std::get<TextList>(record.fields.at("alertIDs"));
        return {texts.begin(), texts.end()};
    }
    /// Writes past the service, as another device would that knows nothing of the catalog.
    void put(std::vector<CloudRecord> records)
    {
        mac.await(mac.icloud.database.modify(std::move(records), {}, ports::CloudSavePolicy::allKeys, false));
    }
    CloudRecord record(int number) { return alertRecord(alertNumber(number), "elsewhere", mac.language); }
    [[nodiscard]] std::size_t temporaryFiles() const
    {
        const std::filesystem::directory_iterator files{mac.temporaryFolder()};
        return static_cast<std::size_t>(std::distance(begin(files), end(files)));
    }

    CloudWorld world;
    CloudMac mac{world, "MacBook"};
    const Bytes photo = bytesOf("a photo");
};

TEST_F(CloudAlertsTest, AnAlertTravelsWithItsPhotoAndIsThereOnceHoweverOftenItIsUploaded)
{
    EXPECT_EQ(upload(mac, 1, photo), "done");
    EXPECT_EQ(upload(mac, 1, photo), "done") << "its answer may have been lost";
    EXPECT_EQ(upload(mac, 2), "done");
    EXPECT_EQ(world.server.count("owner", alertRecordType), 2U);
    EXPECT_THAT(catalog(), ElementsAre(alertNumber(1).id.text(), alertNumber(2).id.text()));
    const auto saved = mac.await(mac.icloud.database.record(alertNumber(1).id.text()));
    EXPECT_EQ(saved.fields.at("triggerName"), ports::CloudValue{"Motion"});
    EXPECT_EQ(saved.fields.at("deviceName"), ports::CloudValue{"MacBook"});

    CloudMac second{world, "second", 2};
    online(second);
    EXPECT_EQ(second.refreshed(), (std::set{1, 2}));
    EXPECT_EQ(second.await(second.cloud->alertPhoto(alertNumber(1).id)), photo);
    EXPECT_FALSE(second.await(second.cloud->alertPhoto(alertNumber(2).id)));
    for (const AlertEvent& alert : second.cloud->cachedAlerts()) {
        EXPECT_EQ(alert.photoFileName.has_value(), alert.id == alertNumber(1).id) << "remembered";
        EXPECT_EQ(alert.deviceName, "MacBook");
    }
}

TEST_F(CloudAlertsTest, AnUploadMakesThreeRequestsAndFailsByTheAlertsOwnSaveOnly)
{
    EXPECT_EQ(mac.requestsOf(mac.cloud->uploadAlert(alertNumber(1), photo)), 3U);
    mac.fail(CloudErrorCode::quotaExceeded, CloudOperation::save);
    EXPECT_EQ(upload(mac, 2), "CloudKit 25");
    mac.fail(CloudErrorCode::requestRateLimited, CloudOperation::fetchOne);
    EXPECT_EQ(upload(mac, 3), "done") << "the catalog can't be read";
    EXPECT_EQ(catalog().size(), 1U);
    // The process dies; what the catalog is owed was on the disk before the upload was told to be done.
    mac.relaunch();
    EXPECT_EQ(mac.refreshed(), (std::set{1, 3}));
    EXPECT_EQ(catalog().size(), 2U);
}

TEST_F(CloudAlertsTest, NoPhotoFileOutlivesItsUpload)
{
    bool wasThere = false;
    mac.icloud.link.onRequest([&](CloudOperation operation, CloudRequestPhase /*phase*/) {
        wasThere = wasThere || (operation == CloudOperation::save && temporaryFiles() == 1);
    });
    upload(mac, 1, photo);
    EXPECT_TRUE(wasThere);
    EXPECT_EQ(temporaryFiles(), 0U);
    mac.fail(CloudErrorCode::quotaExceeded, CloudOperation::save);
    upload(mac, 2, photo);
    EXPECT_EQ(temporaryFiles(), 0U) << "after a failure";

    mac.files.faults().set("write");
    EXPECT_THAT(upload(mac, 3, photo), testing::HasSubstr("No space left")) << "and nothing is uploaded";
    mac.files.faults().set("write", 0);
    EXPECT_EQ(temporaryFiles(), 0U);
    EXPECT_EQ(world.server.count("owner", alertRecordType), 1U);

    for (const Duration span : {0ms, 1ms, 60ms}) {
        const auto cancelled = MainActor{mac.process}.spawn(mac.cloud->uploadAlert(alertNumber(4), photo));
        if (span > 0ms) {
            world.clock.advance(span);
        }
        cancelled.cancel();
        world.clock.advance(1s);
        EXPECT_EQ(temporaryFiles(), 0U) << "cancelled after " << toSeconds(span) << " s";
    }
    EXPECT_FALSE(mac.defaults.texts(UploadPhotoFiles::defaultsKey));

    MainActor{mac.process}.spawn(mac.cloud->uploadAlert(alertNumber(5), photo));
    world.clock.advance(20ms);
    ASSERT_EQ(temporaryFiles(), 1U);
    mac.crash();
    ASSERT_EQ(temporaryFiles(), 1U);
    std::ofstream{mac.temporaryFolder() / "else.jpg"} << "another program's";
    auto names = *mac.defaults.texts(UploadPhotoFiles::defaultsKey);
    names.insert(names.end(), {"else.jpg", "../Application Support", ""});
    mac.defaults.setTexts(UploadPhotoFiles::defaultsKey, names);
    mac.launch();
    EXPECT_TRUE(std::filesystem::exists(mac.temporaryFolder() / "else.jpg"));
    EXPECT_EQ(temporaryFiles(), 1U) << "a crash's file is swept, and no other";
}

TEST_F(CloudAlertsTest, ARefreshAsksForWhatIsNewAndNotForThousandsOfOldAlerts)
{
    for (int start = 0; start < 10'000; start += 400) {
        std::vector<CloudRecord> records;
        for (int number = start; number < start + 400; ++number) {
            records.push_back(record(number));
        }
        put(std::move(records));
    }
    EXPECT_EQ(mac.refreshed().size(), 10'000U) << "no catalog: every page is read";
    EXPECT_EQ(catalog().size(), 10'000U);
    EXPECT_EQ(catalog().front(), alertNumber(0).id.text()) << "in the order of their dates";
    EXPECT_EQ(mac.requestsOf(mac.cloud->refreshAlerts()), 1U) << "nothing new";

    std::vector<CloudRecord> records;
    CloudRecord list = mac.await(mac.icloud.database.record("alert-catalog"));
    for (int number = 10'000; number < 10'010; ++number) {
        records.push_back(record(number));
        auto& texts = std::get<TextList>(list.fields.at("alertIDs"));
        texts = texts.with({records.back().name});
    }
    records.push_back(list);
    put(std::move(records));
    world.clock.advance(2s); // the cache is written
    mac.relaunch();
    EXPECT_EQ(mac.requestsOf(mac.cloud->refreshAlerts()), 2U);
    EXPECT_EQ(mac.known().size(), 10'010U);
}

TEST_F(CloudAlertsTest, TwoMacsThatUploadAndDeleteAtOnceLoseAndDoubleNothing)
{
    CloudMac second{world, "second", 2};
    online(second);
    upload(mac, 100);
    second.refreshed();
    std::vector<Task<void>> uploads;
    for (int number = 0; number < 4; ++number) {
        CloudMac& which = number % 2 == 0 ? mac : second;
        uploads.push_back(MainActor{which.process}.spawn(which.cloud->uploadAlert(alertNumber(number), photo)));
    }
    const auto deletion = MainActor{second.process}.spawn(second.cloud->deleteAlerts(idsOf({100})));
    world.clock.advance(30s);
    for (const Task<void>& done : uploads) {
        EXPECT_TRUE(done.isFinished());
    }
    const std::set expected{0, 1, 2, 3};
    EXPECT_EQ(mac.refreshed(), expected);
    EXPECT_EQ(second.refreshed(), expected);
    const auto texts = catalog();
    EXPECT_EQ(std::set(texts.begin(), texts.end()).size(), 4U);
    EXPECT_EQ(texts.size(), 4U);
}

TEST_F(CloudAlertsTest, WhatHappensDuringARefreshIsNewerThanWhatItFinds)
{
    for (const int number : {1, 2}) {
        upload(mac, number);
    }
    std::filesystem::remove(mac.cacheFile());
    mac.relaunch();
    mac.icloud.link.setLatency(2s);
    const auto refresh = MainActor{mac.process}.spawn(mac.cloud->refreshAlerts());
    world.clock.advance(1500ms);
    mac.icloud.link.setLatency(20ms);
    EXPECT_EQ(upload(mac, 3), "done");
    EXPECT_EQ(deleteAlerts({1}), 1U);
    world.clock.advance(5s);
    ASSERT_TRUE(refresh.isFinished());
    EXPECT_EQ(mac.known(), (std::set{2, 3}));
    EXPECT_EQ(mac.refreshed(), (std::set{2, 3}));
}

TEST_F(CloudAlertsTest, ARefreshThatFailsOrIsCancelledChangesNothing)
{
    upload(mac, 1);
    mac.refreshed();
    put({record(2)});
    std::filesystem::remove(mac.cacheFile());
    mac.relaunch();
    for (const CloudOperation operation : {CloudOperation::fetchOne, CloudOperation::query}) {
        mac.fail(CloudErrorCode::networkFailure, operation);
        EXPECT_EQ(outcomeOf(mac, mac.cloud->refreshAlerts()), "CloudKit 4");
        EXPECT_THAT(mac.known(), IsEmpty());
    }
    const auto cancelled = MainActor{mac.process}.spawn(mac.cloud->refreshAlerts());
    world.clock.advance(100ms);
    cancelled.cancel();
    world.clock.advance(1s);
    EXPECT_THAT(mac.known(), IsEmpty());
    EXPECT_EQ(mac.refreshed(), (std::set{1, 2}));
}

TEST_F(CloudAlertsTest, DeletionCountsWhateverTheCloudDoesNotHoldAnyMore)
{
    for (const int number : {1, 2, 3}) {
        upload(mac, number);
    }
    mac.icloud.link.faults().add(
        {cloudError(CloudErrorCode::zoneBusy, 9.0), CloudOperation::modify, alertNumber(2).id.text(), 1});
    EXPECT_EQ(deleteAlerts({1, 2, 4711}), 2U) << "one is busy, one never was";
    EXPECT_EQ(mac.cloud->requestBackoff().consecutiveFailures, 1);
    EXPECT_EQ(mac.known(), (std::set{2, 3}));

    mac.fail(CloudErrorCode::networkFailure, CloudOperation::modify);
    EXPECT_EQ(deleteAlerts({2, 3}), 0U);
    EXPECT_FALSE(mac.cloud->isReachable);

    // The catalog can't be told: it learns after the next launch, and no alert comes back meanwhile.
    mac.fail(CloudErrorCode::networkFailure, CloudOperation::save, 1);
    EXPECT_EQ(deleteAlerts({2}), 1U);
    EXPECT_EQ(catalog().size(), 2U);
    mac.relaunch();
    EXPECT_EQ(mac.refreshed(), (std::set{3}));
    EXPECT_THAT(catalog(), ElementsAre(alertNumber(3).id.text()));
    EXPECT_TRUE(mac.cloud->isReachable);
}

TEST_F(CloudAlertsTest, WhatOtherDevicesDoWithoutTheCatalogIsFoundAtLast)
{
    upload(mac, 1);
    upload(mac, 2);
    mac.refreshed();
    std::vector<std::string> names(1, alertNumber(1).id.text());
    mac.await(mac.icloud.database.modify({}, names, ports::CloudSavePolicy::allKeys, false));
    EXPECT_EQ(mac.refreshed(), (std::set{1, 2})) << "the catalog lists it still";
    EXPECT_FALSE(mac.await(mac.cloud->alertPhoto(alertNumber(1).id)));
    EXPECT_EQ(mac.refreshed(), (std::set{2}));
    EXPECT_THAT(catalog(), ElementsAre(alertNumber(2).id.text()));

    names.front() = "alert-catalog";
    mac.await(mac.icloud.database.modify({}, names, ports::CloudSavePolicy::allKeys, false));
    put({record(3)});
    EXPECT_EQ(mac.refreshed(), (std::set{2, 3})) << "without a catalog everything is read";
    EXPECT_THAT(catalog(), ElementsAre(alertNumber(2).id.text(), alertNumber(3).id.text()));
}

TEST_F(CloudAlertsTest, ADamagedCacheIsBuiltAnew)
{
    upload(mac, 1);
    upload(mac, 2);
    for (const char* const damage :
         {"", "{", "\xff\xfe", "[]", R"({"version":2})", R"({"version":1,"isComplete":true})"}) {
        mac.refreshed();
        world.clock.advance(2s);
        EXPECT_EQ(std::filesystem::status(mac.cacheFile()).permissions(), std::filesystem::perms{0600});
        std::ofstream{mac.cacheFile(), std::ios::trunc} << damage;
        mac.relaunch();
        EXPECT_THAT(mac.known(), IsEmpty()) << damage;
        EXPECT_EQ(mac.refreshed(), (std::set{1, 2})) << damage;
        world.clock.advance(2s);
        mac.relaunch();
        EXPECT_EQ(mac.known(), (std::set{1, 2})) << damage;
    }
    mac.files.faults().set("synchronize");
    EXPECT_EQ(upload(mac, 3), "done") << "a cache that can't be written harms nothing";
    world.clock.advance(2s);
    mac.relaunch();
    EXPECT_EQ(mac.known(), (std::set{1, 2}));
}

TEST_F(CloudAlertsTest, HostileRecordsAreSkippedAndNotAskedForAgain)
{
    std::vector<CloudRecord> records{record(1), record(2), record(3)};
    records[1].fields["reason"] = std::string{"earthquake"};
    records[2].name = "../../../etc/passwd";
    records[2].fields["deviceName"] = std::string(100'000, 'x');
    put(records);
    EXPECT_EQ(mac.refreshed(), (std::set{1}));
    CloudRecord list;
    list.type = "AlertCatalog";
    list.name = "alert-catalog";
    list.fields["alertIDs"] =
        std::vector<std::string>{"", "nonsense", records[0].name, records[1].name, alertNumber(4).id.text()};
    put({list});
    mac.relaunch();
    EXPECT_EQ(mac.refreshed(), (std::set{1}));
    EXPECT_THAT(catalog(), ElementsAre(records[0].name, records[1].name)) << "what never was is taken off";
    EXPECT_EQ(mac.requestsOf(mac.cloud->refreshAlerts()), 1U);
    list.fields["alertIDs"] = std::string{"no list"};
    put({list});
    EXPECT_EQ(mac.refreshed(), (std::set{1}));
}

TEST_F(CloudAlertsTest, AFullCatalogDropsItsOldestAndNoLongerTellsOfDeletions)
{
    upload(mac, 1);
    mac.refreshed();
    CloudRecord list;
    list.type = "AlertCatalog";
    list.name = "alert-catalog";
    std::vector<std::string> texts{alertNumber(1).id.text()};
    for (int number = 10'000; texts.size() < 20'000; ++number) {
        texts.push_back(alertNumber(number).id.text());
    }
    list.fields["alertIDs"] = texts;
    put({list});
    upload(mac, 2);
    EXPECT_EQ(catalog().size(), 20'000U);
    EXPECT_EQ(catalog().back(), alertNumber(2).id.text());
    EXPECT_NE(catalog().front(), alertNumber(1).id.text());
    list = mac.await(mac.icloud.database.record("alert-catalog"));
    list.fields["alertIDs"] = std::vector<std::string>{alertNumber(2).id.text()};
    put({list});
    EXPECT_EQ(mac.refreshed(), (std::set{1, 2})) << "the first fell off because it is old";
}

class CatalogMirrorTest : public testing::Test {
protected:
    static CatalogMirror::List listOf(int first, int last)
    {
        std::vector<std::string> texts;
        for (int number = first; number <= last; ++number) {
            texts.push_back(alertNumber(number).id.text());
        }
        return {texts, true, false};
    }
    CatalogMirror::Step stepTo(CatalogMirror::List list) { return mirror.finderOfStep(std::move(list))(); }

    CloudWorld world;
    CloudMac mac{world, "MacBook"};
    AlertMetadataCache cache{MainActor{mac.process}, mac.files, world.log, mac.disk / "cache", std::nullopt};
    CatalogMirror mirror{cache};
};

TEST_F(CatalogMirrorTest, OneMoreAlertAmongThousandsIsOneToLookAt)
{
    AlertMap alerts;
    for (int number = 1; number <= 10'000; ++number) {
        alerts.emplace(alertNumber(number).id, alertNumber(number));
    }
    cache.insert(std::move(alerts));
    EXPECT_TRUE(mirror.follow(stepTo(listOf(1, 10'000))));
    EXPECT_THAT(mirror.uncached(), IsEmpty());
    EXPECT_THAT(mirror.unlisted(), IsEmpty());
    mirror.noteReconciled();

    const CatalogMirror::Step step = stepTo(listOf(1, 10'001));
    EXPECT_FALSE(step.all) << "the others are not read again";
    EXPECT_THAT(step.added, ElementsAre(alertNumber(10'001).id));
    EXPECT_THAT(step.gone, IsEmpty());
    EXPECT_TRUE(mirror.follow(step));
    EXPECT_THAT(mirror.uncached(), ElementsAre(alertNumber(10'001).id));
    EXPECT_FALSE(mirror.follow(step)) << "the mirror has moved on";

    EXPECT_TRUE(mirror.follow(stepTo(listOf(1, 9'999))));
    EXPECT_THAT(mirror.unlisted(), ElementsAre(alertNumber(10'000).id)) << "another device has deleted it";
    cache.erase({alertNumber(10'000).id, alertNumber(1).id});
    EXPECT_THAT(mirror.unlisted(), IsEmpty());
    EXPECT_THAT(mirror.uncached(), ElementsAre(alertNumber(1).id));
}

TEST_F(CatalogMirrorTest, AListWithOtherTextsOrRepetitionsIsReadWhole)
{
    const std::string text = alertNumber(1).id.text();
    for (const std::string& odd : {std::string{"nonsense"}, text}) {
        const TextList texts{text, alertNumber(2).id.text(), alertNumber(3).id.text()};
        EXPECT_TRUE(mirror.follow(stepTo({texts, true, false})));
        EXPECT_TRUE(mirror.isPlain());
        EXPECT_TRUE(mirror.follow(stepTo({texts.with({odd}), true, false})));
        EXPECT_FALSE(mirror.isPlain());
        EXPECT_TRUE(mirror.follow(stepTo({texts, true, false})));
        EXPECT_TRUE(mirror.lists(alertNumber(1).id)) << "one repetition has gone, the identifier has not";
    }
}

} // namespace
} // namespace sentrel::test
