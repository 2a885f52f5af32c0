#include "simulation/mac/files/SimulatedFileSystem.hpp"
#include "posix/PosixFileSystem.hpp"
#include "support/Files.hpp"
#include "support/TemporaryFolder.hpp"

#include <gtest/gtest.h>

#include <cerrno>

namespace sentrel::simulation {
namespace {

TEST(SimulatedFileSystem, APowerCutTakesHalfOfWhatNobodySynchronisedAndTheRenames)
{
    const TemporaryFolder folder;
    const auto file = folder.path() / "file";
    const auto other = folder.path() / "other";
    posix::PosixFileSystem disk;
    SimulatedFileSystem files{disk};
    int error = 0;

    files.cutPowerAfter(2);
    const auto open = files.create(file, 0600, error);
    ASSERT_NE(open, nullptr);
    EXPECT_EQ(open->write(bytesOf("careless")), 0);
    EXPECT_EQ(test::contentOf(file), "careless");
    EXPECT_EQ(open->write(bytesOf(" again")), EIO);
    EXPECT_EQ(test::contentOf(file), "care");
    EXPECT_FALSE(files.exists(file)) << "without power nothing answers";
    files.restorePower();
    EXPECT_TRUE(files.exists(file));

    files.cutPowerAfter(1);
    ASSERT_EQ(files.rename(file, other), 0);
    files.restorePower();
    EXPECT_EQ(test::contentOf(file), "care");
    EXPECT_FALSE(disk.exists(other));

    files.cutPowerAfter(3);
    ASSERT_EQ(files.create(other, 0600, error)->write(bytesOf("1234")), 0);
    ASSERT_EQ(files.rename(other, file), 0);
    files.restorePower();
    EXPECT_EQ(test::contentOf(file), "12") << "torn content keeps its new name";
}

} // namespace
} // namespace sentrel::simulation
