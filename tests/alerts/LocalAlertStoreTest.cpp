#include "alerts/LocalAlertStore.hpp"

#include "posix/PosixFileSystem.hpp"
#include "runtime/VirtualScheduler.hpp"
#include "simulation/mac/SimulatedHost.hpp"
#include "simulation/mac/files/SimulatedFileSystem.hpp"
#include "support/TemporaryFolder.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <fstream>
#include <sstream>
#include <system_error>

namespace sentrel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class LocalAlertStoreTest : public testing::Test {
protected:
    static AlertEvent alert(std::uint8_t number, double date)
    {
        UUID::Octets octets{};
        octets[15] = number;
        octets[14] = static_cast<std::uint8_t>(static_cast<unsigned>(date) >> 8);
        return {UUID{octets}, TriggerReason::motion, Date{date}, "MacBook", std::nullopt, true};
    }

    LocalAlertStore store() { return LocalAlertStore{MainActor{scheduler}, files, host}; }

    std::filesystem::path folder() const
    {
        return disk.path() / "Application Support" / host.bundleIdentifier().value_or("Sentrel") / "Alerts";
    }

    void put(const std::string& name, std::string_view content) const
    {
        std::filesystem::create_directories(folder());
        std::ofstream{folder() / name, std::ios::binary} << content;
    }

    std::string content(const std::filesystem::path& file) const
    {
        std::ostringstream text;
        text << std::ifstream{file, std::ios::binary}.rdbuf();
        return text.str();
    }

    static std::vector<double> dates(const std::vector<StoredAlert>& alerts)
    {
        std::vector<double> dates;
        for (const StoredAlert& stored : alerts) {
            dates.push_back(stored.alert.timestamp.secondsSinceReferenceDate);
        }
        return dates;
    }

    TemporaryFolder disk;
    posix::PosixFileSystem posixFiles;
    simulation::SimulatedFileSystem files{posixFiles};
    mutable simulation::SimulatedHost host{disk.path(), {}};
    VirtualClock clock;
    VirtualScheduler scheduler{clock};
    const Bytes photo = bytesOf("jpeg");
};

TEST_F(LocalAlertStoreTest, KeepsAnAlertInTwoPrivateFilesThatANewStoreFinds)
{
    const AlertEvent first = alert(1, 10);
    store().save(first, photo, true);

    const auto file = folder() / "00000000-0000-0000-0000-000000000001.json";
    EXPECT_EQ(content(file), encodeJson(encodeStoredAlert({first, true})));
    EXPECT_EQ(content(store().photoFile(first.id)), "jpeg");
    EXPECT_EQ(std::filesystem::status(file).permissions(), std::filesystem::perms{0600});
    EXPECT_EQ(std::filesystem::status(folder()).permissions(), std::filesystem::perms{0700});
    EXPECT_THAT(store().alerts(), ElementsAre(StoredAlert{first, true}));
    EXPECT_EQ(store().storedAlert(first.id), (StoredAlert{first, true}));

    store().save(first, std::nullopt, false);
    EXPECT_FALSE(std::filesystem::exists(store().photoFile(first.id))) << "the earlier photo goes";
    EXPECT_THAT(store().alerts(), ElementsAre(StoredAlert{first, false}));
}

TEST_F(LocalAlertStoreTest, ABareExecutableHasAFolderOfTheProductsName)
{
    simulation::SimulatedHost bare{disk.path(), {.bundleIdentifier = std::nullopt}};
    LocalAlertStore bareStore{MainActor{scheduler}, files, bare};
    EXPECT_EQ(bareStore.photoFile(UUID{}).parent_path(), disk.path() / "Application Support" / "Sentrel" / "Alerts");
    EXPECT_TRUE(bare.faults().set("application-support"));
    LocalAlertStore homeless{MainActor{scheduler}, files, bare};
    EXPECT_EQ(homeless.photoFile(UUID{}).parent_path(), disk.path() / "tmp" / "Sentrel" / "Alerts");
}

