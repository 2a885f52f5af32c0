#include "simulation/story/ProgressLine.hpp"

#include <gtest/gtest.h>

#include <sstream>

namespace sentrel::simulation {
namespace {

using namespace std::chrono_literals;

struct Terminal {
    std::chrono::steady_clock::time_point now;
    std::ostringstream text;

    ProgressLine line(bool isShared)
    {
        return ProgressLine{text, 7200.0, isShared, [this] { return now; }};
    }

    std::string taken()
    {
        std::string all = text.str();
        text.str({});
        return all;
    }
};

TEST(ProgressLine, AppearsAfterTwoSecondsAndIsGoneAtTheEnd)
{
    Terminal terminal;
    {
        ProgressLine line = terminal.line(false);
        terminal.now += 1999ms;
        line.reached(60.0);
        EXPECT_EQ(terminal.taken(), "");
        terminal.now += 1ms;
        line.reached(1800.0);
        EXPECT_EQ(terminal.taken(), "\r  Playing: 30:00.0 of 2:00:00.0, 25 %\x1b[K");
        terminal.now += 199ms;
        line.reached(1801.0);
        line.happened({});
        EXPECT_EQ(terminal.taken(), ""); // the story is elsewhere
    }
    EXPECT_EQ(terminal.taken(), "\r\x1b[K");
}

TEST(ProgressLine, MakesRoomForAStoryOnTheSameTerminal)
{
    Terminal terminal;
    {
        ProgressLine line = terminal.line(true);
        line.happened({});
        EXPECT_EQ(terminal.taken(), "");
        terminal.now += 2s;
        line.reached(1800.0);
        static_cast<void>(terminal.taken());
        line.happened({});
        line.checked(1800.0, {}, {});
        EXPECT_EQ(terminal.taken(), "\r\x1b[K");
    }
    EXPECT_EQ(terminal.taken(), "");
}

} // namespace
} // namespace sentrel::simulation
