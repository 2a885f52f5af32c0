#pragma once

#include "foundation/Json.hpp"

#include <string_view>

namespace sentrel {
class SentrelApp;
}

namespace sentrel::simulation {

class MacSession;
class MacState;

// State as expectations have it: JSON, or a word. That of the devices comes from `MacState`.

/// {reason, deviceName, photo, pendingUpload} of the last alert on the disk; null without one.
[[nodiscard]] Json lastAlertOf(const MacState& state);

/// The reasons of the alerts on the disk, oldest first.
[[nodiscard]] Json alertReasonsOf(const MacState& state);

/// {volume, muted} of each audio device by its number.
[[nodiscard]] Json devicesOf(const MacState& state);

/// {alerts, notifications, macs}; null if the server doesn't let the phone read.
[[nodiscard]] Json phoneOf(const MacState& state);

/// The image in the menu bar, or null.
[[nodiscard]] Json iconOf(const MacState& state);

/// {reason, storage} of each alert in the product's list.
[[nodiscard]] Json alertRowsOf(SentrelApp& app);

[[nodiscard]] Json sectionsOf(SentrelApp& app);

/// {isAvailable, isReachable, lastSyncError}
[[nodiscard]] Json cloudViewOf(SentrelApp& app);

/// hidden, shown, locked-out
[[nodiscard]] std::string_view coverWordOf(MacSession& session, const MacState& state);

/// running, asked, quit
[[nodiscard]] std::string_view quitWordOf(MacSession& session);

/// accessory, regular; null while the product isn't running.
[[nodiscard]] Json activationPolicyOf(MacSession& session);

} // namespace sentrel::simulation
