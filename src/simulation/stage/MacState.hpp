#pragma once

#include "foundation/Json.hpp"

#include <filesystem>

namespace sentrel::simulation {

class MacSession;
class SimulatedMac;

/// All state that scenarios can expect, by the names that they use. Taken from devices, independently of the product,
/// where possible: the speaker, the disk (alerts, settings, pending deletions), the displays and the menu bar, the
/// login panel, the power assertions, the server and the phone. Only state that no device shows at all times comes from
/// the product: its notices, the last trigger, the list of alerts, its view of iCloud, whether the lock screen refuses
/// passcodes, and whether quitting is being decided.
[[nodiscard]] Json stateOf(MacSession& session);

/// The product's folder of alerts, repeated here so that the disk is read independently of the product.
[[nodiscard]] std::filesystem::path alertsFolder(SimulatedMac& mac);

} // namespace sentrel::simulation
