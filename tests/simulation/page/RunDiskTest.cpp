#include "simulation/page/RunDisk.hpp"
#include "support/TemporaryFolder.hpp"

#include <gtest/gtest.h>

#include <fstream>
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
    std::ofstream{folder.path() / "file"} << "no folder";
    EXPECT_THROW(RunDisk{folder.path() / "file"}, std::runtime_error);
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
