#include "simulation/stage/MacSession.hpp"
#include "simulation/stage/MacState.hpp"
#include "support/Acting.hpp"
#include "support/TemporaryFolder.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace sentrel::simulation {
namespace {

using namespace std::chrono_literals;

/// An armed Mac whose charger goes after some actions of the scenario language.
class FaultyTheft {
public:
    explicit FaultyTheft(const std::string& action)
    {
        session_.launch();
        session_.clock().advance(10s);
        act("arm");
        session_.clock().advance(5s);
        act(action);
        act("unplug");
        session_.clock().advance(1s);
    }

    void act(const std::string& action) { EXPECT_EQ(simulation::act(session_, action), ""); }

    bool isRunning() { return session_.app() != nullptr; }
    bool isHeard() { return session_.sound().has_value(); }
    std::uint64_t alerts() { return stateOf(session_)["alerts"].get<std::uint64_t>(); }
    MacSession& session() { return session_; }

private:
    TemporaryFolder disk_;
    MacSession session_{{}, disk_.path(), SENTREL_SOURCE_DIR "/resources", 1};
};

TEST(PlannedFaultsTest, StrikeTheCallOfTheirNumberOnce)
{
    FaultyTheft theft{"{fault: {port: files, operation: create, call: 2, fate: raises}}"};
    EXPECT_EQ(theft.session().plannedFaults().waiting().size() + theft.session().plannedFaults().struck().size(), 1U);
    EXPECT_TRUE(theft.isRunning());
    FaultyTheft healed{"{fault: {port: files, call: 1, fate: dies}}"};
    EXPECT_FALSE(healed.isRunning());
    EXPECT_FALSE(healed.isHeard()) << "a dead process leaves no sound";
    healed.act("relaunch");
    EXPECT_TRUE(healed.isRunning());
    healed.act("{fault: {port: files, call: 1, fate: dies}}");
    healed.act("{fault: none}");
    healed.act("arm");
    healed.session().clock().advance(5s);
    EXPECT_TRUE(healed.isRunning());
}

TEST(PlannedFaultsTest, AProcessDiesInsideTheCallAndDoesNothingMore)
{
    // The alert is written into a temporary file, and its name is never changed.
    FaultyTheft theft{"{fault: {port: files, operation: rename, call: 1, fate: dies}}"};
    EXPECT_FALSE(theft.isRunning());
    EXPECT_EQ(theft.alerts(), 0U);
}

TEST(PlannedFaultsTest, APowerCutLosesWhatWasNotSynchronised)
{
    FaultyTheft theft{"{fault: {port: files, operation: rename, call: 1, fate: loses-power}}"};
    EXPECT_FALSE(theft.isRunning());
    EXPECT_FALSE(theft.session().mac().files.isPowerCut()) << "the power is back for the next launch";
    theft.act("relaunch");
    EXPECT_TRUE(theft.isRunning());
}

TEST(PlannedFaultsTest, OneThatHangsLetsTheAlarmSound)
{
    FaultyTheft theft{"{fault: {port: wall-clock, call: 1, fate: hangs}}"};
    EXPECT_TRUE(theft.isHeard());
    EXPECT_TRUE(theft.isRunning());
}

} // namespace
} // namespace sentrel::simulation
