#include "simulation/icloud/CloudScene.hpp"

#include "runtime/ThreadScheduler.hpp"
#include "simulation/icloud/CompanionPhone.hpp"
#include "simulation/icloud/Sqlite.hpp"
#include "support/Files.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <random>
#include <set>
#include <string_view>
#include <thread>

namespace sentrel::simulation {
namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;
using ports::CloudRecord;

class PrivateCloudTest : public testing::Test, protected CloudScene {
protected:
    [[nodiscard]] std::filesystem::path file(const std::string& name = "owner.sqlite") const
    {
        return disk.path() / "iCloud" / name;
    }

    static constexpr auto changedKeys = ports::CloudSavePolicy::changedKeys;

    static int put(PrivateCloud& cloud, const std::string& user, const std::string& name)
    {
        const ServerBatch batch{{{"Thing", name, {{"word", "x"s}}, {}, {}}}, {}, {}, false, {}};
        return codeOf(cloud.modify({user, "test"}, batch).saved.at(name));
    }

    /// The server of a later run.
    [[nodiscard]] std::unique_ptr<PrivateCloud> restart()
    {
        return std::make_unique<PrivateCloud>(disk.path() / "iCloud", wallClock, log);
    }
};

TEST_F(PrivateCloudTest, ADamagedFileIsPutAsideAndItsAccountBeginsAnew)
{
    const std::vector<std::function<void()>> damages{
        [&] { test::put(file(), "no database at all"); },
        [&] { test::put(file(), std::string(100000, '\0')); },
        [&] {
            std::filesystem::remove(file());
            SqliteDatabase{file()}.run("CREATE TABLE addresses(name TEXT)");
        },
        [&] { std::filesystem::resize_file(file(), 5000); },
        [&] {
            std::fstream bytes{file(), std::ios::in | std::ios::out | std::ios::binary};
            bytes.seekp(100) << std::string(8000, 'x');
        },
    };
    int number = 0;
    for (const auto& damage : damages) {
        EXPECT_EQ(put(*restart(), "owner", "one"), number == 0 ? 0 : CKError::serverRecordChanged);
        damage();
        EXPECT_EQ(restart()->count("owner", "Thing"), 0U);
        const std::string aside = "owner.sqlite.damaged-" + std::to_string(++number);
        EXPECT_TRUE(std::filesystem::exists(file(aside)));
        EXPECT_EQ(log.events().back().name, "icloud.damaged");
        EXPECT_EQ(log.events().back().text("putAside"), aside);
        EXPECT_EQ(put(*restart(), "owner", "one"), 0);
    }
    std::filesystem::resize_file(file(), 0);
    EXPECT_EQ(restart()->count("owner", "Thing"), 0U) << "an empty file is a new database";
    EXPECT_EQ(log.named("icloud.damaged").size(), damages.size());
}

TEST_F(PrivateCloudTest, AFileThatIsDamagedWhileItIsOpenCostsOneRequest)
{
    ASSERT_EQ(put(server, "owner", "one"), 0);
    ASSERT_EQ(put(*restart(), "owner", "two"), 0); // the server must look at the file again
    for (const char* const name : {"owner.sqlite", "owner.sqlite-wal"}) {
        const auto size = std::filesystem::file_size(file(name));
        std::fstream{file(name), std::ios::in | std::ios::out | std::ios::binary} << std::string(size, 'x');
    }
    EXPECT_EQ(code(mac.database.record("one")), CKError::internalError);
    EXPECT_EQ(code(mac.database.record("one")), CKError::unknownItem);
    EXPECT_EQ(put(server, "owner", "one"), 0);
    EXPECT_EQ(log.named("icloud.damaged").size(), 1U);
}

TEST_F(PrivateCloudTest, AFileThatAnotherProgramWritesIsABusyZone)
{
    ASSERT_EQ(put(server, "owner", "one"), 0);
    SqliteDatabase other{file()};
    const SqliteTransaction writing{other};
    EXPECT_EQ(code(mac.database.save(thing("two"))), CKError::zoneBusy);
    EXPECT_EQ(code(mac.database.record("one")), 0);
}

TEST_F(PrivateCloudTest, AListIsTheSameToAServerThatKnowsItAndToOneThatReadsTheFile)
{
    const auto listOf = [](PrivateCloud& cloud) {
        const auto found = cloud.fetch({"owner", "test"}, {"one"}, std::nullopt).at("one");
        const auto* const record = std::get_if<ServerRecord>(&found);
        const auto* const list = record == nullptr ? nullptr : fieldOf<TextList>(*record, "list");
        return list == nullptr ? TextList{} : *list;
    };
    std::mt19937 random{7};
    TextList expected;
    int refusals = 0;
    for (int turn = 0; turn < 300; ++turn) {
        // The record is changed by this server or another, beside its list or in it, and a full account takes nothing.
        const auto other = random() % 4 == 0 ? restart() : nullptr;
        PrivateCloud& writer = other == nullptr ? server : *other;
        const std::string added = std::vector{"plain"s, ""s, "\"quoted\", "s, "back\\slash"s, "\u00fc"s}[random() % 5];
        const TextList next =
            random() % 5 == 0 ? expected.from(random() % (expected.size() + 1)) : expected.with({added});
        const bool isListed = random() % 3 != 0;
        ServerRecord record{"Thing", "one", {{"word", std::string(random() % 40, 'x')}}, {}, {}};
        if (isListed) {
            record.fields["list"] = next;
        }
        writer.setQuota("owner", random() % 4 == 0 ? std::optional{0} : std::nullopt);
        const int code =
            codeOf(writer.modify({"owner", "test"}, {{record}, {}, changedKeys, false, {}}).saved.at("one"));
        refusals += code == CKError::quotaExceeded ? 1 : 0;
        expected = code == 0 && isListed ? next : expected;
        ASSERT_EQ(listOf(server), expected) << turn;
        ASSERT_EQ(listOf(*restart()), expected) << turn;
    }
    EXPECT_GT(refusals, 10);
}

TEST_F(PrivateCloudTest, EachUserHasAFileInTheFolderWhateverTheNameIs)
{
    for (const std::string& user : {"a"s, "A"s, ""s, "../../elsewhere"s, "nul\0"s, "%41"s, "\xFF"s}) {
        EXPECT_EQ(put(server, user, "one"), 0) << user;
        EXPECT_EQ(server.count(user, "Thing"), 1U) << "its own, and nobody else's";
    }
    const auto isDatabase = [](const auto& entry) { return entry.path().string().ends_with(".sqlite"); };
    EXPECT_EQ(std::ranges::count_if(std::filesystem::directory_iterator{disk.path() / "iCloud"}, isDatabase), 7);
}

/// A Mac that lists things in a catalog which all devices share, and saves each as a record of its own.
class BusyMac {
public:
    static constexpr int things = 25;

