#pragma once

#include "runtime/Observable.hpp"

#include <functional>
#include <string>

namespace sentrel {

class AlarmCoordinator;

namespace ports {
class Language;
}

/// The menu bar icon, which shows whether the Mac is armed. Main actor.
class MenuBarLabel {
public:
    MenuBarLabel(AlarmCoordinator& coordinator, bool isComputerCompatible, ports::Language& language);
    MenuBarLabel(const MenuBarLabel&) = delete;

    /// Called after each change of what is shown.
    std::function<void()> onChange;

    /// The name of the image asset.
    [[nodiscard]] std::string image() const;

    /// The text for screen readers.
    [[nodiscard]] std::string accessibilityLabel() const;

private:
    [[nodiscard]] bool isArmed() const;

    AlarmCoordinator& coordinator_;
    const bool isComputerCompatible_;
    ports::Language& language_;
    Observation observation_;
};

} // namespace sentrel
