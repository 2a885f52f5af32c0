#pragma once

namespace sentrel::simulation {

class MacSession;
struct Scenario;

/// Stores the settings and the unlock passcode that the scenario gives from an earlier run. Call before the launch.
/// False if the keychain refuses the passcode.
[[nodiscard]] bool leaveFromEarlierRun(MacSession& session, const Scenario& scenario);

} // namespace sentrel::simulation
