#pragma once

#include "app/ChangeReporter.hpp"
#include "app/PasscodeSetupSheet.hpp"
#include "runtime/DetachedWork.hpp"
#include "runtime/MainActor.hpp"
#include "runtime/Observable.hpp"
#include "runtime/Weak.hpp"
#include "ui/View.hpp"

#include <memory>
#include <string>

namespace sentrel {

class SettingsEditor;
class UnlockPasscodeStore;

namespace ports {
class Language;
}

/// The unlock passcode and the lock screen in the control panel. Doesn't report changes of the settings. Main actor.
class PasswordSetupSection final : public ChangeReporter {
public:
    PasswordSetupSection(MainActor actor, SettingsEditor& editor, UnlockPasscodeStore& passcodes,
                         ports::Language& language);

    /// Call when the section is about to be shown: reads whether the keychain has a passcode.
    void appeared();

    [[nodiscard]] ui::View body();

private:
    [[nodiscard]] ui::View status();
    [[nodiscard]] ui::View buttons();
    [[nodiscard]] ui::View delay();
    [[nodiscard]] ui::View removeConfirmation();
    [[nodiscard]] std::string localized(std::string_view text);
    void askToRemove();
    void remove();
    void closeConfirmation();
    void openSheet();
    void closeSheet();
    void readPasscode();

    MainActor actor_;
    SettingsEditor& editor_;
    UnlockPasscodeStore& passcodes_;
    ports::Language& language_;
    bool hasPasscode_ = false;
    bool showingRemoveConfirmation_ = false;
    DetachedWork derivations_;
    std::unique_ptr<PasscodeSetupSheet> passcodeSheet_; ///< null unless shown
    WeakAnchor<PasswordSetupSection> anchor_{*this};
};

} // namespace sentrel
