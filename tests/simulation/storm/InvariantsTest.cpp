#include "simulation/storm/Invariants.hpp"

#include "simulation/stage/MacSession.hpp"
#include "support/TemporaryFolder.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace sentrel::simulation {
namespace {

const UUID someAlert = *UUID::parse("11111111-2222-3333-4444-555555555555");

/// A Mac in the middle of a day in which everything is as it should be.
struct Day {
    Day()
    {
        past.at = 10'000.0;
        past.launchedAt = 10.0;
        past.steadySince = 10.0;
        past.calmSince = 10.0;
        past.disarmedSince = never;
        past.armedSince = 100.0;
        past.alerts[someAlert] = {.reason = "unplugged", .firstSeen = 500.0, .owner = "maya"};
        now.at = 10'000.0;
        now.isRunning = now.showsArmed = now.menuSaysArmed = now.holdsArmedAssertion = true;
        now.isOnline = now.hasAccount = true;
        now.displays = 1;
        now.user = "maya";
        now.output.devices[73] = {0.5F, false};
        now.settings.emplace().isArmed = true;
        now.inCloud["maya"] = {someAlert};
        now.listed[someAlert] = {AlertStorageLocation::cloud, "unplugged"};
        before = now;
        before.at = 9'999.0;
    }

    TemporaryFolder disk;
    MacSession session{{}, disk.path(), SENTREL_SOURCE_DIR "/resources", 1};
    Chronicle past{session};
    Sight before;
    Sight now;
};

struct PlantedFault {
    const char* invariant;
    void (*plant)(Day& day);
};

constexpr PlantedFault plantedFaults[] = {
    {"alerts survive",
     [](Day& day) {
         day.now.inCloud.clear();
         day.now.listed.clear();
     }},
    {"triggers leave alerts",
     [](Day& day) { day.past.causes.push_back({.at = 9'800.0, .reason = "motion", .isCertain = true}); }},
    {"alerts have causes",
     [](Day& day) {
         day.past.alerts[someAlert] = {.reason = "motion", .firstSeen = 10'000.0, .owner = {}, .hasCause = false};
     }},
    {"deleted stays gone", [](Day& day) { day.past.alerts[someAlert].deletedAt = 9'000.0; }},
    {"deleted stays gone",
     [](Day& day) {
         day.past.alerts[someAlert].deletedAt = 5.0;
         day.now.listed.clear();
     }},
    {"others stay others",
     [](Day& day) {
         day.past.alerts[someAlert].owner = "noor";
         day.now.inCloud = {{"noor", {someAlert}}, {"maya", {}}};
     }},
    {"others stay others",
     [](Day& day) {
         day.past.alerts[someAlert].owner = "noor";
         day.past.calmSince = never;
         day.before.inCloud.clear();
         day.before.listed.clear();
     }},
    {"others stay others",
     [](Day& day) { // the list could not be read since
         day.past.alerts[someAlert].owner = "noor";
         day.now.inCloud = {{"noor", {someAlert}}, {"maya", {}}};
         day.past.calmSince = never;
         day.past.userChangedAt = 9'970.0;
     }},
    {"the list is whole", [](Day& day) { day.now.listed.clear(); }},
    {"triggers are heard",
     [](Day& day) {
         day.before.at = 9'998.0;
         day.past.causes.push_back({.at = 9'996.5, .reason = "motion", .isCertain = true, .isLoud = true});
     }},
    {"sound has a cause",
     [](Day& day) {
         day.now.isSounding = true;
         day.past.ringing = Ringing{10'000.0, 10'000.0, day.now.output, false};
     }},
    {"alarms stay loud",
     [](Day& day) {
         day.now.isSounding = true;
         day.past.ringing = Ringing{9'900.0, 10'000.0, day.now.output, true};
         day.past.softenedSince = 9'990.0;
     }},
    {"only the owner silences", [](Day& day) { day.past.ringing = Ringing{9'900.0, 9'995.0, day.now.output, true}; }},
    {"stopped is silent",
     [](Day& day) {
         day.now.isSounding = true;
         day.past.ringing = Ringing{9'900.0, 10'000.0, day.now.output, true};
         day.past.stopDeedAt = 9'990.0;
     }},
    {"only the owner disarms",
     [](Day& day) {
         day.now.showsArmed = false;
         day.past.loginAt = 9'990.0;
     }},
    {"only the owner arms",
     [](Day& day) {
         day.before.showsArmed = false;
         day.past.commands.push_back({9'800.0, {.arm = true}});
     }},
    {"the click silences",
     [](Day& day) {
         day.now.isSounding = true;
         day.past.ringing = {.since = 9'900.0, .lastHeard = 10'000.0, .before = {}};
         day.past.silenceDueSince = 9'990.0;
     }},
    {"the passcode uncovers",
     [](Day& day) {
         day.now.covers = 1;
         day.past.unlockDueSince = 9'990.0;
     }},
    {"only the passcode uncovers",
     [](Day& day) {
         day.before.covers = 1;
         day.past.loginAt = 10'000.0;
     }},
    {"every display is covered",
     [](Day& day) {
         day.now.covers = 1;
         day.now.displays = 2;
         day.past.coversOddSince = 9'990.0;
     }},
    {"the output is restored",
     [](Day& day) {
         day.before.at = 9'998.0;
         day.past.silentSince = 9'997.5;
         day.past.rangSince = 9'900.0;
         day.past.outputToRestore = day.now.output;
         day.past.outputToRestore->devices[73].second = true;
     }},
    {"an assertion while armed", [](Day& day) { day.past.assertionOddSince = 9'990.0; }},
    {"an assertion while processing", [](Day& day) { day.past.processingSince = 9'800.0; }},
    {"settings load", [](Day& day) { day.now.settings.reset(); }},
    {"settings load",
     [](Day& day) {
         day.before.isRunning = false;
         day.before.settings->alarmVolume = 0.1;
     }},
    {"signs agree",
     [](Day& day) {
         day.now.settings->isArmed = false;
         day.past.signsOddSince = 9'990.0;
     }},
    {"the phone agrees",
     [](Day& day) {
         day.now.phoneAskedAt = day.now.at;
         day.now.phoneSaysArmed = false;
     }},
    {"nothing waits in calm",
     [](Day& day) {
         day.now.onDisk[someAlert] = {"unplugged", true};
         day.now.inCloud["maya"].clear();
     }},
    {"timers end",
     [](Day& day) {
         day.now.showsArmed = day.before.showsArmed = false;
         day.past.disarmedSince = 100.0;
         day.past.timersAtRest = 5;
         day.now.timers = 12;
     }},
    {"memory is flat",
     [](Day& day) {
         day.now.showsArmed = day.before.showsArmed = false;
         day.past.disarmedSince = 100.0;
         day.past.memoryAtRest = 50'000'000;
         day.now.memory = 54'000'000;
         day.now.memoryReadAt = day.now.at;
     }},
};

std::string violatedOn(const Day& day)
{
    std::string all;
    for (const Invariant& invariant : invariants()) {
        if (invariant.violation({day.past, day.before, day.now})) {
            all += (all.empty() ? "" : ", ") + std::string{invariant.name};
        }
    }
    return all;
}

TEST(Invariants, HoldOnAGoodDayAndEachSeesTheFaultThatItIsFor)
{
    EXPECT_EQ(violatedOn(Day{}), "");
    for (const PlantedFault& fault : plantedFaults) {
        Day day;
        fault.plant(day);
        EXPECT_EQ(violatedOn(day), fault.invariant);
    }
    for (const Invariant& invariant : invariants()) {
        EXPECT_TRUE(std::ranges::any_of(plantedFaults, [&](auto& fault) { return fault.invariant == invariant.name; }))
            << invariant.name << " was never seen to fail";
    }
}

} // namespace
} // namespace sentrel::simulation
