#include "lock/ScreenCoverService.hpp"

#include "core/Events.hpp"
#include "core/SettingsStore.hpp"
#include "foundation/Quietly.hpp"
#include "lock/CoverWindow.hpp"
#include "lock/ScreenCoverAlarm.hpp"
#include "lock/UnlockPasscodeStore.hpp"
#include "ports/ApplicationActivation.hpp"
#include "ports/ApplicationNotifications.hpp"
#include "ports/Journal.hpp"
#include "ports/WallClock.hpp"
#include "ports/WindowConstants.hpp"
#include "ports/Windows.hpp"
#include "runtime/AssertOnMainActor.hpp"
#include "runtime/Attempted.hpp"

#include <algorithm>
#include <cmath>
#include <utility>

namespace sentrel {

namespace {

using Case = PasscodeUnlockOutcome::Case;

// Also blocks the keyboard's ways out of the cover.
constexpr std::uint64_t coverPresentation = ports::hidesDock | ports::hidesMenuBar | ports::disablesProcessSwitching |
                                            ports::disablesForceQuit | ports::disablesSessionTermination |
                                            ports::disablesHidingApplication;

constexpr std::int64_t failuresBeforeLockout = 5;
constexpr double firstLockoutDuration = 30.0;     // seconds
constexpr double longestLockoutDuration = 1800.0; // seconds

/// The number of wrong passcodes that triggers the alarm: whole, at least 1.
double triggerLimit(const AlarmSettings& settings)
{
    return std::fmax(std::round(settings.failedUnlockAttemptLimit), 1.0);
}

} // namespace

/// Marks the service as checking during its own lifetime; the service may be destroyed first.
class ScreenCoverService::Verifying {
public:
    explicit Verifying(ScreenCoverService& service) : service_(service.anchor_.weak())
    {
        service.isVerifyingGlobally_ = true;
    }
    ~Verifying()
    {
        if (auto* const service = service_.get()) {
            service->isVerifyingGlobally_ = false;
        }
    }
    Verifying(const Verifying&) = delete;
    Verifying& operator=(const Verifying&) = delete;

private:
    Weak<ScreenCoverService> service_;
};

ScreenCoverService::ScreenCoverService(MainActor mainActor, ScreenCoverAlarm& alarm, UnlockPasscodeStore& passcodes,
                                       SettingsStore& settings, Ports ports)
    : mainActor_(mainActor),
      alarm_(alarm),
      passcodes_(passcodes),
      settings_(settings),
      ports_(ports),
      nextLockoutDuration_(firstLockoutDuration),
      checks_(mainActor.scheduler())
{
}

ScreenCoverService::~ScreenCoverService()
{
    if (isShowing_) {
        restrict(ports::defaultPresentation);
    }
}

bool ScreenCoverService::show()
{
    assertOnMainActor(mainActor_);
    if (isShowing_) {
        return true;
    }
    if (!insistently([this] { return passcodes_.hasPasscode(); })) {
        return false;
    }
    isShowing_ = true;
    failedAttempts_ = 0;
    insistently([this] { buildWindows(); });
    const auto rebuild = [weak = anchor_.weak()] {
        if (auto* const service = weak.get()) {
            insistently([service] { service->buildWindows(); });
        }
    };
    // Each by itself: a call that raises must not leave the screen open to the rest.
    insistently([&] { screenChangeObserver_ = ports_.notifications.observe(ports::screenParametersChanged, rebuild); });
    const auto holdKeyboard = [weak = anchor_.weak()] {
        if (auto* const service = weak.get()) {
            service->takeKeyboard();
        }
    };
    quietly([&] { resignObserver_ = ports_.notifications.observe(ports::applicationResignedActive, holdKeyboard); });
    restrict(coverPresentation);
    quietly([this] { takeKeyboard(); });
    ports_.journal.note(events::CoverShown{static_cast<std::int64_t>(windows_.size())});
    return true;
}

void ScreenCoverService::hide()
{
    assertOnMainActor(mainActor_);
    if (!isShowing_) {
        return;
    }
    screenChangeObserver_.reset();
    resignObserver_.reset();
    restrict(ports::defaultPresentation);
    for (const auto& window : windows_) {
        quietly([&window] { window->orderOut(); });
    }
    windows_.clear();
    isShowing_ = false;
    ports_.journal.note(events::CoverHidden{});
}

Async<PasscodeUnlockOutcome> ScreenCoverService::attempt(SecretText passcode)
{
    assertOnMainActor(mainActor_);
    if (const auto end = lockoutEnd()) {
        co_return noted({Case::lockedOut, *end});
    }
    if (isVerifyingGlobally_) {
        co_return noted({Case::incorrect, {}});
    }
    const Verifying verifying{*this};
    lockoutEndDate_.reset();
    auto verify = [&store = passcodes_, typed = std::move(passcode)] {
        return store.verifyStoredPasscode(typed.view());
    };
    const auto check = checks_.start(QualityOfService::userInitiated, std::move(verify));
    const bool hasMatched = co_await check;
    co_return hasMatched ? unlock() : countFailure();
}

std::optional<Date> ScreenCoverService::lockoutEnd() const
{
    const bool isLockedOut = lockoutEndDate_ && *lockoutEndDate_ > ports_.wallClock.now();
    return isLockedOut ? lockoutEndDate_ : std::nullopt;
}

void ScreenCoverService::buildWindows()
{
    assertOnMainActor(mainActor_);
    if (!shieldingLevel_) {
        shieldingLevel_ = ports_.windows.shieldingLevel();
    }
    // The old windows cover the screens until the new ones do: a call that fails or hangs must not uncover them.
    std::vector<std::unique_ptr<CoverWindow>> covers;
    for (const ports::Screen& screen : ports_.windows.screens()) {
        covers.push_back(std::make_unique<CoverWindow>(ports_.windows, screen, *shieldingLevel_, makeView()));
    }
    windows_.swap(covers);
    for (const auto& window : covers) {
        quietly([&window] { window->orderOut(); });
    }
    if (!windows_.empty()) {
        windows_.front()->makeKey();
    }
}

/// Text typed at the cover must not reach another application, and the presentation options hold only while this one is
/// active.
void ScreenCoverService::takeKeyboard()
{
    quietly([this] { ports_.activation.activate(true); });
    if (!windows_.empty()) {
        windows_.front()->makeKeyAndOrderFront();
    }
}

/// Where the system refuses the options, the cover itself still holds the keyboard.
void ScreenCoverService::restrict(std::uint64_t options) noexcept
{
    quietly([&] { return ports_.activation.setPresentationOptions(options); });
}

std::unique_ptr<ScreenCoverView> ScreenCoverService::makeView()
{
    // The task belongs to the service, not to the view: a display that disappears must not end a check.
    auto submitTo = [this](SecretText passcode, ScreenCoverView::Answered answered) {
        submissions_.add(mainActor_.spawn(submit(std::move(passcode), std::move(answered))));
    };
    return std::make_unique<ScreenCoverView>(mainActor_, ports_.wallClock, ports_.language, std::move(submitTo));
}

Async<void> ScreenCoverService::submit(SecretText passcode, ScreenCoverView::Answered answered)
{
    const auto outcome = co_await attempted(attempt(std::move(passcode)));
    if (!outcome) {
        ports_.journal.note(events::PasscodeTried{"raised"});
    }
    // The field takes the next passcode only after an answer.
    answered(outcome.value_or(PasscodeUnlockOutcome{Case::incorrect, {}}));
}

PasscodeUnlockOutcome ScreenCoverService::unlock()
{
    consecutiveFailures_ = 0;
    nextLockoutDuration_ = firstLockoutDuration;
    lockoutEndDate_.reset();
    const auto outcome = noted({Case::unlocked, {}});
    hide();
    if (alarm_.isAlarmActive()) {
        alarm_.stopAlarm();
    }
    return outcome;
}

PasscodeUnlockOutcome ScreenCoverService::countFailure()
{
    ++consecutiveFailures_;
    if (consecutiveFailures_ >= failuresBeforeLockout) {
        const Date now = insistently([this] { return ports_.wallClock.now(); });
        lockoutEndDate_ = now.addingSeconds(nextLockoutDuration_);
        nextLockoutDuration_ = std::min(2.0 * nextLockoutDuration_, longestLockoutDuration);
    }
    ++failedAttempts_;
    const AlarmSettings settings = settings_.settings();
    if (settings.triggerOnFailedUnlock && static_cast<double>(failedAttempts_) >= triggerLimit(settings)) {
        // Answered also when disarmed, so that the outcome doesn't reveal whether the Mac is armed.
        const auto outcome = noted({Case::triggered, {}});
        if (alarm_.isArmed()) {
            alarm_.trigger(TriggerReason::lockBypassAttempt);
        }
        return outcome;
    }
    if (const auto end = lockoutEnd()) {
        return noted({Case::lockedOut, *end});
    }
    return noted({Case::incorrect, {}});
}

PasscodeUnlockOutcome ScreenCoverService::noted(PasscodeUnlockOutcome outcome)
{
    ports_.journal.note(events::PasscodeTried{nameOf(outcome.outcome)});
    return outcome;
}

} // namespace sentrel
