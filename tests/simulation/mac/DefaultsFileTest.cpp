#include "simulation/mac/files/DefaultsFile.hpp"
#include "posix/PosixFileSystem.hpp"
#include "runtime/VirtualScheduler.hpp"
#include "simulation/EventLog.hpp"
#include "simulation/mac/files/SimulatedFileSystem.hpp"
#include "support/Files.hpp"
#include "support/TemporaryFolder.hpp"

#include <gtest/gtest.h>

namespace sentrel::simulation {
namespace {

namespace fs = std::filesystem;

struct DefaultsTest : testing::Test {
    VirtualClock clock;
    VirtualScheduler scheduler{clock};
    EventLog log{scheduler};
    TemporaryFolder root;
    posix::PosixFileSystem disk;
    SimulatedFileSystem files{disk};
    fs::path folder = root.path() / "Preferences";
    fs::path file = folder / "pelma.Sentrel.json";

    std::unique_ptr<DefaultsFile> launch()
    {
        return std::make_unique<DefaultsFile>(files, log, folder, "pelma.Sentrel");
    }

    void put(std::string_view content) const { test::put(file, content); }
};

TEST_F(DefaultsTest, TheNextLaunchFindsWhatWasSetInAFileThatOnlyTheUserReads)
{
    const auto first = launch();
    EXPECT_FALSE(fs::exists(folder)) << "reading makes nothing";
    first->setData("bytes", Bytes{0, 1, 0xFF});
    first->setText("text", "Grüße, \"Mac\"\n");
    first->setData("gone", bytesOf("x"));
    first->remove("gone");
    EXPECT_EQ(test::contentOf(file), "{\n  \"bytes\": \"AAH/\",\n  \"text\": \"Grüße, \\\"Mac\\\"\\n\"\n}\n");

    const auto second = launch();
    EXPECT_EQ(second->data("bytes"), (Bytes{0, 1, 0xFF}));
    EXPECT_EQ(second->text("text"), "Grüße, \"Mac\"\n");
    EXPECT_EQ(fs::status(folder).permissions(), fs::perms{0700});
    EXPECT_EQ(fs::status(file).permissions(), fs::perms{0600});
}

TEST_F(DefaultsTest, OnlyExactBase64IsData)
{
    put(R"({"good": "TWFj", "one pad": "TWE=", "two pads": "TQ==", "short": "TWF", "too much": "TWFj====",
            "spare bits": "TWF=x", "loose bits": "TR==", "white space": "TW Fj", "foreign": "TW-j", "early pad": "T=Fj",
            "only pad": "=", "number": 5, "null": null, "list": ["TWFj"]})");
    const auto defaults = launch();
    EXPECT_EQ(defaults->data("good"), bytesOf("Mac"));
    EXPECT_EQ(defaults->data("one pad"), bytesOf("Ma"));
    EXPECT_EQ(defaults->data("two pads"), bytesOf("M"));
    for (const auto* key : {"short", "too much", "spare bits", "loose bits", "white space", "foreign", "early pad",
                            "only pad", "number", "null", "list"}) {
        EXPECT_EQ(defaults->data(key), std::nullopt) << key;
    }
    EXPECT_EQ(defaults->text("number"), std::nullopt);
    EXPECT_EQ(defaults->text("list"), std::nullopt);
}

TEST_F(DefaultsTest, ForeignEntriesSurviveAChange)
{
    put("\xEF\xBB\xBF { \"a,:\\\"}\" : 18446744073709551615, \"b\":1e999,\"c\": {\"x\" : [1, {\"]\": 2.50}]},\n"
        "\t\"\\u0064\": \"\\\\\" , \"e\": [] , \"mine\": \"b2xk\", \"mine\": \"TWFj\" } \n");
    const auto defaults = launch();
    EXPECT_EQ(defaults->text("d"), "\\");
    EXPECT_EQ(defaults->integer("b"), std::nullopt) << "beyond any number";
    EXPECT_EQ(defaults->data("mine"), bytesOf("Mac")) << "the last counts";
    defaults->remove("mine");
    EXPECT_EQ(parseJson(bytesOf(test::contentOf(file))), Json::parse(R"({"a,:\"}": 18446744073709551615, "b": null,
                                                             "c": {"x": [1, {"]": 2.5}]}, "d": "\\", "e": []})"));
}

TEST_F(DefaultsTest, EachDamagedFileReadsAsEmptyAndIsPutAsideBeforeTheFirstWrite)
{
    const std::string huge = "{\"a\": \"" + std::string(std::size_t{17} << 20, 'x') + "\"}";
    const std::pair<const char*, std::string> cases[] = {
        {"empty", ""},
        {"truncated", R"({"alarmSettings": "e30)"},
        {"not JSON", "alarmSettings = e30="},
        {"more than one value", "{} {}"},
        {"a list", "[]"},
        {"a number", "5"},
        {"not UTF-8", "{\"a\": \"\xFF\"}"},
        {"binary", std::string("\0\x01{\"a\"", 6)},
        {"nested", std::string(100'000, '[')},
        {"nested and closed", "{\"a\": " + std::string(5'000, '[') + std::string(5'000, ']') + "}"},
        {"huge", huge},
    };
    for (const auto& [name, content] : cases) {
        SCOPED_TRACE(name);
        fs::remove_all(folder);
        put(content);
        const auto before = log.size();
        const auto defaults = launch();
        EXPECT_EQ(defaults->text("a"), std::nullopt);
        EXPECT_EQ(log.events(before).size(), 1U);
        EXPECT_TRUE(test::contentOf(file) == content) << "reading changes nothing";
        defaults->setText("a", "b");
        EXPECT_TRUE(test::contentOf(folder / "pelma.Sentrel.json.damaged") == content);
        EXPECT_EQ(launch()->text("a"), "b");
    }
    put("second");
    launch()->setText("a", "b");
    EXPECT_TRUE(test::contentOf(folder / "pelma.Sentrel.json.damaged") == huge) << "the first is kept";
    EXPECT_EQ(test::contentOf(folder / "pelma.Sentrel.json.damaged-2"), "second");
}

TEST_F(DefaultsTest, AFileThatCannotBeReadOrPutAsideIsNotOverwritten)
{
    put(R"({"a": "kept"})");
    files.faults().set("read", 1);
    const auto defaults = launch();
    EXPECT_EQ(defaults->text("a"), std::nullopt);
    files.faults().set("rename", 1);
    defaults->setText("a", "new");
    EXPECT_EQ(test::contentOf(file), R"({"a": "kept"})");
    EXPECT_EQ(log.named("defaults.writeFailed").size(), 1U);
    EXPECT_EQ(defaults->text("a"), "new") << "in memory";

    defaults->setText("a", "new");
    EXPECT_EQ(launch()->text("a"), "new") << "written with the next change, though it changes nothing";
    EXPECT_EQ(test::contentOf(folder / "pelma.Sentrel.json.damaged"), R"({"a": "kept"})");
}

} // namespace
} // namespace sentrel::simulation
