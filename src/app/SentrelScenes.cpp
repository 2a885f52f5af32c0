#include "app/SentrelScenes.hpp"

#include "coordinator/AlarmCoordinator.hpp"
#include "core/SettingsStore.hpp"
#include "foundation/Quietly.hpp"
#include "ports/Application.hpp"
#include "ports/Language.hpp"

namespace sentrel {

SentrelScenes::SentrelScenes(MainActor actor, bool isComputerCompatible, Services services, ports::Platform& platform)
    : with_(services),
      platform_(platform),
      isComputerCompatible_(isComputerCompatible),
      protectedActions_(actor, services.settings, services.passwordGate, platform.language),
      windows_(platform.application, platform.applicationActivation),
      mainView_({actor, services.settings, services.coordinator, services.cloud, services.presence, services.passcodes,
                 protectedActions_, platform.language},
                isComputerCompatible),
      alertsView_({actor, services.alerts, services.photoPreview, platform.calendar, platform.files, platform.host,
                   platform.imageCodec, platform.language, platform.savePanels, platform.applicationNotifications}),
      menuLabel_(services.coordinator, isComputerCompatible, platform.language),
      mainScene_(actor, platform.windows, windows_, mainWindowDelegate_, platform.language.localized("Sentrel"),
                 [this] { return mainView_.body(); }),
      alertsScene_(actor, platform.windows, windows_, alertsWindowDelegate_, platform.language.localized("Alert List"),
                   [this] { return alertsView_.body(); }),
      menuScene_(actor, platform.statusBar)
{
    mainView_.onChange = [this] { mainScene_.contentChanged(); };
    alertsView_.onChange = [this] { alertsScene_.contentChanged(); };
    menuLabel_.onChange = [this] { menuScene_.contentChanged(); };
}

void SentrelScenes::appear()
{
    // Not earlier: the view makes the alarm follow the settings, and the last run may have left them armed.
    menuView_.emplace(MenuBarView::Collaborators{with_.settings, with_.coordinator, protectedActions_,
                                                 with_.windowHooks, platform_.loginItem, platform_.language},
                      isComputerCompatible_, menuActions());
    menuView_->onChange = [this] { menuScene_.contentChanged(); };
    quietly([this] { menuView_->appeared(); });
    menuScene_.appear({
        .image = [this] { return menuLabel_.image(); },
        .imageLabel = [this] { return menuLabel_.accessibilityLabel(); },
        .menu = [this] { return menuView_->body(); },
        .opened = [this] { menuView_->opened(); },
    });
}

MenuBarView::Actions SentrelScenes::menuActions()
{
    return {
        .dismiss = [this] { menuScene_.dismiss(); },
        .openMainWindow = [this] { openMainWindow(); },
        .openAlertsWindow = [this] { openAlertsWindow(); },
        .quit = [this] { platform_.application.terminate(); },
    };
}

void SentrelScenes::openMainWindow()
{
    mainView_.appeared();
    mainScene_.open();
}

void SentrelScenes::openAlertsWindow()
{
    alertsView_.appeared();
    alertsScene_.open();
}

} // namespace sentrel
