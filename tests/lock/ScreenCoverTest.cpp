#include "lock/CoverMac.hpp"
#include "ports/WindowConstants.hpp"
#include "runtime/ThreadScheduler.hpp"
#include "runtime/VirtualScheduler.hpp"
#include "ui/Description.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>

namespace sentrel {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;

constexpr const char* locked = "This Mac is locked. Enter your passcode to unlock.";

class ScreenCoverTest : public testing::Test {
protected:
    /// Types at the keyboard and presses return; what follows at once has happened then.
    void enter(std::string_view passcode)
    {
        EXPECT_TRUE(mac_.displays.type(passcode));
        EXPECT_EQ(mac_.displays.pressKey(ui::Key::returnKey), ui::Interaction::done);
        clock_.runReady();
    }
    void enterWrongly(int times)
    {
        for (int time = 0; time < times; ++time) {
            enter("wrong");
        }
    }
    void showWithPasscode()
    {
        mac_.setPasscode("2468");
        ASSERT_TRUE(mac_.cover->show());
    }
    std::size_t checks() const { return mac_.passcodes.cryptography.roundsAsked.size(); }

    /// Lets something happen while the next check is under way.
    void duringTheNextCheck(std::function<void()> happens)
    {
        mac_.passcodes.cryptography.meanwhile = std::move(happens);
    }

