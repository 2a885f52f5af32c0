#include "lock/ScreenCoverView.hpp"

#include "core/LocalizedText.hpp"
#include "foundation/TextFormat.hpp"
#include "ports/WallClock.hpp"
#include "runtime/Sleep.hpp"

#include <cmath>
#include <utility>

namespace sentrel {

namespace {

using namespace std::chrono_literals;

constexpr double spacing = 18.0;       // points
constexpr double fieldWidth = 260.0;   // points
constexpr double messageWidth = 560.0; // points

} // namespace

ScreenCoverView::ScreenCoverView(MainActor mainActor, ports::WallClock& wallClock, ports::Language& language,
                                 Submit submit)
    : mainActor_(mainActor),
      wallClock_(wallClock),
      language_(language),
      submit_(std::move(submit)),
      message_(localizedInAnyCase(language, "This Mac is locked. Enter your passcode to unlock."))
{
}

ui::View ScreenCoverView::body()
{
    const auto weak = anchor_.weak();
    const auto submit = [weak] {
        if (auto* const cover = weak.get()) {
            cover->submitPasscode();
        }
    };
    const auto setPasscode = [weak](SecretText typed) {
        if (auto* const cover = weak.get()) {
            cover->passcode_ = std::move(typed);
            cover->changed();
        }
    };
    const auto setFocused = [weak](bool isFocused) {
        auto* const cover = weak.get();
        if (cover != nullptr && cover->isFieldFocused_ != isFocused) {
            cover->isFieldFocused_ = isFocused;
            cover->changed();
        }
    };
    ui::SecureField field{localizedInAnyCase(language_, "Passcode"), {passcode_, setPasscode}, submit};
    ui::Button unlock{localizedInAnyCase(language_, "Unlock"), submit, ui::Button::Role::prominent, ui::Key::returnKey,
                      std::nullopt};
    const auto messageColor = messageIsAlarm_ ? ui::Text::Color::alarm : ui::Text::Color::primary;
    ui::SizeWish messageSize;
    messageSize.maximumWidth = messageWidth;
    ui::SizeWish fieldSize;
    fieldSize.width = fieldWidth;
    return ui::verticalStack(
               {
                   ui::spacer(),
                   ui::text(localizedInAnyCase(language_, "Sentrel"), ui::Text::Style::largeTitle),
                   ui::text(message_, ui::Text::Style::body, messageColor).id("message").sized(messageSize),
                   ui::view(std::move(field)).id("passcode").sized(fieldSize).focused({isFieldFocused_, setFocused}),
                   ui::view(std::move(unlock)).id("unlock"),
                   ui::spacer(),
               },
               spacing)
        .background(ui::black)
        .ignoringSafeAreas();
}

void ScreenCoverView::submitPasscode()
{
    if (isVerifying_ || (lockoutEndDate_ && *lockoutEndDate_ > wallClock_.now())) {
        return;
    }
    SecretText typed = std::exchange(passcode_, SecretText{});
    if (typed.empty()) {
        isFieldFocused_ = true;
        changed();
        return;
    }
    isVerifying_ = true;
    changed();
    submit_(std::move(typed), [weak = anchor_.weak()](const PasscodeUnlockOutcome& outcome) {
        if (auto* const cover = weak.get()) {
            cover->isVerifying_ = false;
            cover->act(outcome);
        }
    });
}

void ScreenCoverView::act(const PasscodeUnlockOutcome& outcome)
{
    switch (outcome.outcome) {
    case PasscodeUnlockOutcome::Case::unlocked:
        message_.clear();
        break;
    case PasscodeUnlockOutcome::Case::incorrect:
        message_.clear();
        isFieldFocused_ = true;
        break;
    case PasscodeUnlockOutcome::Case::triggered:
        messageIsAlarm_ = true;
        message_ = localizedInAnyCase(language_, "Incorrect passcode. The alarm has been triggered.");
        isFieldFocused_ = true;
        break;
    case PasscodeUnlockOutcome::Case::lockedOut:
        lockoutEndDate_ = outcome.lockoutEndDate;
        startCountdown();
        return;
    }
    changed();
}

void ScreenCoverView::startCountdown()
{
    // Destroying the old bag ends the old countdown in its sleep.
    lockoutCountdownTask_.emplace();
    lockoutCountdownTask_->add(mainActor_.spawn(countDown()));
}

Async<void> ScreenCoverView::countDown()
{
    const std::string format = localizedInAnyCase(language_, "Too many attempts. Try again in %lld seconds.");
    for (;;) {
        const double seconds = std::ceil(lockoutEndDate_->secondsSince(wallClock_.now()));
        if (seconds < 1.0) {
            break;
        }
        message_ = filledIn(format, static_cast<std::int64_t>(seconds));
        changed();
        co_await sleepFor(1s);
    }
    lockoutEndDate_.reset();
    message_.clear();
    isFieldFocused_ = true;
    changed();
}

void ScreenCoverView::changed()
{
    if (onChange) {
        onChange();
    }
}

} // namespace sentrel
