#pragma once

#include "runtime/Weak.hpp"
#include "ui/View.hpp"

namespace sentrel {

class AlarmCoordinator;
class ProtectedActions;

namespace ports {
class Language;
}

/// The button that silences the alarm, after the login if the settings require it. Main actor.
class StopAlarmButton {
public:
    enum class Style { menuBar, controlPanel };

    StopAlarmButton(AlarmCoordinator& coordinator, ProtectedActions& protectedActions, ports::Language& language);

    /// Hidden while no alarm sounds.
    [[nodiscard]] ui::View body(Style style);

private:
    void stop();

    AlarmCoordinator& coordinator_;
    ProtectedActions& protectedActions_;
    ports::Language& language_;
    WeakAnchor<StopAlarmButton> anchor_{*this};
};

} // namespace sentrel
