#pragma once

#include "app/ChangeReporter.hpp"
#include "foundation/SecretText.hpp"
#include "runtime/DetachedWork.hpp"
#include "runtime/MainActor.hpp"
#include "runtime/Weak.hpp"
#include "ui/View.hpp"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace sentrel {

class SettingsEditor;
class UnlockPasscodeStore;

namespace ports {
class Language;
}

/// The sheet that sets or changes the unlock passcode; saving requires the login on an armed Mac. Closing it while it
/// saves leaves the passcode unchanged. Main actor.
class PasscodeSetupSheet final : public ChangeReporter {
public:
    /// The minimum length of a passcode, in characters.
    static constexpr std::int64_t minimumLength = 4;

    struct Collaborators {
        MainActor actor;
        UnlockPasscodeStore& passcodes;
        DetachedWork& derivations; ///< owned by a longer-lived object, which waits for a running derivation
        ports::Language& language;
        SettingsEditor& editor;
    };

    /// `onSaved` is called after a successful save, before `dismiss`, which may destroy the sheet.
    PasscodeSetupSheet(Collaborators collaborators, std::function<void()> onSaved, std::function<void()> dismiss);

    [[nodiscard]] ui::View body();

private:
    [[nodiscard]] ui::View fields();
    [[nodiscard]] ui::View buttons();
    void setPasscode(SecretText typed);
    void setConfirmation(SecretText typed);
    void setPasscodeFocused(bool isFocused);
    void dismiss();
    void save();
    void saveNow();
    [[nodiscard]] std::optional<std::string> mistake();
    Async<void> store(SecretText passcode);

    Collaborators with_;
    std::function<void()> onSaved_;
    std::function<void()> dismiss_;
    SecretText passcode_;
    SecretText confirmation_;
    std::optional<std::string> error_;
    bool isPasscodeFocused_ = true;
    bool isSaving_ = false;
    TaskBag tasks_;
    WeakAnchor<PasscodeSetupSheet> anchor_{*this};
};

} // namespace sentrel
