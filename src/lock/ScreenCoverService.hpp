#pragma once

#include "foundation/Date.hpp"
#include "foundation/SecretText.hpp"
#include "lock/PasscodeUnlockOutcome.hpp"
#include "lock/ScreenCoverView.hpp"
#include "ports/Registration.hpp"
#include "runtime/DetachedWork.hpp"
#include "runtime/MainActor.hpp"
#include "runtime/Weak.hpp"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace sentrel {

class CoverWindow;
class ScreenCoverAlarm;
class SettingsStore;
class UnlockPasscodeStore;

namespace ports {
class ApplicationActivation;
class ApplicationNotifications;
class Journal;
class Language;
class WallClock;
class Windows;
} // namespace ports

/// Covers every display with a black window that only the unlock passcode removes. Counts wrong passcodes: a
/// configurable number triggers the alarm, and five in a row lock the field, for longer each time. Main actor only.
class ScreenCoverService {
public:
    struct Ports {
        ports::Windows& windows;
        ports::ApplicationNotifications& notifications;
        ports::ApplicationActivation& activation;
        ports::WallClock& wallClock;
        ports::Language& language;
        ports::Journal& journal;
    };

    /// Doesn't call the alarm; only `attempt` does.
    ScreenCoverService(MainActor mainActor, ScreenCoverAlarm& alarm, UnlockPasscodeStore& passcodes,
                       SettingsStore& settings, Ports ports);
    ScreenCoverService(const ScreenCoverService&) = delete;
    ScreenCoverService& operator=(const ScreenCoverService&) = delete;

    /// Removes the windows. Waits for a check that runs on another thread.
    ~ScreenCoverService();

    /// Covers the displays; true when they are covered, also by an earlier call. False when no passcode is set.
    [[nodiscard]] bool show();

    /// Removes all windows. The count of failures in a row and a lockout stay.
    void hide();

    /// Checks a passcode. A call during another check answers `incorrect` and is not counted; nor is a check in which a
    /// system call raises, which throws. The task that awaits this must end before the service does.
    [[nodiscard]] Async<PasscodeUnlockOutcome> attempt(SecretText passcode);

    [[nodiscard]] bool isShowing() const { return isShowing_; }

    /// The end of the present lockout; none when passcodes are checked.
    [[nodiscard]] std::optional<Date> lockoutEnd() const;

private:
    class Verifying;

    void buildWindows();
    void takeKeyboard();
    void restrict(std::uint64_t options) noexcept;
    [[nodiscard]] std::unique_ptr<ScreenCoverView> makeView();
    Async<void> submit(SecretText passcode, ScreenCoverView::Answered answered);
    PasscodeUnlockOutcome unlock();
    PasscodeUnlockOutcome countFailure();
    PasscodeUnlockOutcome noted(PasscodeUnlockOutcome outcome);

    MainActor mainActor_;
    ScreenCoverAlarm& alarm_;
    UnlockPasscodeStore& passcodes_;
    SettingsStore& settings_;
    Ports ports_;
    std::optional<std::int64_t> shieldingLevel_;
    std::vector<std::unique_ptr<CoverWindow>> windows_;
    bool isShowing_ = false;
    std::int64_t failedAttempts_ = 0;
    ports::RegistrationPtr screenChangeObserver_;
    ports::RegistrationPtr resignObserver_;
    std::int64_t consecutiveFailures_ = 0;
    double nextLockoutDuration_;
    std::optional<Date> lockoutEndDate_;
    bool isVerifyingGlobally_ = false;
    DetachedWork checks_;
    TaskBag submissions_;
    WeakAnchor<ScreenCoverService> anchor_{*this};
};

} // namespace sentrel
