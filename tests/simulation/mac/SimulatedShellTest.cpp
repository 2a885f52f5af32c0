#include "posix/PosixFileSystem.hpp"
#include "simulation/EventLog.hpp"
#include "simulation/mac/display/SimulatedApplication.hpp"
#include "simulation/mac/display/SimulatedLoginItem.hpp"
#include "simulation/mac/display/SimulatedPreviewPanel.hpp"
#include "simulation/mac/display/SimulatedSavePanels.hpp"
#include "simulation/mac/display/SimulatedStatusBar.hpp"
#include "support/TemporaryFolder.hpp"
#include "support/VirtualMachine.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

namespace sentrel::simulation {
namespace {

using namespace std::chrono_literals;
using ports::TerminateReply;
using testing::ElementsAre;
using testing::IsEmpty;

class SimulatedShellTest : public testing::Test {
protected:
    test::VirtualMachine machine;
    EventLog log{machine.scheduler};
    TemporaryFolder disk;
};

TEST_F(SimulatedShellTest, AnApplicationEndsAsItsDelegateSaysAndOnlyOnce)
{
    SimulatedApplication application{log};
    std::vector<std::string> told;
    TerminateReply reply = TerminateReply::cancel;
    application.start([&] { told.emplace_back("ended"); });
    application.setDelegate({.didFinishLaunching = [&] { told.emplace_back("launched"); },
                             .shouldTerminate = [&] { return reply; },
                             .willTerminate = [&] { told.emplace_back("will"); },
                             .shouldTerminateAfterLastWindowClosed = {}});
    application.finishLaunching();
    application.terminate();
    application.replyToShouldTerminate(true);
    EXPECT_THAT(told, ElementsAre("launched")) << "no reply was awaited";

    reply = TerminateReply::later;
    application.terminate();
    EXPECT_TRUE(application.isAwaitingReply());
    application.replyToShouldTerminate(false);
    application.replyToShouldTerminate(true);
    EXPECT_THAT(told, ElementsAre("launched"));
    application.terminate();
    application.terminate();
    application.replyToShouldTerminate(true);
    EXPECT_THAT(told, ElementsAre("launched", "will", "ended"));
    reply = TerminateReply::now;
    application.terminate();
    application.replyToShouldTerminate(true);
    EXPECT_THAT(told, ElementsAre("launched", "will", "ended"));
}

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

TEST_F(SimulatedShellTest, ThePreviewPanelShowsWhatWhoeverControlsItOffers)
{
    struct OneFile final : ports::PreviewDataSource {
        std::size_t numberOfItems() override { return 1; }
        std::filesystem::path itemAt(std::size_t) override { return "photo.jpg"; }
    } source;
    SimulatedPreviewPanel panel{log};
    panel.setDataSource(&source);
    panel.makeKeyAndOrderFront();
    EXPECT_THAT(panel.items(), IsEmpty()) << "nobody accepts it";
    panel.close();

    std::vector<std::string> told;
    panel.setControl({.accepts = [] { return true; },
                      .begin = [&] { told.emplace_back("begin"); },
                      .end = [&] { told.emplace_back("end"); }});
    panel.makeKeyAndOrderFront();
    panel.makeKeyAndOrderFront();
    EXPECT_THAT(panel.items(), ElementsAre("photo.jpg"));
    EXPECT_TRUE(panel.close());
    EXPECT_FALSE(panel.close());
    EXPECT_THAT(told, ElementsAre("begin", "end"));
}

TEST_F(SimulatedShellTest, AMenuIsUsedOnlyWhileItIsOpen)
{
    SimulatedStatusBar bar;
    EXPECT_FALSE(bar.openMenu());
    auto item = bar.makeStatusItem();
    int opened = 0;
    int pressed = 0;
    item->setOpened([&] { ++opened; });
    item->showContent(ui::button("Quit", [&] {
        ++pressed;
        item->dismiss();
    }));
    EXPECT_EQ(bar.click("Quit"), ui::Interaction::notFound);
    EXPECT_TRUE(bar.openMenu());
    EXPECT_TRUE(bar.openMenu());
    EXPECT_EQ(bar.click("Quit"), ui::Interaction::done);
    EXPECT_FALSE(bar.isMenuOpen());
    EXPECT_EQ(bar.click("Quit"), ui::Interaction::notFound);
    EXPECT_EQ(opened, 1);
    EXPECT_EQ(pressed, 1);
    item.reset();
    EXPECT_FALSE(bar.item());
}

} // namespace
} // namespace sentrel::simulation
