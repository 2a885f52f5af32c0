#include "runtime/VirtualScheduler.hpp"
#include "simulation/EventLog.hpp"
#include "simulation/mac/display/SimulatedWorkspace.hpp"
#include "simulation/mac/power/SimulatedAssertions.hpp"
#include "simulation/mac/power/SimulatedLid.hpp"
#include "simulation/mac/power/SimulatedPower.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace sentrel::simulation {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

struct SensorMachine {
    VirtualClock clock;
    VirtualScheduler scheduler{clock};
    EventLog log{scheduler};
};

TEST(SimulatedPower, ASnapshotStaysAsItWasWhenTheSourcesChange)
{
    SensorMachine machine;
    SimulatedPower power{machine.scheduler, machine.log};
    const auto before = power.copySnapshot();
    power.setSources({PowerSource{}, PowerSource{PowerSource::Description{{"Name", "UPS"}}},
                      PowerSource::reporting("Battery", "Battery Power")});
    const auto after = power.copySnapshot();

    EXPECT_EQ(before->count(), 1U);
    EXPECT_EQ(before->text(0, "Power Source State"), "AC Power");
    ASSERT_EQ(after->count(), 3U);
    EXPECT_EQ(after->text(0, "Power Source State"), std::nullopt);
    EXPECT_EQ(after->text(1, "Power Source State"), std::nullopt);
    EXPECT_EQ(after->text(1, "Name"), "UPS");
    EXPECT_EQ(after->text(2, "Power Source State"), "Battery Power");
}

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

TEST(SimulatedPower, FailsAsItIsTold)
{
    SensorMachine machine;
    SimulatedPower power{machine.scheduler, machine.log};
    power.faults().set("register", 1);
    EXPECT_EQ(power.observeChanges([] {}), nullptr);

    power.faults().set("snapshot", 1);
    power.faults().set("list", 1);
    EXPECT_EQ(power.copySnapshot(), nullptr);
    EXPECT_EQ(power.copySnapshot()->count(), std::nullopt);
    EXPECT_EQ(power.copySnapshot()->count(), 1U);

    int told = 0;
    const auto registration = power.observeChanges([&] { ++told; });
    power.faults().set("notification", 1);
    power.setAC(false);
    power.setAC(true);
    machine.clock.runReady();
    EXPECT_EQ(told, 1) << "the first got lost";
}

TEST(SimulatedAssertions, HoldsThemInOrderUntilReleasedOrDropped)
{
    SensorMachine machine;
    SimulatedAssertions assertions{machine.log};
    const auto armed = assertions.create("PreventUserIdleSystemSleep", 255, "armed");
    const auto alarm = assertions.create("PreventUserIdleSystemSleep", 255, "alarm");
    assertions.faults().set("create", 1);
    EXPECT_NE(assertions.create("PreventUserIdleSystemSleep", 255, "refused").status, 0);
    EXPECT_NE(armed.id, alarm.id);
    EXPECT_THAT(assertions.held(), ElementsAre("armed", "alarm"));

    EXPECT_EQ(assertions.release(armed.id), 0);
    EXPECT_NE(assertions.release(armed.id), 0) << "it is gone";
    EXPECT_THAT(assertions.held(), ElementsAre("alarm"));

    assertions.dropAll();
    EXPECT_THAT(assertions.held(), IsEmpty());
    const auto released = machine.log.named("assertion.released");
    ASSERT_EQ(released.size(), 2U);
    EXPECT_EQ(released[0].text("name"), "armed");
    EXPECT_EQ(released[1].text("name"), "alarm");
    EXPECT_EQ(machine.log.named("assertion.taken").size(), 2U);
}

TEST(SimulatedLid, ShowsItsStateUnderItsOneNameOnly)
{
    SensorMachine machine;
    SimulatedLid lid{machine.log};
    const auto read = [&] { return lid.number("IOPMrootDomain", "AppleClamshellState"); };
    EXPECT_EQ(read(), 0);
    lid.close();
    EXPECT_EQ(read(), 1);
    EXPECT_EQ(lid.number("IOPMrootDomain", "Other"), std::nullopt);
    EXPECT_EQ(lid.number("IOService", "AppleClamshellState"), std::nullopt);
    lid.faults().set("service", 1);
    EXPECT_EQ(read(), std::nullopt);
    EXPECT_EQ(read(), 1);
    lid.setNumber(1LL << 40);
    EXPECT_EQ(read(), 1LL << 40);
    lid.setAbsent();
    lid.setAbsent();
    EXPECT_EQ(read(), std::nullopt);
    EXPECT_EQ(machine.log.named("lid.changed").size(), 3U);
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
