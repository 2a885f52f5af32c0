#include "simulation/page/RunDisk.hpp"
#include "support/Files.hpp"
#include "support/TemporaryFolder.hpp"

#include <gtest/gtest.h>

#include <stdexcept>

namespace sentrel::simulation {
namespace {

TEST(RunDisk, BelongsToOneRunAtATimeAndIsLeftAsItIs)
{
    const TemporaryFolder folder;
    const auto path = folder.path() / "deep" / "disk";
    {
        const RunDisk first{path};
        EXPECT_THROW(RunDisk{path}, std::runtime_error);
    }
    const RunDisk next{path};
    EXPECT_TRUE(std::filesystem::is_empty(path));
    EXPECT_THROW(RunDisk{test::put(folder.path() / "file", "no folder")}, std::runtime_error);
}

TEST(RunDisk, IsTemporaryUnlessOneIsWanted)
{
    std::filesystem::path path;
    {
        const RunDisk disk{std::nullopt};
        path = disk.path();
        EXPECT_TRUE(std::filesystem::is_directory(path));
    }
    EXPECT_FALSE(std::filesystem::exists(path));
}

} // namespace
} // namespace sentrel::simulation
