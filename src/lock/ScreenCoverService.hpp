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

/// Covers every display with a black window that only the unlock passcode removes. Counts wrong passcodes: too many
/// trigger the alarm, and many in a row lock the field for a growing time. Main actor only.
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

    /// The alarm is called while a passcode is answered, never in here.
    ScreenCoverService(MainActor mainActor, ScreenCoverAlarm& alarm, UnlockPasscodeStore& passcodes,
                       SettingsStore& settings, Ports ports);
    ScreenCoverService(const ScreenCoverService&) = delete;
    ScreenCoverService& operator=(const ScreenCoverService&) = delete;

    /// Removes the windows. Waits for a check that is under way on another thread.
    ~ScreenCoverService();

    /// Covers the displays; true when they are covered, also when they were before. False when no passcode is set.
    [[nodiscard]] bool show();

    /// Removes all windows. What was counted in a row, and a lockout, stay.
    void hide();

    /// Tries a passcode; one at a time: a second one meanwhile is answered as incorrect, and not counted. The task
    /// that awaits this dies before the service.
    [[nodiscard]] Async<PasscodeUnlockOutcome> attempt(SecretText passcode);

    [[nodiscard]] bool isShowing() const { return isShowing_; }

    /// The end of the lockout under way; none when passcodes are checked.
    [[nodiscard]] std::optional<Date> lockoutEnd() const;

private:
    class Verifying;

    void buildWindows();
    void takeKeyboard();
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
