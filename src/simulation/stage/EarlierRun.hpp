#pragma once

namespace sentrel::simulation {

class MacSession;
struct Scenario;

/// Puts on the Mac what its owner has set in an earlier run, by the scenario: settings and the unlock passcode. Before
/// the launch. False when the keychain refuses the passcode.
[[nodiscard]] bool leaveFromEarlierRun(MacSession& session, const Scenario& scenario);

} // namespace sentrel::simulation
