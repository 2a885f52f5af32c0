#include "simulation/page/PageState.hpp"

#include "simulation/icloud/CloudErrorNames.hpp"
#include "simulation/page/PageFiles.hpp"
#include "simulation/stage/MacSession.hpp"
#include "support/TemporaryFolder.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <fstream>
#include <set>
#include <string>

namespace sentrel::simulation {
namespace {

/// The words in quotes that the protocol's row names: keys, and the values that a colon or a bar precedes.
struct Row {
    explicit Row(const std::string& room)
    {
        std::ifstream protocol{SENTREL_SOURCE_DIR "/web/PROTOCOL.md"};
        std::string line;
        while (std::getline(protocol, line) && !line.starts_with("| `" + room + "` |")) {
        }
        for (std::size_t open = line.find('"'); open != std::string::npos; open = line.find('"', open + 1)) {
            const char before = line[line.find_last_not_of(' ', open - 1)];
            const std::size_t close = line.find('"', open + 1);
            (before == ':' || before == '|' ? values : keys).insert(line.substr(open + 1, close - open - 1));
            open = close;
        }
    }

    std::set<std::string> keys;
    std::set<std::string> values;
};

void collectKeys(const Json& value, std::set<std::string>& keys)
{
    if (!value.is_structured()) {
        return; // the library takes any other value for its own only item
    }
    for (const auto& [key, inner] : value.items()) {
        if (value.is_object()) {
            keys.insert(key);
        }
        collectKeys(inner, keys);
    }
}

std::set<std::string> keysOf(const Json& value)
{
    std::set<std::string> keys;
    collectKeys(value, keys);
    return keys;
}

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

TEST(PageState, SendsTheKeysThatTheProtocolNames)
{
    Page page;
    page.session.mac().iCloud.link.faults().add({cloudError(CKError::networkFailure)});
    EXPECT_EQ(keysOf(page.state.run()), Row{"run"}.keys);
    Json screen = page.state.screen();
    screen["displays"].clear(); // rectangles, which the protocol describes apart
    EXPECT_EQ(keysOf(screen), Row{"screen"}.keys);
    EXPECT_EQ(keysOf(page.state.hardware()), Row{"hardware"}.keys);
    EXPECT_EQ(keysOf(page.state.cloud()), Row{"cloud"}.keys);
}

TEST(PageState, SaysOfEachKindOfMacWhatTheProtocolCallsIt)
{
    using Mac = MacDescription;
    const Row row{"hardware"};
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
        for (const char* key : {"power", "lid", "accelerometer", "music"}) {
            EXPECT_TRUE(row.values.contains(hardware[key])) << key << " " << hardware[key];
        }
    }
}

} // namespace
} // namespace sentrel::simulation
