#include "posix/PosixFileSystem.hpp"
#include "simulation/EventLog.hpp"
#include "simulation/NotificationHub.hpp"
#include "simulation/mac/display/SimulatedLoginItem.hpp"
#include "simulation/mac/display/SimulatedSavePanels.hpp"
#include "support/Files.hpp"
#include "support/TemporaryFolder.hpp"
#include "support/VirtualMachine.hpp"

#include <gtest/gtest.h>

namespace sentrel::simulation {
namespace {

using ChosenFile = std::optional<std::filesystem::path>;

Async<void> keepChosen(Async<ChosenFile> panel, ChosenFile& into)
{
    auto chosen = co_await std::move(panel);
    into = std::move(chosen);
}

TEST(SimulatedShell, ANotificationComesOnTheMainThreadAfterTheCallAndNotOnceTheRegistrationHasEnded)
{
    test::VirtualMachine machine;
    NotificationHub hub{machine.scheduler.mainExecutor()};
    int told = 0;
    ports::RegistrationPtr once;
    once = hub.observe("sleep", [&] {
        EXPECT_TRUE(machine.mainActor.isCurrent());
        ++told;
        once.reset();
    });
    for (const char* const name : {"wake", "sleep", "sleep"}) {
        hub.post(name);
    }
    EXPECT_EQ(told, 0);
    machine.clock.runReady();
    EXPECT_EQ(told, 1) << "the second was on its way when the registration ended";
}

TEST(SimulatedShell, ANameInASavePanelIsNoPath)
{
    test::VirtualMachine machine;
    const TemporaryFolder disk;
    SimulatedSavePanels panels{machine.scheduler, disk.path()};
    ChosenFile chosen;
    panels.setAnswer({.isCancelled = false, .folder = {}, .name = "../../etc/b.jpg"});
    machine.mainActor.spawn(keepChosen(panels.run({"Save", {"public.jpeg"}, "a.jpg"}), chosen));
    machine.clock.advance(std::chrono::seconds{1});
    EXPECT_EQ(chosen, disk.path() / "Downloads" / "b.jpg");
}

TEST(SimulatedShell, TheLoginItemOutlivesTheProcessAndItsFileMayHoldAnything)
{
    test::VirtualMachine machine;
    EventLog log{machine.scheduler};
    const TemporaryFolder disk;
    posix::PosixFileSystem files;
    const auto file = disk.path() / "Preferences" / "Login Items.json";
    EXPECT_EQ((SimulatedLoginItem{files, log, file}.registerItem()), std::nullopt);
    SimulatedLoginItem item{files, log, file};
    EXPECT_EQ(item.status(), 1);
    for (const char* content : {"", "[]", "{\"status\": 17}", "{\"status\": \"1\"}", "{\"status\": -1}", "\xFF"}) {
        test::put(file, content);
        EXPECT_EQ(item.status(), 0) << content;
    }
    EXPECT_EQ(item.setStatus(2), std::nullopt);
    EXPECT_EQ(item.status(), 2);
}

} // namespace
} // namespace sentrel::simulation
