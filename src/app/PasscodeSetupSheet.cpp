#include "app/PasscodeSetupSheet.hpp"

#include "app/SettingsEditor.hpp"
#include "app/ViewParts.hpp"
#include "foundation/Quietly.hpp"
#include "foundation/TextFormat.hpp"
#include "lock/UnlockPasscodeStore.hpp"
#include "ports/Language.hpp"
#include "runtime/Attempted.hpp"

#include <memory>
#include <string_view>
#include <utility>

namespace sentrel {

namespace {

constexpr double sheetPadding = 20.0;
constexpr double sheetWidth = 320.0;

} // namespace

PasscodeSetupSheet::PasscodeSetupSheet(Collaborators collaborators, std::function<void()> onSaved,
                                       std::function<void()> dismiss)
    : with_(std::move(collaborators)), onSaved_(std::move(onSaved)), dismiss_(std::move(dismiss))
{
}

ui::View PasscodeSetupSheet::body()
{
    ui::SizeWish size;
    size.width = sheetWidth;
    return ui::verticalStack(
               {
                   ui::text(with_.language.localized("Set Unlock Passcode"), ui::Text::Style::headline),
                   fields().id("fields"),
                   warning(error_.value_or("")).id("error").hidden(!error_),
                   buttons().id("buttons"),
               },
               12.0, ui::Stack::Alignment::leading)
        .padding(sheetPadding)
        .sized(size);
}

ui::View PasscodeSetupSheet::fields()
{
    const auto weak = anchor_.weak();
    const auto submit = weakAction(weak, &PasscodeSetupSheet::save);
    ui::SecureField passcode{with_.language.localized("Passcode"),
                             weakBinding(weak, passcode_, &PasscodeSetupSheet::setPasscode), submit};
    ui::SecureField confirmation{with_.language.localized("Confirm passcode"),
                                 weakBinding(weak, confirmation_, &PasscodeSetupSheet::setConfirmation), submit};
    return ui::verticalStack(
        {
            ui::view(std::move(passcode))
                .id("passcode")
                .focused(weakBinding(weak, isPasscodeFocused_, &PasscodeSetupSheet::setPasscodeFocused)),
            ui::view(std::move(confirmation)).id("confirmation"),
        },
        8.0, ui::Stack::Alignment::leading);
}

ui::View PasscodeSetupSheet::buttons()
{
    const auto weak = anchor_.weak();
    ui::Button cancel{with_.language.localized("Cancel"), weakAction(weak, &PasscodeSetupSheet::dismiss),
                      ui::Button::Role::cancel, ui::Key::escape, std::nullopt};
    ui::Button save{with_.language.localized("Save"), weakAction(weak, &PasscodeSetupSheet::save),
                    ui::Button::Role::prominent, ui::Key::returnKey, std::nullopt};
    return ui::horizontalStack({
        ui::spacer(),
        ui::view(std::move(cancel)).id("cancel"),
        ui::view(std::move(save)).id("save").disabled(isSaving_),
    });
}

void PasscodeSetupSheet::setPasscode(SecretText typed)
{
    passcode_ = std::move(typed);
    changed();
}

void PasscodeSetupSheet::setConfirmation(SecretText typed)
{
    confirmation_ = std::move(typed);
    changed();
}

void PasscodeSetupSheet::setPasscodeFocused(bool isFocused)
{
    if (isPasscodeFocused_ != isFocused) {
        isPasscodeFocused_ = isFocused;
        changed();
    }
}

void PasscodeSetupSheet::dismiss()
{
    // A copy that outlives the sheet.
    const auto dismiss = dismiss_;
    dismiss();
}

void PasscodeSetupSheet::save()
{
    // Also called by the return key in a field.
    if (isSaving_) {
        return;
    }
    error_ = mistake();
    changed();
    if (!error_) {
        // An armed Mac requires the login even for the first passcode, which could silence the alarm through the lock
        // screen. Checked here, since the Mac may be armed while the sheet is open.
        with_.editor.loosen("setPasscode", weakAction(anchor_.weak(), &PasscodeSetupSheet::saveNow));
    }
}

void PasscodeSetupSheet::saveNow()
{
    if (isSaving_) {
        return;
    }
    // The fields may have changed during the login.
    error_ = mistake();
    if (!error_) {
        isSaving_ = true;
        tasks_.add(with_.actor.spawn(store(passcode_)));
    }
    changed();
}

std::optional<std::string> PasscodeSetupSheet::mistake()
{
    const auto length = static_cast<std::int64_t>(with_.language.characterCount(textOf(passcode_.view())));
    if (length < minimumLength) {
        return filledIn(with_.language.localized("Passcode must be at least %lld characters."), minimumLength);
    }
    if (passcode_ != confirmation_) {
        return with_.language.localized("Passcodes don't match.");
    }
    return std::nullopt;
}

Async<void> PasscodeSetupSheet::store(SecretText passcode)
{
    auto derive = [&passcodes = with_.passcodes, passcode = std::move(passcode)] {
        auto made = passcodes.makeRecord(passcode.view(), passcodes.makeSalt(), UnlockPasscodeStore::currentIterations);
        return made ? std::make_shared<const SecretBytes>(*std::move(made)) : nullptr;
    };
    const auto derivation = with_.derivations.start(QualityOfService::userInitiated, std::move(derive));
    const auto derived = co_await attempted(derivation);
    const auto record = derived.value_or(nullptr);
    isSaving_ = false;
    if (record == nullptr || !quietly([&] { return with_.passcodes.save(record->view()); })) {
        error_ = with_.language.localized("Couldn't save the passcode. Please try again.");
        changed();
        co_return;
    }
    onSaved_();
    dismiss();
}

} // namespace sentrel
