#include "conformance/Suite.hpp"
#include "foundation/Json.hpp"
#include "ports/CloudDatabase.hpp"
#include "runtime/Sleep.hpp"
#include "runtime/ThreadScheduler.hpp"
#include "simulation/icloud/PredicateSql.hpp"
#include "simulation/mac/language/IcuLanguage.hpp"
#include "simulation/page/NodeJson.hpp"
#include "simulation/page/PageFiles.hpp"
#include "simulation/stage/MacSession.hpp"
#include "support/TemporaryFolder.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <optional>

namespace sentrel::conformance {
namespace {

using namespace std::chrono_literals;

/// The nodes of the page's drawing.
void collect(const Json& node, std::vector<Drawn>& drawn)
{
    Drawn made;
    made.identity = node.value("id", "");
    for (const char* const key : {"text", "prompt", "header", "title"}) {
        if (node.contains(key)) {
            made.texts.push_back(node[key]);
        }
    }
    made.label = node.value("label", "");
    made.isEnabled = !node.value("disabled", false);
    drawn.push_back(std::move(made));
    for (const Json& child : node.value("children", Json::array())) {
        collect(child, drawn);
    }
}

std::vector<Drawn> drawForPage(const ui::View& tree)
{
    simulation::PageFiles files;
    std::vector<Drawn> drawn;
    collect(simulation::nodeJson(tree, files), drawn);
    return drawn;
}

/// A simulated MacBook whose ports are under test.
struct SimulatedSubject {
    SimulatedSubject() { session.mac().iCloud.account.setStatus(ports::CloudAccountStatus::available); }

    /// Runs the request on the main thread; throws what it throws.
    ports::CloudRecord roundTrip(const ports::CloudRecord& record)
    {
        std::optional<ports::CloudRecordResult> result;
        const auto task = session.mainActor().spawn(save(record, result));
        session.clock().advance(1min);
        if (!result) {
            throw std::runtime_error{"the server gives no answer"};
        }
        if (const auto* const error = std::get_if<ports::CloudError>(&*result)) {
            throw *error;
        }
        return std::get<ports::CloudRecord>(*result);
    }

    Async<void> save(ports::CloudRecord record, std::optional<ports::CloudRecordResult>& result)
    {
        const std::string name = record.name;
        std::vector<ports::CloudRecord> records;
        records.push_back(std::move(record));
        const std::vector<std::string> noNames;
        try {
            const auto answer =
                co_await platform.cloudDatabase.modify(records, noNames, ports::CloudSavePolicy::allKeys, false);
            result = answer.saved.at(name);
        } catch (const ports::CloudError& error) {
            result = error;
        }
    }

    TemporaryFolder disk;
    TemporaryFolder folder;
    simulation::MacSession session{{}, disk.path(), SENTREL_SOURCE_DIR "/resources", 1};
    ports::Platform& platform = session.mac().startProcess();
    Subject subject{
        .platform = platform,
        .pass = [this](Duration span) { session.clock().advance(span); },
        .folder = folder.path(),
        .renderer = {.draw = [](const ui::View& tree, const std::string&, Report&) { return drawForPage(tree); }},
        .records = {.roundTrip = [this](const ports::CloudRecord& record) { return roundTrip(record); },
                    .makeQuery =
                        [](const ports::CloudQuery& query) {
                            static_cast<void>(simulation::conditionOf(query.predicate));
                        }},
        .language = [this](const std::string& identifier) -> std::unique_ptr<ports::Language> {
            return std::make_unique<simulation::IcuLanguage>(SENTREL_SOURCE_DIR "/resources", session.log(),
                                                             identifier);
        },
    };
};

void expectPromisesKept(const Report& report)
{
    EXPECT_GT(report.checks(), 0);
    for (const std::string& failure : report.failures()) {
        ADD_FAILURE() << failure;
    }
}

class ConformanceTest : public testing::TestWithParam<Suite> {};

TEST_P(ConformanceTest, TheSimulatedMacBookKeepsThePromises)
{
    SimulatedSubject simulated;
    Report report;
    GetParam().run(simulated.subject, report);
    expectPromisesKept(report);
}

INSTANTIATE_TEST_SUITE_P(Suites, ConformanceTest, testing::ValuesIn(suites()), [](const auto& tested) {
    std::string name = tested.param.name;
    std::erase(name, ' ');
    return name;
});

Async<void> stopLater(ThreadScheduler& scheduler, Duration span)
{
    co_await sleepFor(span);
    scheduler.stopMain();
}

TEST(ThreadsConformance, RealThreadsKeepTheSchedulersPromises)
{
    ThreadScheduler scheduler;
    const auto pass = [&scheduler](Duration span) {
        MainActor{scheduler}.spawn(stopLater(scheduler, span));
        scheduler.runMain();
    };
    Report report;
    checkScheduler(scheduler, pass, report);
    expectPromisesKept(report);
}

} // namespace
} // namespace sentrel::conformance
