#pragma once

#include "app/ChangeReporter.hpp"
#include "app/PasswordSetupSection.hpp"
#include "app/SettingsEditor.hpp"
#include "app/StopAlarmButton.hpp"
#include "runtime/MainActor.hpp"
#include "ui/View.hpp"

#include <optional>
#include <string>

namespace sentrel {

class AlarmCoordinator;
class CloudKitService;
class MacPresenceService;
class ProtectedActions;
class SettingsStore;
class UnlockPasscodeStore;

/// The control panel: the alarm's status and every setting. Main actor.
class MacContentView final : public ChangeReporter {
public:
    struct Collaborators {
        MainActor actor;
        SettingsStore& settings;
        AlarmCoordinator& coordinator;
        CloudKitService& cloud;
        MacPresenceService& presence;
        UnlockPasscodeStore& passcodes;
        ProtectedActions& protectedActions;
        ports::Language& language;
    };

    MacContentView(Collaborators collaborators, bool isComputerCompatible);

    /// Call when the window is about to be shown.
    void appeared();

    [[nodiscard]] ui::View body();

private:
    [[nodiscard]] ui::View heading();
    [[nodiscard]] ui::View status();
    [[nodiscard]] ui::View incompatibleNotice();
    [[nodiscard]] ui::View triggers();
    [[nodiscard]] std::optional<std::string> accelerometerNotice();
    [[nodiscard]] ui::View options();
    [[nodiscard]] ui::View security();
    [[nodiscard]] ui::View iCloud();
    [[nodiscard]] std::string localized(std::string_view text);

    Collaborators with_;
    const bool isComputerCompatible_;
    SettingsEditor editor_;
    StopAlarmButton stopButton_;
    PasswordSetupSection passwordSection_;
};

} // namespace sentrel
