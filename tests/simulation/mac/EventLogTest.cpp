#include "simulation/EventLog.hpp"
#include "support/Files.hpp"
#include "support/TemporaryFolder.hpp"
#include "support/VirtualMachine.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <limits>
#include <thread>

namespace sentrel::simulation {
namespace {

using namespace std::chrono_literals;

TEST(EventLog, TellsEachEventAsOneJsonLineWithItsTimeAndItsFieldsInOrder)
{
    test::VirtualMachine machine;
    machine.clock.advance(2s);
    EventLog log{machine.scheduler};
    machine.clock.advance(3500ms);
    log.passOn("alarm.started", {{"mode", "tone"}, {"device", std::int64_t{73}}, {"volume", 0.1}, {"armed", true}});
    machine.clock.advance(500ms);
    log.passOn("odd \"name\"", {{"none", std::monostate{}}, {"whole", 3.0}, {"large", 1e300}});
    machine.clock.advance(1ns);
    log.passOn("wild", {{"not a number", std::numeric_limits<double>::quiet_NaN()},
                        {"bytes", std::string_view{"a\xFF\0b\n\xC3\xA9", 7}}});

    const auto events = log.events();
    ASSERT_EQ(events.size(), 3U);
    EXPECT_EQ(jsonLine(events[0]),
              R"({"at": 3.5, "event": "alarm.started", "mode": "tone", "device": 73, "volume": 0.1, "armed": true})");
    EXPECT_EQ(jsonLine(events[1]), R"({"at": 4, "event": "odd \"name\"", "none": null, "whole": 3, "large": 1e+300})");
    EXPECT_EQ(jsonLine(events[2]), "{\"at\": 4.000000001, \"event\": \"wild\", \"not a number\": null, "
                                   "\"bytes\": \"a\xEF\xBF\xBD\\u0000b\\n\xC3\xA9\"}");
}

TEST(EventLog, AFileHoldsTheEventsFromBeforeAndAfterItWasOpened)
{
    test::VirtualMachine machine;
    const TemporaryFolder folder;
    const auto file = folder.path() / "events.jsonl";
    EventLog log{machine.scheduler};
    log.passOn("armed", {});
    ASSERT_TRUE(log.writeTo(file));
    log.passOn("disarmed", {});
    EXPECT_EQ(test::contentOf(file), "{\"at\": 0, \"event\": \"armed\"}\n{\"at\": 0, \"event\": \"disarmed\"}\n");
    EXPECT_FALSE(log.writeTo(folder.path() / "no such folder" / "events.jsonl"));
    if (std::filesystem::exists("/dev/full")) {
        EXPECT_FALSE(log.writeTo("/dev/full")) << "a full disk goes unnoticed";
        EXPECT_FALSE(log.isWrittenWhole());
    }
}

TEST(EventLog, ThreadsMayNoteAndReadTogether)
{
    test::VirtualMachine machine;
    EventLog log{machine.scheduler};
    std::atomic<int> heard = 0;
    log.observe([&](const Event&) { ++heard; });
    const auto work = [&log] {
        for (int i = 0; i < 200; ++i) {
            log.passOn("tick", {{"n", std::int64_t{i}}});
            (void)log.events(log.size() - 1);
        }
    };
    std::thread other{work};
    work();
    other.join();
    EXPECT_EQ(log.named("tick").size(), 400U);
    EXPECT_EQ(heard, 400);
}

} // namespace
} // namespace sentrel::simulation
