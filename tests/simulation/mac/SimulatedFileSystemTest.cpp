#include "simulation/mac/files/SimulatedFileSystem.hpp"
#include "ports/DurableFile.hpp"
#include "posix/PosixFileSystem.hpp"
#include "support/TemporaryFolder.hpp"

#include <gtest/gtest.h>

#include <cerrno>

namespace sentrel::simulation {
namespace {

struct FilesTest : testing::Test {
    TemporaryFolder folder;
    std::filesystem::path file = folder.path() / "file";
    posix::PosixFileSystem disk;
    SimulatedFileSystem files{disk};

    int save(std::string_view text) { return ports::writeDurably(files, file, bytesOf(text), 0600); }

    std::string content()
    {
        const auto bytes = disk.read(file);
        return bytes ? std::string{textOf(*bytes)} : "none";
    }
};

TEST_F(FilesTest, APowerCutBetweenAnyTwoCallsLeavesTheOldContentOrTheNewOne)
{
    for (std::uint64_t calls = 0; calls <= 5; ++calls) {
        ASSERT_EQ(save("the old content"), 0);
        files.cutPowerAfter(calls);
        const int error = save("the new content");
        EXPECT_EQ(error, calls < 5 ? EIO : 0);
        EXPECT_EQ(files.isPowerCut(), calls < 5);
        files.restorePower();
        EXPECT_EQ(content(), error == 0 ? "the new content" : "the old content") << calls;
    }
}

TEST_F(FilesTest, APowerCutTakesHalfOfWhatNobodySynchronised)
{
    files.cutPowerAfter(2);
    int error = 0;
    const auto open = files.create(file, 0600, error);
    ASSERT_NE(open, nullptr);
    EXPECT_EQ(open->write(bytesOf("careless")), 0);
    EXPECT_EQ(content(), "careless");
    EXPECT_EQ(open->write(bytesOf(" again")), EIO);
    EXPECT_EQ(content(), "care");
    EXPECT_FALSE(files.exists(file)) << "without power nothing answers";
    files.restorePower();
    EXPECT_TRUE(files.exists(file));
}

TEST_F(FilesTest, ARenameThatIsNotSynchronisedMayBeForgottenAndTornContentKeepsItsNewName)
{
    const auto other = folder.path() / "other";
    ASSERT_EQ(save("content"), 0);
    files.cutPowerAfter(1);
    ASSERT_EQ(files.rename(file, other), 0);
    files.restorePower();
    EXPECT_EQ(content(), "content");
    EXPECT_FALSE(disk.exists(other));

    files.cutPowerAfter(3);
    int error = 0;
    ASSERT_EQ(files.create(other, 0600, error)->write(bytesOf("1234")), 0);
    ASSERT_EQ(files.rename(other, file), 0);
    files.restorePower();
    EXPECT_EQ(content(), "12");
}

} // namespace
} // namespace sentrel::simulation
