#include "simulation/storm/Storm.hpp"

#include "simulation/stage/ScenarioReader.hpp"
#include "simulation/storm/Rehearsal.hpp"
#include "simulation/storm/Shrink.hpp"
#include "simulation/storm/StormSummary.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <set>
#include <string>

namespace sentrel::simulation {
namespace {

constexpr const char* resources = SENTREL_SOURCE_DIR "/resources";

std::string actionsOf(const Plan& plan)
{
    std::string all;
    for (const PlannedStep& step : plan.steps) {
        all += std::to_string(step.at) + step.action + ' ';
    }
    return all;
}

TEST(Shrink, LeavesWhatTheFailureNeedsAtTheShortestTimes)
{
    Plan plan{.title = "Long",
              .mac = {{"displays", "2"}, {"login", "fail"}},
              .settings = {{"alarmVolume", "0.3"}},
              .steps = {}};
    for (int i = 0; i < 60; ++i) {
        plan.steps.push_back({i * 100'000, i == 17 ? "arm" : i == 41 ? "unplug" : "refresh"});
    }
    const auto has = [](const Plan& some, const char* action) {
        return std::ranges::any_of(some.steps, [&](const PlannedStep& step) { return step.action == action; });
    };
    int tries = 0;
    const auto stillFails = [&](const Plan& some) {
        ++tries;
        const auto isLogin = [](const auto& key) { return key.first == "login"; };
        return has(some, "arm") && has(some, "unplug") && std::ranges::any_of(some.mac, isLogin);
    };
    const Plan least = shrunk(plan, stillFails);
    EXPECT_EQ(actionsOf(least), "1000arm 2000unplug ");
    EXPECT_EQ(least.mac.size(), 1U);
    EXPECT_TRUE(least.settings.empty());
    EXPECT_LT(tries, 150);
    EXPECT_EQ(shrunk(plan, [](const Plan&) { return false; }).steps.size(), 60U);
    EXPECT_EQ(shrunk(plan, [](const Plan&) { return true; }, 1).steps.size(), 30U) << "when its tries are used up";
}

TEST(Weather, IsTheSameForTheSameSeedAndCanAlwaysBeRead)
{
    const auto ports = faultyPorts(resources);
    const auto points = rehearse(resources);
    std::set<std::string> documents;
    for (std::uint64_t seed = 1; seed <= 40; ++seed) {
        const std::string document = documentOf(weather(seed, 100.0, ports, points));
        EXPECT_EQ(document, documentOf(weather(seed, 100.0, ports, points)));
        EXPECT_NO_THROW(static_cast<void>(parseScenario(document, "storm.yaml")));
        documents.insert(document);
    }
    EXPECT_EQ(documents.size(), 40U);
}

TEST(Weather, GivesEachPointThatWasRehearsedItsTurn)
{
    const auto ports = faultyPorts(resources);
    const auto points = rehearse(resources);
    EXPECT_GT(points.size(), 400U);
    std::string documents;
    for (std::uint64_t seed = 1; seed <= points.size() / 12; ++seed) {
        documents += documentOf(weather(seed, 100.0, ports, points));
    }
    std::size_t planned = 0;
    for (const FaultPoint& point : points) {
        ASSERT_FALSE(point.chances.empty());
        const std::string operation = point.operation.empty() ? "" : ", operation: " + point.operation + ", call: ";
        const std::string start =
            point.operation.empty() ? "{fail: {" + point.port + ": {" + point.fault + ": " : "{port: " + point.port;
        planned += documents.find(start + operation) != std::string::npos ? 1U : 0U;
    }
    EXPECT_EQ(planned, points.size());
}

TEST(World, IsNotViolatedByAPushThatCannotBeReadTheBeepsOfAnEndedProcessOrAClickThatItNeverTook)
{
    const Plan push{.title = "Push",
                    .mac = {{"icloud", "maya"}},
                    .settings = {},
                    .steps = {{1000, "{fault: {port: push, operation: cloudNotification, fate: raises}}"},
                              {1000, "{phone: disarm}"},
                              {2000, "{fault: none}"}}};
    const Plan beeps{.title = "Beeps",
                     .mac = {},
                     .settings = {},
                     .steps = {{1000, "arm"},
                               {3000, "{fail: {audio: {hangs: 1}}}"},
                               {3000, "unplug"},
                               {4000, "crash"},
                               {5000, "relaunch"},
                               {10'000, "plug-in"}}};
    const Plan click{.title = "Click",
                     .mac = {},
                     .settings = {{"requirePasswordForActions", "false"}},
                     .steps = {{1000, "{menu: armed}"},
                               {31'000, "unplug"},
                               {31'000, "{fault: {port: language, operation: localized, call: 1, fate: dies}}"},
                               {32'000, "{menu: stopAlarm}"}}};
    for (const Plan& plan : {push, beeps, click}) {
        for (const Violation& violation : live(plan, resources).violations) {
            ADD_FAILURE() << plan.title << ": " << violation.invariant << ": " << violation.what;
        }
    }
}

TEST(StormRun, GivesTheSameSummaryWithAnyNumberOfProcesses)
{
    const auto summary = [](unsigned jobs) {
        Storm storm{{.hours = 12.0, .seed = 3, .jobs = jobs, .resources = resources}};
        std::size_t told = 0;
        const StormReport report = storm.run([&](const StormReport& soFar) { told = soFar.worlds; });
        EXPECT_EQ(told, storm.worlds());
        return encodeJson(jsonOf(report, unreachedBy(report.experience, storm.ports()), {}));
    };
    const std::string alone = summary(1);
    EXPECT_EQ(alone, summary(3));
    const Json json = Json::parse(alone);
    EXPECT_EQ(json["violations"], Json::array());
    EXPECT_GE(json["hours"].get<double>(), 12.0);
    EXPECT_GT(json["alerts"].get<int>(), 0);
}

TEST(StormRun, TakesTheEndOfAWorldsProcessForAViolation)
{
    EXPECT_FALSE(violationOfEnd(0));
    EXPECT_EQ(violationOfEnd(11)->what, "its process ended with signal 11");
    EXPECT_EQ(violationOfEnd(14)->invariant, "the world goes on");
    EXPECT_EQ(violationOfEnd(3 << 8)->what, "its process ended with status 3");
}

} // namespace
} // namespace sentrel::simulation
