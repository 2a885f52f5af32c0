#include "app/MenuBarView.hpp"

#include "app/ProtectedActions.hpp"
#include "app/ViewParts.hpp"
#include "app/WindowHooks.hpp"
#include "coordinator/AlarmCoordinator.hpp"
#include "core/SettingsStore.hpp"
#include "ports/Language.hpp"

#include <utility>

namespace sentrel {

namespace {

constexpr double toggleSpacing = 5.0;
constexpr double menuPadding = 10.0;
constexpr double menuWidth = 240.0;

} // namespace

MenuBarView::MenuBarView(Collaborators collaborators, bool isComputerCompatible, Actions actions)
    : with_(collaborators),
      isComputerCompatible_(isComputerCompatible),
      actions_(std::move(actions)),
      openAtLogin_(with_.loginItem, with_.protectedActions, with_.language),
      stopButton_(with_.coordinator, with_.protectedActions, with_.language)
{
    openAtLogin_.onChange = [this] { changed(); };
    observations_.push_back(with_.settings.observe([this](const AlarmSettings& settings) {
        with_.coordinator.syncWithSettings(settings);
        changed();
    }));
    follow(with_.coordinator.isArmed);
    follow(with_.coordinator.isAlarmActive);
}

void MenuBarView::appeared()
{
    with_.windowHooks.installControlPanel(actions_.openMainWindow);
    with_.windowHooks.installAlerts(actions_.openAlertsWindow);
    with_.coordinator.syncWithSettings(with_.settings.settings());
    openAtLogin_.refresh();
}

void MenuBarView::opened()
{
    openAtLogin_.refresh();
}

ui::View MenuBarView::body()
{
    ui::SizeWish size;
    size.width = menuWidth;
    return ui::verticalStack(
               {
                   header().id("header"),
                   toggles().id("toggles"),
                   openAtLogin_.notice(),
                   ui::divider(),
                   ui::button(with_.language.localized("Alert List"),
                              weakAction(anchor_.weak(), &MenuBarView::showAlerts))
                       .id("alertList"),
                   stopButton_.body(StopAlarmButton::Style::menuBar),
                   ui::divider(),
                   footer().id("footer"),
               },
               8.0, ui::Stack::Alignment::leading)
        .padding(menuPadding)
        .sized(size);
}

ui::View MenuBarView::header()
{
    const bool isArmed = isComputerCompatible_ && with_.coordinator.isArmed;
    return ui::horizontalStack({
        ui::text(with_.language.localized("Sentrel"), ui::Text::Style::headline),
        ui::spacer(),
        ui::view(symbol("lock.shield.fill")).hidden(!isArmed),
        ui::text(with_.language.localized("Armed"), ui::Text::Style::callout, ui::Text::Color::secondary)
            .id("armedState")
            .hidden(!isArmed),
    });
}

ui::View MenuBarView::toggles()
{
    const bool isArmed = with_.settings.settings().isArmed;
    return ui::verticalStack(
        {
            ui::toggle(with_.language.localized("Armed"), weakBinding(anchor_.weak(), isArmed, &MenuBarView::setArmed))
                .id("armed")
                .disabled(!isComputerCompatible_),
            openAtLogin_.body(),
        },
        toggleSpacing, ui::Stack::Alignment::leading);
}

ui::View MenuBarView::footer()
{
    const auto weak = anchor_.weak();
    return ui::horizontalStack({
        ui::button(with_.language.localized("Settings"), weakAction(weak, &MenuBarView::showSettings)).id("settings"),
        ui::spacer(),
        ui::button(with_.language.localized("Quit"), weakAction(weak, &MenuBarView::quit)).id("quit"),
    });
}

void MenuBarView::setArmed(bool isOn)
{
    if (!isComputerCompatible_) {
        return;
    }
    SettingsStore& settings = with_.settings;
    if (isOn || !settings.settings().isArmed) {
        settings.set(&AlarmSettings::isArmed, isOn);
        return;
    }
    with_.protectedActions.perform("disarm", [&settings] { settings.set(&AlarmSettings::isArmed, false); });
    // The toggle shows the stored value while the login is pending.
    changed();
}

void MenuBarView::showAlerts()
{
    open("openAlerts", actions_.openAlertsWindow);
}

void MenuBarView::showSettings()
{
    open("openSettings", actions_.openMainWindow);
}

void MenuBarView::open(const std::string& name, const std::function<void()>& openWindow)
{
    actions_.dismiss();
    with_.protectedActions.perform(name, openWindow);
}

void MenuBarView::quit()
{
    actions_.quit();
}

} // namespace sentrel
