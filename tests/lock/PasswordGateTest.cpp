#include "lock/PasswordGate.hpp"

#include "runtime/MainActor.hpp"
#include "runtime/ThreadScheduler.hpp"
#include "runtime/VirtualScheduler.hpp"
#include "simulation/EventLog.hpp"
#include "simulation/mac/display/SimulatedAlerts.hpp"
#include "simulation/mac/display/SimulatedApplicationActivation.hpp"
#include "simulation/mac/language/IcuLanguage.hpp"
#include "simulation/mac/security/SimulatedLogin.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace sentrel {
namespace {

using namespace std::chrono_literals;
using simulation::LoginAnswer;
using testing::ElementsAre;
using testing::Optional;

/// A gate with the panels that it opens, by one clock.
template <class Clocked> struct GateOn {
    explicit GateOn(Clocked& ticking) : scheduler(ticking) {}

    Async<void> ask(std::string reason, std::optional<bool>& answer)
    {
        const bool authenticated = co_await gate.authenticate(std::move(reason));
        answer = authenticated;
    }

    Clocked& scheduler;
    MainActor main{scheduler};
    simulation::EventLog journal{scheduler};
    simulation::SimulatedLogin login{scheduler, journal};
    simulation::SimulatedApplicationActivation activation;
    simulation::SimulatedAlerts alerts{scheduler, activation};
    simulation::IcuLanguage language{SENTREL_SOURCE_DIR "/resources", journal, "de"};
    PasswordGate gate{login, alerts, activation, language};
};

class PasswordGateTest : public testing::Test {
protected:
    std::vector<std::string> answersNoted()
    {
        std::vector<std::string> answers;
        for (const auto& event : mac_.journal.named("login")) {
            answers.push_back(std::string{event.text("reason")} + ": " + std::string{event.text("answer")});
        }
        return answers;
    }

    VirtualClock clock_;
    VirtualScheduler scheduler_{clock_};
    GateOn<VirtualScheduler> mac_{scheduler_};
};

TEST_F(PasswordGateTest, AMacThatCanNotAskSaysWhyInFrontOfOtherWindowsIfItCanInTheSystemsOwnWords)
{
    mac_.login.setAnswer(LoginAnswer::unavailable);
    std::optional<bool> answer;
    mac_.main.spawn(mac_.ask("because", answer));
    clock_.runUntilIdle();
    ASSERT_EQ(mac_.alerts.shown().size(), 1U);
    EXPECT_EQ(mac_.alerts.shown()[0].content.informativeText,
              "Für diese Aktion ist dein Mac-Login erforderlich, aber die Authentifizierung ist zurzeit nicht "
              "verfügbar.");

    mac_.login.setUnavailabilityDescription("No login is set up.");
    mac_.alerts.setReadingTime(std::nullopt);
    answer.reset();
    mac_.main.spawn(mac_.ask("because", answer));
    clock_.advance(1h);

    const auto alert = mac_.alerts.open();
    ASSERT_TRUE(alert);
    EXPECT_EQ(alert->content.style, 0U);
    EXPECT_EQ(alert->content.messageText, "Authentifizierung nicht verfügbar");
    EXPECT_EQ(alert->content.informativeText, "No login is set up.");
    EXPECT_TRUE(alert->isInFront);
    EXPECT_EQ(answer, std::nullopt);

    EXPECT_TRUE(mac_.alerts.close());
    clock_.runUntilIdle();
    EXPECT_THAT(answer, Optional(false));
    EXPECT_TRUE(mac_.login.reasonsAsked().empty());
    EXPECT_THAT(answersNoted(), ElementsAre("because: unavailable", "because: unavailable"));
}

TEST_F(PasswordGateTest, TwoRequestsShowTheirPanelsOneAfterTheOther)
{
    mac_.login.setAnswerDelay(std::nullopt);
    std::optional<bool> first;
    std::optional<bool> second;
    mac_.main.spawn(mac_.ask("first", first));
    mac_.main.spawn(mac_.ask("second", second));
    clock_.runUntilIdle();
    EXPECT_THAT(mac_.login.reasonsAsked(), ElementsAre("first"));

    EXPECT_TRUE(mac_.login.answerPanel(LoginAnswer::cancel));
    clock_.runUntilIdle();
    EXPECT_THAT(first, Optional(false));
    EXPECT_EQ(second, std::nullopt);
    EXPECT_THAT(mac_.login.panelReason(), Optional(std::string{"second"}));

    EXPECT_TRUE(mac_.login.answerPanel(LoginAnswer::succeed));
    clock_.runUntilIdle();
    EXPECT_THAT(second, Optional(true));
    EXPECT_FALSE(mac_.login.answerPanel(LoginAnswer::succeed));
}

TEST_F(PasswordGateTest, ARequestThatIsCalledOffAnswersNoAndClosesItsPanel)
{
    mac_.login.setAnswerDelay(std::nullopt);
    std::optional<bool> first;
    std::optional<bool> second;
    const auto task = mac_.main.spawn(mac_.ask("first", first));
    mac_.main.spawn(mac_.ask("second", second));
    clock_.runUntilIdle();
    task.cancel();
    clock_.runUntilIdle();
    EXPECT_THAT(first, Optional(false));
    EXPECT_THAT(mac_.login.panelReason(), Optional(std::string{"second"}));
    EXPECT_THAT(answersNoted(), ElementsAre("first: invalidated"));
}

TEST_F(PasswordGateTest, APanelMayOutliveTheOneWhoAsked)
{
    mac_.login.setAnswerDelay(1min);
    std::optional<bool> answer;
    {
        TaskBag asker;
        asker.add(mac_.main.spawn(mac_.ask("because", answer)));
        clock_.advance(1s);
    }
    clock_.runUntilIdle();
    EXPECT_EQ(answer, std::nullopt);
    EXPECT_THAT(answersNoted(), ElementsAre("because: invalidated"));
}

TEST(PasswordGateOnThreads, AReplyFromAnotherThreadComesBackToTheMainOne)
{
    ThreadScheduler scheduler;
    GateOn<ThreadScheduler> mac{scheduler};
    mac.login.setAnswerDelay(2ms);
    std::optional<bool> answer;
    bool isOnMain = false;
    const auto ask = [](GateOn<ThreadScheduler>& on, std::optional<bool>& given, bool& main) -> Async<void> {
        co_await on.ask("because", given);
        main = on.main.isCurrent();
        on.scheduler.stopMain();
    };
    mac.main.spawn(ask(mac, answer, isOnMain));
    scheduler.runMain();
    EXPECT_THAT(answer, Optional(true));
    EXPECT_TRUE(isOnMain);
}

} // namespace
} // namespace sentrel
