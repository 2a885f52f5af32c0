#pragma once

#include "runtime/Observable.hpp"

#include <functional>
#include <string>

namespace sentrel {

class AlarmCoordinator;

namespace ports {
class Language;
}

/// The icon in the menu bar: whether the Mac is armed. Main actor.
class MenuBarLabel {
public:
    MenuBarLabel(AlarmCoordinator& coordinator, bool isComputerCompatible, ports::Language& language);
    MenuBarLabel(const MenuBarLabel&) = delete;

    /// Called after each change of what is shown.
    std::function<void()> onChange;

    /// The image asset.
    [[nodiscard]] std::string image() const;

    /// What screen readers say.
    [[nodiscard]] std::string accessibilityLabel() const;

private:
    [[nodiscard]] bool isArmed() const;

    AlarmCoordinator& coordinator_;
    const bool isComputerCompatible_;
    ports::Language& language_;
    Observation observation_;
};

} // namespace sentrel