    VirtualClock clock_;
    VirtualScheduler scheduler_{clock_};
    CoverMac<VirtualScheduler> mac_{scheduler_};
};

TEST_F(ScreenCoverTest, LiesOverEveryDisplayAndOverEverythingOnIt)
{
    mac_.displays.setCount(2);
    showWithPasscode();
    EXPECT_TRUE(mac_.displays.isCovered(0));
    EXPECT_TRUE(mac_.displays.isCovered(1));
    EXPECT_TRUE(mac_.activation.isActive());

    const auto covers = mac_.displays.covers();
    const auto screens = mac_.displays.screens();
    ASSERT_EQ(covers.size(), 2U);
    for (std::size_t index = 0; index < covers.size(); ++index) {
        const auto& cover = covers[index];
        EXPECT_EQ(cover.frame, screens[index].frame);
        EXPECT_EQ(cover.description.screenNumber, screens[index].number);
        EXPECT_EQ(cover.description.styleMask, 0U);
        EXPECT_EQ(cover.description.backing, 2U);
        EXPECT_FALSE(cover.description.isDeferred);
        EXPECT_TRUE(cover.description.canBecomeMain);
        EXPECT_EQ(cover.level, mac_.displays.shieldingLevel());
        EXPECT_EQ(cover.collectionBehavior, 337U);
        EXPECT_FALSE(cover.hasShadow);
        EXPECT_FALSE(cover.isReleasedWhenClosed);
        EXPECT_EQ(cover.hostFrame, (ports::Rectangle{0, 0, cover.frame.width, cover.frame.height}));
        EXPECT_EQ(cover.hostAutoresizing, 18U);
        EXPECT_EQ(cover.isKey, index == 0);
    }
    EXPECT_EQ(ui::describe(covers[0].content), R"(column, on black, to the edges
  spacer
  text "Sentrel", large title
  text "This Mac is locked. Enter your passcode to unlock."
  secure field "Passcode" = "" [passcode] focused
  button "Unlock", prominent, key return [unlock]
  spacer
)");

    EXPECT_TRUE(mac_.cover->show()) << "showing already";
    EXPECT_EQ(mac_.displays.covers().size(), 2U);
    ASSERT_EQ(mac_.journal.named("cover.shown").size(), 1U);
    EXPECT_EQ(std::get<std::int64_t>(*mac_.journal.named("cover.shown")[0].find("windows")), 2);
}

TEST_F(ScreenCoverTest, TheKeyboardLeadsNowhereElseUntilThePasscodeHasBeenTyped)
{
    const auto disabled = [&] {
        std::vector<bool> answers;
        for (const auto option : {ports::disablesProcessSwitching, ports::disablesForceQuit,
                                  ports::disablesSessionTermination, ports::hidesMenuBar}) {
            answers.push_back(mac_.activation.isDisabled(option));
        }
        return answers;
    };
    mac_.activation.activate(true);
    EXPECT_THAT(disabled(), testing::Each(false));
    showWithPasscode();
    EXPECT_THAT(disabled(), testing::Each(true));
    mac_.displays.setCount(2);
    clock_.runReady();
    EXPECT_THAT(disabled(), testing::Each(true));

    mac_.activation.deactivate();
    EXPECT_FALSE(mac_.displays.type("2468")) << "another application has the keyboard";
    mac_.displays.post("NSApplicationDidResignActiveNotification");
    clock_.runReady();
    EXPECT_THAT(disabled(), testing::Each(true));
    enter("2468");
    EXPECT_FALSE(mac_.cover->isShowing());
    EXPECT_TRUE(mac_.activation.isActive());
    EXPECT_THAT(disabled(), testing::Each(false));

    mac_.activation.deactivate();
    mac_.displays.post("NSApplicationDidResignActiveNotification");
    clock_.runReady();
    EXPECT_FALSE(mac_.activation.isActive()) << "an open Mac lets other applications be";
    ASSERT_TRUE(mac_.cover->show());
    mac_.cover.reset();
    EXPECT_THAT(disabled(), testing::Each(false));
}

TEST_F(ScreenCoverTest, ThePasscodeCanBeTypedAlsoWhenTheSystemLeavesAnotherApplicationActive)
{
    mac_.activation.refuseActivation(true);
    showWithPasscode();
    EXPECT_FALSE(mac_.activation.isActive());
    enter("2468");
    EXPECT_FALSE(mac_.cover->isShowing());

    ASSERT_TRUE(mac_.cover->show());
    mac_.activation.deactivate();
    mac_.displays.post("NSApplicationDidResignActiveNotification");
    clock_.runReady();
    enter("2468");
    EXPECT_FALSE(mac_.cover->isShowing());
}

TEST_F(ScreenCoverTest, ComesAndGoesAlsoWhenTheSystemRaisesAtActivationAndOptions)
{
    mac_.activation.faults().set("raises");
    showWithPasscode();
    EXPECT_TRUE(mac_.displays.isCovered(0));
    enter("2468");
    EXPECT_FALSE(mac_.cover->isShowing());
    EXPECT_FALSE(mac_.displays.isCovered(0));
}

TEST_F(ScreenCoverTest, ACheckThatRaisesIsNoWrongPasscodeAndTheNextOneIsMade)
{
    mac_.setTriggering(1);
    showWithPasscode();
    mac_.passcodes.keychain.faults().set("raises", 1);
    enter("2468");
    EXPECT_TRUE(mac_.cover->isShowing() && mac_.displays.isCovered(0));
    EXPECT_EQ(mac_.message(), "");
    EXPECT_THAT(mac_.alarm.triggers, testing::IsEmpty());
    enter("2468");
    EXPECT_FALSE(mac_.cover->isShowing());

    mac_.passcodes.keychain.faults().set("raises", 1);
    EXPECT_TRUE(mac_.cover->show()) << "whether there is a passcode is asked again";
}

TEST_F(ScreenCoverTest, TheButtonOfAnyDisplayUnlocksWithWhatWasTypedThere)
{
    mac_.displays.setCount(2);
    showWithPasscode();
    EXPECT_TRUE(mac_.displays.type("wr"));
    EXPECT_EQ(mac_.displays.click(1, "passcode"), ui::Interaction::done);
    EXPECT_TRUE(mac_.displays.type("2468"));
    EXPECT_EQ(mac_.typedLength(0), 2U);
    EXPECT_EQ(mac_.displays.click(1, "Unlock"), ui::Interaction::done);
    clock_.runReady();
    EXPECT_FALSE(mac_.cover->isShowing());
}

TEST_F(ScreenCoverTest, AWrongPasscodeClearsTheFieldAndAnEmptyOneIsNoAttempt)
{
    showWithPasscode();
    EXPECT_EQ(mac_.displays.pressKey(ui::Key::returnKey), ui::Interaction::done);
    clock_.runReady();
    EXPECT_THAT(mac_.outcomes(), ElementsAre());
    EXPECT_EQ(mac_.message(), locked);

    enter("1234");
    EXPECT_THAT(mac_.outcomes(), ElementsAre("incorrect"));
    EXPECT_EQ(mac_.message(), "");
    EXPECT_EQ(mac_.typedLength(), 0U);
    EXPECT_EQ(mac_.displays.covers()[0].focusedIdentity, "passcode");
}

TEST_F(ScreenCoverTest, TheFifthWrongPasscodeLocksTheFieldForThirtySecondsThatItCountsDown)
{
    showWithPasscode();
    enterWrongly(4);
    EXPECT_FALSE(mac_.cover->lockoutEnd());
    enter("wrong");
    EXPECT_THAT(mac_.outcomes(), ElementsAre("incorrect", "incorrect", "incorrect", "incorrect", "lockedOut"));
    EXPECT_EQ(mac_.message(), "Too many attempts. Try again in 30 seconds.");

    const std::size_t checksBefore = checks();
    enter("2468");
    EXPECT_EQ(mac_.outcomes().size(), 5U) << "return does nothing meanwhile";
    EXPECT_EQ(mac_.typedLength(), 4U);
    clock_.advance(1s);
    EXPECT_EQ(mac_.message(), "Too many attempts. Try again in 29 seconds.");
    clock_.advance(29s - 1ns);
    EXPECT_EQ(mac_.message(), "Too many attempts. Try again in 1 seconds.");
    EXPECT_TRUE(mac_.cover->isShowing());
    EXPECT_EQ(checks(), checksBefore);

    clock_.advance(1ns);
    EXPECT_EQ(mac_.message(), "");
    enter("");
    EXPECT_FALSE(mac_.cover->isShowing()) << "what was typed meanwhile is right";
    ASSERT_TRUE(mac_.cover->show());
    enterWrongly(5);
    EXPECT_EQ(mac_.message(), "Too many attempts. Try again in 30 seconds.") << "lockouts begin afresh";
}

TEST_F(ScreenCoverTest, HidingAndShowingItAgainKeepsARunningLockout)
{
    showWithPasscode();
    enterWrongly(5);
    clock_.advance(10s);
    mac_.cover->hide();
    ASSERT_TRUE(mac_.cover->show());
    EXPECT_EQ(mac_.message(), locked);

    const std::size_t checksBefore = checks();
    enter("2468");
    EXPECT_EQ(mac_.message(), "Too many attempts. Try again in 20 seconds.");
    EXPECT_EQ(checks(), checksBefore);
    clock_.advance(20s);
    enter("wrong");
    EXPECT_EQ(mac_.message(), "Too many attempts. Try again in 60 seconds.");
}

TEST_F(ScreenCoverTest, WrongPasscodesSinceTheLastShowingTriggerTheAlarmFromTheLimitOn)
{
    struct Case {
        double limit;
        int attempts;
    };
    showWithPasscode();
    for (const Case given : {Case{0.4, 1}, Case{-3.0, 1}, Case{1.5, 2}, Case{2.4, 2}, Case{3.0, 3}}) {
        mac_.cover = mac_.makeService();
        ASSERT_TRUE(mac_.cover->show());
        mac_.setTriggering(given.limit);
        mac_.alarm.triggers.clear();
        enterWrongly(given.attempts - 1);
        EXPECT_TRUE(mac_.alarm.triggers.empty()) << given.limit;
        enter("wrong");
        EXPECT_THAT(mac_.alarm.triggers, ElementsAre(TriggerReason::lockBypassAttempt)) << given.limit;
        EXPECT_EQ(mac_.message(), "Incorrect passcode. The alarm has been triggered.");
        EXPECT_THAT(ui::describe(mac_.displays.covers()[0].content), testing::HasSubstr("triggered.\", alarm\n"));
        enter("wrong");
        EXPECT_EQ(mac_.alarm.triggers.size(), 2U) << "each further one triggers again";
    }
    enter("wrong");
    EXPECT_EQ(mac_.message(), "Incorrect passcode. The alarm has been triggered.") << "no lockout is told";
    enter("2468");
    EXPECT_EQ(mac_.message(), "Too many attempts. Try again in 30 seconds.") << "but there is one";

    mac_.cover = mac_.makeService();
    ASSERT_TRUE(mac_.cover->show());
    mac_.setTriggering(2.0);
    mac_.alarm.armed = false;
    mac_.alarm.triggers.clear();
    enter("wrong");
    mac_.cover->hide();
    ASSERT_TRUE(mac_.cover->show());
    enter("wrong");
    EXPECT_EQ(mac_.message(), "") << "attempts count from the last showing on";
    enter("wrong");
    EXPECT_EQ(mac_.message(), "Incorrect passcode. The alarm has been triggered.");
    EXPECT_TRUE(mac_.alarm.triggers.empty()) << "a disarmed Mac says so, but triggers nothing";
}

TEST_F(ScreenCoverTest, ADisplayThatComesOrGoesIsFollowedAndWhatWasTypedIsLost)
{
    showWithPasscode();
    EXPECT_TRUE(mac_.displays.type("24"));
    mac_.displays.setCount(2);
    EXPECT_FALSE(mac_.displays.isCovered(1));
    clock_.runReady();
    EXPECT_TRUE(mac_.displays.isCovered(1));
    EXPECT_EQ(mac_.displays.covers().size(), 2U);
    EXPECT_EQ(mac_.typedLength(0), 0U);
    EXPECT_TRUE(mac_.displays.covers()[0].isKey);

    mac_.displays.setCount(1);
    clock_.runReady();
    EXPECT_EQ(mac_.displays.covers().size(), 1U);
    enter("2468");
    EXPECT_FALSE(mac_.cover->isShowing());
    mac_.displays.setCount(3);
    clock_.runReady();
    EXPECT_TRUE(mac_.displays.covers().empty()) << "nobody follows the displays of an open Mac";
}

TEST_F(ScreenCoverTest, ACheckOutlivesTheDisplayThatAskedForItAndASecondOneMeanwhileIsNotMade)
{
    showWithPasscode();
    mac_.setTriggering(2.0);
    mac_.displays.setCount(2);
    clock_.runReady();
    EXPECT_EQ(mac_.displays.click(1, "passcode"), ui::Interaction::done);
    std::vector<std::string> meanwhile;
    duringTheNextCheck([&] {
        mac_.displays.setCount(1);
        post(scheduler_.mainExecutor(), [&] { meanwhile = mac_.outcomes(); });
    });
    enter("wrong");
    EXPECT_TRUE(meanwhile.empty());
    EXPECT_EQ(mac_.displays.covers().size(), 1U);
    EXPECT_THAT(mac_.outcomes(), ElementsAre("incorrect"));
    EXPECT_EQ(mac_.message(), locked) << "the new window knows nothing of it";

    mac_.displays.setCount(2);
    clock_.runReady();
    duringTheNextCheck([&] {
        EXPECT_EQ(mac_.displays.click(1, "passcode"), ui::Interaction::done);
        EXPECT_TRUE(mac_.displays.type("2468"));
        EXPECT_EQ(mac_.displays.click(1, "Unlock"), ui::Interaction::done);
    });
    enter("wrong");
    EXPECT_THAT(mac_.outcomes(), ElementsAre("incorrect", "incorrect", "triggered"));
    EXPECT_EQ(mac_.alarm.triggers.size(), 1U);
    EXPECT_TRUE(mac_.cover->isShowing()) << "the right one was not even checked";

    duringTheNextCheck([&] {
        EXPECT_TRUE(mac_.displays.type("2468"));
        EXPECT_EQ(mac_.displays.pressKey(ui::Key::returnKey), ui::Interaction::done);
    });
    enter("wrong");
    EXPECT_TRUE(mac_.cover->isShowing()) << "nor is it in the window whose own is being checked";
    EXPECT_EQ(mac_.typedLength(1), 4U);
}

TEST_F(ScreenCoverTest, AnOwnerThatDiesTakesItsWindowsAndAWaitingCheckAlong)
{
    showWithPasscode();
    EXPECT_TRUE(mac_.displays.type("2468"));
    EXPECT_EQ(mac_.displays.pressKey(ui::Key::returnKey), ui::Interaction::done);
    const std::size_t before = checks();
    post(scheduler_.mainExecutor(), [this] { mac_.cover.reset(); });
    clock_.runUntilIdle();
    EXPECT_TRUE(mac_.displays.covers().empty());
    EXPECT_EQ(checks(), before) << "the check never began";

    mac_.cover = mac_.makeService();
    ASSERT_TRUE(mac_.cover->show());
    duringTheNextCheck([this] { post(scheduler_.mainExecutor(), [this] { mac_.cover.reset(); }); });
    enter("2468");
    clock_.runUntilIdle();
    EXPECT_TRUE(mac_.displays.covers().empty());
    EXPECT_THAT(mac_.outcomes(), ElementsAre()) << "nobody was left to hear it";

    mac_.cover = mac_.makeService();
    ASSERT_TRUE(mac_.cover->show());
    enterWrongly(5);
    mac_.cover.reset();
    clock_.runUntilIdle();
}

TEST(ScreenCoverOnThreads, AnOwnerThatDiesWaitsForTheCheckThatIsRunning)
{
    ThreadScheduler scheduler;
    CoverMac<ThreadScheduler> mac{scheduler};
    mac.setPasscode("2468");
    ASSERT_TRUE(mac.cover->show());
    std::atomic<bool> isDying = false;
    std::atomic<bool> hasEnded = false;
    mac.passcodes.cryptography.meanwhile = [&] {
        post(scheduler.mainExecutor(), [&] {
            isDying = true;
            isDying.notify_one();
            mac.cover.reset();
            EXPECT_TRUE(hasEnded);
            scheduler.stopMain();
        });
        isDying.wait(false);
        // Long enough for an owner that does not wait to be gone first.
        SecretBytes key{passcodeKeyLength};
        simulation::OpenSslCryptography slow;
        EXPECT_EQ(slow.deriveKey(2, {}, key.view(), 3, 210'000, key.writable()), 0);
        hasEnded = true;
    };
    post(scheduler.mainExecutor(), [&] {
        EXPECT_TRUE(mac.displays.type("wrong"));
        EXPECT_EQ(mac.displays.pressKey(ui::Key::returnKey), ui::Interaction::done);
    });
    scheduler.runMain();
    EXPECT_TRUE(mac.displays.covers().empty());
}

} // namespace
} // namespace sentrel
