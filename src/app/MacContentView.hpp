#pragma once

#include "app/PasswordSetupSection.hpp"
#include "app/SettingsEditor.hpp"
#include "app/StopAlarmButton.hpp"
#include "runtime/MainActor.hpp"
#include "runtime/Observable.hpp"
#include "ui/View.hpp"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace sentrel {

class AlarmCoordinator;
class CloudKitService;
class MacPresenceService;
class ProtectedActions;
class SettingsStore;
class UnlockPasscodeStore;

/// The control panel: the alarm's status and every setting. Main actor.
class MacContentView {
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
    MacContentView(const MacContentView&) = delete;

    /// Called after each change of what is shown.
    std::function<void()> onChange;

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
    template <class T> void follow(Observable<T>& observable);
    void changed();

    Collaborators with_;
    const bool isComputerCompatible_;
    SettingsEditor editor_;
    StopAlarmButton stopButton_;
    PasswordSetupSection passwordSection_;
    std::vector<Observation> observations_;
};

} // namespace sentrel
