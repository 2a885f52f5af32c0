#pragma once

#include "foundation/Date.hpp"

#include <string_view>

namespace sentrel {

/// The outcome of a passcode entered at the screen cover.
struct PasscodeUnlockOutcome {
    enum class Case {
        lockedOut, ///< too many wrong passcodes; none is checked until the lockout ends
        unlocked,
        incorrect,
        triggered, ///< wrong, and the limit of wrong passcodes is reached
    };
    Case outcome = Case::incorrect;
    Date lockoutEndDate{}; ///< of `lockedOut` only

    friend bool operator==(const PasscodeUnlockOutcome&, const PasscodeUnlockOutcome&) = default;
};

/// The case's name.
[[nodiscard]] constexpr std::string_view nameOf(PasscodeUnlockOutcome::Case outcome)
{
    switch (outcome) {
    case PasscodeUnlockOutcome::Case::lockedOut:
        return "lockedOut";
    case PasscodeUnlockOutcome::Case::unlocked:
        return "unlocked";
    case PasscodeUnlockOutcome::Case::triggered:
        return "triggered";
    case PasscodeUnlockOutcome::Case::incorrect:
        break;
    }
    return "incorrect";
}

} // namespace sentrel