TEST_F(LocalAlertStoreTest, DamagedAndForeignFilesHideNothingAndStay)
{
    store().save(alert(1, 10), std::nullopt, false);
    const std::string good = encodeJson(encodeStoredAlert({alert(2, 20), false}));
    put("good.json", good);
    put("truncated.json", good.substr(0, good.size() / 2));
    put("binary.json", "\x00\xFF\xFE\x80");
    put("deep.json", std::string(100'000, '['));
    put("array.json", "[" + good + "]");
    put("half.json", R"({"alert":{},"pendingUpload":true})");
    put("text.txt", good);
    put("upper.JSON", good);
    std::filesystem::create_directory(folder() / "folder.json");
    put("notes.jpg.tmp", "somebody else's");

    EXPECT_EQ(dates(store().alerts()), (std::vector<double>{20, 10}));
    EXPECT_EQ(content(folder() / "truncated.json"), good.substr(0, good.size() / 2));
    EXPECT_TRUE(std::filesystem::exists(folder() / "notes.jpg.tmp"));
}

TEST_F(LocalAlertStoreTest, ReadsTheFolderOnceAndAnswersFromMemoryAfterwards)
{
    for (std::uint8_t i = 1; i <= 5; ++i) {
        store().save(alert(i, i), std::nullopt, true);
    }
    LocalAlertStore warm = store();
    EXPECT_EQ(dates(warm.alerts()).size(), 5U);
    const auto reads = files.counts().reads;
    EXPECT_EQ(dates(warm.alerts()), (std::vector<double>{5, 4, 3, 2, 1}));
    EXPECT_NE(warm.storedAlert(alert(3, 3).id), std::nullopt);
    EXPECT_EQ(warm.storedAlert(alert(9, 9).id), std::nullopt);
    EXPECT_EQ(files.counts().reads, reads);

    LocalAlertStore cold = store();
    const auto before = files.counts().reads;
    EXPECT_NE(cold.storedAlert(alert(3, 3).id), std::nullopt);
    EXPECT_EQ(files.counts().reads, before + 1) << "one alert costs one file";
}

TEST_F(LocalAlertStoreTest, TheThousandAndFirstAlertTakesTheOldestAway)
{
    // Put there directly: a thousand durable saves take their time.
    for (unsigned i = 0; i < 1000; ++i) {
        const AlertEvent old = alert(static_cast<std::uint8_t>(i), i);
        put(old.id.text() + ".json", encodeJson(encodeStoredAlert({old, true})));
    }
    put(alert(0, 0).id.text() + ".jpg", "jpeg");
    LocalAlertStore full = store();
    full.save(alert(static_cast<std::uint8_t>(1000), 1000), std::nullopt, true);
    const auto kept = dates(full.alerts());
    EXPECT_EQ(kept.size(), 1000U);
    EXPECT_EQ(kept.back(), 1.0);
    EXPECT_FALSE(std::filesystem::exists(full.photoFile(alert(0, 0).id)));
    EXPECT_EQ(dates(store().alerts()), kept);
}

TEST_F(LocalAlertStoreTest, DeletesOnlyWhatItKnows)
{
    LocalAlertStore loaded = store();
    loaded.save(alert(1, 1), photo, true);
    loaded.save(alert(2, 2), std::nullopt, true);
    put(alert(7, 7).id.text() + ".json", "somebody else's");

    loaded.remove({alert(1, 1).id, alert(7, 7).id});
    EXPECT_EQ(dates(loaded.alerts()), (std::vector<double>{2}));
    EXPECT_FALSE(std::filesystem::exists(loaded.photoFile(alert(1, 1).id)));
    EXPECT_TRUE(std::filesystem::exists(folder() / (alert(7, 7).id.text() + ".json")));

    store().remove({alert(2, 2).id, alert(3, 3).id});
    EXPECT_THAT(store().alerts(), IsEmpty());
}

Async<void> list(LocalAlertStore& from, std::vector<StoredAlert>& into)
{
    std::vector<StoredAlert> alerts = co_await from.alertsInBackground();
    into = std::move(alerts);
}

TEST_F(LocalAlertStoreTest, WhatWasSavedDuringTheFirstReadingIsNotLost)
{
    store().save(alert(1, 1), std::nullopt, true);
    LocalAlertStore reading = store();
    std::vector<StoredAlert> listed;
    MainActor{scheduler}.spawn(list(reading, listed));
    post(scheduler.mainExecutor(), [&] { reading.save(alert(2, 2), std::nullopt, true); });
    clock.runUntilIdle();
    EXPECT_EQ(dates(listed), (std::vector<double>{2, 1}));
}

TEST_F(LocalAlertStoreTest, WhatCouldNotBeReadIsReadLater)
{
    store().save(alert(1, 1), std::nullopt, true);
    store().save(alert(2, 2), std::nullopt, true);
    for (const char* fault : {"list", "read"}) {
        LocalAlertStore reading = store();
        ASSERT_TRUE(files.faults().set(fault, 1));
        EXPECT_FALSE(reading.isSettled()) << fault;
        EXPECT_EQ(reading.storedAlert(alert(1, 1).id)->alert.timestamp, alert(1, 1).timestamp) << fault;
        std::vector<StoredAlert> listed;
        MainActor{scheduler}.spawn(list(reading, listed));
        clock.runUntilIdle();
        EXPECT_EQ(dates(listed), (std::vector<double>{2, 1})) << fault;
        EXPECT_TRUE(reading.isSettled()) << fault;
    }
}

TEST_F(LocalAlertStoreTest, WhatCouldNotBeRemovedIsRemovedLaterAndIsNotBackBefore)
{
    // The alert's file can't be removed; neither file can; both calls raise.
    for (const auto& [fault, failures] : {std::pair{"remove", 1}, std::pair{"remove", 2}, std::pair{"raises", 2}}) {
        LocalAlertStore removing = store();
        removing.save(alert(1, 1), photo, true);
        ASSERT_TRUE(files.faults().set(fault, failures));
        removing.remove({alert(1, 1).id, alert(2, 2).id});
        EXPECT_THAT(removing.alerts(), IsEmpty());
        EXPECT_FALSE(removing.isSettled());
        std::vector<StoredAlert> listed;
        MainActor{scheduler}.spawn(list(removing, listed));
        clock.runUntilIdle();
        EXPECT_THAT(listed, IsEmpty());
        EXPECT_TRUE(removing.isSettled());
        EXPECT_TRUE(std::filesystem::is_empty(folder())) << fault << failures;
    }
}

TEST_F(LocalAlertStoreTest, ADeletionFindsWhatAFailedSaveHasLeft)
{
    LocalAlertStore saving = store();
    EXPECT_THAT(saving.alerts(), IsEmpty());
    std::filesystem::create_directories(saving.photoFile(alert(1, 1).id)); // where no photo can be put then
    EXPECT_THROW(saving.save(alert(1, 1), photo, true), std::system_error);
    EXPECT_THAT(store().alerts(), testing::SizeIs(1));
    saving.remove(std::unordered_set{alert(1, 1).id});
    EXPECT_THAT(store().alerts(), IsEmpty());
}

TEST_F(LocalAlertStoreTest, AFailedWriteIsThrownAndLeavesTheOldAlert)
{
    store().save(alert(1, 1), photo, true);
    const std::string before = content(folder() / (alert(1, 1).id.text() + ".json"));
    for (const char* fault : {"create", "write", "synchronize", "rename"}) {
        ASSERT_TRUE(files.faults().set(fault, 1));
        EXPECT_THROW(store().save(alert(1, 1), photo, false), std::system_error) << fault;
        EXPECT_EQ(content(folder() / (alert(1, 1).id.text() + ".json")), before) << fault;
    }
    store().save(alert(1, 1), photo, false);
    EXPECT_FALSE(store().alerts().front().pendingUpload);
}

TEST_F(LocalAlertStoreTest, APowerCutBetweenAnyTwoCallsLeavesTheOldAlertOrTheNew)
{
    const StoredAlert old{alert(1, 1), true};
    const StoredAlert fresh{alert(1, 1), false};
    for (std::uint64_t calls = 0;; ++calls) {
        store().save(old.alert, bytesOf("old"), old.pendingUpload);
        LocalAlertStore saving = store();
        files.cutPowerAfter(calls);
        bool wasSaved = true;
        try {
            saving.save(fresh.alert, bytesOf("new"), fresh.pendingUpload);
        } catch (const std::system_error&) {
            wasSaved = false;
        }
        const bool wasCut = files.isPowerCut();
        files.restorePower();

        const auto alerts = store().alerts();
        ASSERT_EQ(alerts.size(), 1U) << "after " << calls << " calls";
        EXPECT_THAT(alerts.front(), testing::AnyOf(old, fresh)) << "after " << calls << " calls";
        EXPECT_THAT(content(store().photoFile(old.alert.id)), testing::AnyOf("old", "new"));
        const std::filesystem::directory_iterator left{folder()};
        EXPECT_EQ(std::distance(begin(left), end(left)), 2) << "half a file is swept, after " << calls << " calls";
        if (wasSaved) {
            EXPECT_EQ(alerts.front(), fresh) << "after " << calls << " calls";
            EXPECT_EQ(content(store().photoFile(old.alert.id)), "new");
        }
        if (!wasCut) {
            EXPECT_TRUE(wasSaved);
            EXPECT_GT(calls, 10U);
            break;
        }
    }
}

} // namespace
} // namespace sentrel
