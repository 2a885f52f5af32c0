#include "simulation/page/PageState.hpp"

#include "simulation/page/PageFiles.hpp"
#include "simulation/stage/Action.hpp"
#include "simulation/stage/MacSession.hpp"
#include "simulation/stage/YamlValue.hpp"
#include "support/TemporaryFolder.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <array>
#include <string>

namespace sentrel::simulation {
namespace {

struct Page {
    explicit Page(const MacDescription& description = {})
        : session(description, disk.path(), SENTREL_SOURCE_DIR "/resources", 1)
    {
    }

    TemporaryFolder disk;
    MacSession session;
    PageFiles files;
    PageState state{session, files, "Page"};
};

TEST(PageState, ReadsWithoutMeetingTheFaultsOfTheProductsPorts)
{
    Page page;
    const Action fail = readAction(parseYaml("{fail: {displays: {no-screens: 1}}}"), {});
    ASSERT_EQ(fail.perform(page.session), "");
    EXPECT_EQ(page.state.screen()["displays"].size(), 1U);
    EXPECT_EQ(page.state.hardware()["displays"], 1);
    EXPECT_TRUE(page.session.mac().displays.screens().empty()) << "the fault is still there for the product";
}

TEST(PageState, SaysOfEachKindOfMacWhatItIs)
{
    using Mac = MacDescription;
    struct Case {
        Mac::Power power;
        Mac::Lid lid;
        Mac::Accelerometer accelerometer;
        std::uint32_t transport;
        std::array<std::string, 4> said;
    };
    const Case cases[] = {
        {Mac::Power::ac,
         Mac::Lid::open,
         Mac::Accelerometer::resting,
         fourCharCode("bltn"),
         {"ac", "open", "resting", "built-in"}},
        {Mac::Power::battery,
         Mac::Lid::closed,
         Mac::Accelerometer::present,
         fourCharCode("usb "),
         {"battery", "closed", "silent", "usb"}},
        {Mac::Power::unknown,
         Mac::Lid::absent,
         Mac::Accelerometer::absent,
         fourCharCode("????"),
         {"unknown", "absent", "absent", "unknown"}},
    };
    for (const Case& each : cases) {
        Mac description;
        description.power = each.power;
        description.lid = each.lid;
        description.accelerometer = each.accelerometer;
        description.audio.front().transport = each.transport;
        const Json hardware = Page{description}.state.hardware();
        EXPECT_EQ(hardware["power"], each.said[0]);
        EXPECT_EQ(hardware["lid"], each.said[1]);
        EXPECT_EQ(hardware["accelerometer"], each.said[2]);
        EXPECT_EQ(hardware["audio"]["devices"][0]["transport"], each.said[3]);
    }
}

} // namespace
} // namespace sentrel::simulation
