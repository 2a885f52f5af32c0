#include "posix/PosixFileSystem.hpp"

#include "support/TemporaryFolder.hpp"

#include <gtest/gtest.h>

#include <cerrno>
#include <string>

#include <sys/stat.h>
#include <unistd.h>

namespace sentrel {
namespace {

namespace fs = std::filesystem;

/// A folder of its own for each test, and a umask that would spoil every mode if it counted.
class PosixFileSystem : public testing::Test {
protected:
    void SetUp() override { umask_ = ::umask(0277); }
    void TearDown() override { ::umask(umask_); }

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
    TemporaryFolder folder_;
    const fs::path root_ = folder_.path();
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

TEST_F(PosixFileSystem, WritesAFileWithItsModeAndEmptiesOneThatIsThere)
{
    const std::string large(200'000, 'x');
    write(root_ / "alert", large, 0644);
    EXPECT_EQ(modeOf(root_ / "alert"), 0644U);
    EXPECT_EQ(files_.read(root_ / "alert"), bytesOf(large));
    write(root_ / "alert", "", 0600);
    EXPECT_EQ(files_.read(root_ / "alert"), Bytes{});
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
    EXPECT_EQ(files_.synchronizeDirectory(root_ / "missing"), ENOENT);
    write(root_ / "file", "x");
    EXPECT_EQ(files_.synchronizeDirectory(root_ / "file"), ENOTDIR);
    EXPECT_EQ(files_.createDirectories(root_ / "file", 0700), ENOTDIR);
    EXPECT_EQ(files_.createDirectories(root_ / "file" / "below", 0700), ENOTDIR);
    EXPECT_EQ(files_.createDirectories("", 0700), ENOENT);
    EXPECT_EQ(files_.read(nowhere), std::nullopt);
    EXPECT_EQ(files_.read(root_), std::nullopt);
    EXPECT_EQ(files_.list(root_ / "file"), std::nullopt);
}

} // namespace
} // namespace sentrel
