#include "posix/PosixFileSystem.hpp"
#include "simulation/EventLog.hpp"
#include "simulation/mac/display/SimulatedLoginItem.hpp"
#include "simulation/mac/display/SimulatedSavePanels.hpp"
#include "support/TemporaryFolder.hpp"
#include "support/VirtualMachine.hpp"

#include <gtest/gtest.h>

#include <fstream>

namespace sentrel::simulation {
namespace {

using namespace std::chrono_literals;

class SimulatedShellTest : public testing::Test {
protected:
    test::VirtualMachine machine;
    EventLog log{machine.scheduler};
    TemporaryFolder disk;
};

TEST_F(SimulatedShellTest, ASavePanelIsAnsweredInItsTime)
{
    SimulatedSavePanels panels{machine.scheduler, disk.path()};
    using Chosen = std::optional<std::filesystem::path>;
    const auto run = [&](const char* name) {
        return machine.mainActor.spawn(panels.run({"Save", {"public.jpeg"}, name}));
    };
    const auto chosen = [&](const Task<Chosen>& task) {
        machine.clock.advance(1s);
        EXPECT_TRUE(task.isFinished());
        Chosen file;
        const auto keep = [](Task<Chosen> panel, Chosen& into) -> Async<void> {
            auto answer = co_await panel;
            into = std::move(answer);
        };
        machine.mainActor.spawn(keep(task, file));
        machine.clock.runReady();
        return file;
    };
    EXPECT_EQ(chosen(run("a.jpg")), disk.path() / "Downloads" / "a.jpg");
    EXPECT_TRUE(std::filesystem::is_directory(disk.path() / "Downloads"));
    EXPECT_EQ(chosen(run("../../etc/b.jpg")), disk.path() / "Downloads" / "b.jpg") << "a name is no path";
    panels.setAnswer({.isCancelled = true, .folder = {}, .name = {}});
    EXPECT_EQ(chosen(run("c.jpg")), std::nullopt);

    panels.setAnswerDelay(std::nullopt);
    const auto waiting = run("d.jpg");
    machine.clock.advance(1h);
    ASSERT_TRUE(panels.open());
    EXPECT_EQ(panels.open()->nameFieldStringValue, "d.jpg");
    EXPECT_TRUE(panels.answerPanel({.isCancelled = false, .folder = "gone", .name = "mine.jpg"}));
    EXPECT_EQ(chosen(waiting), disk.path() / "gone" / "mine.jpg");
    EXPECT_FALSE(std::filesystem::exists(disk.path() / "gone"));
    EXPECT_FALSE(panels.answerPanel({})) << "none is open";
}

TEST_F(SimulatedShellTest, TheLoginItemOutlivesTheProcessAndItsFileMayHoldAnything)
{
    posix::PosixFileSystem files;
    const auto file = disk.path() / "Preferences" / "Login Items.json";
    {
        SimulatedLoginItem item{files, log, file};
        EXPECT_EQ(item.status(), 0);
        item.faults().set("register", 1);
        EXPECT_EQ(item.registerItem(), "Operation not permitted");
        EXPECT_EQ(item.status(), 0);
        EXPECT_EQ(item.registerItem(), std::nullopt);
    }
    SimulatedLoginItem item{files, log, file};
    EXPECT_EQ(item.status(), 1);
    for (const char* content : {"", "[]", "{\"status\": 17}", "{\"status\": \"1\"}", "{\"status\": -1}", "\xFF"}) {
        std::ofstream{file} << content;
        EXPECT_EQ(item.status(), 0) << content;
    }
    EXPECT_EQ(item.setStatus(2), std::nullopt);
    EXPECT_EQ(item.status(), 2);
    EXPECT_EQ(item.unregisterItem(), std::nullopt);
    EXPECT_EQ(item.status(), 0);
}

} // namespace
} // namespace sentrel::simulation
