#include "sensors/MotionDetector.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <limits>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace sentrel {
namespace {

TEST(MotionDetector, MapsSensitivityLinearlyOntoTheThresholdAndBoundsIt)
{
    const std::map<double, double> thresholds{{-1.0, 0.9},  {0.0, 0.9},  {0.1, 0.9},
                                              {0.55, 0.49}, {1.0, 0.08}, {2.0, 0.08}};
    for (const auto& [sensitivity, threshold] : thresholds) {
        EXPECT_NEAR(MotionDetector::thresholdFor(sensitivity), threshold, 1e-12) << "at " << sensitivity;
    }
    EXPECT_EQ(MotionDetector::thresholdFor(std::nan("")), 0.9);
}

TEST(MotionDetector, NeverFiresOnTheFirstSampleAndThenOnceInFiveSeconds)
{
    MotionDetector detector{0.5};
    EXPECT_FALSE(detector.feed({100.0, 0.0, 0.0}, Date{0.0})) << "the baseline, however large";
    EXPECT_TRUE(detector.feed({100.6, 0.0, 0.0}, Date{10.0}));
    EXPECT_FALSE(detector.feed({99.4, 0.0, 0.0}, Date{13.0})) << "cooling down";
    EXPECT_FALSE(detector.feed({99.4, 0.0, 0.0}, Date{14.999}));
    EXPECT_TRUE(detector.feed({99.4, 0.0, 0.0}, Date{15.0})) << "an ignored motion does not prolong the cooldown";

    detector.forgetBaseline();
    EXPECT_FALSE(detector.feed({0.0, 0.0, 1.0}, Date{100.0})) << "a new baseline";
}

TEST(MotionDetector, FollowsSlowDriftAndNothingElse)
{
    MotionDetector detector{0.5};
    EXPECT_FALSE(detector.departs({0.0, 0.0, 1.0}));
    EXPECT_FALSE(detector.departs({0.126, 0.0, 1.0}));
    EXPECT_EQ(detector.baseline().x, 0.0) << "neither at rest, which is a quarter of the threshold, nor moved";
    EXPECT_FALSE(detector.departs({0.5, 0.0, 1.0})) << "not beyond the threshold";
    EXPECT_FALSE(detector.departs({0.1, -0.06, 1.04})) << "at rest, though not far from it";
    const auto expectBaseline = [&] {
        EXPECT_NEAR(detector.baseline().x, 0.005, 1e-15) << "5 % of the way";
        EXPECT_NEAR(detector.baseline().y, -0.003, 1e-15);
        EXPECT_NEAR(detector.baseline().z, 1.002, 1e-15);
    };
    expectBaseline();
    EXPECT_TRUE(detector.departs({0.305, -0.303, 1.302})) << "all axes together";
    expectBaseline();
}

TEST(MotionDetector, IsNotDeafenedByASampleThatIsNoNumber)
{
    MotionDetector detector{0.5};
    EXPECT_FALSE(detector.departs({std::nan(""), 0.0, 0.0}));
    EXPECT_FALSE(detector.departs({0.0, 0.0, std::numeric_limits<double>::infinity()}));
    EXPECT_FALSE(detector.departs({0.0, 0.0, 1.0})) << "the first real sample is the baseline";
    EXPECT_FALSE(detector.departs({0.0, std::nan(""), 1.0}));
    EXPECT_TRUE(detector.departs({0.0, 0.6, 1.0}));
}

// Recordings of real accelerometers with the times at which motion is expected.

const std::filesystem::path recordings = std::filesystem::path{SENTREL_SOURCE_DIR} / ".." / "shared/data/motion";

std::vector<std::string> split(const std::string& line, char separator)
{
    std::vector<std::string> parts;
    std::istringstream stream{line};
    for (std::string part; std::getline(stream, part, separator);) {
        parts.push_back(part);
    }
    return parts;
}

/// Fractions of seconds as text with 4 digits, as the list of expected times has them.
std::string firingTimes(const std::string& file, double sensitivity)
{
    MotionDetector detector{MotionDetector::thresholdFor(sensitivity)};
    std::ifstream recording{recordings / file};
    std::ostringstream times;
    times.precision(4);
    times << std::fixed;
    std::string line;
    std::getline(recording, line); // the columns' names
    while (std::getline(recording, line)) {
        const auto columns = split(line, ',');
        const Date now{std::stod(columns.at(0))};
        if (detector.feed({std::stod(columns.at(1)), std::stod(columns.at(2)), std::stod(columns.at(3))}, now)) {
            times << (times.tellp() == 0 ? "" : ";") << now.secondsSinceReferenceDate;
        }
    }
    return times.tellp() == 0 ? "-" : times.str();
}

TEST(MotionDetector, AgreesWithEveryRecording)
{
    std::ifstream table{recordings / "expected.tsv"};
    if (!table) {
        GTEST_SKIP() << "no recordings: " << recordings << " is missing";
    }
    std::string line;
    std::getline(table, line); // the columns' names
    int rows = 0;
    while (std::getline(table, line)) {
        const auto row = split(line, '\t');
        const std::string& other = row.at(8); // when exactly 5 s counts as cooling down
        const auto times = firingTimes(row.at(0), std::stod(row.at(1)));
        EXPECT_TRUE(times == row.at(5) || times == other)
            << row.at(0) << " at " << row.at(1) << " fires at " << times << " instead of " << row.at(5);
        ++rows;
    }
    EXPECT_GT(rows, 0);
}

} // namespace
} // namespace sentrel
