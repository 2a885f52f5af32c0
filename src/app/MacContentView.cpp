#include "app/MacContentView.hpp"

#include "app/ViewParts.hpp"
#include "app/WholeNumber.hpp"
#include "cloud/CloudKitService.hpp"
#include "cloud/MacPresenceService.hpp"
#include "coordinator/AlarmCoordinator.hpp"
#include "core/SettingsStore.hpp"
#include "foundation/TextFormat.hpp"
#include "ports/Language.hpp"

#include <utility>

namespace sentrel {

namespace {

using ports::CloudAccountStatus;

constexpr double panelPadding = 20.0;

// Excludes values without any sound or motion detection.
constexpr SettingsEditor::Range strength{0.1, 1.0, std::nullopt};
// In whole numbers, so that the limit equals the number displayed.
constexpr SettingsEditor::Range attempts{1.0, 10.0, 1.0};

ui::View notice(const char* id, const std::optional<std::string>& text)
{
    return warning(text.value_or("")).id(id).hidden(!text);
}

} // namespace

MacContentView::MacContentView(Collaborators collaborators, bool isComputerCompatible)
    : with_(collaborators),
      isComputerCompatible_(isComputerCompatible),
      editor_(with_.settings, with_.coordinator, with_.protectedActions),
      stopButton_(with_.coordinator, with_.protectedActions, with_.language),
      passwordSection_(with_.actor, editor_, with_.passcodes, with_.language)
{
    editor_.onChange = [this] { changed(); };
    passwordSection_.onChange = [this] { changed(); };
    observations_.push_back(with_.settings.observe([this](const AlarmSettings&) { changed(); }));
    AlarmCoordinator& coordinator = with_.coordinator;
    follow(coordinator.isArmed);
    follow(coordinator.isAlarmActive);
    follow(coordinator.statusMessage);
    follow(coordinator.lastTrigger);
    follow(coordinator.lastError);
    follow(coordinator.cameraWarning);
    follow(coordinator.motionWarning);
    follow(with_.cloud.isAvailable);
    follow(with_.cloud.isReachable);
    follow(with_.cloud.lastSyncError);
    follow(with_.presence.syncError);
}

void MacContentView::appeared()
{
    with_.coordinator.refreshAccelerometer();
    passwordSection_.appeared();
}

ui::View MacContentView::body()
{
    return ui::verticalStack(
               {
                   heading(),
                   ui::view(ui::Form{}, {status().id("status"), triggers().id("triggers"), options().id("options"),
                                         security().id("security"), iCloud().id("iCloud")})
                       .id("form"),
               },
               16.0, ui::Stack::Alignment::leading)
        .padding(panelPadding);
}

ui::View MacContentView::heading()
{
    return ui::verticalStack(
        {
            ui::text(localized("Sentrel"), ui::Text::Style::largeTitle),
            ui::text(localized("Mac Alarm Guard"), ui::Text::Style::body, ui::Text::Color::secondary),
        },
        2.0, ui::Stack::Alignment::leading);
}

ui::View MacContentView::status()
{
    const AlarmCoordinator& coordinator = with_.coordinator;
    const bool isArmed = coordinator.isArmed;
    const auto& trigger = coordinator.lastTrigger.get();
    return ui::section(
        localized("Status"),
        {
            incompatibleNotice().id("incompatible").hidden(isComputerCompatible_),
            ui::horizontalStack({ui::view(symbol(isArmed ? "lock.shield.fill" : "lock.open")),
                                 ui::text(coordinator.statusMessage, ui::Text::Style::headline).id("state")}),
            ui::text(trigger ? title(*trigger, with_.language) : "").id("lastTrigger").hidden(!trigger),
            notice("lastError", coordinator.lastError),
            notice("cameraWarning", coordinator.cameraWarning),
            notice("motionWarning", coordinator.motionWarning),
            stopButton_.body(StopAlarmButton::Style::controlPanel),
        });
}

ui::View MacContentView::incompatibleNotice()
{
    return ui::verticalStack(
        {
            ui::horizontalStack({ui::view(symbol("desktopcomputer")),
                                 ui::text(localized("Computer Not Compatible"), ui::Text::Style::headline)}),
            ui::text(localized("Sentrel requires a MacBook to work.\n\niMac, Mac mini, Mac Studio, and Mac Pro cannot "
                               "use unplugged, lid closed, or motion triggers.")),
        },
        8.0, ui::Stack::Alignment::leading);
}

ui::View MacContentView::triggers()
{
    const AlarmSettings& settings = with_.settings.settings();
    const std::string limit = filledIn(localized("%lld"), wholeNumber(settings.failedUnlockAttemptLimit));
    return ui::section(
        localized("Triggers"),
        {
            editor_.checkbox(localized("When unplugged"), &AlarmSettings::triggerOnUnplugged),
            editor_.checkbox(localized("When lid closed"), &AlarmSettings::triggerOnLidClosed),
            editor_.checkbox(localized("On motion"), &AlarmSettings::triggerOnMotion),
            notice("accelerometer", accelerometerNotice()),
            editor_.slider(localized("Motion sensitivity"), &AlarmSettings::motionSensitivity, strength)
                .disabled(!settings.triggerOnMotion),
            editor_.checkbox(localized("On failed unlock"), &AlarmSettings::triggerOnFailedUnlock),
            editor_.slider(localized("Wrong attempts"), &AlarmSettings::failedUnlockAttemptLimit, attempts, limit)
                .disabled(!settings.triggerOnFailedUnlock),
        });
}

std::optional<std::string> MacContentView::accelerometerNotice()
{
    // On an armed Mac the status shows it; a Mac that never arms has no choice to make.
    const AlarmCoordinator& coordinator = with_.coordinator;
    if (coordinator.hasAccelerometer() || coordinator.motionWarning.get() || !isComputerCompatible_) {
        return std::nullopt;
    }
    return localized("Motion detection is unavailable on this Mac.");
}

ui::View MacContentView::options()
{
    return ui::section(localized("Options"),
                       {
                           editor_.checkbox(localized("Send notification"), &AlarmSettings::sendNotification),
                           editor_.checkbox(localized("Take photo"), &AlarmSettings::capturePhoto),
                           editor_.checkbox(localized("Alarm sound"), &AlarmSettings::alarmSound),
                           editor_.slider(localized("Alarm volume"), &AlarmSettings::alarmVolume, strength)
                               .disabled(!with_.settings.settings().alarmSound),
                       });
}

ui::View MacContentView::security()
{
    return ui::section(localized("Security"), {
                                                  passwordSection_.body().id("passcode"),
                                                  editor_.checkbox(localized("Require Mac login for actions"),
                                                                   &AlarmSettings::requirePasswordForActions),
                                              });
}

ui::View MacContentView::iCloud()
{
    const bool isAvailable = with_.cloud.isAvailable;
    const bool isReachable = with_.cloud.isReachable;
    const std::string reached = localized(isReachable ? "iCloud connected" : "No connection");
    const std::optional<std::string>& syncError = with_.cloud.lastSyncError;
    const std::optional<std::string>& presenceError = with_.presence.syncError;
    // Usually the same failure; a missing account is shown by the line.
    const bool isTold = presenceError == syncError || with_.cloud.lastAccountStatus() == CloudAccountStatus::noAccount;
    return ui::section(localized("iCloud"),
                       {
                           ui::text(isAvailable ? reached : localized("Sign in to iCloud")).id("line"),
                           notice("lastSyncError", syncError),
                           notice("syncError", isTold ? std::nullopt : presenceError),
                       });
}

std::string MacContentView::localized(std::string_view text)
{
    return with_.language.localized(text);
}

} // namespace sentrel
