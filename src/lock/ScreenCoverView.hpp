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

/// What a covered display shows: a message and the passcode field, with the state of this display's field. Main actor.
class ScreenCoverView {
public:
    /// Hears what became of a passcode.
    using Answered = std::function<void(PasscodeUnlockOutcome)>;

    /// Starts a task that tries the passcode and then tells the outcome, never inline. The view may die meanwhile.
    using Submit = std::function<void(SecretText passcode, Answered answered)>;

    ScreenCoverView(MainActor mainActor, ports::WallClock& wallClock, ports::Language& language, Submit submit);
    ScreenCoverView(const ScreenCoverView&) = delete;
    ScreenCoverView& operator=(const ScreenCoverView&) = delete;

    /// Called after each change of what is shown.
    std::function<void()> onChange;

    /// What is to be seen now.
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