    explicit BusyMac(const SimulatedICloud::Surroundings& around) : prefix_(around.device + "-"), cloud_(around)
    {
        cloud_.link.setLatency(100us);
        cloud_.link.faults().add({.error = cloudError(6), .probability = 0.1});
        cloud_.link.faults().add({.error = cloudError(4), .probability = 0.1, .losesAnswer = true});
    }

    Async<void> work(std::function<void()> done)
    {
        for (int number = 0; number < things; ++number) {
            const std::string name = prefix_ + std::to_string(number);
            co_await saveThing(name);
            co_await list(name);
        }
        done();
    }

private:
    Async<void> saveThing(std::string name)
    {
        int code = 1;
        while (code != 0 && code != CKError::serverRecordChanged) { // saved already, and the answer was lost
            try {
                CloudRecord made = CloudScene::thing(name);
                co_await cloud_.database.save(std::move(made));
                code = 0;
            } catch (const ports::CloudError& error) {
                code = error.code;
            }
        }
    }

    /// Adds the name to what the catalog says at this moment, as often as somebody else was quicker.
    Async<void> list(std::string name)
    {
        bool isListed = false;
        while (!isListed) {
            try {
                std::vector<std::string> wanted(1, "catalog");
                auto found = co_await cloud_.database.records(std::move(wanted), std::nullopt);
                auto* const known = std::get_if<CloudRecord>(&found.at("catalog"));
                CloudRecord catalog = known == nullptr ? CloudScene::thing("catalog") : *known;
                const auto* const names = ports::fieldOf<TextList>(catalog, "names");
                const TextList listed = names == nullptr ? TextList{} : *names;
                isListed = std::find(listed.begin(), listed.end(), name) != listed.end();
                if (!isListed) {
                    catalog.fields["names"] = listed.with({name});
                    co_await cloud_.database.save(std::move(catalog));
                }
            } catch (const ports::CloudError&) {
                isListed = false;
            }
        }
    }

    const std::string prefix_;
    SimulatedICloud cloud_;
};

TEST_F(PrivateCloudTest, TwoMacsAndAPhoneAtOnceLoseAndDoubleNothing)
{
    ThreadScheduler threads;
    const auto around = [&](const std::string& device) {
        return SimulatedICloud::Surroundings{threads, threads, log, server, device, disk.path() / device, 7};
    };
    BusyMac first{around("first")};
    BusyMac second{around("second")};
    CompanionPhone phone{server, wallClock, "owner"};
    constexpr int commands = 100;
    std::thread owner{[&] {
        for (int number = 0; number < commands; ++number) {
            phone.send("first", {.arm = number % 2 == 0});
            static_cast<void>(phone.alerts());
        }
    }};
    int working = 2;
    const auto done = [&] {
        if (--working == 0) {
            threads.stopMain();
        }
    };
    MainActor{threads}.spawn(first.work(done));
    MainActor{threads}.spawn(second.work(done));
    threads.runMain();
    owner.join();

    EXPECT_EQ(server.count("owner", "Thing"), 2U * BusyMac::things + 1);
    auto found = server.fetch({"owner", "test"}, {"catalog", "mac-device-catalog-first"}, std::nullopt);
    const auto names = *fieldOf<TextList>(std::get<ServerRecord>(found.at("catalog")), "names");
    EXPECT_EQ(names.size(), 2U * BusyMac::things);
    EXPECT_EQ((std::set<std::string_view>{names.begin(), names.end()}.size()), names.size());
    EXPECT_EQ(phone.send("first", {}), commands + 1);
}

} // namespace
} // namespace sentrel::simulation
