#include "runtime/VirtualScheduler.hpp"
#include "simulation/EventLog.hpp"
#include "simulation/mac/display/SimulatedWorkspace.hpp"
#include "simulation/mac/power/SimulatedPower.hpp"

#include <gtest/gtest.h>

namespace sentrel::simulation {
namespace {

struct SensorMachine {
    VirtualClock clock;
    VirtualScheduler scheduler{clock};
    EventLog log{scheduler};
};

TEST(SimulatedPower, TellsOfAChangeOnTheMainThreadAsLongAsSomebodyListens)
{
    SensorMachine machine;
    SimulatedPower power{machine.scheduler, machine.log};
    int told = 0;
    auto registration = power.observeChanges([&] {
        EXPECT_TRUE(machine.scheduler.mainExecutor().isCurrent());
        ++told;
    });
    power.setAC(false);
    EXPECT_EQ(told, 0) << "never inside the call";
    machine.clock.runReady();
    EXPECT_EQ(told, 1);

    power.setAC(false);
    machine.clock.runReady();
    EXPECT_EQ(told, 1) << "nothing changed";

    power.setUnknown();
    registration.reset();
    machine.clock.runReady();
    EXPECT_EQ(told, 1) << "on its way when the registration ended";
    EXPECT_EQ(power.copySnapshot()->count(), 0U);
    EXPECT_EQ(machine.log.named("power.changed").size(), 2U);
}

TEST(SimulatedWorkspace, DeliversByNameOnTheMainThread)
{
    SensorMachine machine;
    SimulatedWorkspace workspace{machine.scheduler, machine.log};
    int slept = 0;
    ports::RegistrationPtr once;
    once = workspace.observe("sleep", [&] {
        ++slept;
        once.reset(); // ends itself from inside
    });
    workspace.post("wake");
    workspace.post("sleep");
    workspace.post("sleep");
    EXPECT_EQ(slept, 0);
    machine.clock.runReady();
    EXPECT_EQ(slept, 1);
}

} // namespace
} // namespace sentrel::simulation
