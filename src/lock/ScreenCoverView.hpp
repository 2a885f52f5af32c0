#pragma once

#include "foundation/Date.hpp"
#include "foundation/SecretText.hpp"
#include "lock/PasscodeUnlockOutcome.hpp"
#include "runtime/MainActor.hpp"
#include "runtime/Weak.hpp"
#include "ui/View.hpp"

#include <functional>
#include <optional>
#include <string>

namespace sentrel {

namespace ports {
class Language;
class WallClock;
} // namespace ports

/// The content of a covered display: a message and the passcode field, with this field's own state. Main actor.
class ScreenCoverView {
public:
    /// Receives the outcome of a passcode.
    using Answered = std::function<void(PasscodeUnlockOutcome)>;

    /// Starts a task that checks the passcode and then calls `answered`, never inline. The view may die meanwhile.
    using Submit = std::function<void(SecretText passcode, Answered answered)>;

    ScreenCoverView(MainActor mainActor, ports::WallClock& wallClock, ports::Language& language, Submit submit);
    ScreenCoverView(const ScreenCoverView&) = delete;
    ScreenCoverView& operator=(const ScreenCoverView&) = delete;

    /// Called after each change of `body`.
    std::function<void()> onChange;

    /// The current content.
    [[nodiscard]] ui::View body();

private:
    void submitPasscode();
    void act(const PasscodeUnlockOutcome& outcome);
    void startCountdown();
    Async<void> countDown();
    void changed();

    MainActor mainActor_;
    ports::WallClock& wallClock_;
    ports::Language& language_;
    Submit submit_;
    SecretText passcode_;
    std::string message_;
    bool messageIsAlarm_ = false;
    bool isVerifying_ = false;
    std::optional<Date> lockoutEndDate_;
    bool isFieldFocused_ = true;
    std::optional<TaskBag> lockoutCountdownTask_;
    WeakAnchor<ScreenCoverView> anchor_{*this};
};

} // namespace sentrel
