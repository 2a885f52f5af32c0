#include "simulation/mac/motion/MotionRecording.hpp"

#include <gtest/gtest.h>

namespace sentrel::simulation {
namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;

constexpr const char* header = "t_seconds,x_g,y_g,z_g\n";

TEST(MotionRecording, KeepsTimesToTheNanosecondAndValuesToTheLastBit)
{
    const auto recording = MotionRecording::parse("\xEF\xBB\xBFt_seconds,x_g,y_g,z_g\r\n0, -0.049 ,2.6e-2,1\r\n"
                                                  "0.0385,0.1,0,-1\r\n0.0385,0,0,0\r\n38.461500001,1,2,3",
                                                  "walk.csv");
    const auto& samples = recording.samples();
    ASSERT_EQ(samples.size(), 4U);
    EXPECT_EQ(samples[0].acceleration, (Acceleration{-0.049, 0.026, 1.0}));
    EXPECT_EQ(samples[1].at, 38'500us);
    EXPECT_EQ(recording.length(), 38'461'500'001ns);
}

TEST(MotionRecording, NamesTheLineOfEveryFault)
{
    const struct {
        std::string text;
        std::string message;
    } cases[] = {
        {"", "walk.csv: the file is empty"},
        {header, "walk.csv:1: no samples after the header"},
        {"time,x,y,z\n0,0,0,1\n", "walk.csv:1: the header is \"time,x,y,z\" instead of \"t_seconds,x_g,y_g,z_g\""},
        {"\xFF\xFEt\0"s, "walk.csv:1: the byte 0xff is not plain text"},
        {header + "0,0,0,1\n0.1,0,\xC3\xA9,1\n"s, "walk.csv:3: the byte 0xc3 is not plain text"},
        {header + "0,0,0,1\n0.1,0,0,\0\n"s, "walk.csv:3: the byte 0x0 is not plain text"},
        {header + "0,0,0,1\n0.1,zero,0,1\n"s, "walk.csv:3: x_g: \"zero\" is not a number"},
        {header + "0,0,0x1,1\n"s, "walk.csv:2: y_g: \"0x1\" is not a number"},
        {header + "0,0,nan,1\n"s, "walk.csv:2: y_g: \"nan\" is not a finite number"},
        {header + "0,0,0,-inf\n"s, "walk.csv:2: z_g: \"-inf\" is not a finite number"},
        {header + "0,0,0,1e999\n"s, "walk.csv:2: z_g: \"1e999\" is out of range"},
        {header + "0,0,0,\n"s, "walk.csv:2: z_g: \"\" is not a number"},
        {header + "0,0,0,1\n0.1,0,0"s, "walk.csv:3: the row has 3 of 4 columns"},
        {header + "0,0,0,1\n\n0.1,0,0,1\n"s, "walk.csv:3: the row has 1 of 4 columns"},
        {header + "0,0,0,1,5\n"s, "walk.csv:2: the row has more than 4 columns"},
        {header + "-0.1,0,0,1\n"s, "walk.csv:2: the time is negative"},
        {header + "0.2,0,0,1\n0.1,0,0,1\n"s, "walk.csv:3: the time is before that of the previous row"},
        {std::string(MotionRecording::maximumSize + 1, '0'), "walk.csv: larger than 32 MB"},
    };
    for (const auto& [text, message] : cases) {
        try {
            (void)MotionRecording::parse(text, "walk.csv");
            ADD_FAILURE() << "read without complaint: " << text.substr(0, 80);
        } catch (const MotionRecordingError& error) {
            EXPECT_EQ(error.what(), message);
        }
    }
}

} // namespace
} // namespace sentrel::simulation
