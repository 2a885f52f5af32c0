#include "posix/PosixFileSystem.hpp"

#include "ports/DurableFile.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <string>

#include <sys/stat.h>
#include <unistd.h>

namespace sentrel {
namespace {

namespace fs = std::filesystem;
using testing::UnorderedElementsAre;

/// A folder of its own for each test, and a umask that would spoil every mode if it counted.
class PosixFileSystem : public testing::Test {
protected:
    void SetUp() override
    {
        std::string pattern = (fs::temp_directory_path() / "sentrel-files-XXXXXX").string();
        ASSERT_NE(::mkdtemp(pattern.data()), nullptr);
        root_ = pattern;
        umask_ = ::umask(0277);
    }
    void TearDown() override
    {
        ::umask(umask_);
        fs::remove_all(root_);
    }

    [[nodiscard]] static unsigned modeOf(const fs::path& path)
    {
        struct stat status{};
        return ::stat(path.c_str(), &status) == 0 ? status.st_mode & 07777U : 0U;
    }

    void write(const fs::path& file, std::string_view text, std::optional<std::uint32_t> mode = 0600)
    {
        int error = 0;
        const auto open = files_.create(file, mode, error);
        ASSERT_NE(open, nullptr) << error;
        EXPECT_EQ(open->write(bytesOf(text)), 0);
        EXPECT_EQ(open->synchronize(), 0);
    }

    posix::PosixFileSystem files_;
    fs::path root_;
    mode_t umask_ = 0;
};

TEST_F(PosixFileSystem, MakesEveryMissingFolderWithTheModeAndLeavesThoseThatAreThere)
{
    fs::permissions(root_, fs::perms{0755});
    EXPECT_EQ(files_.createDirectories(root_ / "a" / "b" / "c", 0700), 0);
    EXPECT_EQ(modeOf(root_ / "a"), 0700U);
    EXPECT_EQ(modeOf(root_ / "a" / "b"), 0700U);
    EXPECT_EQ(modeOf(root_ / "a" / "b" / "c"), 0700U);
    EXPECT_EQ(modeOf(root_), 0755U);

    EXPECT_EQ(files_.createDirectories(root_ / "a" / "b", 0750), 0);
    EXPECT_EQ(modeOf(root_ / "a" / "b"), 0700U);
    EXPECT_EQ(files_.createDirectories(root_ / "d" / "", 0700), 0);
    EXPECT_TRUE(fs::is_directory(root_ / "d"));
}

TEST_F(PosixFileSystem, RefusesAFolderWhereAFileStandsOrWhereThereIsNoPath)
{
    write(root_ / "file", "x");
    EXPECT_EQ(files_.createDirectories(root_ / "file", 0700), ENOTDIR);
    EXPECT_EQ(files_.createDirectories(root_ / "file" / "below", 0700), ENOTDIR);
    EXPECT_EQ(files_.createDirectories("", 0700), ENOENT);
}

TEST_F(PosixFileSystem, WritesAFileWithItsModeAndReadsItBack)
{
    const std::string large(200'000, 'x');
    write(root_ / "photo", large);
    EXPECT_EQ(modeOf(root_ / "photo"), 0600U);
    EXPECT_EQ(files_.read(root_ / "photo"), bytesOf(large));

    write(root_ / "empty", "");
    EXPECT_EQ(files_.read(root_ / "empty"), Bytes{});
}

TEST_F(PosixFileSystem, EmptiesAFileThatIsThereAndTightensItsMode)
{
    write(root_ / "alert", "a long and old content", 0644);
    write(root_ / "alert", "new", 0600);
    EXPECT_EQ(files_.read(root_ / "alert"), bytesOf("new"));
    EXPECT_EQ(modeOf(root_ / "alert"), 0600U);
    write(root_ / "photo", "for others, too", std::nullopt);
    EXPECT_EQ(modeOf(root_ / "photo"), 0400U) << "without a mode the umask counts";
}

TEST_F(PosixFileSystem, DoesNotWriteThroughALinkToAnotherFile)
{
    write(root_ / "victim", "precious");
    fs::create_symlink(root_ / "victim", root_ / "trap");
    int error = 0;
    EXPECT_EQ(files_.create(root_ / "trap", 0600, error), nullptr);
    EXPECT_EQ(error, ELOOP);
    EXPECT_EQ(files_.read(root_ / "victim"), bytesOf("precious"));
}

TEST_F(PosixFileSystem, SaysWhyACallFailed)
{
    const fs::path nowhere = root_ / "missing" / "file";
    int error = 0;
    EXPECT_EQ(files_.create(nowhere, 0600, error), nullptr);
    EXPECT_EQ(error, ENOENT);
    EXPECT_EQ(files_.create(root_, 0600, error), nullptr);
    EXPECT_EQ(error, EISDIR);
    EXPECT_EQ(files_.rename(nowhere, root_ / "file"), ENOENT);
    EXPECT_EQ(files_.remove(nowhere), ENOENT);
    EXPECT_EQ(files_.synchronizeDirectory(root_ / "missing"), ENOENT);
    write(root_ / "file", "x");
    EXPECT_EQ(files_.synchronizeDirectory(root_ / "file"), ENOTDIR);
    EXPECT_EQ(files_.read(nowhere), std::nullopt);
    EXPECT_EQ(files_.read(root_), std::nullopt);
    EXPECT_EQ(files_.list(root_ / "missing"), std::nullopt);
    EXPECT_EQ(files_.list(root_ / "file"), std::nullopt);
}

TEST_F(PosixFileSystem, ReplacesAFileDurablyAndLeavesNoTemporaryFile)
{
    write(root_ / "alert.json", "old", 0644);
    EXPECT_EQ(ports::writeDurably(files_, root_ / "alert.json", bytesOf("new"), 0600), 0);
    EXPECT_EQ(files_.read(root_ / "alert.json"), bytesOf("new"));
    EXPECT_EQ(modeOf(root_ / "alert.json"), 0600U);
    EXPECT_THAT(files_.list(root_).value(), UnorderedElementsAre("alert.json"));

    EXPECT_EQ(ports::writeDurably(files_, root_ / "missing" / "a", bytesOf("new"), 0600), ENOENT);
}

} // namespace
} // namespace sentrel
