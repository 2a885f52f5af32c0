#pragma once

#include "app/ChangeReporter.hpp"
#include "runtime/Observable.hpp"

#include <string>

namespace sentrel {

class AlarmCoordinator;

namespace ports {
class Language;
}

/// The menu bar icon, which shows whether the Mac is armed. Main actor.
class MenuBarLabel final : public ChangeReporter {
public:
    MenuBarLabel(AlarmCoordinator& coordinator, bool isComputerCompatible, ports::Language& language);

    /// The name of the image asset.
    [[nodiscard]] std::string image() const;

    /// The text for screen readers.
    [[nodiscard]] std::string accessibilityLabel() const;

private:
    [[nodiscard]] bool isArmed() const;

    AlarmCoordinator& coordinator_;
    const bool isComputerCompatible_;
    ports::Language& language_;
};

} // namespace sentrel
