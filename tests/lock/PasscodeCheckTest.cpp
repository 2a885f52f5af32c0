#include "lock/PasscodeMac.hpp"
#include "runtime/Detached.hpp"
#include "runtime/MainActor.hpp"
#include "runtime/Sleep.hpp"
#include "runtime/ThreadScheduler.hpp"

#include <gtest/gtest.h>

namespace sentrel {
namespace {

using namespace std::chrono_literals;

/// A check as the screen cover makes it, on real threads.
struct RealCheck {
    Async<void> run(SecretBytes passcode)
    {
        isChecking = true;
        auto check = [this, typed = std::move(passcode)] { return mac.store.verifyStoredPasscode(typed.view()); };
        const auto task = detached(scheduler, QualityOfService::userInitiated, std::move(check));
        const bool unlocked = co_await task;
        hasUnlocked = unlocked;
        endedOnMain = main.isCurrent();
        isChecking = false;
        scheduler.stopMain();
    }

    /// Takes one turn after the other on the main thread as long as the check goes on.
    Async<void> countTurns()
    {
        while (isChecking) {
            ++turns;
            co_await sleepFor(1ms);
        }
    }

    PasscodeMac mac;
    bool isChecking = false;
    bool hasUnlocked = false;
    bool endedOnMain = false;
    int turns = 0;
    ThreadScheduler scheduler;
    MainActor main{scheduler};
};

TEST(PasscodeCheck, GoesOnOffTheMainThreadWhichKeepsTakingTurns)
{
    RealCheck check;
    ASSERT_TRUE(check.mac.setPasscode("1234"));
    bool derivedOnMain = true;
    check.mac.cryptography.meanwhile = [&] { derivedOnMain = check.main.isCurrent(); };
    check.main.spawn(check.run(SecretBytes{"1234"}));
    check.main.spawn(check.countTurns());
    check.scheduler.runMain();

    EXPECT_TRUE(check.hasUnlocked);
    EXPECT_TRUE(check.endedOnMain);
    EXPECT_FALSE(derivedOnMain);
    EXPECT_GT(check.turns, 1);
}

} // namespace
} // namespace sentrel
