#pragma once

#include "foundation/Date.hpp"

#include <string_view>

namespace sentrel {

/// What became of a passcode that was entered at the screen cover.
struct PasscodeUnlockOutcome {
    enum class Case {
        lockedOut, ///< too many wrong ones; nothing is checked until the lockout's end
        unlocked,
        incorrect,
        triggered, ///< wrong once too often
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
