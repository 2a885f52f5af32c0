#include "simulation/page/PageState.hpp"

#include "foundation/FourCharCode.hpp"
#include "simulation/page/PageFiles.hpp"
#include "simulation/stage/MacSession.hpp"
#include "support/Acting.hpp"
#include "support/TemporaryFolder.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace sentrel::simulation {
namespace {

TEST(PageState, ReadsAMacThatLacksMuchWithoutMeetingTheFaultsOfTheProductsPorts)
{
    MacDescription description;
    description.power = MacDescription::Power::unknown;
    description.lid = MacDescription::Lid::absent;
    description.accelerometer = MacDescription::Accelerometer::absent;
    description.audio.front().transport = fourCharCode("????");
    const TemporaryFolder disk;
    MacSession session{description, disk.path(), SENTREL_SOURCE_DIR "/resources", 1};
    PageFiles files;
    PageState state{session, files, "Page"};
    ASSERT_EQ(act(session, "{fail: {displays: {no-screens: 1}}}"), "");
    EXPECT_EQ(state.screen()["displays"].size(), 1U);
    const Json hardware = state.hardware();
    EXPECT_EQ(hardware["displays"], 1);
    EXPECT_EQ(hardware["power"], "unknown");
    EXPECT_EQ(hardware["lid"], "absent");
    EXPECT_EQ(hardware["accelerometer"], "absent");
    EXPECT_EQ(hardware["audio"]["devices"][0]["transport"], "unknown");
    EXPECT_TRUE(session.mac().displays.screens().empty()) << "the fault is still there for the product";
}

} // namespace
} // namespace sentrel::simulation
