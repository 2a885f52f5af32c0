#include "app/PasswordSetupSection.hpp"

#include "app/SettingsEditor.hpp"
#include "app/ViewParts.hpp"
#include "app/WholeNumber.hpp"
#include "foundation/TextFormat.hpp"
#include "lock/UnlockPasscodeStore.hpp"
#include "ports/Language.hpp"

#include <utility>

namespace sentrel {

namespace {

constexpr SettingsEditor::Range delayRange{0.0, 30.0, std::nullopt}; // seconds

} // namespace

PasswordSetupSection::PasswordSetupSection(MainActor actor, SettingsEditor& editor, UnlockPasscodeStore& passcodes,
                                           ports::Language& language)
    : actor_(actor), editor_(editor), passcodes_(passcodes), language_(language), derivations_(actor.scheduler())
{
    observations_.push_back(passcodes.isPasscodeSet.observe([this](bool isSet) {
        hasPasscode_ = isSet;
        changed();
    }));
}

void PasswordSetupSection::appeared()
{
    readPasscode();
    changed();
}

ui::View PasswordSetupSection::body()
{
    auto content = ui::verticalStack(
        {
            ui::text(localized("Set Unlock Passcode"), ui::Text::Style::headline),
            ui::text(localized("Used to dismiss the lock screen when the Mac is armed."), ui::Text::Style::callout,
                     ui::Text::Color::secondary),
            status().id("passcodeStatus"),
            buttons().id("passcodeButtons"),
            editor_.checkbox(localized("Lock screen when arming"), &AlarmSettings::lockScreenOnArm),
            delay(),
        },
        8.0, ui::Stack::Alignment::leading);
    if (passcodeSheet_ != nullptr) {
        ui::Sheet sheet{weakAction(anchor_.weak(), &PasswordSetupSection::closeSheet)};
        content.attachments.push_back(ui::view(std::move(sheet), {passcodeSheet_->body().id("passcodeSetup")}));
    }
    if (showingRemoveConfirmation_) {
        content.attachments.push_back(removeConfirmation());
    }
    return content;
}

ui::View PasswordSetupSection::status()
{
    return ui::verticalStack(
        {
            ui::text(localized(hasPasscode_ ? "Unlock passcode set" : "No unlock passcode set")),
            warning(localized("The lock screen won't activate until you set an unlock passcode.")).hidden(hasPasscode_),
        },
        4.0, ui::Stack::Alignment::leading);
}

ui::View PasswordSetupSection::buttons()
{
    const auto weak = anchor_.weak();
    return ui::horizontalStack({
        ui::button(localized(hasPasscode_ ? "Change" : "Set Passcode"),
                   weakAction(weak, &PasswordSetupSection::openSheet))
            .id("setPasscode"),
        ui::button(localized("Remove"), weakAction(weak, &PasswordSetupSection::askToRemove),
                   ui::Button::Role::destructive)
            .id("removePasscode")
            .hidden(!hasPasscode_),
    });
}

ui::View PasswordSetupSection::delay()
{
    const std::int64_t seconds = wholeNumber(editor_.settings().lockScreenSleepDelay);
    const std::string shown = seconds == 0 ? localized("Immediately") : filledIn(localized("%llds"), seconds);
    return editor_.slider(localized("Delay"), &AlarmSettings::lockScreenSleepDelay, delayRange, shown)
        .disabled(!editor_.settings().lockScreenOnArm);
}

ui::View PasswordSetupSection::removeConfirmation()
{
    const auto weak = anchor_.weak();
    ui::Dialog question{ui::Dialog::Kind::confirmation, localized("Remove the unlock passcode?"),
                        localized("The lock screen can't activate without an unlock passcode."),
                        weakAction(weak, &PasswordSetupSection::closeConfirmation)};
    return ui::view(std::move(question),
                    {
                        ui::button(localized("Remove Passcode"), weakAction(weak, &PasswordSetupSection::remove),
                                   ui::Button::Role::destructive)
                            .id("confirm"),
                        ui::button(localized("Cancel"), {}, ui::Button::Role::cancel).id("cancel"),
                    })
        .id("removeConfirmation");
}

std::string PasswordSetupSection::localized(std::string_view text)
{
    return language_.localized(text);
}

void PasswordSetupSection::openSheet()
{
    const auto weak = anchor_.weak();
    passcodeSheet_ = std::make_unique<PasscodeSetupSheet>(
        PasscodeSetupSheet::Collaborators{actor_, passcodes_, derivations_, language_, editor_},
        weakAction(weak, &PasswordSetupSection::readPasscode), weakAction(weak, &PasswordSetupSection::closeSheet));
    passcodeSheet_->onChange = [this] { changed(); };
    changed();
}

void PasswordSetupSection::closeSheet()
{
    passcodeSheet_.reset();
    changed();
}

void PasswordSetupSection::askToRemove()
{
    showingRemoveConfirmation_ = true;
    changed();
}

void PasswordSetupSection::remove()
{
    editor_.loosen("removePasscode", [weak = anchor_.weak()] {
        if (auto* const section = weak.get()) {
            section->passcodes_.remove();
            section->readPasscode();
            section->changed();
        }
    });
}

void PasswordSetupSection::closeConfirmation()
{
    showingRemoveConfirmation_ = false;
    changed();
}

void PasswordSetupSection::readPasscode()
{
    hasPasscode_ = passcodes_.hasPasscode();
}

} // namespace sentrel
