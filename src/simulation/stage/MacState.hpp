#pragma once

#include "foundation/Json.hpp"

namespace sentrel::simulation {

class MacSession;

/// Everything that a scenario may expect something of, by the names that scenarios use. Devices answer what they can,
/// past the product: the speaker, the disk (alerts, settings, pending deletions), the displays and the menu bar, the
/// login panel, the power assertions, the server and the phone. The product is asked only for what no device
/// shows at all times: its notices, the last trigger, the list of alerts, its view of iCloud, whether the lock screen
/// refuses passcodes, and whether quitting is being decided.
[[nodiscard]] Json stateOf(MacSession& session);

} // namespace sentrel::simulation
